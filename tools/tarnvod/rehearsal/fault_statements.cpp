// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "rehearsal/fault_statements.h"

namespace tarn::command {
namespace {

using vod::schedule::Fault;
using vod::schedule::Kind;

/** "set_receive_empty_hits" as the enumerator "SetReceiveEmptyHits". */
std::string enumeratorOf(const std::string& function) {
  std::string name;
  bool isFirst = true;
  for (const char character : function) {
    if (character == '_') {
      isFirst = true;
    } else {
      name += isFirst ? static_cast<char>(character - 'a' + 'A') : character;
      isFirst = false;
    }
  }
  return name;
}

std::string repeated(int count, const std::string& body) {
  return "  for (std::uint32_t i = 0; i < " + std::to_string(count) + "; ++i) {\n  " + body + "  }\n";
}

std::string planned(const Fault& fault, const std::string& number, const std::string& effect) {
  return "  const int fault" + number + " = host::plan(host::Fault(host::Function::" + enumeratorOf(fault.function) +
         ")." + (fault.count > 0 ? "onCall(" + std::to_string(fault.count) + ")" : "always()") + "." + effect + ");\n";
}

std::string lifted(const std::string& number) {
  return "  host::lift(fault" + number + ");\n";
}

bool keepsFromAnswering(Kind kind) {
  return kind == Kind::Down || kind == Kind::Refuse || kind == Kind::Hang || kind == Kind::Lose;
}

}  // namespace

std::string withCamera(const std::string& statement, int camera) {
  std::string text;
  for (const char character : statement) {
    text += character == '@' ? std::to_string(camera) : std::string(1, character);
  }
  return text;
}

std::string FaultStatements::begin(const Fault& fault, std::size_t number) {
  withoutAnswer_ += keepsFromAnswering(fault.kind) ? 1 : 0;
  hanging_ += fault.kind == Kind::Hang ? 1 : 0;
  return "\n  // " + sentence(fault) + "\n" + begun(fault, std::to_string(number));
}

std::string FaultStatements::begun(const Fault& fault, const std::string& number) {
  const auto each = [&](const std::string& bytes) { return forCameras(fault, "send(@, " + bytes + ")"); };
  switch (fault.kind) {
    case Kind::Down:
      return "  host::takeServiceDown();\n" + drained();
    case Kind::Drop:
      return dropped(fault);
    case Kind::Refuse:
      return planned(fault, number, "failsWith(5)");
    case Kind::Hang:
      return "  const host::Gate gate" + number + ";\n" + planned(fault, number, "waitsAt(gate" + number + ")");
    case Kind::Silence:
      return "  // No frames are sent.\n";
    case Kind::Burst:
      return repeated(fault.count, each("frame(@, 0, 1)"));
    case Kind::Damage:
      return each("frame(@, 1, 1).substr(1)") + each("std::string(20, '\\xff')") + each("\"\"");
    case Kind::Empty:
      return each("\"\"");
    case Kind::Repeat:
      return repeated(10, each("frame(@, 1, 1)"));
    case Kind::Jump:
      return each("frame(@, 1'000'000'000'000, 1)") +
             each("frame(@, 1'000'000'000'000U + static_cast<std::uint64_t>(INT64_C(" +
                  std::to_string(fault.jump.count() * 1000) + ")), 1)");
    case Kind::Lose:
      return forCameras(fault, "loseClass(@, " + std::to_string(fault.count) + ")") + dropped(fault);
    case Kind::Renumber:
      return repeated(1000, each("frame(@, i, newObject())"));
    case Kind::Change:
      return forCameras(fault, "changeClasses(@)") + dropped(fault);
  }
  return {};
}

std::string FaultStatements::end(const Fault& fault, std::size_t number) {
  withoutAnswer_ -= keepsFromAnswering(fault.kind) ? 1 : 0;
  hanging_ -= fault.kind == Kind::Hang ? 1 : 0;
  const std::string suffix = std::to_string(number);
  switch (fault.kind) {
    case Kind::Down:
      return "  host::bringServiceUp();\n";
    case Kind::Refuse:
      return lifted(suffix);
    case Kind::Hang:
      return lifted(suffix) + "  gate" + suffix + ".open();\n";
    case Kind::Lose:
      return forCameras(fault, "regainClasses(@)") + dropped(fault);
    default:
      return {};
  }
}

std::string FaultStatements::forCameras(const Fault& fault, const std::string& statement) const {
  std::string text;
  for (const auto& [camera, classes] : cameras_) {
    if (!fault.camera || *fault.camera == camera) {
      text += "  " + withCamera(statement, camera) + ";\n";
    }
  }
  return text;
}

std::string FaultStatements::dropped(const Fault& fault) const {
  return forCameras(fault, "drop(@)") + drained();
}

/** Callbacks may wait for a call that does not return, and so are not waited for then. */
std::string FaultStatements::drained() const {
  return hanging_ > 0 ? "" : "  host::drain();\n";
}

}  // namespace tarn::command
