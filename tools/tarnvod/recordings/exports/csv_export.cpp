// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"
#include "recordings/exports/frame_export.h"
#include "recordings/scene_record.h"

#include <charconv>
#include <map>
#include <unordered_map>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::string_view header =
    "frame,timestamp,arrival,objectId,className,score,status,coord1,coord2,coord3,coord4,attributes,classifications,"
    "event,objectIds\n";

/** The text as one field: in quotation marks, where it could be taken for more than one. */
std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  std::string result = "\"";
  for (const char letter : text) {
    result += letter == '"' ? "\"\"" : std::string(1, letter);
  }
  return result + '"';
}

template <typename Number>
void append(std::string& line, Number number) {
  char digits[32];
  line.append(digits, std::to_chars(digits, digits + sizeof(digits), number).ptr);
}

/** The fields that are the same in many lines, made once. */
class CsvNames {
 public:
  explicit CsvNames(const SceneNames& names) : names_(names) {}

  const std::string& className(std::uint32_t id) {
    const auto found = classes_.find(id);
    return found != classes_.end() ? found->second : classes_.emplace(id, csvField(names_.className(id))).first->second;
  }

  /** A detection's attributes: "coat=red:80;hat=yes". */
  void appendAttributes(std::string& line, const ::VOD::Detection& detection) {
    text_.clear();
    for (const auto& attribute : detection.attributes()) {
      separate();
      text_ += attributeText(attribute);
      appendScore(attribute.has_score_case() == ::VOD::Attribute::kScore, attribute.score());
    }
    line += csvField(text_);
  }

  void appendClassifications(std::string& line, const ::VOD::Detection& detection) {
    text_.clear();
    for (const auto& classification : detection.classifications()) {
      separate();
      if (classification.has_class_case() == ::VOD::Classification::kClass) {
        text_ += names_.className(classification.class_());
      }
      appendScore(classification.has_score_case() == ::VOD::Classification::kScore, classification.score());
    }
    line += csvField(text_);
  }

 private:
  void separate() { text_ += text_.empty() ? "" : ";"; }

  void appendScore(bool isThere, std::uint32_t score) {
    if (isThere) {
      text_ += ':';
      append(text_, score);
    }
  }

  const std::string& attributeText(const ::VOD::Attribute& attribute) {
    const bool hasValue = attribute.has_class_case() == ::VOD::Attribute::kClass;
    const std::uint64_t key = std::uint64_t{attribute.type()} << 32U | (hasValue ? attribute.class_() : noValue);
    auto found = attributes_.find(key);
    if (found == attributes_.end()) {
      const std::string value = hasValue ? '=' + names_.attributeValue(attribute.type(), attribute.class_()) : "";
      found = attributes_.emplace(key, names_.attributeName(attribute.type()) + value).first;
    }
    return found->second;
  }

  static constexpr std::uint32_t noValue = 0xffffffffU;

  const SceneNames& names_;
  std::unordered_map<std::uint32_t, std::string> classes_;
  std::unordered_map<std::uint64_t, std::string> attributes_;
  std::string text_;
};

class CsvExport : public FrameExport {
 public:
  CsvExport(const std::string& path, const SceneNames& names) : file_(path), names_(names) { file_.write(header); }

  void add(const ScannedScene& scanned) override {
    frame_.clear();
    append(frame_, scanned.number);
    frame_ += ',';
    append(frame_, scanned.scene.timestamp());
    frame_ += ',';
    if (scanned.arrival) {
      append(frame_, scanned.arrival->wallClock);
    }
    for (const auto& detection : scanned.scene.detections()) {
      add(detection);
    }
    for (const auto& event : eventsOf(scanned.scene)) {
      add(event);
    }
  }

  void finish() override { file_.commit(); }

 private:
  void add(const ::VOD::Detection& detection) {
    line_ = frame_;
    line_ += ',';
    append(line_, detection.object_id());
    line_ += ',';
    line_ += names_.className(detection.class_id());
    line_ += ',';
    append(line_, detection.score());
    line_ += ',';
    line_ += statusName(detection);
    for (const float number : {detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()}) {
      line_ += ',';
      append(line_, number);
    }
    line_ += ',';
    names_.appendAttributes(line_, detection);
    line_ += ',';
    names_.appendClassifications(line_, detection);
    line_ += ",,\n";
    file_.write(line_);
  }

  void add(const VOD::VodEvent& event) {
    std::string others;
    for (const int id : event.objectIds) {
      others += (others.empty() ? "" : " ") + std::to_string(id);
    }
    file_.write(frame_ + ',' + std::to_string(event.objectId) + ",,,,,,,,,," + nameOf(event.action) + ',' + others +
                '\n');
  }

  static const std::string& statusName(const ::VOD::Detection& detection) {
    static const std::map<VOD::DetectionStatus, std::string> names = [] {
      std::map<VOD::DetectionStatus, std::string> result;
      for (const auto status : {VOD::DetectionStatus::Untracked, VOD::DetectionStatus::TrackedUnconfident,
                                VOD::DetectionStatus::TrackedConfident}) {
        result.emplace(status, nameOf(status));
      }
      return result;
    }();
    return names.at(statusOf(detection));
  }

  ReplacedFile file_;
  CsvNames names_;
  std::string frame_;
  std::string line_;
};

}  // namespace

std::unique_ptr<FrameExport> makeCsvExport(const std::string& path, const SceneNames& names) {
  return std::make_unique<CsvExport>(path, names);
}

}  // namespace tarn::command
