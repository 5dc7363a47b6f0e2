#include <CoreFoundation/CFPropertyList.h>

#include <algorithm>
#include <new>
#include <string_view>
#include <vector>

#include "platform/corefoundation/base64.h"
#include "platform/corefoundation/byte_buffer.h"
#include "platform/corefoundation/data_object.h"
#include "platform/corefoundation/dictionary_object.h"
#include "platform/corefoundation/kept_values.h"
#include "platform/corefoundation/property_list.h"
#include "platform/corefoundation/string_object.h"

using catalogcore::cf::AsObject;
using catalogcore::cf::ByteBuffer;
using catalogcore::cf::Kind;
using catalogcore::cf::Object;
using catalogcore::cf::Scalar;

namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";

// Lines of base64 are 76 columns wide with their tabs of 8. Seven tabs leave room for some digits; deeper levels are
// indented no further, so that the text of a deep tree stays in proportion to its content.
constexpr std::string_view kTabs = "\t\t\t\t\t\t\t";
constexpr std::size_t kLineColumns = 76;
constexpr std::size_t kTabColumns = 8;

// What must not stand in XML text as it is. A carriage return would be read as a line feed.
std::string_view EscapeOf(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '\r':
      return "&#13;";
    default:
      return {};
  }
}

bool HasCharacterUnknownToXml(std::string_view utf8) {
  const auto isControl = [](char c) {
    return static_cast<unsigned char>(c) < ' ' && c != '\t' && c != '\n' && c != '\r';
  };
  return std::any_of(utf8.begin(), utf8.end(), isControl) || utf8.find("\xEF\xBF\xBE") != std::string_view::npos ||
         utf8.find("\xEF\xBF\xBF") != std::string_view::npos;
}

// Functions throw std::bad_alloc; those that return a bool return false for what is no property list.
class Writer {
 public:
  bool Write(const Object& propertyList) {
    text_.Append(kHeader);
    if (!WriteValue(propertyList)) return false;
    while (!levels_.empty()) {
      if (!WriteNext()) return false;
    }
    text_.Append(kFooter);
    return true;
  }

  ByteBuffer TakeText() { return std::move(text_); }

 private:
  // An array or a dictionary whose end is still to be written. One of the two is null.
  struct Level {
    const __CFArray* array;
    const __CFDictionary* dictionary;
    std::size_t next = 0;
  };

  std::string_view Indent() const { return kTabs.substr(0, levels_.size()); }

  // The next entry of the innermost level, or its end.
  bool WriteNext() {
    Level& level = levels_.back();
    const std::size_t at = level.next++;
    if (level.array) {
      return at < level.array->values.size() ? WriteValue(*level.array->values[at]) : EndLevel("array");
    }
    if (at == level.dictionary->entries().size()) return EndLevel("dict");
    const auto& [key, value] = level.dictionary->entries()[at];
    return WriteText("key", key->utf8) && WriteValue(*value);
  }

  bool WriteValue(const Object& value) {
    switch (value.kind()) {
      case Kind::kString:
        return WriteText("string", static_cast<const __CFString&>(value).utf8);
      case Kind::kData:
        return WriteData(static_cast<const __CFData&>(value).bytes);
      case Kind::kArray: {
        const auto& array = static_cast<const __CFArray&>(value);
        return StartLevel("array", {&array, nullptr}, array.values.empty());
      }
      case Kind::kDictionary: {
        const auto& dictionary = static_cast<const __CFDictionary&>(value);
        return StartLevel("dict", {nullptr, &dictionary}, dictionary.entries().empty());
      }
      case Kind::kBoolean:
        return WriteEmpty(static_cast<const Scalar&>(value).element);
      case Kind::kNumber:
      case Kind::kDate:
        return WriteText(static_cast<const Scalar&>(value).element, static_cast<const Scalar&>(value).text);
      default:
        return false;
    }
  }

  bool StartLevel(std::string_view element, Level level, bool isEmpty) {
    if (levels_.size() == catalogcore::cf::kMaxPropertyListLevels) return false;
    if (isEmpty) return WriteEmpty(element);
    WriteTag("<", element, ">\n");
    levels_.push_back(level);
    return true;
  }

  bool EndLevel(std::string_view element) {
    levels_.pop_back();
    WriteTag("</", element, ">\n");
    return true;
  }

  bool WriteEmpty(std::string_view element) {
    WriteTag("<", element, "/>\n");
    return true;
  }

  bool WriteText(std::string_view element, std::string_view content) {
    if (HasCharacterUnknownToXml(content)) return false;
    WriteTag("<", element, ">");
    for (std::size_t at = 0; at < content.size();) {
      const std::size_t end = std::min(content.find_first_of("&<>\r", at), content.size());
      text_.Append(content.substr(at, end - at));
      if (end < content.size()) text_.Append(EscapeOf(content[end]));
      at = end + 1;
    }
    WriteClosing(element);
    return true;
  }

  bool WriteData(std::string_view bytes) {
    WriteTag("<", "data", ">\n");
    catalogcore::cf::EncodeBase64(bytes, Indent(), kLineColumns - Indent().size() * kTabColumns, text_);
    text_.Append(Indent());
    WriteClosing("data");
    return true;
  }

  void WriteTag(std::string_view opening, std::string_view element, std::string_view closing) {
    for (const std::string_view part : {Indent(), opening, element, closing}) text_.Append(part);
  }
  void WriteClosing(std::string_view element) {
    for (const std::string_view part : {std::string_view("</"), element, std::string_view(">\n")}) text_.Append(part);
  }

  std::vector<Level> levels_;
  ByteBuffer text_;
};

}  // namespace

CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef, CFPropertyListRef propertyList) {
  if (!propertyList) return nullptr;
  try {
    Writer writer;
    return writer.Write(*AsObject(propertyList)) ? catalogcore::cf::CreateData(writer.TakeText()) : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
