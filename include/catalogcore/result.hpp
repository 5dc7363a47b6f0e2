/// @file
/// What calls of catalogcore.hpp give: a status, and a value or the status of a failure.
#ifndef CATALOGCORE_RESULT_HPP_
#define CATALOGCORE_RESULT_HPP_

#include <catalogcore.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace catalogcore {

/// Why a call failed: the IDXERR_... value of the C header, and one of this header's own. Casts both ways are allowed;
/// kRecognizer and kFaces come with a code of 1 to 255 added.
enum class Status : IDXSTATUS {
  kOk = IDX_OK,                       ///< success
  kFailed = IDXERR_FAILED,            ///< no catalogue is open; text is no UTF-8; a file cannot be read or written
  kParam = IDXERR_PARAM,              ///< an argument is missing, or is none that can be
  kNoData = IDXERR_NODATA,            ///< the file is missing or holds nothing of the kind
  kEmpty = IDXERR_EMPTY,              ///< the file's text has no line
  kVersion = IDXERR_VERSION,          ///< the file's text is of another version
  kNoImage = IDXERR_NOIMAGE,          ///< no such image
  kNoIndex = IDXERR_NOINDEX,          ///< no such index
  kImageExists = IDXERR_IMAGEEXISTS,  ///< the image is in the catalogue already
  kIndexExists = IDXERR_INDEXEXISTS,  ///< the parent has a child of this name already
  kIndexFull = IDXERR_INDEXFULL,      ///< the parent has no number left for another child
  kMemory = IDXERR_MEMORY,            ///< no memory; also an empty text handed in
  kNotEmpty = IDXERR_NOTEMPTY,        ///< the index still has child indexes
  kProtected = IDXERR_PROTECTED,      ///< an attribute forbids it, and Options::kForce was not given
  kDetector = IDXERR_DETECTOR,        ///< the recognizer is needed and its parameter resource is not there
  kImageSize = IDXERR_IMAGESIZE,      ///< width or height is above 4096 pixels, and neither below 50
  kRecognizer = IDXERR_RECOGNIZER,    ///< plus the recognizer's own code: see RecognizerCode
  kFaces = IDXERR_FACES,              ///< plus the face detector's own code: see FacesCode
  kAlreadyOpen = 0x10000,             ///< of this header: Catalog::Open while the process has a catalogue
};

/// The recognizer's own code, 1 to 255; 0 if the status is none of its failures.
constexpr IDXSTATUS RecognizerCode(Status status) {
  const auto value = static_cast<IDXSTATUS>(status);
  return value > IDXERR_RECOGNIZER && value < IDXERR_FACES ? value - IDXERR_RECOGNIZER : 0;
}

/// The face detector's own code, 1 to 255; 0 if the status is none of its failures.
constexpr IDXSTATUS FacesCode(Status status) {
  const auto value = static_cast<IDXSTATUS>(status);
  return value > IDXERR_FACES && value < IDXERR_FACES + 256 ? value - IDXERR_FACES : 0;
}

/// The status in words, for a line such as "cannot file a.jpg: already in the catalogue": lower case, no full stop.
inline std::string Message(Status status) {
  constexpr std::pair<Status, const char*> kMessages[] = {
      {Status::kOk, "ok"},
      {Status::kFailed, "no catalogue is open, or a text or a file cannot be read or written"},
      {Status::kParam, "the catalogue cannot hold that"},
      {Status::kNoData, "no such file, or nothing of the kind in it"},
      {Status::kEmpty, "the file's text is empty"},
      {Status::kVersion, "the file is of another version"},
      {Status::kNoImage, "not in the catalogue"},
      {Status::kNoIndex, "no such index"},
      {Status::kImageExists, "already in the catalogue"},
      {Status::kIndexExists, "there is an index of that name already"},
      {Status::kIndexFull, "no number is left: an index takes 20 others, numbered 10 to 29"},
      {Status::kMemory, "out of memory"},
      {Status::kNotEmpty, "it still holds other indexes"},
      {Status::kProtected, "protected"},
      {Status::kDetector, "the recognizer's parameters (brennparam.dat) are not where the library looks for them"},
      {Status::kImageSize, "the picture is too large"},
      {Status::kAlreadyOpen, "this process has a catalogue already"},
  };
  for (const auto& [known, message] : kMessages) {
    if (known == status) return message;
  }
  if (FacesCode(status) != 0) return "the face detector fails with code " + std::to_string(FacesCode(status));
  if (RecognizerCode(status) != 0) return "the recognizer fails with code " + std::to_string(RecognizerCode(status));
  return "the library fails with status " + std::to_string(static_cast<IDXSTATUS>(status));
}

