// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#include "base/text.h"
#include "base/text_buffer.h"
#include "recordings/exports/frame_export.h"
#include "recordings/scene_record.h"

#include <string_view>
#include <unordered_map>
#include <utility>

namespace tarn::command {
namespace {

constexpr std::string_view header =
    "frame,timestamp,arrival,objectId,className,score,status,coord1,coord2,coord3,coord4,attributes,classifications,"
    "event,objectIds\n";

/** Puts what stands in the buffer from a place on into quotation marks, as one field. */
void quote(TextBuffer& buffer, std::size_t begin) {
  const std::string text(buffer.text().substr(begin));
  buffer.cutTo(begin);
  buffer.append('"');
  for (const char letter : text) {
    buffer.append(letter == '"' ? "\"\"" : std::string_view(&letter, 1));
  }
  buffer.append('"');
}

/** A part of a field. */
struct FieldText {
  explicit FieldText(std::string contents)
      : text(std::move(contents)), needsQuotes(text.find_first_of(",\"\r\n") != std::string::npos) {}

  std::string text;
  bool needsQuotes;  ///< it could be taken for more than one field
};

/** Texts that are the same in many lines, each made once. */
template <typename Key>
class FieldTexts {
 public:
  /** @param make  returns the text that is not there yet */
  template <typename Make>
  const FieldText& find(Key key, const Make& make) {
    const auto found = texts_.find(key);
    if (found != texts_.end()) {
      return found->second;
    }
    constexpr std::size_t most = 4096;  // a damaged recording may hold any number of ids
    if (texts_.size() >= most) {
      texts_.clear();
    }
    return texts_.emplace(key, make()).first->second;
  }

 private:
  std::unordered_map<Key, FieldText> texts_;
};

/** The last field of a line, in the making. */
class Field {
 public:
  explicit Field(TextBuffer& line) : line_(line), begin_(line.size()) {}

  void add(const FieldText& part) {
    line_.append(part.text);
    needsQuotes_ = needsQuotes_ || part.needsQuotes;
  }

  void addScore(bool isThere, std::uint32_t score) {
    if (isThere) {
      line_.append(':');
      line_.append(score);
    }
  }

  void separate() {
    if (line_.size() > begin_) {
      line_.append(';');
    }
  }

  void end() const {
    if (needsQuotes_) {
      quote(line_, begin_);
    }
    line_.append(',');
  }

 private:
  TextBuffer& line_;
  const std::size_t begin_;
  bool needsQuotes_ = false;
};

/** Appends fields with names. */
class CsvNames {
 public:
  explicit CsvNames(const SceneNames& names) : names_(names) {}

  void appendClass(TextBuffer& line, std::uint32_t id) {
    Field field(line);
    field.add(className(id));
    field.end();
  }

  /** A detection's attributes: "coat=red:80;hat=yes". */
  void appendAttributes(TextBuffer& line, const ::VOD::Detection& detection) {
    Field field(line);
    for (const auto& attribute : detection.attributes()) {
      field.separate();
      field.add(attributeText(attribute));
      field.addScore(attribute.has_score_case() == ::VOD::Attribute::kScore, attribute.score());
    }
    field.end();
  }

  /** A detection's classifications: "human:80". */
  void appendClassifications(TextBuffer& line, const ::VOD::Detection& detection) {
    Field field(line);
    for (const auto& classification : detection.classifications()) {
      field.separate();
      if (classification.has_class_case() == ::VOD::Classification::kClass) {
        field.add(className(classification.class_()));
      }
      field.addScore(classification.has_score_case() == ::VOD::Classification::kScore, classification.score());
    }
    field.end();
  }

 private:
  const FieldText& className(std::uint32_t id) {
    return classes_.find(id, [&] { return FieldText(names_.className(id)); });
  }

  const FieldText& attributeText(const ::VOD::Attribute& attribute) {
    constexpr std::uint32_t noValue = 0xffffffffU;
    const bool hasValue = attribute.has_class_case() == ::VOD::Attribute::kClass;
    const std::uint64_t key = std::uint64_t{attribute.type()} << 32U | (hasValue ? attribute.class_() : noValue);
    return attributes_.find(key, [&] {
      const std::string value = hasValue ? '=' + names_.attributeValue(attribute.type(), attribute.class_()) : "";
      return FieldText(names_.attributeName(attribute.type()) + value);
    });
  }

  const SceneNames& names_;
  FieldTexts<std::uint32_t> classes_;
  FieldTexts<std::uint64_t> attributes_;
};

class CsvExport : public FrameExport {
 public:
  CsvExport(const std::string& path, const SceneNames& names) : file_(path), names_(names) { file_.write(header); }

  void add(const ScannedScene& scanned) override {
    beginFrame(scanned);
    lines_.clear();
    for (const auto& detection : scanned.scene.detections()) {
      add(detection);
    }
    for (const auto& event : eventsOf(scanned.scene)) {
      add(event);
    }
    file_.write(lines_.text());
  }

  void finish() override { file_.commit(); }

 private:
  /** Makes the fields with which all lines of the frame begin. */
  void beginFrame(const ScannedScene& scanned) {
    frame_.clear();
    frame_.append(scanned.number, ',');
    frame_.append(scanned.scene.timestamp(), ',');
    if (scanned.arrival) {
      frame_.append(scanned.arrival->wallClock);
    }
    frame_.append(',');
  }

  template <typename ObjectId>
  void beginLine(ObjectId object) {
    lines_.append(frame_.text());
    lines_.append(object, ',');
  }

  void add(const ::VOD::Detection& detection) {
    beginLine(detection.object_id());
    names_.appendClass(lines_, detection.class_id());
    lines_.append(detection.score(), ',');
    lines_.append(statusName(detection));
    lines_.append(',');
    for (const float number : {detection.coord_1(), detection.coord_2(), detection.coord_3(), detection.coord_4()}) {
      lines_.append(number, ',');
    }
    names_.appendAttributes(lines_, detection);
    names_.appendClassifications(lines_, detection);
    lines_.append(",\n");
  }

  void add(const VOD::VodEvent& event) {
    beginLine(event.objectId);
    lines_.append(",,,,,,,,,");
    lines_.append(event.action == VOD::EventAction::Delete ? deleted_ : connected_);
    char separator = ',';
    for (const int id : event.objectIds) {
      lines_.append(std::exchange(separator, ' '));
      lines_.append(id);
    }
    lines_.append(separator == ',' ? ",\n" : "\n");
  }

  ReplacedFile file_;
  CsvNames names_;
  const std::string deleted_ = nameOf(VOD::EventAction::Delete);
  const std::string connected_ = nameOf(VOD::EventAction::Connect);
  TextBuffer frame_;
  TextBuffer lines_;
};

}  // namespace

std::unique_ptr<FrameExport> makeCsvExport(const std::string& path, const SceneNames& names) {
  return std::make_unique<CsvExport>(path, names);
}

}  // namespace tarn::command
