/// @file
/// CatalogCore for C++20: the calls of catalogcore.h with owners, ranges, enumerations and std::string in place of
/// handles, bits and CoreFoundation strings. Header only; link what a C program links.
///
/// catalogcore.h says what each call does; here stands what C++ adds to it. Text is UTF-8: std::string_view in,
/// std::string out. Text handed in that is no valid UTF-8, or holds a zero byte, gives Status::kFailed; empty text
/// gives Status::kMemory, as the calls do.
///
/// Failures are values: every call that can fail returns a Result. Where the program is built with exceptions,
/// Result::value() throws Error in place of a failure, so `catalog.AddImage(path, index).value()` is the throwing twin
/// of `catalog.AddImage(path, index)`: one set of calls to learn, and the choice is made at each. Nothing else throws,
/// but for std::bad_alloc where a std::string finds no memory. With -fno-exceptions all but value() and Error is there.
///
/// Threads: as in catalogcore.h. Any thread may make any call on an open Catalog; opening, moving, clearing and closing
/// it, and SetDirectory, must not overlap other calls; a walk belongs to one thread at a time.
#ifndef CATALOGCORE_HPP_
#define CATALOGCORE_HPP_

#include <catalogcore.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <ranges>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// The C++ layer over the calls of catalogcore.h.
namespace catalogcore {

// ---- Statuses

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
  kImageSize = IDXERR_IMAGESIZE,      ///< width or height is above 4096 pixels
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

// ---- Numbers and bits

/// The number of an index: 1000000 to 99999999, two decimal digits a level from the top down, or kRoot.
using IndexNumber = std::int32_t;

/// The root of the tree, which holds no image.
inline constexpr IndexNumber kRoot = IDX_ROOT;

/// The indexes that every catalogue has.
namespace preset {
inline constexpr IndexNumber kPhoto = IDXPRESET_PHOTO;                   ///< parent of those of photographs
inline constexpr IndexNumber kPhotoFaces = IDXPRESET_PHOTO_FACES;        ///< photographs that show faces
inline constexpr IndexNumber kPhotoOther = IDXPRESET_PHOTO_OTHER;        ///< other photographs
inline constexpr IndexNumber kDocument = IDXPRESET_DOCUMENT;             ///< parent of those of documents
inline constexpr IndexNumber kDocumentCard = IDXPRESET_DOCUMENT_CARD;    ///< documents of a card's size
inline constexpr IndexNumber kDocumentPost = IDXPRESET_DOCUMENT_POST;    ///< of a postcard's, or 4 x 6 inches
inline constexpr IndexNumber kDocumentPage = IDXPRESET_DOCUMENT_PAGE;    ///< A5, B5, A4, Letter or Legal
inline constexpr IndexNumber kDocumentFixed = IDXPRESET_DOCUMENT_FIXED;  ///< documents by Hint::kFixedDocument
inline constexpr IndexNumber kDocumentOther = IDXPRESET_DOCUMENT_OTHER;  ///< documents of any other size
inline constexpr IndexNumber kOther = IDXPRESET_OTHER;                   ///< never chosen by Classify
}  // namespace preset

/// What may not be done to an image or an index: a set of bits. The other five bits are an application's own, made with
/// a cast, and are kept.
enum class Attributes : std::uint8_t {
  kNone = 0,                     ///< no bit
  kNoMove = IDXATTR_NOMOVE,      ///< not moved to another index
  kNoRemove = IDXATTR_NOREMOVE,  ///< not removed
  kNoRename = IDXATTR_NORENAME,  ///< not renamed (indexes)
};

/// How a change is made: a set of bits.
enum class Options : std::uint8_t {
  kNone = 0,                ///< as the attributes allow
  kForce = IDXSTATE_FORCE,  ///< move, remove or rename also what its attributes protect
};

/// The enumerations that are sets of bits.
template <typename E>
concept BitSet = std::is_same_v<E, Attributes> || std::is_same_v<E, Options>;

/// The bits of either set.
template <BitSet E>
constexpr E operator|(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}

/// The bits of both sets.
template <BitSet E>
constexpr E operator&(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) & static_cast<std::uint8_t>(b));
}

