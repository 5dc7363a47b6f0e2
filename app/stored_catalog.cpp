#include "app/stored_catalog.h"

#include <system_error>
#include <utility>

#include "app/catalog_records.h"
#include "app/library.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

constexpr char kIndexFile[] = "index.plist";
constexpr char kImageFile[] = "images.plist";

}  // namespace

std::string FileStatusWords(Status status) {
  if (status == Status::kFailed) return "it cannot be read or written, or is no catalogue file";
  if (status == Status::kNoData) return "nothing there yet";
  if (status == Status::kEmpty) return "its text is empty";
  if (status == Status::kVersion) return "it is of another version";
  return Message(status);
}

catalogcore::Catalog OpenLibrary() {
  // Without the recognizer's parameters everything but scene detection works, and that says so itself.
  Result<catalogcore::Catalog> library = catalogcore::Catalog::Open();
  if (!library) throw CatalogError("the library does not start: " + Message(library.error()));
  for (const Preset& preset : kPresets) library->SetPresetName(preset.number, preset.name).value();
  return *std::move(library);
}

Catalog::Catalog(const std::filesystem::path& folder) : folder_(folder) {
  indexFile_.file = folder / kIndexFile;
  imageFile_.file = folder / kImageFile;
  if (!IsText(folder.string())) {
    throw CatalogError("the name of the catalogue's folder is no valid UTF-8; name another with --catalog");
  }
  calls_.SetDirectory(folder.string()).value();
  Load(indexFile_, CFSTR("IDXIndex"), &catalogcore::Catalog::LoadIndexes,
       [this](const auto& records) { CheckIndexes(records); });
  Load(imageFile_, CFSTR("IDXImage"), &catalogcore::Catalog::LoadImages,
       [this](const auto& records) { RefileImages(records); });
}

template <typename Call, typename Restore>
void Catalog::Load(FileState& state, CFStringRef key, Call load, Restore restore) {
  state.status = (calls_.*load)(state.file.filename().string()).error();
  if (state.status != Status::kOk && state.status != Status::kNoData) state.problem = FileStatusWords(state.status);
  try {
    const CatalogRecords records(state.file, key);
    if (!state.problem.empty()) return;
    if (records.IsCut()) ++state.lost;
    restore(records.Records());
  } catch (const std::runtime_error& failure) {
    state.problem = failure.what();
  }
}

void Catalog::CheckIndexes(const std::vector<CatalogRecord>& records) {
  for (const CatalogRecord& record : records) {
    if (!calls_.FindIndex(NumberOfKey(record.key))) ++indexFile_.lost;
  }
}

void Catalog::RefileImages(const std::vector<CatalogRecord>& records) {
  const std::ptrdiff_t images = std::ranges::distance(calls_.Images({.withPaths = false}).value());
  if (static_cast<std::size_t>(images) == records.size()) return;
  for (const CatalogRecord& record : records) {
    const std::string path(record.text);
    if (IsText(path) && !calls_.FindImage(path)) {
      RefileImage(path, NumberOfKey(record.key), record.attribute);
    } else if (!Contains(path)) {
      ++imageFile_.lost;  // no text, or taken for another's
    }
  }
}

void Catalog::RefileImage(const std::string& path, std::int32_t index, std::uint8_t attribute) {
  const auto attributes = static_cast<Attributes>(attribute);
  Status status = Status::kNoIndex;
  if (index != 0) status = AddImage(path, index, attributes).error();
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

void Catalog::RequireReadable() const {
  for (const FileState* state : {&indexFile_, &imageFile_}) {
    if (state->problem.empty()) continue;
    throw CatalogError("cannot read " + state->file.string() + ": " + state->problem +
                       " (nothing was changed; repair or move the file, or name another catalogue with --catalog)");
  }
}

void Catalog::RequireWhole() const {
  RequireReadable();
  for (const FileState* state : {&indexFile_, &imageFile_}) {
    if (state->lost == 0) continue;
    throw CatalogError(state->file.string() + " holds " + Counted(state->lost, "record") +
                       " that the catalogue does not take, and a change would lose (nothing was changed; repair the "
                       "file, or drop them with `catalogcore check --forget`)");
  }
}

std::string Catalog::WhyNotHeld(const std::string& path) {
  if (!IsText(path)) return "its name is no valid UTF-8, which the catalogue needs";
  if (path.find('\n') != std::string::npos) return "its name holds a line feed, which the catalogue's file cannot hold";
  return calls_.FindImage(path) && !Contains(path) ? kCaseTwin : "";
}

bool Catalog::Contains(const std::string& path) {
  if (!IsText(path) || !calls_.FindImage(path)) return false;
  if (!paths_) {
    paths_.emplace();
    ForEachImage({}, [this](const Image& image) { paths_->insert(image.path); });
  }
  return paths_->count(path) != 0;
}

std::optional<Image> Catalog::FindImage(const std::string& path) {
  if (!Contains(path)) return std::nullopt;
  const Result<Filing> filing = calls_.FindImage(path);
  if (!filing) return std::nullopt;
  return Image{path, filing->index, filing->attributes};
}

Result<void> Catalog::AddImage(const std::string& path, IndexNumber index, Attributes attributes) {
  const Result<void> added = calls_.AddImage(path, index, attributes);
  if (added && paths_) paths_->insert(path);
  return added;
}

Result<void> Catalog::RemoveImage(const std::string& path, Options options) {
  const Result<void> removed = calls_.RemoveImage(path, options);
  if (!removed) return removed;
  missing_.erase(path);
  if (paths_) paths_->erase(path);
  return removed;
}

Result<void> Catalog::RemoveIndex(IndexNumber number, Options options) {
  paths_.reset();  // its images go with it, some of them even if it fails
  return calls_.RemoveIndex(number, options);
}

void Catalog::SaveIndexes() const { Save(indexFile_, &catalogcore::Catalog::SaveIndexes); }

void Catalog::SaveImages() const { Save(imageFile_, &catalogcore::Catalog::SaveImages); }

void Catalog::Save(const FileState& state, Result<void> (catalogcore::Catalog::*write)(std::string_view) const) const {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (error) throw CatalogError("cannot make " + folder_.string() + ": " + error.message());
  const Status status = (calls_.*write)(state.file.filename().string()).error();
  if (status == Status::kOk) return;
  const std::string reason = status == Status::kFailed ? "" : ": " + FileStatusWords(status);
  throw CatalogError("cannot write " + state.file.string() + reason +
                     " (the file is as it was; see that its folder can be written and has room)");
}

std::size_t Catalog::ForgetMissing() {
  const std::vector<std::string> missing(missing_.begin(), missing_.end());
  for (const std::string& path : missing) RemoveImage(path, Options::kForce).value();
  indexFile_.lost = imageFile_.lost = 0;
  return missing.size();
}

}  // namespace catalogcore::app
