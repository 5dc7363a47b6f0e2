// Text as it goes to people: names from outside, counts, and what of them a terminal has room for.
#ifndef CATALOGCORE_APP_TEXT_H_
#define CATALOGCORE_APP_TEXT_H_

#include <cstddef>
#include <string>

namespace catalogcore::app {

// Columns of a terminal that the text takes.
std::size_t TextWidth(const std::string& text);

// The text, cut in its middle if it is wider than `width`.
std::string Shortened(const std::string& text, std::size_t width);

// The text with "?" for control characters, which would act on a terminal, and for what is no UTF-8.
std::string Printable(const std::string& text);

// A name from outside as it goes to standard output: printable if that is a terminal, else as it is.
std::string ForOutput(const std::string& text);

// The number with its thousands set apart: 1,204.
std::string Grouped(std::size_t number);

// "1 picture", "1,204 pictures".
std::string Counted(std::size_t number, const std::string& noun);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_TEXT_H_
