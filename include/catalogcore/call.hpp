/// @file
/// The strings and records that the layer passes to the C calls. Not for applications.
#ifndef CATALOGCORE_CALL_HPP_
#define CATALOGCORE_CALL_HPP_

#include <catalogcore.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "catalogcore/entries.hpp"

namespace catalogcore {

/// Not for applications.
namespace detail {

/// Input text: owns the CoreFoundation string, which is null if the text is invalid.
class InputText {
 public:
  /// Converts the text.
  explicit InputText(std::string_view text) : string_(Make(text)) {}
  InputText(const InputText&) = delete;             ///< owns its string alone
  InputText& operator=(const InputText&) = delete;  ///< owns its string alone

  /// Releases the string.
  ~InputText() {
    if (string_) CFRelease(string_);
  }

  /// Whether the text is valid.
  bool IsValid() const { return string_ != nullptr; }

  /// The variable that a call reads; never null.
  IDXSTR Variable() { return &string_; }

 private:
  static constexpr std::size_t kShort = 1024;  // bytes; shorter text is terminated on the stack

  static CFStringRef Make(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return nullptr;
    if (text.size() >= kShort) return Convert(std::string(text).c_str());
    std::array<char, kShort> terminated;
    terminated[text.copy(terminated.data(), text.size())] = '\0';
    return Convert(terminated.data());
  }

  static CFStringRef Convert(const char* text) {
    return CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
  }

  CFStringRef string_;
};

/// Output text: owns the CoreFoundation string that a call stored, if any.
class OutputText {
 public:
  /// Holds no string.
  OutputText() = default;
  OutputText(const OutputText&) = delete;             ///< owns its string alone
  OutputText& operator=(const OutputText&) = delete;  ///< owns its string alone

  /// Releases the string.
  ~OutputText() {
    if (string_) CFRelease(string_);
  }

  /// The variable that a call writes; never null.
  IDXSTR Variable() { return &string_; }

  /// Writes the text to `out`. Returns false, with `out` empty, if no string was stored.
  bool CopyTo(std::string& out) const {
    out.clear();
    if (!string_) return false;
    std::array<UInt8, 1024> bytes;
    const CFIndex length = CFStringGetLength(string_);
    CFIndex size = 0;
    if (Copy(bytes.data(), bytes.size(), size) == length) {
      out.assign(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(size));
      return true;
    }
    Copy(nullptr, 0, size);
    out.resize(static_cast<std::size_t>(size));
    return Copy(reinterpret_cast<UInt8*>(out.data()), out.size(), size) == length;
  }

 private:
  CFIndex Copy(UInt8* bytes, std::size_t capacity, CFIndex& size) const {
    return CFStringGetBytes(string_, CFRangeMake(0, CFStringGetLength(string_)), kCFStringEncodingUTF8, 0, false, bytes,
                            static_cast<CFIndex>(capacity), &size);
  }

  CFStringRef string_ = nullptr;
};

/// A record. Setting a field also marks the field.
struct Record : IDXITEM {
  /// Nothing is marked.
  Record() : IDXITEM() {}

  /// The name of an image or index, for input or output.
  template <typename Text>
  Record& Name(Text& text) {
    name = text.Variable();
    return Mark(IDXMASK_NAME);
  }

  /// The path of a folder.
  Record& Path(InputText& text) {
    path = text.Variable();
    return Mark(IDXMASK_PATH);
  }

  /// The index number.
  Record& Number(IndexNumber number) {
    index = number;
    return Mark(IDXMASK_INDEX);
  }

  /// The protections.
  Record& Protection(Attributes attributes) {
    attribute = static_cast<std::uint8_t>(attributes);
    return Mark(IDXMASK_ATTRIBUTE);
  }

  /// The state bits.
  Record& State(Options options) {
    state = static_cast<std::uint8_t>(options);
    return *this;
  }

  /// The fields that a find call writes.
  Record& Wanted(OutputText& text, std::uint32_t fields) {
    operation |= IDXOP_GETINFO;
    name = text.Variable();
    return Mark(fields);
  }

  /// The operation bits.
  Record& Operation(int bits) {
    operation = static_cast<std::uint8_t>(bits);
    return *this;
  }

  /// The protections that a call wrote.
  Attributes Protections() const { return static_cast<Attributes>(attribute); }

 private:
  Record& Mark(std::uint32_t field) {
    mask |= field;
    return *this;
  }
};

}  // namespace detail

/// Whether a text is valid UTF-8 without a zero byte. Also false on allocation failure.
inline bool IsText(std::string_view text) { return detail::InputText(text).IsValid(); }

}  // namespace catalogcore

#endif  // CATALOGCORE_CALL_HPP_