/// The bits of one set alone.
template <BitSet E>
constexpr E operator^(E a, E b) {
  return static_cast<E>(static_cast<std::uint8_t>(a) ^ static_cast<std::uint8_t>(b));
}

/// The bits that are not in the set, all eight counted.
template <BitSet E>
constexpr E operator~(E a) {
  return static_cast<E>(static_cast<std::uint8_t>(~static_cast<std::uint8_t>(a)));
}

/// Adds bits.
template <BitSet E>
constexpr E& operator|=(E& a, E b) {
  return a = a | b;
}

/// Keeps only these bits.
template <BitSet E>
constexpr E& operator&=(E& a, E b) {
  return a = a & b;
}

/// Turns bits over.
template <BitSet E>
constexpr E& operator^=(E& a, E b) {
  return a = a ^ b;
}

/// Whether the set holds one of these bits at least.
template <BitSet E>
constexpr bool HasAny(E set, E bits) {
  return (set & bits) != E::kNone;
}

// ---- Entries

/// Where an image is filed.
struct Filing {
  IndexNumber index = 0;                      ///< the index that it is filed under
  Attributes attributes = Attributes::kNone;  ///< its protections
};

/// One image of the catalogue, as a walk shows it.
struct Image {
  std::string path;                           ///< full path of its file
  IndexNumber index = 0;                      ///< the index that it is filed under
  Attributes attributes = Attributes::kNone;  ///< its protections
  bool isText = true;  ///< false: the path, which a file brought, is no valid UTF-8, and `path` is empty
};

/// One index of the catalogue.
struct Index {
  std::string name;                           ///< what it is called; may be empty
  IndexNumber number = 0;                     ///< its number
  Attributes attributes = Attributes::kNone;  ///< its protections
  bool isText = true;  ///< false: the name, which a file brought, is no valid UTF-8, and `name` is empty
};

/// What Catalog::ChangeImage changes.
struct ImageChange {
  std::optional<IndexNumber> index = std::nullopt;      ///< the index to move it to; kRoot: remove it
  std::optional<Attributes> attributes = std::nullopt;  ///< in place of those that it has
};

/// What Catalog::ChangeIndex changes.
struct IndexChange {
  std::optional<std::string_view> name = std::nullopt;  ///< in place of its name
  std::optional<Attributes> attributes = std::nullopt;  ///< in place of those that it has
};

/// Which images Catalog::Images walks: those that fit both fields. There is no way to leave out what lies below.
struct ImageQuery {
  IndexNumber index = kRoot;     ///< filed under it or an index below it; kRoot: under any
  std::string_view folder = {};  ///< full path of the folder in or below which the files lie; empty: in any
  bool withPaths = true;         ///< false: each `path` stays empty, which saves most of the time of a count
};

/// How the calls are made; not for applications.
namespace detail {

/// Text on its way in: owns the CoreFoundation string, none if the text is not valid.
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
  static constexpr std::size_t kShort = 1024;  // bytes of a text that is terminated on the stack

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

/// Text on its way out: owns the CoreFoundation string that a call stored, if it did.
class OutputText {
 public:
  /// No string yet.
  OutputText() = default;
  OutputText(const OutputText&) = delete;             ///< owns its string alone
  OutputText& operator=(const OutputText&) = delete;  ///< owns its string alone

  /// Releases the string.
  ~OutputText() {
    if (string_) CFRelease(string_);
  }

  /// The variable that a call writes; never null.
  IDXSTR Variable() { return &string_; }

  /// Writes the text to `out`, whose memory is used again. False, and empty, if none was stored.
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

/// A record whose fields are marked as they are set.
struct Record : IDXITEM {
  /// Nothing is marked.
  Record() : IDXITEM() {}

