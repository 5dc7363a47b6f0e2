// Text on its way out: names from outside for people and for machines, counts, and cuts to the width of a terminal.
#ifndef CATALOGCORE_APP_TEXT_H_
#define CATALOGCORE_APP_TEXT_H_

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace catalogcore::app {

// Columns of a terminal that the text takes.
std::size_t TextWidth(const std::string& text);

// The text, cut in its middle if it is wider than `width`.
std::string Shortened(const std::string& text, std::size_t width);

// Text from outside for people. Control characters, bidirectional controls, line separators and bytes that are not UTF-8
// become escapes (\n, \x1B, \u202E), and a backslash becomes two, so that different texts never look the same.
std::string Printable(const std::string& text);

// Text from outside for standard output: Printable() on a terminal, exact bytes elsewhere.
std::string ForOutput(const std::string& text);

// Text from outside as a CSV field (RFC 4180). Spreadsheets run a cell that begins with = + - @ tab or CR as a formula:
// such text gets an apostrophe in front.
std::string CsvField(const std::string& text);

// One line of JSON, safe to print anywhere: what Printable() escapes is \u.... inside its strings. Bytes that are not
// UTF-8 become U+FFFD.
std::string JsonText(const nlohmann::ordered_json& value);

// The number with its thousands set apart: 1,204.
std::string Grouped(std::size_t number);

// "1 picture", "1,204 pictures".
std::string Counted(std::size_t number, const std::string& noun);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_TEXT_H_
