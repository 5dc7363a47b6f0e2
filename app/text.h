// Text for output: untrusted names for people and for programs, counts, and cuts to the width of a terminal.
#ifndef CATALOGCORE_APP_TEXT_H_
#define CATALOGCORE_APP_TEXT_H_

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace catalogcore::app {

// The number of terminal columns of the text.
std::size_t TextWidth(const std::string& text);

// The text, cut in its middle if it is wider than `width`.
std::string Shortened(const std::string& text, std::size_t width);

// Untrusted text for people. Control characters, bidirectional controls, line separators and bytes that are not UTF-8
// become escapes (\n, \x1B, \u202E), and a backslash becomes two, so different texts never look the same.
std::string Printable(const std::string& text);

// Untrusted text for standard output: Printable() on a terminal, exact bytes elsewhere.
std::string ForOutput(const std::string& text);

// Untrusted text as a CSV field (RFC 4180). Spreadsheets execute a cell that begins with = + - @ tab or CR as a formula;
// CsvField() puts an apostrophe before such text.
std::string CsvField(const std::string& text);

// One line of JSON. Its strings escape the characters that Printable() escapes, as \u.... . Bytes that are not UTF-8
// become U+FFFD.
std::string JsonText(const nlohmann::ordered_json& value);

// The number with separators for the thousands: 1,204.
std::string Grouped(std::size_t number);

// "1 picture", "1,204 pictures".
std::string Counted(std::size_t number, const std::string& noun);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_TEXT_H_
