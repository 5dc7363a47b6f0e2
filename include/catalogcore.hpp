/// @file
/// CatalogCore for C++20: the calls of catalogcore.h with owners, ranges, enumerations and std::string in place of
/// handles, bits and CoreFoundation strings. Header only; link what a C program links.
///
/// catalogcore.h says what each call does; here stands what C++ adds to it. Text is UTF-8: std::string_view in,
/// std::string out. Text handed in that is no valid UTF-8, or holds a zero byte, gives Status::kFailed; empty text
/// gives Status::kMemory, as the calls do, but as a file's name Status::kFailed.
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

#if __cplusplus < 202002L
#error "catalogcore.hpp needs C++20 (-std=c++20); catalogcore.h does not"
#endif

#include <catalogcore.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include "catalogcore/call.hpp"
#include "catalogcore/entries.hpp"
#include "catalogcore/result.hpp"
#include "catalogcore/scene.hpp"
#include "catalogcore/walk.hpp"

/// The C++ layer over the calls of catalogcore.h.
namespace catalogcore {

namespace detail {

/// Whether an owner of this program has the process's catalogue.
inline std::atomic<bool> isOwned{false};

}  // namespace detail

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
  /// such file, or it holds no indexes; kEmpty; kVersion; kFailed: cannot be read, or is none of this kind; kMemory. Do
  /// not save after a load that failed in another way than kNoData: the file holds more than the catalogue.
  Result<void> LoadIndexes(std::string_view file) { return Call(IDXLoadIndexFile, file); }

  /// Adds the images of a file in the directory, but for those whose file or index is not there. Status::kNoData;
  /// kVersion; kFailed; kMemory.
  Result<void> LoadImages(std::string_view file) { return Call(IDXLoadImageFile, file); }

  /// Writes the indexes to a file in the directory, which is the old or the new one, whole, whatever fails, but where
  /// its folder takes no new file. Indexes
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
    return isOpen_ && input.IsValid() ? static_cast<Status>(call(input.Variable())) : Status::kFailed;
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
