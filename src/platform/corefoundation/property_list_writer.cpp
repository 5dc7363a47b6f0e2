#include "platform/corefoundation/property_list_writer.h"

#include <CoreFoundation/CFPropertyList.h>

#include <algorithm>
#include <new>

#include "platform/corefoundation/base64.h"
#include "platform/corefoundation/objects.h"

namespace catalogcore::cf {

namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";

// A line of base64 has at most 76 columns, where a tab has 8. At most seven tabs are written, so that the text of
// deeply nested values stays in proportion to their content.
constexpr std::string_view kTabs = "\t\t\t\t\t\t\t";
constexpr std::size_t kLineColumns = 76;
constexpr std::size_t kTabColumns = 8;

// XML parsers read an unescaped carriage return as a line feed.
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

}  // namespace

std::string_view PropertyListWriter::Indent() const { return kTabs.substr(0, outerLevels_ + contents_.size()); }

void PropertyListWriter::WriteTag(std::string_view opening, std::string_view element, std::string_view closing) {
  for (const std::string_view part : {Indent(), opening, element, closing}) text_.Append(part);
}

void PropertyListWriter::WriteClosing(std::string_view element) {
  for (const std::string_view part : {std::string_view("</"), element, std::string_view(">\n")}) text_.Append(part);
}

void PropertyListWriter::Open(std::string_view element) {
  WriteTag("<", element, ">\n");
  contents_.push_back(text_.size());
}

void PropertyListWriter::Close(std::string_view element) {
  const bool isEmpty = contents_.back() == text_.size();
  contents_.pop_back();
  if (!isEmpty) return WriteTag("</", element, ">\n");
  text_.Truncate(text_.size() - std::string_view(">\n").size());
  text_.Append("/>\n");
}

void PropertyListWriter::WriteEmpty(std::string_view element) { WriteTag("<", element, "/>\n"); }

void PropertyListWriter::WriteData(std::string_view bytes) {
  WriteTag("<", "data", ">\n");
  EncodeBase64(bytes, Indent(), kLineColumns - Indent().size() * kTabColumns, text_);
  text_.Append(Indent());
  WriteClosing("data");
}

bool PropertyListWriter::WriteText(std::string_view element, std::string_view content) {
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

namespace {

bool WriteValue(const Object& value, PropertyListWriter& writer) {
  switch (value.kind()) {
    case Kind::kString:
      return writer.WriteText("string", static_cast<const __CFString&>(value).utf8);
    case Kind::kData:
      writer.WriteData(static_cast<const __CFData&>(value).bytes);
      return true;
    case Kind::kKept:
      writer.Append(static_cast<const KeptValue&>(value).xml.view());
      return true;
    default:
      return false;
  }
}

bool WriteDictionary(const __CFDictionary& dictionary, PropertyListWriter& writer) {
  writer.Open("dict");
  for (const auto& [key, value] : dictionary.entries) {
    if (!writer.WriteText("key", key->utf8) || !WriteValue(*value, writer)) return false;
  }
  writer.Close("dict");
  return true;
}

// False if the object is not a property list.
bool WriteRoot(const Object& root, PropertyListWriter& writer) {
  if (root.kind() != Kind::kDictionary) return WriteValue(root, writer);
  return WriteDictionary(static_cast<const __CFDictionary&>(root), writer);
}

}  // namespace

}  // namespace catalogcore::cf

CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef, CFPropertyListRef propertyList) {
  using namespace catalogcore::cf;
  if (!propertyList) return nullptr;
  try {
    PropertyListWriter writer;
    writer.Append(kHeader);
    if (!WriteRoot(*AsObject(propertyList), writer)) return nullptr;
    writer.Append(kFooter);
    return CreateData(writer.TakeText());
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