  /// The text, in or out, of an image or an index.
  template <typename Text>
  Record& Name(Text& text) {
    name = text.Variable();
    return Mark(IDXMASK_NAME);
  }

  /// The folder.
  Record& Path(InputText& text) {
    path = text.Variable();
    return Mark(IDXMASK_PATH);
  }

  /// The index.
  Record& Number(IndexNumber number) {
    index = number;
    return Mark(IDXMASK_INDEX);
  }

  /// The protections.
  Record& Protection(Attributes attributes) {
    attribute = static_cast<std::uint8_t>(attributes);
    return Mark(IDXMASK_ATTRIBUTE);
  }

  /// How the change is made.
  Record& State(Options options) {
    state = static_cast<std::uint8_t>(options);
    return *this;
  }

  /// The fields that a step of a walk is to write.
  Record& Wanted(OutputText& text, std::uint32_t fields) {
    operation |= IDXOP_GETINFO;
    name = text.Variable();
    return Mark(fields);
  }

  /// What the call is to do besides.
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

/// The calls of a walk over images.
struct ImageCalls {
  static constexpr auto kFirst = IDXFindFirstImage;  ///< begins it
  static constexpr auto kNext = IDXFindNextImage;    ///< goes on
  static constexpr Status kEnd = Status::kNoImage;   ///< ends it

  /// Writes what the call found.
  static void Read(Image& image, const OutputText& text, const Record& record) {
    if ((record.mask & IDXMASK_NAME) != 0) image.isText = text.CopyTo(image.path);
    image.index = record.index;
    image.attributes = record.Protections();
  }
};

/// The calls of a walk over indexes.
struct IndexCalls {
  static constexpr auto kFirst = IDXFindFirstIndex;  ///< begins it
  static constexpr auto kNext = IDXFindNextIndex;    ///< goes on
  static constexpr Status kEnd = Status::kNoIndex;   ///< ends it

  /// Writes what the call found.
  static void Read(Index& index, const OutputText& text, const Record& record) {
    index.isText = text.CopyTo(index.name);
    index.number = record.index;
    index.attributes = record.Protections();
  }
};

/// Whether an owner of this program has the process's catalogue.
inline std::atomic<bool> isOwned{false};

}  // namespace detail

/// Whether a text can be a name, a path or a folder: valid UTF-8 without a zero byte. Any thread.
inline bool IsText(std::string_view text) { return detail::InputText(text).IsValid(); }

/// A walk over images or indexes: an input range, passed once, that owns its find handle and closes it at its end or
/// when it goes, whichever is first; so a loop may be left at any time. It stands on its first entry when it is made.
/// What is added, moved or removed meanwhile shows as catalogcore.h says of IDXFIND. After the catalogue was cleared or
/// closed it is at its end. One thread at a time.
template <typename Entry, typename Calls>
class Walk : public std::ranges::view_base {
 public:
  /// A place in the walk, of which there is one: all iterators of a walk move together. Valid until the walk is moved
  /// or goes.
  class Iterator {
   public:
    using value_type = Entry;                          ///< Image or Index
    using difference_type = std::ptrdiff_t;            ///< asked for by std::input_iterator
    using iterator_concept = std::input_iterator_tag;  ///< passed once

    /// No place; only to be assigned to.
    Iterator() = default;

    /// The entry, until the next step. REQUIRES: not at the end.
    const Entry& operator*() const { return walk_->entry_; }

    /// A member of the entry. REQUIRES: not at the end.
    const Entry* operator->() const { return &walk_->entry_; }

    /// Goes on to the next entry. REQUIRES: not at the end.
    Iterator& operator++() {
      walk_->Step();
      return *this;
    }

    /// Goes on to the next entry. REQUIRES: not at the end.
    void operator++(int) { ++*this; }

