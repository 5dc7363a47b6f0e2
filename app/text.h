// Text between the command (UTF-8 in std::string) and the library (CoreFoundation strings).
#ifndef CATALOGCORE_APP_TEXT_H_
#define CATALOGCORE_APP_TEXT_H_

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace catalogcore::app {

struct ReleaseObject {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

// An owned reference of the type, null or not.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, ReleaseObject>;

// A string variable as the library's calls take it: Variable() is what goes into a record.
class StringVariable {
 public:
  // An empty variable, for text that comes back.
  StringVariable() = default;

  // Holds the text. Throws std::invalid_argument if it is no valid UTF-8 or holds a zero byte.
  explicit StringVariable(const std::string& text);

  StringVariable(const StringVariable&) = delete;
  StringVariable& operator=(const StringVariable&) = delete;
  ~StringVariable() { Clear(); }

  // For a call that stores a new string: releases the one before.
  CFStringRef* Output() {
    Clear();
    return &string_;
  }
  CFStringRef* Variable() { return &string_; }

  // None if nothing was stored, which is what text that is no UTF-8 comes to.
  std::optional<std::string> Text() const;

 private:
  void Clear();

  CFStringRef string_ = nullptr;
};

// Whether the catalogue's calls take the text: valid UTF-8 without a zero byte.
bool IsText(const std::string& text);

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
