// The XML of property lists, as expat parses it.
#include <CoreFoundation/CFPropertyList.h>
#include <expat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/corefoundation/data_object.h"
#include "platform/corefoundation/property_list_reader.h"

using catalogcore::cf::Object;
using catalogcore::cf::PropertyListReader;
using catalogcore::cf::Ref;
using catalogcore::cf::Refusal;

namespace {

// UTF-16 announces itself by a byte-order mark, or by the zero byte in the first character, which is ASCII.
bool IsUtf16(std::string_view xml) {
  if (xml.size() < 2) return false;
  return xml.starts_with("\xFF\xFE") || xml.starts_with("\xFE\xFF") || xml[0] == '\0' || xml[1] == '\0';
}

std::string_view WithoutFinalZero(std::string_view xml) {
  if (!xml.ends_with('\0')) return xml;
  if (IsUtf16(xml) && xml.size() % 2 == 0) return xml;  // half of the last character
  return xml.substr(0, xml.size() - 1);
}

// expat lets a leading surrogate be followed by anything.
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

// Feeds a reader from XML. No exception passes through expat: what the reader throws is kept until expat has returned.
class Parser {
 public:
  // Throws std::bad_alloc.
  explicit Parser(PropertyListReader& reader)
      : reader_(reader), expat_(XML_ParserCreate_MM(nullptr, &kMemory, nullptr)) {
    if (!expat_) throw std::bad_alloc();
    XML_SetUserData(expat_.get(), this);
    XML_SetElementHandler(expat_.get(), &StartElement, &EndElement);
    XML_SetCharacterDataHandler(expat_.get(), &Text);
    XML_SetEntityDeclHandler(expat_.get(), &EntityDeclared);
    XML_SetAttlistDeclHandler(expat_.get(), &AttributeDeclared);
    // Called for an entity that only the document type, which is not fetched, might declare.
    XML_SetSkippedEntityHandler(expat_.get(), &EntitySkipped);
  }

  // Throws Refusal or std::bad_alloc.
  void Parse(std::string_view xml) {
    const bool isUtf16 = IsUtf16(xml);  // then a digit is two bytes, and expat gets them all
    for (std::size_t most = kPiece; !xml.empty();) {
      const std::size_t size = isUtf16 ? std::min(most, xml.size()) : PieceSize(xml, most);
      const XML_Index start = fed_;
      Feed(xml.substr(0, size), false);
      xml.remove_prefix(size);
      most = HasReached(start) ? kPiece : std::min(2 * most, kLargestPiece);
      if (isUtf16 || tagEnd_ != fed_) continue;
      const std::string_view digits = xml.substr(0, reader_.Digits(xml.substr(0, xml.find('<'))));
      passedBy_.push_back(digits);
      xml.remove_prefix(digits.size());
    }
    Feed({}, true);
  }

  std::size_t line() const {
    auto line = static_cast<std::size_t>(XML_GetCurrentLineNumber(expat_.get()));
    for (const std::string_view digits : passedBy_) {
      line += static_cast<std::size_t>(std::count(digits.begin(), digits.end(), '\n'));
    }
    return line;
  }

 private:
  static constexpr std::size_t kPiece = std::size_t{1} << 16;
  // A token that does not end in its piece is copied by expat and parsed from its beginning with the next piece. So the
  // pieces double until it ends: a token of any length is parsed a few times, not once for every 64 KiB of it.
  static constexpr std::size_t kLargestPiece = std::size_t{1} << 30;  // the size that expat takes is an int

  // Whether expat is done with all tokens that begin ahead of this byte.
  bool HasReached(XML_Index byte) const { return XML_GetCurrentByteIndex(expat_.get()) >= byte; }

  static constexpr std::string_view kDataTag = "<data>";