    /// Whether the walk is at its end.
    bool operator==(std::default_sentinel_t) const { return !walk_->find_; }

   private:
    friend class Walk;
    explicit Iterator(Walk* walk) : walk_(walk) {}

    Walk* walk_ = nullptr;
  };

  /// A walk that is at its end.
  Walk() = default;

  /// Takes the other's place; the other is at its end.
  Walk(Walk&& other) noexcept
      : find_(std::exchange(other.find_, nullptr)),
        fields_(other.fields_),
        entry_(std::move(other.entry_)),
        status_(other.status_) {}

  /// Ends this walk and takes the other's place; the other is at its end.
  Walk& operator=(Walk&& other) noexcept {
    if (this == &other) return *this;
    Close();
    find_ = std::exchange(other.find_, nullptr);
    fields_ = other.fields_;
    entry_ = std::move(other.entry_);
    status_ = other.status_;
    return *this;
  }

  /// Ends the walk.
  ~Walk() { Close(); }

  /// Where the walk stands, which is its first entry only before the first step.
  Iterator begin() { return Iterator(this); }

  /// The end.
  static std::default_sentinel_t end() { return {}; }

  /// Status::kOk; after a step that failed for another reason than the end, such as no memory, its status.
  Status status() const noexcept { return status_; }

 private:
  friend class Catalog;

  static constexpr std::uint32_t kAllFields = IDXMASK_NAME | IDXMASK_INDEX | IDXMASK_ATTRIBUTE;

  // Begins the walk that the record asks for; one that finds nothing is at its end.
  static Result<Walk> Begin(detail::Record& record, std::uint32_t fields = kAllFields) {
    Walk walk;
    walk.fields_ = fields;
    detail::OutputText text;
    record.Wanted(text, fields);
    IDXSTATUS status = IDX_OK;
    walk.find_ = Calls::kFirst(&record, &status);
    if (walk.find_) {
      Calls::Read(walk.entry_, text, record);
    } else if (static_cast<Status>(status) != Calls::kEnd) {
      return static_cast<Status>(status);
    }
    return walk;
  }

  void Step() {
    detail::OutputText text;
    detail::Record record;
    const auto status = static_cast<Status>(Calls::kNext(find_, &record.Wanted(text, fields_)));
    if (status == Status::kOk) return Calls::Read(entry_, text, record);
    if (status != Calls::kEnd) status_ = status;
    Close();
  }

  void Close() { IDXCloseFind(std::exchange(find_, nullptr)); }

  IDXFIND find_ = nullptr;
  std::uint32_t fields_ = kAllFields;
  Entry entry_;
  Status status_ = Status::kOk;
};

/// A walk over images.
using ImageWalk = Walk<Image, detail::ImageCalls>;

/// A walk over indexes, parents before children.
using IndexWalk = Walk<Index, detail::IndexCalls>;

// ---- Scenes

/// What the application knows of a picture.
enum class Hint {
  kNone,             ///< nothing
  kFixedDocument,    ///< it is to be filed as a declared document, whatever it shows; nothing is analysed
  kDocument,         ///< a document
  kPhotograph,       ///< a photograph, in which faces are looked for
  kPhotographAlone,  ///< a photograph, in which no faces are looked for
};

/// One picture in memory. Byte b of the pixel in column x of row y is
/// pixels[y * rowBytes + x * (bitsPerPixel / 8) + b].
struct PixelBuffer {
  std::span<const std::byte> pixels = {};  ///< at least rowBytes * height bytes; empty: decided by hint and sizes alone
  std::int32_t width = 0;                  ///< pixels in a row, 1 to 4096
  std::int32_t height = 0;                 ///< rows, 1 to 4096
  std::int32_t bitsPerPixel = 0;           ///< 8 or 16: one sample a pixel; 24 or 48: three
  std::int32_t rowBytes = 0;               ///< bytes from one row to the next; 0: rows without padding
  std::int32_t resolution = 0;             ///< dots per inch; 0 or less: unknown
  Hint hint = Hint::kNone;                 ///< what is known of it
};

/// What a picture is.
enum class SceneKind {
  kUndecided,   ///< there was nothing to decide by
  kDocument,    ///< a document
  kPhotograph,  ///< a photograph
};

/// The size of a document.
enum class Paper {
  kCard,      ///< a card's
  kPostcard,  ///< a postcard's, or 4 x 6 inches
  kPage,      ///< A5, B5, A4, Letter or Legal
  kOther,     ///< any other
};

/// What Catalog::Classify found.
class Scene {
 public:
  /// What belongs in that preset index, or is undecided for kRoot.
  constexpr explicit Scene(IndexNumber number) : preset_(number) {}

