#include "app/stored_catalog.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>

#include "api/index_number.h"
#include "app/regular_file.h"
#include "app/text.h"
#include "persist/payload.h"

namespace catalogcore::app {
namespace {

constexpr char kIndexFile[] = "index.plist";
constexpr char kImageFile[] = "images.plist";

using OwnedObject = std::unique_ptr<const void, void (*)(CFTypeRef)>;

OwnedObject Owned(CFTypeRef object) { return {object, CFRelease}; }

// The whole file; empty if it is missing.
std::string ReadFile(const std::filesystem::path& name) {
  const FileDescriptor file = OpenRegularFile(AT_FDCWD, name, O_RDONLY);
  if (file.IsOpen()) return ReadWholeFile(file);
  if (errno == ENOENT) return {};
  throw std::runtime_error(WhyNotOpened(errno));
}

// The records of a catalogue file as they stand in it. Loading drops images whose file is missing, so the command reads
// the file itself too. Owns what the views of the records point to.
class FileRecords {
 public:
  // Reads the item under `key` ("IDXIndex", "IDXImage"). A missing file or item has no records. Throws
  // std::runtime_error with the reason if the file exists and cannot be read.
  FileRecords(const std::filesystem::path& file, CFStringRef key) {
    const std::string content = ReadFile(file);
    if (content.empty()) return;
    const OwnedObject data = Owned(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(content.data()), static_cast<CFIndex>(content.size())));
    if (!data) throw std::bad_alloc();
    list_ = Owned(CFPropertyListCreateFromXMLData(nullptr, static_cast<CFDataRef>(data.get()), kCFPropertyListImmutable,
                                                  nullptr));
    if (!list_ || CFGetTypeID(list_.get()) != CFDictionaryGetTypeID()) throw NotACatalogue();
    const CFTypeRef item = CFDictionaryGetValue(static_cast<CFDictionaryRef>(list_.get()), key);
    if (!item) return;
    if (CFGetTypeID(item) != CFDataGetTypeID()) throw NotACatalogue();
    Parse(static_cast<CFDataRef>(item));
  }

  const std::vector<PayloadRecord>& Records() const { return records_; }

  // Whether the file ends within a record, where the library stops reading.
  bool IsCut() const { return isCut_; }

 private:
  static std::runtime_error NotACatalogue() { return std::runtime_error("it is not a catalogue file"); }

  void Parse(CFDataRef payload) {
    PayloadReader reader(
        {reinterpret_cast<const char*>(CFDataGetBytePtr(payload)), static_cast<std::size_t>(CFDataGetLength(payload))});
    reader.VersionLine();  // the library has checked it
    for (PayloadRecord record; reader.NextRecord(record);) records_.push_back(record);
    isCut_ = reader.IsCut();
  }

  OwnedObject list_ = Owned(nullptr);
  std::vector<PayloadRecord> records_;
  bool isCut_ = false;
};

}  // namespace

std::string FileStatusText(Status status) {
  if (status == Status::kFailed) return "it cannot be read or written, or is not a catalogue file";
  if (status == Status::kNoData) return "not written yet";
  if (status == Status::kEmpty) return "it has no text";
  if (status == Status::kVersion) return "it has an unknown version";
  return Message(status);
}

StoredCatalog::StoredCatalog(const std::filesystem::path& folder) : folder_(folder) {
  indexFile_.file = folder / kIndexFile;
  imageFile_.file = folder / kImageFile;
  if (!IsText(folder.string())) {
    throw CatalogError("the name of the catalogue folder is not valid UTF-8 (name another folder with --catalog)");
  }
  calls_.SetDirectory(folder.string()).value();
  Load(indexFile_, CFSTR("IDXIndex"), &Catalog::LoadIndexes, [this](const auto& records) { CheckIndexes(records); });
  Load(imageFile_, CFSTR("IDXImage"), &Catalog::LoadImages, [this](const auto& records) { RefileImages(records); });
}

template <typename Call, typename Restore>
void StoredCatalog::Load(FileState& state, CFStringRef key, Call load, Restore restore) {
  state.status = (calls_.*load)(state.file.filename().string()).error();
  if (state.status != Status::kOk && state.status != Status::kNoData) state.problem = FileStatusText(state.status);
  try {
    const FileRecords records(state.file, key);
    if (!state.problem.empty()) return;
    if (records.IsCut()) ++state.lost;
    restore(records.Records());
  } catch (const std::runtime_error& failure) {
    state.problem = failure.what();
  }
}

void StoredCatalog::CheckIndexes(const std::vector<PayloadRecord>& records) {
  for (const PayloadRecord& record : records) {
    const std::int32_t number = NumberOfIndexPath(std::string(record.first));
    if (number <= 0 || !calls_.FindIndex(number)) ++indexFile_.lost;
  }
}

