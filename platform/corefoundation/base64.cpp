#include "platform/corefoundation/base64.h"

#include <algorithm>
#include <array>

namespace catalogcore::cf {

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// What a byte of the text is: a digit's value, or one of these.
constexpr std::uint8_t kSpace = 64;
constexpr std::uint8_t kPadding = 65;
constexpr std::uint8_t kForeign = 66;

constexpr std::array<std::uint8_t, 256> kValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kForeign);
  std::uint8_t value = 0;
  for (const char digit : kDigits) values[static_cast<unsigned char>(digit)] = value++;
  for (const char space : {' ', '\t', '\r', '\n'}) values[static_cast<unsigned char>(space)] = kSpace;
  values['='] = kPadding;
  return values;
}();

UInt8* EncodeGroup(std::string_view bytes, UInt8* to) {
  const auto byte = [bytes](std::size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u; };
  const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
  for (std::size_t i = 0; i < 4; ++i) {
    const auto digit = static_cast<UInt8>(kDigits[bits >> (18 - 6 * i) & 63]);
    *to++ = i <= bytes.size() ? digit : UInt8{'='};
  }
  return to;
}

}  // namespace

// With two digits four bits are left over, with three two.
bool Base64Decoder::Pad() {
  if (digits_ < 2) return false;
  if (!isPadded_ && (bits_ & (digits_ == 2 ? 15u : 3u)) != 0) return false;
  isPadded_ = true;
  digits_ = (digits_ + 1) % 4;
  return true;
}

bool Base64Decoder::Decode(std::string_view piece, ByteBuffer& bytes) {
  const std::size_t before = bytes.size();
  UInt8* const start = bytes.Extend(piece.size() / 4 * 3 + 3);
  UInt8* to = start;
  for (const char character : piece) {
    const std::uint8_t value = kValues[static_cast<unsigned char>(character)];
    if (value == kSpace) continue;
    if (value == kPadding) {
      if (!Pad()) return false;
      continue;
    }
    if (value == kForeign || isPadded_) return false;
    bits_ = bits_ << 6 | value;
    digits_ = (digits_ + 1) % 4;
    // A byte is whole at the second, third and fourth digit.
    if (digits_ == 2) *to++ = static_cast<UInt8>(bits_ >> 4);
    if (digits_ == 3) *to++ = static_cast<UInt8>(bits_ >> 2);
    if (digits_ == 0) *to++ = static_cast<UInt8>(bits_);
  }
  bytes.Truncate(before + static_cast<std::size_t>(to - start));
  return true;
}

void EncodeBase64(std::string_view bytes, std::string_view indent, std::size_t lineLength, ByteBuffer& text) {
  const std::size_t lineBytes = lineLength / 4 * 3;
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, lineBytes);
    UInt8* to = text.Extend(indent.size() + (line.size() + 2) / 3 * 4 + 1);
    to = std::copy(indent.begin(), indent.end(), to);
    for (std::size_t at = 0; at < line.size(); at += 3) to = EncodeGroup(line.substr(at, 3), to);
    *to = '\n';
    bytes.remove_prefix(line.size());
  }
}

}  // namespace catalogcore::cf