  /// The number of the preset index that the picture belongs in; kRoot if undecided.
  constexpr IndexNumber Preset() const { return preset_; }

  /// Document, photograph or undecided.
  constexpr SceneKind Kind() const {
    const bool isPhotograph = preset_ == preset::kPhotoFaces || preset_ == preset::kPhotoOther;
    if (isPhotograph) return SceneKind::kPhotograph;
    return PaperSize() || preset_ == preset::kDocumentFixed ? SceneKind::kDocument : SceneKind::kUndecided;
  }

  /// The size of a document; none for a declared one, a photograph, or an undecided picture.
  constexpr std::optional<Paper> PaperSize() const {
    if (preset_ == preset::kDocumentCard) return Paper::kCard;
    if (preset_ == preset::kDocumentPost) return Paper::kPostcard;
    if (preset_ == preset::kDocumentPage) return Paper::kPage;
    if (preset_ == preset::kDocumentOther) return Paper::kOther;
    return std::nullopt;
  }

  /// Whether it is a photograph in which faces were found.
  constexpr bool HasFaces() const { return preset_ == preset::kPhotoFaces; }

 private:
  IndexNumber preset_;
};

// ---- The catalogue

/// The process's catalogue, owned: made by Open, dropped when its owner goes. It can be moved, not copied. A catalogue
/// that was moved from owns nothing: its calls give Status::kFailed, and a later Open may be assigned to it.
class Catalog {
 public:
  /// Makes the process's catalogue, with the ten presets and no directory. There is one catalogue a process, and a
  /// second IDXInitialize would drop what the first one's user holds; so while there is one, whoever made it, this
  /// gives Status::kAlreadyOpen and changes nothing. Or Status::kMemory. Without the recognizer's parameters the
  /// catalogue opens too: see HasRecognizer.
  static Result<Catalog> Open() {
    if (detail::isOwned.exchange(true)) return Status::kAlreadyOpen;
    Catalog catalog;  // from here on gives its claim back when it goes
    if (IDXSearchIndex(&detail::Record().Number(kRoot)) != IDXERR_FAILED) {
      catalog.isOpen_ = false;
      detail::isOwned = false;
      return Status::kAlreadyOpen;
    }
    const Result<void> made = catalog.Clear();
    if (!made) return made.error();
    return catalog;
  }

  /// Takes the catalogue over from the other.
  Catalog(Catalog&& other) noexcept
      : isOpen_(std::exchange(other.isOpen_, false)), hasRecognizer_(other.hasRecognizer_) {}

  /// Drops its own catalogue, if it has one, and takes the other's over.
  Catalog& operator=(Catalog&& other) noexcept {
    if (this == &other) return *this;
    Close();
    isOpen_ = std::exchange(other.isOpen_, false);
    hasRecognizer_ = other.hasRecognizer_;
    return *this;
  }

  /// Drops the catalogue, if it has it. Walks that are open are at their end then.
  ~Catalog() { Close(); }

  /// Whether it owns the process's catalogue: true until it is moved from.
  bool IsOpen() const noexcept { return isOpen_; }

