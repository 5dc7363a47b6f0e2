/// @file
/// CatalogCore for C++20: the calls of catalogcore.h with owners, ranges, enumerations and std::string in place of
/// handles, bits and CoreFoundation strings. It consists of headers only; link it like a C program.
///
/// catalogcore.h documents each call; this header documents what C++ adds. Text is UTF-8: std::string_view in,
/// std::string out. Input text that is not valid UTF-8 or has a zero byte gives Status::kFailed. Empty text gives
/// Status::kMemory; as a file name it gives Status::kFailed.
///
/// Every call that can fail returns a Result. In programs built with exceptions, Result::value() throws Error for a
/// failure: `catalog.AddImage(path, index)` returns a status, `catalog.AddImage(path, index).value()` throws. Nothing
/// else throws, except std::bad_alloc if a std::string cannot be allocated. With -fno-exceptions, value() and Error do
/// not exist.
///
/// Threads: any thread may make any call on an open Catalog. Opening, moving, clearing and closing it, and
/// SetDirectory, must not overlap other calls. A walk belongs to one thread at a time.
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

/// Whether a Catalog owns the catalogue of the process.
inline std::atomic<bool> isOwned{false};

}  // namespace detail

/// The owner of the process's catalogue: Open creates the catalogue and the destructor drops it. A Catalog can be moved
/// but not copied. After a move, the old object owns nothing: its calls give Status::kFailed, and the result of another
/// Open may be assigned to it.
class Catalog {
 public:
  /// Creates the process's catalogue, with the ten presets and no directory. A process has one catalogue, which a
  /// second IDXInitialize would drop. So if a catalogue exists already, from this class or from IDXInitialize, the call
  /// gives Status::kAlreadyOpen and changes nothing. Status::kMemory. The call succeeds without the recognizer's
  /// parameters: see HasRecognizer.
  static Result<Catalog> Open() {
    if (detail::isOwned.exchange(true)) return Status::kAlreadyOpen;
    Catalog catalog;  // its destructor resets isOwned
    if (IDXSearchIndex(&detail::Record().Number(kRoot)) != IDXERR_FAILED) {
      catalog.isOpen_ = false;
      detail::isOwned = false;
      return Status::kAlreadyOpen;
    }
    const Result<void> made = catalog.Clear();
    if (!made) return made.error();
    return catalog;
  }

  /// Takes over the catalogue of `other`.
  Catalog(Catalog&& other) noexcept
      : isOpen_(std::exchange(other.isOpen_, false)), hasRecognizer_(other.hasRecognizer_) {}

  /// Drops the own catalogue, if any, and takes over that of `other`.
  Catalog& operator=(Catalog&& other) noexcept {
    if (this == &other) return *this;
    Close();
    isOpen_ = std::exchange(other.isOpen_, false);
    hasRecognizer_ = other.hasRecognizer_;
    return *this;
  }

  /// Drops the catalogue, if any. This ends all open walks.
  ~Catalog() { Close(); }

  /// Whether the object owns the catalogue: true until it is moved from.
  bool IsOpen() const noexcept { return isOpen_; }

  /// Whether the recognizer's parameters were found. Without them, Classify gives Status::kDetector for pictures that
  /// need the recognizer; everything else works.
  bool HasRecognizer() const noexcept { return hasRecognizer_; }

  /// Empties the catalogue, which is then as after Open, without a directory. Status::kMemory: an allocation failed.
  /// Afterwards all calls give Status::kFailed until Clear succeeds.
  Result<void> Clear() {
    if (!isOpen_) return Status::kFailed;
    const IDXSTATUS status = IDXInitialize();
    hasRecognizer_ = status == IDX_OK;
    return status == IDXERR_DETECTOR ? Status::kOk : static_cast<Status>(status);
  }

  // ---- Images

