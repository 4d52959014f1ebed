// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "other_formats.h"

#include <sstream>

namespace tarn::VOD::bench {
namespace {

/** Prints a list, each item by a function. */
template <typename Items, typename Print>
void printList(std::ostream& out, const Items& items, const Print& print) {
  out << '[';
  const char* separator = "";
  for (const auto& item : items) {
    out << separator;
    print(item);
    separator = ",";
  }
  out << ']';
}

void printDetection(std::ostream& out, const ::VOD::Detection& detection) {
  out << R"({"coord_1":)" << detection.coord_1() << R"(,"coord_2":)" << detection.coord_2() << R"(,"coord_3":)"
      << detection.coord_3() << R"(,"coord_4":)" << detection.coord_4() << R"(,"object_id":)" << detection.object_id()
      << R"(,"class_id":)" << detection.class_id() << R"(,"score":)" << detection.score() << R"(,"status":)"
      << static_cast<int>(detection.status()) << R"(,"attributes":)";
  printList(out, detection.attributes(), [&out](const ::VOD::Attribute& attribute) {
    out << R"({"type":)" << attribute.type() << R"(,"class":)" << attribute.class_() << R"(,"score":)"
        << attribute.score() << '}';
  });
  out << R"(,"classifications":)";
  printList(out, detection.classifications(), [&out](const ::VOD::Classification& classification) {
    out << R"({"class":)" << classification.class_() << R"(,"score":)" << classification.score() << '}';
  });
  out << '}';
}

}  // namespace

std::string jsonOf(const ::VOD::Scene& scene) {
  std::ostringstream out;
  out << R"({"timestamp":)" << scene.timestamp() << R"(,"detections":)";
  printList(out, scene.detections(), [&out](const ::VOD::Detection& detection) { printDetection(out, detection); });
  out << R"(,"events":)";
  printList(out, scene.events(), [&out](const ::VOD::Event& event) {
    out << R"({"action":)" << static_cast<int>(event.action()) << R"(,"object_id":)" << event.object_id()
        << R"(,"object_ids":)";
    printList(out, event.object_ids(), [&out](int id) { out << id; });
    out << '}';
  });
  out << '}';
  return out.str();
}

}  // namespace tarn::VOD::bench