  /// Whether the recognizer's parameters were found. Without them Classify gives Status::kDetector for what hints and
  /// sizes do not decide; all else works.
  bool HasRecognizer() const noexcept { return hasRecognizer_; }

  /// Empties the catalogue: it is as Open made it, without a directory. Status::kMemory, and then all calls give
  /// Status::kFailed until a Clear that succeeds.
  Result<void> Clear() {
    if (!isOpen_) return Status::kFailed;
    const IDXSTATUS status = IDXInitialize();
    hasRecognizer_ = status == IDX_OK;
    return status == IDXERR_DETECTOR ? Status::kOk : static_cast<Status>(status);
  }

  // ---- Images

  /// Files an image, which need not exist, under an index other than the root. Status::kParam: the path holds no "/",
  /// the index is out of range; kImageExists; kNoIndex; kMemory; kFailed.
  Result<void> AddImage(std::string_view path, IndexNumber index, Attributes attributes = Attributes::kNone) {
    detail::InputText name(path);
    return Call(IDXAddImage, detail::Record().Name(name).Number(index).Protection(attributes));
  }

  /// Moves an image, or adds one that is not there, then sets its attributes; what is not set in `change` stays. A move
  /// stays when the second step fails. Status::kProtected; kNoIndex; kNoImage: only attributes were to be set; kParam;
  /// kMemory: the image is gone if it was to be moved; kFailed.
  Result<void> ChangeImage(std::string_view path, const ImageChange& change, Options options = Options::kNone) {
    detail::InputText name(path);
    detail::Record record;
    record.Name(name).State(options);
    if (change.index) record.Number(*change.index);
    if (change.attributes) record.Protection(*change.attributes);
    return Call(IDXChangeImage, record);
  }

  /// Takes an image out of the catalogue. Status::kNoImage; kProtected; kFailed; kMemory.
  Result<void> RemoveImage(std::string_view path, Options options = Options::kNone) {
    detail::InputText name(path);
    return Call(IDXRemoveImage, detail::Record().Name(name).State(options));
  }

  /// Where an image is filed. Status::kNoImage; kFailed; kMemory.
  Result<Filing> FindImage(std::string_view path) const {
    detail::InputText name(path);
    detail::Record record;
    record.Name(name).Number(0).Protection(Attributes::kNone);
    const Result<void> found = Call(IDXSearchImage, record);
    if (!found) return found.error();
    return Filing{record.index, record.Protections()};
  }

  /// Begins a walk over images, those of the query or all; one that finds none is at its end. Status::kParam: the index
  /// is out of range; kFailed; kMemory.
  Result<ImageWalk> Images(const ImageQuery& query = {}) const {
    if (!isOpen_) return Status::kFailed;
    detail::Record record;
    record.Number(query.index).Operation(IDXOP_CONDITION);
    detail::InputText folder(query.folder);
    if (!query.folder.empty()) record.Path(folder);
    constexpr std::uint32_t kWithoutPath = IDXMASK_INDEX | IDXMASK_ATTRIBUTE;
    return ImageWalk::Begin(record, query.withPaths ? ImageWalk::kAllFields : kWithoutPath);
  }

  // ---- Indexes

  /// Adds an index below `parent`, kRoot for the top, and gives its number, the lowest from 10 to 29 that is free
  /// there. Status::kIndexExists: the parent has a child of this name, byte for byte (EnsureIndex gives its number);
  /// kIndexFull; kNoIndex: no parent; kParam: the parent is out of range or on the fourth level; kMemory; kFailed.
  Result<IndexNumber> AddIndex(IndexNumber parent, std::string_view name, Attributes attributes = Attributes::kNone) {
    IndexNumber number = 0;
    const Result<void> added = AddIndexTo(parent, name, attributes, number);
    if (!added) return added.error();
    return number;
  }

