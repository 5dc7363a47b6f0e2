// Reads the XML of property lists with expat.
#include <CoreFoundation/CFPropertyList.h>
#include <expat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>

#include "platform/corefoundation/objects.h"
#include "platform/corefoundation/property_list_reader.h"

using catalogcore::cf::InvalidPropertyList;
using catalogcore::cf::PropertyListReader;

namespace {

// UTF-16 begins with a byte-order mark, or with an ASCII character, one byte of which is zero.
bool IsUtf16(std::string_view xml) {
  if (xml.size() < 2) return false;
  return xml.starts_with("\xFF\xFE") || xml.starts_with("\xFE\xFF") || xml[0] == '\0' || xml[1] == '\0';
}

std::string_view WithoutFinalZero(std::string_view xml) {
  if (!xml.ends_with('\0')) return xml;
  if (IsUtf16(xml) && xml.size() % 2 == 0) return xml;  // the zero is half of the last character
  return xml.substr(0, xml.size() - 1);
}

// expat accepts any unit after a leading surrogate.
bool HasLoneSurrogate(std::string_view utf16) {
  const std::size_t high = utf16.starts_with("\xFE\xFF") || utf16[0] == '\0' ? 0 : 1;
  bool isOpen = false;  // after a leading surrogate
  for (std::size_t at = high; at < utf16.size(); at += 2) {
    const unsigned char byte = static_cast<unsigned char>(utf16[at]);
    if (isOpen != (byte >= 0xDC && byte <= 0xDF)) return true;
    isOpen = byte >= 0xD8 && byte <= 0xDB;
  }
  return isOpen;
}

// Passes XML to a reader. Exceptions of the reader do not pass through expat; they stop the parse.
class Parser {
 public:
  // May throw std::bad_alloc.
  explicit Parser(PropertyListReader& reader)
      : reader_(reader), expat_(XML_ParserCreate_MM(nullptr, &kMemory, nullptr)) {
    if (!expat_) throw std::bad_alloc();
    XML_SetUserData(expat_.get(), this);
    XML_SetElementHandler(expat_.get(), &StartElement, &EndElement);
    XML_SetCharacterDataHandler(expat_.get(), &Text);
    XML_SetEntityDeclHandler(expat_.get(), &EntityDeclared);
    XML_SetAttlistDeclHandler(expat_.get(), &AttributeDeclared);
    // Called for an undefined entity, which an external document type could define. That is never fetched.
    XML_SetSkippedEntityHandler(expat_.get(), &EntitySkipped);
  }

  // False if the XML is not a property list, or on allocation failure. May throw std::bad_alloc.
  bool Parse(std::string_view xml) {
    const bool isUtf16 = IsUtf16(xml);  // a digit has two bytes then, and expat gets all digits
    for (std::size_t most = kPiece; !xml.empty();) {
      const std::size_t size = isUtf16 ? std::min(most, xml.size()) : PieceSize(xml, most);
      const XML_Index start = fed_;
      if (!Feed(xml.substr(0, size), false)) return false;
      xml.remove_prefix(size);
      most = HasReached(start) ? kPiece : std::min(2 * most, kLargestPiece);
      if (!isUtf16 && tagEnd_ == fed_) xml.remove_prefix(reader_.Digits(xml.substr(0, xml.find('<'))));
    }
    return Feed({}, true);
  }

 private:
  static constexpr std::size_t kPiece = std::size_t{1} << 16;
  // expat copies a token that does not end in its piece, and parses it again from its beginning with the next piece. So
  // pieces double until the token ends: it is parsed a few times, not once for every 64 KiB.
  static constexpr std::size_t kLargestPiece = std::size_t{1} << 30;  // the size that expat takes is an int

  // Whether expat has parsed all tokens that begin before this byte.
  bool HasReached(XML_Index byte) const { return XML_GetCurrentByteIndex(expat_.get()) >= byte; }

