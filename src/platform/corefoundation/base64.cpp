#include "platform/corefoundation/base64.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace catalogcore::cf {

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// A character is a digit with a value, or one of these.
constexpr std::uint32_t kBlank = 1u << 24;  // space, tab or line feed
constexpr std::uint32_t kForeign = 1u << 25;

// The values of characters, shifted to the place of the first, second, third and fourth digit of a group. So decoding a
// group takes four look-ups, and one comparison checks that all four are digits.
using CharacterValues = std::array<std::uint32_t, 256>;
constexpr std::array<CharacterValues, 4> kValues = [] {
  std::array<CharacterValues, 4> values{};
  for (std::size_t place = 0; place < values.size(); ++place) {
    values[place].fill(kForeign);
    for (std::uint32_t value = 0; value < kDigits.size(); ++value) {
      values[place][static_cast<unsigned char>(kDigits[value])] = value << (18 - 6 * place);
    }
    for (const char blank : {' ', '\t', '\n'}) values[place][static_cast<unsigned char>(blank)] = kBlank;
  }
  return values;
}();

constexpr std::uint32_t ValueOf(char character, std::size_t place) {
  return kValues[place][static_cast<unsigned char>(character)];
}

// Decodes the groups of four digits at the beginning of the text. Returns their number.
std::size_t DecodeGroups(std::string_view text, UInt8*& to) {
  std::size_t groups = 0;
  for (const char* at = text.data(); groups < text.size() / 4; ++groups, at += 4) {
    const std::uint32_t bits = ValueOf(at[0], 0) | ValueOf(at[1], 1) | ValueOf(at[2], 2) | ValueOf(at[3], 3);
    if (bits >= kBlank) break;
    *to++ = static_cast<UInt8>(bits >> 16);
    *to++ = static_cast<UInt8>(bits >> 8);
    *to++ = static_cast<UInt8>(bits);
  }
  return groups;
}

// The two digits for every value of twelve bits.
constexpr auto kDigitPairs = [] {
  std::array<std::array<char, 2>, 4096> pairs{};
  for (std::size_t bits = 0; bits < pairs.size(); ++bits) pairs[bits] = {kDigits[bits >> 6], kDigits[bits & 63]};
  return pairs;
}();

// Encodes up to three bytes, with padding for missing bytes.
UInt8* EncodeGroup(std::string_view bytes, UInt8* to) {
  const auto byte = [bytes](std::size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u; };
  const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
  std::memcpy(to, kDigitPairs[bits >> 12].data(), 2);
  std::memcpy(to + 2, kDigitPairs[bits & 4095].data(), 2);
  for (std::size_t i = bytes.size() + 1; i < 4; ++i) to[i] = '=';
  return to + 4;
}

UInt8* EncodeLine(std::string_view line, UInt8* to) {
  for (; line.size() >= 3; line.remove_prefix(3)) to = EncodeGroup(line.substr(0, 3), to);
  return line.empty() ? to : EncodeGroup(line, to);
}

}  // namespace

// After two digits four bits are left over, after three digits two bits. They must be zero.
bool Base64Decoder::Pad() {
  if (digits_ < 2) return false;
  if (!isPadded_ && (bits_ & (digits_ == 2 ? 15u : 3u)) != 0) return false;
  isPadded_ = true;
  digits_ = (digits_ + 1) % 4;
  return true;
}

// The second, third and fourth digit each complete a byte.
void Base64Decoder::TakeDigit(std::uint32_t value, UInt8*& to) {
  bits_ = bits_ << 6 | value;
  digits_ = (digits_ + 1) % 4;
  if (digits_ == 2) *to++ = static_cast<UInt8>(bits_ >> 4);
  if (digits_ == 3) *to++ = static_cast<UInt8>(bits_ >> 2);
  if (digits_ == 0) *to++ = static_cast<UInt8>(bits_);
}

std::size_t Base64Decoder::DecodeDigits(std::string_view text, ByteBuffer& bytes) {
  const std::size_t before = bytes.size();
  UInt8* const start = bytes.Extend(text.size() / 4 * 3 + 3);
  UInt8* to = start;
  std::size_t at = 0;
  while (at < text.size()) {
    if (digits_ == 0 && !isPadded_) at += 4 * DecodeGroups(text.substr(at), to);
    const std::uint32_t value = at < text.size() ? ValueOf(text[at], 3) : kForeign;
    if (value == kForeign || (value != kBlank && isPadded_)) break;
    if (value != kBlank) TakeDigit(value, to);
    ++at;
  }
  bytes.Truncate(before + static_cast<std::size_t>(to - start));
  return at;
}

bool Base64Decoder::Decode(std::string_view piece, ByteBuffer& bytes) {
  for (;;) {
    piece.remove_prefix(DecodeDigits(piece, bytes));
    if (piece.empty()) return true;
    if (piece.front() != '\r' && !(piece.front() == '=' && Pad())) return false;
    piece.remove_prefix(1);
  }
}

void EncodeBase64(std::string_view bytes, std::string_view indent, std::size_t lineLength, ByteBuffer& text) {
  const std::size_t lineBytes = lineLength / 4 * 3;
  const std::size_t lines = (bytes.size() + lineBytes - 1) / lineBytes;
  UInt8* to = text.Extend((bytes.size() + 2) / 3 * 4 + lines * (indent.size() + 1));
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, lineBytes);
    to = std::copy(indent.begin(), indent.end(), to);
    to = EncodeLine(line, to);
    *to++ = '\n';
    bytes.remove_prefix(line.size());
  }
}

}  // namespace catalogcore::cf