  /// The number of the parent's child of this name, which is added as by AddIndex if it is not there; one that is there
  /// keeps its attributes. Failures as of AddIndex, but for Status::kIndexExists.
  Result<IndexNumber> EnsureIndex(IndexNumber parent, std::string_view name,
                                  Attributes attributes = Attributes::kNone) {
    IndexNumber number = 0;
    const Result<void> added = AddIndexTo(parent, name, attributes, number);
    if (!added && added.error() != Status::kIndexExists) return added.error();
    return number;
  }

  /// Changes the name, then the attributes; what is not set in `change` stays. The second step's failure or success
  /// counts, but a name that is no text ends the call. Status::kNoIndex; kProtected; kParam; kMemory; kFailed.
  Result<void> ChangeIndex(IndexNumber number, const IndexChange& change, Options options = Options::kNone) {
    detail::InputText name(change.name.value_or(std::string_view()));
    detail::Record record;
    record.Number(number).State(options);
    if (change.name) record.Name(name);
    if (change.attributes) record.Protection(*change.attributes);
    return Call(IDXChangeIndex, record);
  }

  /// Removes an index and takes its images out of the catalogue. Status::kNoIndex; kNotEmpty: it has child indexes;
  /// kProtected: it, or one of its images, of which those before that one are gone; kParam; kFailed.
  Result<void> RemoveIndex(IndexNumber number, Options options = Options::kNone) {
    return Call(IDXRemoveIndex, detail::Record().Number(number).State(options));
  }

  /// An index by its number. Status::kNoIndex; kParam: out of range; kFailed.
  Result<Index> FindIndex(IndexNumber number) const {
    detail::OutputText text;
    detail::Record record;
    record.Name(text).Number(number).Protection(Attributes::kNone);
    const Result<void> found = Call(IDXSearchIndex, record);
    if (!found) return found.error();
    Index index;
    detail::IndexCalls::Read(index, text, record);
    return index;
  }

  /// Begins a walk over the index `top` and all below it, or over all but the root; one that finds none is at its end.
  /// Status::kParam: out of range; kFailed; kMemory.
  Result<IndexWalk> Indexes(IndexNumber top = kRoot) const {
    if (!isOpen_) return Status::kFailed;
    detail::Record record;
    if (top != kRoot) record.Number(top).Operation(IDXOP_CONDITION);
    return IndexWalk::Begin(record);
  }

  /// Gives an index, protected or not, a display name, which may be empty. Status::kParam: no such index; kFailed.
  Result<void> SetPresetName(IndexNumber number, std::string_view name) {
    detail::InputText text(name);
    const IDXSTR variable = text.Variable();
    if (!isOpen_ || !text.IsValid()) return Status::kFailed;
    // The call would take a number that is none for the root.
    constexpr IndexNumber kFirst = 1000000;
    constexpr IndexNumber kLast = 99999999;
    if (number != kRoot && (number < kFirst || number > kLast)) return Status::kParam;
    return static_cast<Status>(IDXSetPresetIndexName(&variable, &number, 1));
  }

  // ---- Files

  /// Sets the directory of the catalogue's files, with or without a "/" at its end. It is not made. Status::kFailed;
  /// kMemory, and then no directory is set.
  Result<void> SetDirectory(std::string_view directory) { return Call(IDXSetFilePath, directory); }

  /// Adds the indexes of a file in the directory to the catalogue; to be called before LoadImages. Status::kNoData: no
  /// such file, or it holds no indexes; kEmpty; kVersion; kFailed: cannot be read, or is none of this kind; kMemory.
  Result<void> LoadIndexes(std::string_view file) { return Call(IDXLoadIndexFile, file); }

  /// Adds the images of a file in the directory, but for those whose file or index is not there. Status::kNoData;
  /// kVersion; kFailed; kMemory.
  Result<void> LoadImages(std::string_view file) { return Call(IDXLoadImageFile, file); }