void StoredCatalog::RefileImages(const std::vector<PayloadRecord>& records) {
  const std::ptrdiff_t images = std::ranges::distance(calls_.Images({.withPaths = false}).value());
  if (static_cast<std::size_t>(images) == records.size()) return;
  for (const PayloadRecord& record : records) {
    const std::string path(record.last);
    if (IsText(path) && !calls_.FindImage(path)) {
      RefileImage(path, NumberOfIndexPath(std::string(record.first)), record.attribute);
    } else if (!Contains(path)) {
      ++imageFile_.lost;  // invalid UTF-8, or a name that differs only in letter case
    }
  }
}

void StoredCatalog::RefileImage(const std::string& path, std::int32_t index, std::uint8_t attribute) {
  const auto attributes = static_cast<Attributes>(attribute);
  Status status = Status::kNoIndex;
  if (index > 0) status = AddImage(path, index, attributes).error();
  if (status == Status::kNoIndex) {
    status = AddImage(path, preset::kOther, attributes).error();
    displaced_ += status == Status::kOk ? 1 : 0;
  }
  std::error_code error;
  if (status != Status::kOk) {
    ++imageFile_.lost;
  } else if (!std::filesystem::exists(path, error)) {
    missing_.insert(path);
  }
}

void StoredCatalog::RequireReadable() const {
  for (const FileState* state : {&indexFile_, &imageFile_}) {
    if (state->problem.empty()) continue;
    throw CatalogError("cannot read " + state->file.string() + ": " + state->problem +
                       " (nothing was changed; repair or move the file, or name another catalogue with --catalog)");
  }
}

void StoredCatalog::RequireWhole() const {
  RequireReadable();
  for (const FileState* state : {&indexFile_, &imageFile_}) {
    if (state->lost == 0) continue;
    throw CatalogError(
        state->file.string() + " holds " + Counted(state->lost, "record") +
        " that the library rejects and that a change would lose (nothing was changed; repair the file, or "
        "drop them with `catalogcore check --forget`)");
  }
}

std::string StoredCatalog::WhyNotHeld(const std::string& path) {
  if (!IsText(path)) return "its name is not valid UTF-8";
  if (path.find('\n') != std::string::npos)
    return "its name contains a line feed, which the catalogue file cannot hold";
  return calls_.FindImage(path) && !Contains(path) ? kCaseTwin : "";
}

bool StoredCatalog::Contains(const std::string& path) {
  if (!IsText(path) || !calls_.FindImage(path)) return false;
  if (!paths_) {
    paths_.emplace();
    ForEachImage({}, [this](const Image& image) { paths_->insert(image.path); });
  }
  return paths_->count(path) != 0;
}

std::optional<Image> StoredCatalog::FindImage(const std::string& path) {
  if (!Contains(path)) return std::nullopt;
  const Result<Filing> filing = calls_.FindImage(path);
  if (!filing) return std::nullopt;
  return Image{path, filing->index, filing->attributes};
}

Result<void> StoredCatalog::AddImage(const std::string& path, IndexNumber index, Attributes attributes) {
  const Result<void> added = calls_.AddImage(path, index, attributes);
  if (added && paths_) paths_->insert(path);
  return added;
}

Result<void> StoredCatalog::RemoveImage(const std::string& path, Options options) {
  const Result<void> removed = calls_.RemoveImage(path, options);
  if (!removed) return removed;
  missing_.erase(path);
  if (paths_) paths_->erase(path);
  return removed;
}

Result<void> StoredCatalog::RemoveIndex(IndexNumber number, Options options) {
  paths_.reset();  // removes its images, and some of them even on failure
  return calls_.RemoveIndex(number, options);
}

void StoredCatalog::SaveIndexes() const { Save(indexFile_, &Catalog::SaveIndexes); }

void StoredCatalog::SaveImages() const { Save(imageFile_, &Catalog::SaveImages); }

void StoredCatalog::Save(const FileState& state, Result<void> (Catalog::*write)(std::string_view) const) const {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (error) throw CatalogError("cannot create " + folder_.string() + ": " + error.message());
  const Status status = (calls_.*write)(state.file.filename().string()).error();
  if (status == Status::kOk) return;
  const std::string reason = status == Status::kFailed ? "" : ": " + FileStatusText(status);
  throw CatalogError("cannot write " + state.file.string() + reason +
                     " (the file is unchanged; check that its folder is writable and that the disk has space)");
}

std::size_t StoredCatalog::ForgetMissing() {
  const std::vector<std::string> missing(missing_.begin(), missing_.end());
  for (const std::string& path : missing) RemoveImage(path, Options::kForce).value();
  indexFile_.lost = imageFile_.lost = 0;
  return missing.size();
}

}  // namespace catalogcore::app