  // The next piece, of `most` bytes at most, ends with a tag that begins 64 KiB of text without markup, as that of a large
  // data element does: base64 does not need expat, which goes through it byte by byte. Smaller elements are left in
  // their piece, because many short pieces would have expat begin again and again with a comment that holds them.
  static std::size_t PieceSize(std::string_view xml, std::size_t most) {
    const std::size_t size = std::min(most, xml.size());
    const std::size_t tag = xml.rfind('<', size - 1);
    if (tag == std::string_view::npos || !xml.substr(tag).starts_with(kDataTag)) return size;
    const std::string_view text = xml.substr(tag + kDataTag.size(), kPiece);
    const bool isLong = text.size() == kPiece && text.find('<') == std::string_view::npos;
    return isLong ? tag + kDataTag.size() : size;
  }
  static constexpr int kMaxAttributeDeclarations = 256;  // expat compares each with all before it
  static constexpr XML_Memory_Handling_Suite kMemory = {std::malloc, std::realloc, std::free};

  void Feed(std::string_view piece, bool isLast) {
    fed_ += static_cast<XML_Index>(piece.size());
    if (XML_Parse(expat_.get(), piece.data(), static_cast<int>(piece.size()), isLast) == XML_STATUS_OK) return;
    if (refusal_) throw Refusal{refusal_};
    const XML_Error error = XML_GetErrorCode(expat_.get());
    if (error == XML_ERROR_NO_MEMORY || error == XML_ERROR_ABORTED) throw std::bad_alloc();
    throw Refusal{XML_ErrorString(error)};
  }

  // Runs a step of the reader; after a failure expat is stopped, and what it still reports is ignored.
  template <typename Step>
  static void Run(void* self, Step step) {
    Parser& parser = *static_cast<Parser*>(self);
    if (parser.hasFailed_) return;
    try {
      step(parser.reader_);
      return;
    } catch (const Refusal& refusal) {
      parser.refusal_ = refusal.reason;
    } catch (const std::bad_alloc&) {
      parser.refusal_ = nullptr;
    }
    parser.hasFailed_ = true;
    XML_StopParser(parser.expat_.get(), XML_FALSE);
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
    Run(self, [](PropertyListReader&) { throw Refusal{"an entity declaration"}; });
  }
  static void AttributeDeclared(void* self, const XML_Char*, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    Parser& parser = *static_cast<Parser*>(self);
    if (++parser.attributeDeclarations_ <= kMaxAttributeDeclarations) return;
    Run(self, [](PropertyListReader&) { throw Refusal{"too many attribute declarations"}; });
  }
  static void EntitySkipped(void* self, const XML_Char*, int) {
    Run(self, [](PropertyListReader&) { throw Refusal{"an undefined entity"}; });
  }

  struct Deleter {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  PropertyListReader& reader_;
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, Deleter> expat_;
  XML_Index fed_ = 0;                       // bytes that expat got
  XML_Index tagEnd_ = -1;                   // of these, those up to the end of the last start tag
  std::vector<std::string_view> passedBy_;  // what expat did not get
  int attributeDeclarations_ = 0;
  bool hasFailed_ = false;
  const char* refusal_ = nullptr;  // after a failure: its reason, or null when it was memory
};

// Sets `*error` after a refusal. Throws std::bad_alloc.
Ref<Object> ReadXml(std::string_view xml, bool mutableDictionaries, CFStringRef* error) {
  PropertyListReader reader(mutableDictionaries);
  Parser parser(reader);
  try {
    if (IsUtf16(xml) && HasLoneSurrogate(xml)) throw Refusal{"a surrogate without its pair"};
    parser.Parse(xml);
    return reader.TakeResult();
  } catch (const Refusal& refusal) {
    const std::string message = "line " + std::to_string(parser.line()) + ": " + refusal.reason;
    if (error) *error = catalogcore::cf::CreateString(message);
    return nullptr;
  }
}

}  // namespace

CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef, CFDataRef xml, CFOptionFlags mutability,
                                                  CFStringRef* error) {
  if (error) *error = nullptr;
  if (!xml) return nullptr;
  try {
    return ReadXml(WithoutFinalZero(xml->bytes), mutability != kCFPropertyListImmutable, error).release();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