  /// Writes the indexes to a file in the directory, which is the old or the new one, whole, whatever fails. Indexes
  /// with all three protections are left out, as the presets are. Status::kFailed: cannot be written; kMemory. Two
  /// saves must not be made to one file at once.
  Result<void> SaveIndexes(std::string_view file) const { return Call(IDXWriteIndexFile, file); }

  /// Writes the images to a file in the directory, as SaveIndexes; the file may be the same.
  Result<void> SaveImages(std::string_view file) const { return Call(IDXWriteImageFile, file); }

  // ---- Scenes

  /// Decides what a picture shows. Pixels are read, never written or kept. Status::kParam: the numbers do not describe
  /// the bytes (a depth that is none of the four, rows shorter than their pixels, less than rowBytes * height bytes,
  /// more than 2^31 - 1); kImageSize; kDetector; kRecognizer or kFaces plus a code; kMemory; kFailed. Any thread; one
  /// detection runs at a time, beside the other calls.
  Result<Scene> Classify(const PixelBuffer& picture) const {
    if (!isOpen_) return Status::kFailed;
    IDXDSDATA data{};
    data.width = picture.width;
    data.height = picture.height;
    data.bitsPerPixel = picture.bitsPerPixel;
    data.resolution = picture.resolution;
    data.fixedScene = picture.hint == Hint::kFixedDocument ? 1 : 0;
    data.typeHint = picture.hint == Hint::kDocument ? 1 : picture.hint == Hint::kPhotograph ? 2 : 0;
    data.photoKind = picture.hint == Hint::kPhotographAlone ? 1 : 0;
    if (!picture.pixels.empty()) {
      const std::int64_t rowBytes = RowBytes(picture);
      if (rowBytes == 0) return Status::kParam;
      data.pixels = picture.pixels.data();
      data.rowBytes = static_cast<std::int32_t>(rowBytes);
    }
    const auto status = static_cast<Status>(IDXDetectScene(&data));
    if (status != Status::kOk) return status;
    return Scene(data.presetIndex);
  }

 private:
  Catalog() = default;

  // Bytes from one row to the next; 0 if the numbers do not describe the bytes.
  static std::int64_t RowBytes(const PixelBuffer& picture) {
    const std::int32_t bits = picture.bitsPerPixel;
    if ((bits != 8 && bits != 16 && bits != 24 && bits != 48) || picture.width <= 0 || picture.height <= 0) return 0;
    const std::int64_t used = std::int64_t{picture.width} * (bits / 8);
    const std::int64_t rowBytes = picture.rowBytes == 0 ? used : picture.rowBytes;
    if (rowBytes < used || rowBytes > std::numeric_limits<std::int32_t>::max() / picture.height) return 0;
    return static_cast<std::uint64_t>(rowBytes * picture.height) <= picture.pixels.size() ? rowBytes : 0;
  }

  Result<void> Call(IDXSTATUS (*call)(IDXITEM*), IDXITEM& item) const {
    return isOpen_ ? static_cast<Status>(call(&item)) : Status::kFailed;
  }

  Result<void> Call(IDXSTATUS (*call)(IDXSTR), std::string_view text) const {
    detail::InputText input(text);
    return isOpen_ ? static_cast<Status>(call(input.Variable())) : Status::kFailed;
  }

  // Writes the number of the new child, or of the one that has the name.
  Result<void> AddIndexTo(IndexNumber parent, std::string_view name, Attributes attributes, IndexNumber& number) {
    detail::InputText text(name);
    detail::Record record;
    record.Name(text).Number(parent).Protection(attributes).Operation(IDXOP_GETINFO);
    const Result<void> added = Call(IDXAddIndex, record);
    number = record.index;
    return added;
  }

  void Close() {
    if (!std::exchange(isOpen_, false)) return;
    IDXUninitialize();
    detail::isOwned = false;
  }

  bool isOpen_ = true;
  bool hasRecognizer_ = false;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_HPP_