#if defined(__cpp_exceptions)
/// What Result::value() throws; what() is the status in words.
class Error : public std::runtime_error {
 public:
  /// The failure of a call.
  explicit Error(Status status) : std::runtime_error(Message(status)), status_(status) {}

  /// Why the call failed; never Status::kOk.
  Status status() const noexcept { return status_; }

 private:
  Status status_;
};
#endif

/// What a call gives: a value, or the status of its failure. Its members are named as those of std::expected, which
/// C++20 does not have yet.
template <typename T>
class [[nodiscard]] Result {
 public:
  /// The type of the value.
  using value_type = T;

  /// A success.
  Result(T value) : value_(std::move(value)), error_(Status::kOk) {}

  /// A failure. REQUIRES: the status is not Status::kOk.
  Result(Status error) : error_(error) {}

  /// Whether there is a value.
  bool has_value() const noexcept { return value_.has_value(); }

  /// Whether there is a value.
  explicit operator bool() const noexcept { return has_value(); }

  /// Why there is no value; Status::kOk if there is one.
  Status error() const noexcept { return error_; }

  /// The value, which the result keeps. REQUIRES: has_value().
  T& operator*() & { return *value_; }

  /// The value, which the result keeps. REQUIRES: has_value().
  const T& operator*() const& { return *value_; }

  /// The value of a temporary, moved out, so that no reference outlives it. REQUIRES: has_value().
  T operator*() && { return *std::move(value_); }

  /// A member of the value. REQUIRES: has_value().
  T* operator->() { return &*value_; }

  /// A member of the value. REQUIRES: has_value().
  const T* operator->() const { return &*value_; }

  /// The value, or `other` if there is none.
  T value_or(T other) && { return has_value() ? *std::move(value_) : std::move(other); }

  /// What `next(value)`, which returns a Result, gives; without a value its failure.
  template <typename Next>
  auto and_then(Next&& next) && -> std::invoke_result_t<Next, T> {
    if (!has_value()) return error_;
    return std::forward<Next>(next)(*std::move(value_));
  }

#if defined(__cpp_exceptions)
  /// The value, which the result keeps. Throws Error without one.
  T& value() & { return Checked(), *value_; }

  /// The value, which the result keeps. Throws Error without one.
  const T& value() const& { return Checked(), *value_; }

  /// The value of a temporary, moved out, as in `for (const Image& image : catalog.Images().value())`. Throws Error.
  T value() && { return Checked(), *std::move(value_); }
#endif

 private:
#if defined(__cpp_exceptions)
  void Checked() const {
    if (!has_value()) throw Error(error_);
  }
#endif

  std::optional<T> value_;
  Status error_;
};

/// The same for a call that gives nothing but whether it succeeded.
template <>
class [[nodiscard]] Result<void> {
 public:
  /// The type of the value.
  using value_type = void;

  /// A success.
  Result() = default;

  /// A success with Status::kOk, else a failure.
  Result(Status status) : error_(status) {}

  /// Whether the call succeeded.
  bool has_value() const noexcept { return error_ == Status::kOk; }

  /// Whether the call succeeded.
  explicit operator bool() const noexcept { return has_value(); }

  /// Why the call failed; Status::kOk if it did not.
  Status error() const noexcept { return error_; }

  /// What `next()`, which returns a Result, gives; after a failure that failure.
  template <typename Next>
  auto and_then(Next&& next) const -> std::invoke_result_t<Next> {
    if (!has_value()) return error_;
    return std::forward<Next>(next)();
  }

#if defined(__cpp_exceptions)
  /// Throws Error if the call failed.
  void value() const {
    if (!has_value()) throw Error(error_);
  }
#endif

 private:
  Status error_ = Status::kOk;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_RESULT_HPP_
