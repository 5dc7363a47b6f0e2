#include "app/text.h"

#include <glib.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <string_view>

namespace catalogcore::app {
namespace {

struct Character {
  std::size_t size = 1;     // bytes
  std::size_t columns = 1;  // of a terminal
  gunichar code = 0;
  bool isValid = false;  // UTF-8
};

// The character at `at`. A byte that begins no character is an invalid character of one byte.
Character CharacterAt(const std::string& text, std::size_t at) {
  const gunichar code = g_utf8_get_char_validated(text.data() + at, static_cast<gssize>(text.size() - at));
  constexpr gunichar kInvalid = 0xFFFFFFFE;  // and 0xFFFFFFFF
  if (code >= kInvalid || code == 0) return {};
  const std::size_t columns = g_unichar_iszerowidth(code) ? 0 : g_unichar_iswide(code) ? 2 : 1;
  return {static_cast<std::size_t>(g_unichar_to_utf8(code, nullptr)), columns, code, true};
}

// Whether the character changes the text around it: control characters, line separators, bidirectional controls.
bool IsActive(gunichar code) {
  return g_unichar_iscntrl(code) != 0 || code == 0x61C || code == 0x200E || code == 0x200F ||
         (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

std::string Hexadecimal(const char* prefix, gunichar number, int digits) {
  std::string text = prefix;
  while (digits-- > 0) text += "0123456789ABCDEF"[number >> 4 * digits & 0xF];
  return text;
}

// An invalid byte and the character with the same number get different escapes: \x9B, \u009B.
std::string Escape(const Character& character, char first) {
  if (first == '\n') return "\\n";
  if (first == '\r') return "\\r";
  if (first == '\t') return "\\t";
  if (character.isValid && character.code >= 0x80) return Hexadecimal("\\u", character.code, 4);
  return Hexadecimal("\\x", static_cast<unsigned char>(first), 2);
}

// The number of bytes of the first characters that fit into `width` columns.
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
    if (text[at] == '\\') {
      printable += "\\\\";
    } else if (!character.isValid || IsActive(character.code)) {
      printable += Escape(character, text[at]);
    } else {
      printable.append(text, at, character.size);
    }
    at += character.size;
  }
  return printable;
}

std::string ForOutput(const std::string& text) {
  static const bool isTerminal = isatty(STDOUT_FILENO) != 0;
  return isTerminal ? Printable(text) : text;
}

std::string CsvField(const std::string& text) {
  constexpr std::string_view kBeginsFormula = "=+-@\t\r";
  const bool isFormula = !text.empty() && kBeginsFormula.find(text.front()) != kBeginsFormula.npos;
  std::string cell = isFormula ? '\'' + text : text;
  if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
  std::string quoted = "\"";
  for (const char byte : cell) quoted += byte == '"' ? std::string("\"\"") : std::string(1, byte);
  return quoted + '"';
}

std::string JsonText(const nlohmann::ordered_json& value) {
  const std::string dump = value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  std::string text;
  text.reserve(dump.size());
  for (std::size_t at = 0; at < dump.size();) {
    const Character character = CharacterAt(dump, at);
    if (IsActive(character.code)) {  // only strings hold such characters; the rest is ASCII
      text += Hexadecimal("\\u", character.code, 4);
    } else {
      text.append(dump, at, character.size);
    }
    at += character.size;
  }
  return text;
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
