#include "app/text.h"

#include <algorithm>
#include <stdexcept>

namespace catalogcore::app {
namespace {

CFStringRef NewString(const std::string& text) {
  if (text.find('\0') != std::string::npos) return nullptr;
  return CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8);
}

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; }

// The first bytes of the text that make up `width` characters.
std::string Head(const std::string& text, std::size_t width) {
  std::size_t end = 0;
  for (; end < text.size(); ++end) {
    if (!BeginsCharacter(text[end])) continue;
    if (width == 0) break;
    --width;
  }
  return text.substr(0, end);
}

std::string Tail(const std::string& text, std::size_t width) {
  std::size_t begin = text.size();
  while (begin > 0 && width > 0) {
    if (BeginsCharacter(text[--begin])) --width;
  }
  return text.substr(begin);
}

}  // namespace

StringVariable::StringVariable(const std::string& text) : string_(NewString(text)) {
  if (!string_) throw std::invalid_argument("the text is no valid UTF-8");
}

std::optional<std::string> StringVariable::Text() const {
  if (!string_) return std::nullopt;
  const CFIndex capacity = CFStringGetMaximumSizeForEncoding(CFStringGetLength(string_), kCFStringEncodingUTF8) + 1;
  std::string text(static_cast<std::size_t>(capacity), '\0');
  if (!CFStringGetCString(string_, text.data(), capacity, kCFStringEncodingUTF8)) return std::nullopt;
  text.resize(text.find('\0'));
  return text;
}

void StringVariable::Clear() {
  if (string_) CFRelease(string_);
  string_ = nullptr;
}

bool IsText(const std::string& text) { return Owned<CFStringRef>(NewString(text)) != nullptr; }

std::size_t TextWidth(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::string Shortened(const std::string& text, std::size_t width) {
  if (TextWidth(text) <= width) return text;
  if (width < 2) return Head(text, width);
  const std::size_t tail = (width - 1) / 2;
  return Head(text, width - 1 - tail) + "…" + Tail(text, tail);
}

std::string Grouped(std::size_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
  return digits;
}

std::string Counted(std::size_t number, const std::string& noun) {
  return Grouped(number) + ' ' + noun + (number == 1 ? "" : "s");
}

}  // namespace catalogcore::app
