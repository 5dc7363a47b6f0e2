#include "platform/corefoundation/value_grammar.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>

namespace catalogcore::cf {

namespace {

constexpr std::string_view kSpace = " \t\r\n";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Each takes what it names off the front of the text, and returns whether there was any.
bool Take(std::string_view& text, char wanted) {
  const bool has = text.starts_with(wanted);
  if (has) text.remove_prefix(1);
  return has;
}
bool TakeSign(std::string_view& text) { return Take(text, '+') || Take(text, '-'); }
bool TakeDigits(std::string_view& text) {
  const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
  const auto digits = static_cast<std::size_t>(end - text.begin());
  text.remove_prefix(digits);
  return digits > 0;
}

// Exactly so many digits, as their number; -1 if there are not.
int TakeNumber(std::string_view& text, std::size_t digits) {
  if (text.size() < digits || !std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(digits), IsDigit)) {
    return -1;
  }
  int number = 0;
  for (const char digit : text.substr(0, digits)) number = number * 10 + (digit - '0');
  text.remove_prefix(digits);
  return number;
}

bool IsNotFinite(std::string_view text) {
  constexpr std::string_view kWords[] = {"inf", "infinity", "nan"};
  const auto isSame = [](char a, char lower) { return a == lower || a == lower - 'a' + 'A'; };
  return std::any_of(std::begin(kWords), std::end(kWords), [&](std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(), isSame);
  });
}

}  // namespace

bool IsSpace(std::string_view text) { return text.find_first_not_of(kSpace) == std::string_view::npos; }

std::string_view TrimSpace(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

bool IsInteger(std::string_view text) {
  TakeSign(text);
  return TakeDigits(text) && text.empty();
}

bool IsReal(std::string_view text) {
  TakeSign(text);
  if (IsNotFinite(text)) return true;
  if (!TakeDigits(text)) return false;
  if (Take(text, '.')) TakeDigits(text);
  if (text.empty()) return true;
  if (!Take(text, 'E') && !Take(text, 'e')) return false;
  TakeSign(text);
  return TakeDigits(text) && text.empty();
}

bool IsDate(std::string_view text) {
  constexpr struct {
    char separator;  // ahead of the unit; 0: none
    std::size_t digits;
    int first, last;
  } kUnits[] = {{0, 4, 0, 9999}, {'-', 2, 1, 12}, {'-', 2, 1, 31}, {'T', 2, 0, 23}, {':', 2, 0, 59}, {':', 2, 0, 60}};
  std::array<int, std::size(kUnits)> values = {0, 1, 1, 0, 0, 0};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto& unit = kUnits[i];
    if (i > 0 && text == "Z") break;
    if (unit.separator && !Take(text, unit.separator)) return false;
    values[i] = TakeNumber(text, unit.digits);
    if (values[i] < unit.first || values[i] > unit.last) return false;
  }
  const std::chrono::year_month_day day{std::chrono::year(values[0]),
                                        std::chrono::month(static_cast<unsigned>(values[1])),
                                        std::chrono::day(static_cast<unsigned>(values[2]))};
  return text == "Z" && day.ok();
}

}  // namespace catalogcore::cf
