// UTF-8 as The Unicode Standard defines it (table 3-7, well-formed byte sequences).
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_UTF8_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_UTF8_H_

#include <cstddef>
#include <string_view>

namespace catalogcore::cf {

// The number of bytes of the well-formed character that the text begins with; 0 when it begins with none.
inline std::size_t CharacterBytes(std::string_view text) {
  const auto byte = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
  const auto isTail = [byte](std::size_t i) { return byte(i) >= 0x80 && byte(i) <= 0xBF; };
  if (text.empty()) return 0;
  const unsigned lead = byte(0);
  const unsigned second = byte(1);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4 || !isTail(1)) return 0;
  if (lead < 0xE0) return 2;
  if (lead == 0xE0 && second < 0xA0) return 0;  // overlong
  if (lead == 0xED && second > 0x9F) return 0;  // a surrogate
  if (lead == 0xF0 && second < 0x90) return 0;  // overlong
  if (lead == 0xF4 && second > 0x8F) return 0;  // above U+10FFFF
  if (!isTail(2)) return 0;
  if (lead < 0xF0) return 3;
  return isTail(3) ? 4 : 0;
}

// UTF-16 units of a character of so many bytes.
inline std::size_t Utf16Units(std::size_t characterBytes) { return characterBytes == 4 ? 2 : 1; }

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_UTF8_H_