  static constexpr std::string_view kDataTag = "<data>";

  // The size of the next piece, at most `most`. A piece ends after a data tag that 64 KiB of text without markup
  // follow: this library decodes base64 faster than expat passes it on. Smaller data elements stay within their piece,
  // because expat would parse a long comment that holds them again for every short piece.
  static std::size_t PieceSize(std::string_view xml, std::size_t most) {
    const std::size_t size = std::min(most, xml.size());
    const std::size_t tag = xml.rfind('<', size - 1);
    if (tag == std::string_view::npos || !xml.substr(tag).starts_with(kDataTag)) return size;
    const std::string_view text = xml.substr(tag + kDataTag.size(), kPiece);
    const bool isLong = text.size() == kPiece && text.find('<') == std::string_view::npos;
    return isLong ? tag + kDataTag.size() : size;
  }
  static constexpr int kMaxAttributeDeclarations = 256;  // expat compares each with all earlier ones
  static constexpr XML_Memory_Handling_Suite kMemory = {std::malloc, std::realloc, std::free};

  bool Feed(std::string_view piece, bool isLast) {
    fed_ += static_cast<XML_Index>(piece.size());
    return XML_Parse(expat_.get(), piece.data(), static_cast<int>(piece.size()), isLast) == XML_STATUS_OK;
  }

  // Runs a step of the reader. A failure stops expat; the calls that expat still makes then do nothing.
  template <typename Step>
  static void Run(void* self, Step step) {
    Parser& parser = *static_cast<Parser*>(self);
    if (parser.hasFailed_) return;
    try {
      step(parser.reader_);
      return;
    } catch (const InvalidPropertyList&) {
      parser.hasFailed_ = true;
    } catch (const std::bad_alloc&) {
      parser.hasFailed_ = true;
    }
    XML_StopParser(parser.expat_.get(), XML_FALSE);
  }
  static void Refuse(void* self) {
    Run(self, [](PropertyListReader&) { throw InvalidPropertyList(); });
  }

  static void StartElement(void* self, const XML_Char* name, const XML_Char** attributes) {
    Parser& parser = *static_cast<Parser*>(self);
    parser.tagEnd_ = XML_GetCurrentByteIndex(parser.expat_.get()) + XML_GetCurrentByteCount(parser.expat_.get());
    Run(self, [=](PropertyListReader& reader) { reader.StartElement(name, attributes); });
  }
  static void EndElement(void* self, const XML_Char* name) {
    Run(self, [=](PropertyListReader& reader) { reader.EndElement(name); });
  }
  static void Text(void* self, const XML_Char* text, int length) {
    Run(self, [=](PropertyListReader& reader) { reader.Text({text, static_cast<std::size_t>(length)}); });
  }
  static void EntityDeclared(void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*, const XML_Char*,
                             const XML_Char*, const XML_Char*) {
    Refuse(self);
  }
  static void AttributeDeclared(void* self, const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    Parser& parser = *static_cast<Parser*>(self);
    if (++parser.attributeDeclarations_ > kMaxAttributeDeclarations) Refuse(self);
  }
  static void EntitySkipped(void* self, const XML_Char*, int) { Refuse(self); }

  struct Deleter {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  PropertyListReader& reader_;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, Deleter> expat_;
  XML_Index fed_ = 0;      // the number of bytes passed to expat
  XML_Index tagEnd_ = -1;  // the position in them after the last start tag
  int attributeDeclarations_ = 0;
  bool hasFailed_ = false;
};

}  // namespace

CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef, CFDataRef data, CFOptionFlags, CFStringRef* error) {
  if (error) *error = nullptr;
  if (!data) return nullptr;
  try {
    const std::string_view xml = WithoutFinalZero(data->bytes);
    if (IsUtf16(xml) && HasLoneSurrogate(xml)) return nullptr;
    PropertyListReader reader;
    return Parser(reader).Parse(xml) ? reader.TakeResult().release() : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