  /// Files an image under an index other than the root. The file need not exist. Status::kParam: the path is invalid
  /// (see IDXAddImage), or the index is out of range or the root; kImageExists; kNoIndex; kMemory; kFailed.
  Result<void> AddImage(std::string_view path, IndexNumber index, Attributes attributes = Attributes::kNone) {
    detail::InputText name(path);
    return Call(IDXAddImage, detail::Record().Name(name).Number(index).Protection(attributes));
  }

  /// Moves an image to the index in `change`, or adds it if it is not in the catalogue. Then sets its attributes. What
  /// is not set in `change` does not change. An index of kRoot removes the image. If setting the attributes fails, the
  /// image stays moved. Status::kProtected; kNoIndex; kNoImage: no such image, and `change` has only attributes;
  /// kParam; kFailed; kMemory: an allocation failed, or the path is empty. After kMemory, an image that was to be moved
  /// may have been removed.
  Result<void> ChangeImage(std::string_view path, const ImageChange& change, Options options = Options::kNone) {
    detail::InputText name(path);
    detail::Record record;
    record.Name(name).State(options);
    if (change.index) record.Number(*change.index);
    if (change.attributes) record.Protection(*change.attributes);
    return Call(IDXChangeImage, record);
  }

  /// Removes an image from the catalogue. Status::kNoImage; kProtected; kFailed; kMemory.
  Result<void> RemoveImage(std::string_view path, Options options = Options::kNone) {
    detail::InputText name(path);
    return Call(IDXRemoveImage, detail::Record().Name(name).State(options));
  }

  /// The index and the attributes of an image. Status::kNoImage; kFailed; kMemory.
  Result<Filing> FindImage(std::string_view path) const {
    detail::InputText name(path);
    detail::Record record;
    record.Name(name).Number(0).Protection(Attributes::kNone);
    const Result<void> found = Call(IDXSearchImage, record);
    if (!found) return found.error();
    return Filing{record.index, record.Protections()};
  }

  /// Begins a walk over the images that match the query; by default over all images. A walk without images is at its
  /// end. Status::kParam: the index is out of range; kFailed; kMemory.
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

  /// Adds an index below `parent` (kRoot: at the top) and gives its number. The index gets the lowest free position
  /// from 10 to 29. Status::kIndexExists: the parent has a child whose name has the same bytes (EnsureIndex gives its
  /// number); kIndexFull; kNoIndex: no such parent; kParam: the parent is out of range or on the fourth level; kMemory;
  /// kFailed.
  Result<IndexNumber> AddIndex(IndexNumber parent, std::string_view name, Attributes attributes = Attributes::kNone) {
    IndexNumber number = 0;
    const Result<void> added = AddIndexTo(parent, name, attributes, number);
    if (!added) return added.error();
    return number;
  }

  /// Gives the number of the parent's child with this name. If there is no such child, adds it as AddIndex does; the
  /// attributes of an existing child do not change. Fails as AddIndex does, but never with Status::kIndexExists.
  Result<IndexNumber> EnsureIndex(IndexNumber parent, std::string_view name,
                                  Attributes attributes = Attributes::kNone) {
    IndexNumber number = 0;
    const Result<void> added = AddIndexTo(parent, name, attributes, number);
    if (!added && added.error() != Status::kIndexExists) return added.error();
    return number;
  }

  /// Changes the name, then the attributes. What is not set in `change` does not change. If both are set, the status is
  /// that of the second step, even if the first step did not change the name. If the name is not valid text, nothing is
  /// changed.
  /// Status::kNoIndex; kProtected; kParam; kMemory; kFailed.
  Result<void> ChangeIndex(IndexNumber number, const IndexChange& change, Options options = Options::kNone) {
    detail::InputText name(change.name.value_or(std::string_view()));
    detail::Record record;
    record.Number(number).State(options);
    if (change.name) record.Name(name);
    if (change.attributes) record.Protection(*change.attributes);
    return Call(IDXChangeIndex, record);
  }

