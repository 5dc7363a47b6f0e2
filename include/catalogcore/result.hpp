/// @file
/// The results of calls: a status, and either a value or the status of a failure.
#ifndef CATALOGCORE_RESULT_HPP_
#define CATALOGCORE_RESULT_HPP_

#include <catalogcore.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace catalogcore {

/// Why a call failed: the IDXERR_... values of the C header, and kAlreadyOpen. Casts from and to IDXSTATUS are allowed.
/// kRecognizer and kFaces have a code of 1 to 255 added.
enum class Status : IDXSTATUS {
  kOk = IDX_OK,                       ///< success
  kFailed = IDXERR_FAILED,            ///< no catalogue is open; invalid text; a file cannot be read or written
  kParam = IDXERR_PARAM,              ///< an argument is missing or invalid
  kNoData = IDXERR_NODATA,            ///< the file is missing, or has no list of the entries to load
  kEmpty = IDXERR_EMPTY,              ///< the list of indexes in the file has no line
  kVersion = IDXERR_VERSION,          ///< the list in the file has another version
  kNoImage = IDXERR_NOIMAGE,          ///< no such image
  kNoIndex = IDXERR_NOINDEX,          ///< no such index
  kImageExists = IDXERR_IMAGEEXISTS,  ///< the image is in the catalogue already
  kIndexExists = IDXERR_INDEXEXISTS,  ///< the parent has a child of this name already
  kIndexFull = IDXERR_INDEXFULL,      ///< the parent has no number left for another child
  kMemory = IDXERR_MEMORY,            ///< memory could not be allocated, or input text is empty
  kNotEmpty = IDXERR_NOTEMPTY,        ///< the index still has child indexes
  kProtected = IDXERR_PROTECTED,      ///< an attribute forbids the change, without Options::kForce
  kDetector = IDXERR_DETECTOR,        ///< the recognizer is needed, and its parameters are missing
  kImageSize = IDXERR_IMAGESIZE,      ///< width or height is above 4096 pixels, and neither below 50
  kRecognizer = IDXERR_RECOGNIZER,    ///< plus the recognizer's own code: see RecognizerCode
  kFaces = IDXERR_FACES,              ///< plus the face detector's own code: see FacesCode
  kAlreadyOpen = 0x10000,             ///< Catalog::Open, if the process has a catalogue already
};

/// The recognizer's own code, 1 to 255; 0 for any other status.
constexpr IDXSTATUS RecognizerCode(Status status) {
  const auto value = static_cast<IDXSTATUS>(status);
  return value > IDXERR_RECOGNIZER && value < IDXERR_FACES ? value - IDXERR_RECOGNIZER : 0;
}

/// The face detector's own code, 1 to 255; 0 for any other status.
constexpr IDXSTATUS FacesCode(Status status) {
  const auto value = static_cast<IDXSTATUS>(status);
  return value > IDXERR_FACES && value < IDXERR_FACES + 256 ? value - IDXERR_FACES : 0;
}

/// A message for the status, for a line such as "cannot file a.jpg: already in the catalogue": lower case, no full
/// stop.
inline std::string Message(Status status) {
  constexpr std::pair<Status, const char*> kMessages[] = {
      {Status::kOk, "ok"},
      {Status::kFailed, "no catalogue is open, a text is invalid, or a file cannot be read or written"},
      {Status::kParam, "invalid argument"},
      {Status::kNoData, "the file is missing or has no such entries"},
      {Status::kEmpty, "the file's text is empty"},
      {Status::kVersion, "the file has another version"},
      {Status::kNoImage, "not in the catalogue"},
      {Status::kNoIndex, "no such index"},
      {Status::kImageExists, "already in the catalogue"},
      {Status::kIndexExists, "an index of that name exists already"},
      {Status::kIndexFull, "no number is left: an index has at most 20 added child indexes"},
      {Status::kMemory, "out of memory"},
      {Status::kNotEmpty, "the index has child indexes"},
      {Status::kProtected, "protected"},
      {Status::kDetector, "the recognizer's parameters (brennparam.dat) are missing"},
      {Status::kImageSize, "the picture is too large"},
      {Status::kAlreadyOpen, "this process has a catalogue already"},
  };
  for (const auto& [known, message] : kMessages) {
    if (known == status) return message;
  }
  if (FacesCode(status) != 0) return "the face detector failed with code " + std::to_string(FacesCode(status));
  if (RecognizerCode(status) != 0) return "the recognizer failed with code " + std::to_string(RecognizerCode(status));
  return "the library failed with status " + std::to_string(static_cast<IDXSTATUS>(status));
}

#if defined(__cpp_exceptions)
/// Thrown by Result::value(). what() is the message for the status.
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

/// A value, or the status of a failure. The members have the names of std::expected, which C++20 does not have.
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

  /// A reference to the value. REQUIRES: has_value().
  T& operator*() & { return *value_; }

  /// A reference to the value. REQUIRES: has_value().
  const T& operator*() const& { return *value_; }

  /// The value of a temporary, moved out. REQUIRES: has_value().
  T operator*() && { return *std::move(value_); }

  /// A member of the value. REQUIRES: has_value().
  T* operator->() { return &*value_; }

  /// A member of the value. REQUIRES: has_value().
  const T* operator->() const { return &*value_; }

  /// The value, or `other` after a failure.
  T value_or(T other) && { return has_value() ? *std::move(value_) : std::move(other); }

  /// Returns the Result of `next(value)`, or the failure if there is no value.
  template <typename Next>
  auto and_then(Next&& next) && -> std::invoke_result_t<Next, T> {
    if (!has_value()) return error_;
    return std::forward<Next>(next)(*std::move(value_));
  }

#if defined(__cpp_exceptions)
  /// A reference to the value. Throws Error without a value.
  T& value() & { return Checked(), *value_; }

  /// A reference to the value. Throws Error without a value.
  const T& value() const& { return Checked(), *value_; }

  /// The value of a temporary, moved out. Throws Error without a value. It lives long enough in
  /// `for (const Image& image : catalog.Images().value())`.
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

/// Success, or the status of a failure.
template <>
class [[nodiscard]] Result<void> {
 public:
  /// The type of the value.
  using value_type = void;

  /// A success.
  Result() = default;

  /// A success for Status::kOk, otherwise a failure.
  Result(Status status) : error_(status) {}

  /// Whether the call succeeded.
  bool has_value() const noexcept { return error_ == Status::kOk; }

  /// Whether the call succeeded.
  explicit operator bool() const noexcept { return has_value(); }

  /// Why the call failed; Status::kOk if it did not.
  Status error() const noexcept { return error_; }

  /// Returns the Result of `next()`, or the failure if there is one.
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
