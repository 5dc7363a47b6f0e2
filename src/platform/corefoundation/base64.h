// Base64 (RFC 4648, section 4), with white space between the digits.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_BASE64_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_BASE64_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/corefoundation/byte_buffer.h"

namespace catalogcore::cf {

// Decodes text that arrives in pieces.
class Base64Decoder {
 public:
  // Appends the bytes of a piece. False when it holds anything but digits, padding at the end, and white space.
  [[nodiscard]] bool Decode(std::string_view piece, ByteBuffer& bytes);

  // Appends the bytes of the digits that the text begins with, spaces, tabs and line feeds between them included, and
  // returns how many characters these are. Padding, carriage returns and all else are left for Decode.
  std::size_t DecodeDigits(std::string_view text, ByteBuffer& bytes);

  // Whether the text may end here: its padding is complete, and the bits that it leaves over are zero.
  bool IsComplete() const { return digits_ % 4 == 0; }

 private:
  bool Pad();
  void TakeDigit(std::uint32_t value, UInt8*& to);

  std::uint32_t bits_ = 0;  // of the digits since the last whole group of four
  unsigned digits_ = 0;     // of that group, padding included
  bool isPadded_ = false;   // after which no digit may follow
};

// Appends all bytes as lines of at most `lineLength` digits, a multiple of 4, each between `indent` and a line feed.
void EncodeBase64(std::string_view bytes, std::string_view indent, std::size_t lineLength, ByteBuffer& text);

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_BASE64_H_