  /// Removes an index, and its images from the catalogue. Status::kNoIndex; kNotEmpty: the index has child indexes;
  /// kProtected: the index or one of its images is protected; kParam; kFailed. If an image is protected, the images
  /// that were added to the index before this image have been removed.
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

  /// Begins a walk over the index `top` and all indexes below it, or over all indexes except the root. A walk without
  /// indexes is at its end. Status::kParam: `top` is out of range; kFailed; kMemory.
  Result<IndexWalk> Indexes(IndexNumber top = kRoot) const {
    if (!isOpen_) return Status::kFailed;
    detail::Record record;
    if (top != kRoot) record.Number(top).Operation(IDXOP_CONDITION);
    return IndexWalk::Begin(record);
  }

  /// Sets the display name of an index, even of a protected index. The name may be empty. A load does not restore
  /// the names of presets. Status::kParam: no such index; kFailed.
  Result<void> SetPresetName(IndexNumber number, std::string_view name) {
    detail::InputText text(name);
    const IDXSTR variable = text.Variable();
    if (!isOpen_ || !text.IsValid()) return Status::kFailed;
    // The call would rename the root for a number out of range.
    constexpr IndexNumber kFirst = 1000000;
    constexpr IndexNumber kLast = 99999999;
    if (number != kRoot && (number < kFirst || number > kLast)) return Status::kParam;
    return static_cast<Status>(IDXSetPresetIndexName(&variable, &number, 1));
  }

  // ---- Files

  /// Sets the directory of the catalogue's files, with or without a final "/". The directory is not created.
  /// Status::kFailed; kMemory: an allocation failed, or the text is empty. After kMemory no directory is set.
  Result<void> SetDirectory(std::string_view directory) { return Call(IDXSetFilePath, directory); }

  /// Adds the indexes of a file in the directory to the catalogue. Call it before LoadImages. Status::kNoData: the file
  /// is missing or has no list of indexes; kEmpty; kVersion; kFailed: the file cannot be read, or is not a catalogue
  /// file; kMemory. After any failure except kNoData, do not overwrite the file: it may hold entries that were not
  /// loaded.
  Result<void> LoadIndexes(std::string_view file) { return Call(IDXLoadIndexFile, file); }

  /// Adds the images of a file in the directory, except images whose own file or index does not exist. The next save
  /// loses the images that were skipped. Fails as LoadIndexes does, but never with Status::kEmpty.
  Result<void> LoadImages(std::string_view file) { return Call(IDXLoadImageFile, file); }

  /// Writes the indexes to a file in the directory. They replace the indexes in the file; other values stay. After any
  /// failure the old file is intact, unless its folder does not allow new files: then the file is overwritten in place,
  /// and a failure can cut it short. Indexes whose attribute is exactly the three protections, such as the presets, are
  /// not written. Two calls must not write the same file at once. Status::kFailed: the file is not a catalogue file, or
  /// cannot be written; kMemory.
  Result<void> SaveIndexes(std::string_view file) const { return Call(IDXWriteIndexFile, file); }

  /// Writes the images to a file in the directory as SaveIndexes does. Both may use the same file.
  Result<void> SaveImages(std::string_view file) const { return Call(IDXWriteImageFile, file); }

  // ---- Scenes

  /// Decides what a picture shows. The pixels are only read, and not kept. Detections run one at a time; other calls do
  /// not wait for them. Status::kParam: the numbers do not match the pixels, which means one of
  /// - the depth is not 8, 16, 24 or 48 bits,
  /// - a row is shorter than its pixels,
  /// - rowBytes * height is larger than the number of bytes, or than 2^31 - 1;
  ///
  /// kImageSize; kDetector; kRecognizer or kFaces plus a code; kMemory; kFailed.
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

  // Bytes from one row to the next; 0 if the numbers do not match the pixels.
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

  // `number` gets the number of the new child, or of the existing child with the name.
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
