#include "app/text.h"

#include <glib.h>
#include <unistd.h>

namespace catalogcore::app {
namespace {

struct Character {
  std::size_t size = 1;     // bytes
  std::size_t columns = 1;  // of a terminal
  bool isPrintable = false;
};

// The one that begins there; a byte that begins none counts as one that cannot be printed.
Character CharacterAt(const std::string& text, std::size_t at) {
  const gunichar code = g_utf8_get_char_validated(text.data() + at, static_cast<gssize>(text.size() - at));
  constexpr gunichar kInvalid = 0xFFFFFFFE;  // this and the next
  if (code >= kInvalid || code == 0) return {};
  const std::size_t columns = g_unichar_iszerowidth(code) ? 0 : g_unichar_iswide(code) ? 2 : 1;
  return {static_cast<std::size_t>(g_unichar_to_utf8(code, nullptr)), columns, g_unichar_iscntrl(code) == 0};
}

// The bytes of as many characters as `width` columns hold.
std::size_t Fitting(const std::string& text, std::size_t width) {
  std::size_t end = 0;
  while (end < text.size()) {
    const Character character = CharacterAt(text, end);
    if (character.columns > width) break;
    width -= character.columns;
    end += character.size;
  }
  return end;
}

}  // namespace

std::size_t TextWidth(const std::string& text) {
  std::size_t width = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = CharacterAt(text, at);
    width += character.columns;
    at += character.size;
  }
  return width;
}

std::string Shortened(const std::string& text, std::size_t width) {
  std::size_t rest = TextWidth(text);
  if (rest <= width) return text;
  if (width < 2) return text.substr(0, Fitting(text, width));
  const std::size_t tail = (width - 1) / 2;
  std::size_t begin = 0;
  while (rest > tail) {
    const Character character = CharacterAt(text, begin);
    rest -= character.columns;
    begin += character.size;
  }
  return text.substr(0, Fitting(text, width - 1 - tail)) + "…" + text.substr(begin);
}

std::string Printable(const std::string& text) {
  std::string printable;
  for (std::size_t at = 0; at < text.size();) {
    const Character character = CharacterAt(text, at);
    printable += character.isPrintable ? text.substr(at, character.size) : "?";
    at += character.size;
  }
  return printable;
}

std::string ForOutput(const std::string& text) {
  static const bool isTerminal = isatty(STDOUT_FILENO) != 0;
  return isTerminal ? Printable(text) : text;
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
