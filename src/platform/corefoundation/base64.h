// Base64 (RFC 4648, section 4), with white space between the digits.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_BASE64_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_BASE64_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/corefoundation/byte_buffer.h"

namespace catalogcore::cf {

// Decodes text in pieces.
class Base64Decoder {
 public:
  // Appends the bytes of a piece. False if the piece has other characters than digits, padding at the end, and white
  // space.
  [[nodiscard]] bool Decode(std::string_view piece, ByteBuffer& bytes);

  // Appends the bytes of the digits at the beginning of the text and returns the number of characters read. Spaces,
  // tabs and line feeds between the digits are skipped. Stops at any other character, also at padding.
  std::size_t DecodeDigits(std::string_view text, ByteBuffer& bytes);

  // Whether the text may end here: the last group of four digits is complete, padding included.
  bool IsComplete() const { return digits_ % 4 == 0; }

 private:
  bool Pad();
  void TakeDigit(std::uint32_t value, UInt8*& to);

  std::uint32_t bits_ = 0;  // of the digits since the last complete group of four
  unsigned digits_ = 0;     // the number of digits of that group, padding included
  bool isPadded_ = false;   // then no more digits may follow
};

// Appends the bytes as lines of at most `lineLength` digits. Each line begins with `indent`. REQUIRES: `lineLength` is
// a multiple of 4.
void EncodeBase64(std::string_view bytes, std::string_view indent, std::size_t lineLength, ByteBuffer& text);

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_BASE64_H_
