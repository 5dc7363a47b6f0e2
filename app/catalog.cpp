#include "app/catalog.h"

#include <memory>
#include <system_error>

#include "app/catalog_records.h"
#include "app/presets.h"
#include "app/status_words.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

constexpr char kIndexFile[] = "index.plist";
constexpr char kImageFile[] = "images.plist";

void NamePresets() {
  for (const Preset& preset : kPresets) {
    StringVariable name(preset.name);
    const CFStringRef* const variable = name.Variable();
    IDXSetPresetIndexName(const_cast<IDXSTR*>(&variable), &preset.number, 1);
  }
}

// The record of a call on the image of that path.
IDXITEM ImageItem(StringVariable& name) {
  IDXITEM item{};
  item.name = name.Variable();
  item.mask = IDXMASK_NAME;
  return item;
}

IDXITEM IndexItem(std::int32_t number) {
  IDXITEM item{};
  item.index = number;
  item.mask = IDXMASK_INDEX;
  return item;
}

using FindHandle = std::unique_ptr<struct SearchHandle, IDXSTATUS (*)(IDXFIND)>;

std::size_t CountImages() {
  IDXITEM item{};
  IDXSTATUS status = IDX_OK;
  const FindHandle find(IDXFindFirstImage(&item, &status), IDXCloseFind);
  std::size_t count = 0;
  for (; status == IDX_OK; status = IDXFindNextImage(find.get(), &item)) ++count;
  return count;
}

bool HasImage(const std::string& path) {
  StringVariable name(path);
  IDXITEM item = ImageItem(name);
  return IDXSearchImage(&item) == IDX_OK;
}

}  // namespace

Library::Library() {
  const IDXSTATUS status = IDXInitialize();
  // Without the recognizer's parameters everything but scene detection works, and that says so itself.
  if (status != IDX_OK && status != IDXERR_DETECTOR) {
    throw CatalogError("the library does not start: " + StatusWords(status));
  }
  NamePresets();
}

Catalog::Catalog(const std::filesystem::path& folder) : folder_(folder) {
  indexFile_.file = folder / kIndexFile;
  imageFile_.file = folder / kImageFile;
  if (!IsText(folder.string())) {
    throw CatalogError("the name of the catalogue's folder is no valid UTF-8; name another with --catalog");
  }
  StringVariable base(folder.string());
  IDXSetFilePath(base.Variable());
  Load(indexFile_, CFSTR("IDXIndex"), IDXLoadIndexFile, [this](const auto& records) { CheckIndexes(records); });
  Load(imageFile_, CFSTR("IDXImage"), IDXLoadImageFile, [this](const auto& records) { RefileImages(records); });
}

template <typename Restore>
void Catalog::Load(FileState& state, CFStringRef key, FileCall load, Restore restore) {
  StringVariable name(state.file.filename().string());
  state.status = load(name.Variable());
  if (state.status != IDX_OK && state.status != IDXERR_NODATA) state.problem = FileStatusWords(state.status);
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
    IDXITEM item = IndexItem(NumberOfKey(record.key));
    if (IDXSearchIndex(&item) != IDX_OK) ++indexFile_.lost;
  }
}

void Catalog::RefileImages(const std::vector<CatalogRecord>& records) {
  if (CountImages() == records.size()) return;
  for (const CatalogRecord& record : records) {
    const std::string path(record.text);
    if (!IsText(path)) {
      ++imageFile_.lost;
    } else if (!HasImage(path)) {
      RefileImage(path, NumberOfKey(record.key), record.attribute);
    } else if (!Contains(path)) {
      ++imageFile_.lost;  // taken for another's
    }
  }
}

void Catalog::RefileImage(const std::string& path, std::int32_t index, std::uint8_t attribute) {
  IDXSTATUS status = IDXERR_NOINDEX;
  if (index != 0) status = AddImage(path, index, attribute);
  if (status == IDXERR_NOINDEX) {
    status = AddImage(path, IDXPRESET_OTHER, attribute);
    displaced_ += status == IDX_OK ? 1 : 0;
  }
  std::error_code error;
  if (status != IDX_OK) {
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
  return HasImage(path) && !Contains(path) ? kCaseTwin : "";
}

bool Catalog::Contains(const std::string& path) {
  if (!IsText(path) || !HasImage(path)) return false;
  if (!paths_) {
    paths_.emplace();
    ForEachImage(IDX_ROOT, "", [this](const ImageEntry& image) { paths_->insert(image.path); });
  }
  return paths_->count(path) != 0;
}

void Catalog::ForEachImage(std::int32_t index, const std::string& folder,
                           const std::function<void(const ImageEntry&)>& visit) const {
  StringVariable name;
  StringVariable path(folder);
  IDXITEM item{};
  item.operation = IDXOP_GETINFO | IDXOP_CONDITION;
  item.name = name.Output();
  item.path = path.Variable();
  item.index = index;
  item.mask = IDXMASK_NAME | IDXMASK_INDEX | IDXMASK_ATTRIBUTE;
  if (!folder.empty()) item.mask |= IDXMASK_PATH;
  IDXSTATUS status = IDX_OK;
  const FindHandle find(IDXFindFirstImage(&item, &status), IDXCloseFind);
  for (; status == IDX_OK; status = IDXFindNextImage(find.get(), &item)) {
    const std::optional<std::string> text = name.Text();
    if (text) visit({*text, item.index, item.attribute, IsMissing(*text)});
    name.Output();
  }
}

std::optional<ImageEntry> Catalog::FindImage(const std::string& path) {
  if (!Contains(path)) return std::nullopt;
  StringVariable name(path);
  IDXITEM item = ImageItem(name);
  item.mask |= IDXMASK_INDEX | IDXMASK_ATTRIBUTE;
  if (IDXSearchImage(&item) != IDX_OK) return std::nullopt;
  return ImageEntry{path, item.index, item.attribute, IsMissing(path)};
}

std::vector<IndexEntry> Catalog::Indexes() const {
  std::vector<IndexEntry> indexes;
  StringVariable name;
  IDXITEM item{};
  item.operation = IDXOP_GETINFO;
  item.name = name.Output();
  item.mask = IDXMASK_NAME | IDXMASK_INDEX | IDXMASK_ATTRIBUTE;
  IDXSTATUS status = IDX_OK;
  const FindHandle find(IDXFindFirstIndex(&item, &status), IDXCloseFind);
  for (; status == IDX_OK; status = IDXFindNextIndex(find.get(), &item)) {
    indexes.push_back({item.index, name.Text().value_or("(no UTF-8)"), item.attribute});
    name.Output();
  }
  return indexes;
}

IDXSTATUS Catalog::AddImage(const std::string& path, std::int32_t index, std::uint8_t attribute) {
  StringVariable name(path);
  IDXITEM item = ImageItem(name);
  item.index = index;
  item.attribute = attribute;
  item.mask |= IDXMASK_INDEX | IDXMASK_ATTRIBUTE;
  const IDXSTATUS status = IDXAddImage(&item);
  if (status == IDX_OK && paths_) paths_->insert(path);
  return status;
}

IDXSTATUS Catalog::MoveImage(const std::string& path, std::int32_t index, bool isForced) {
  StringVariable name(path);
  IDXITEM item = ImageItem(name);
  item.index = index;
  item.mask |= IDXMASK_INDEX;
  item.state = isForced ? IDXSTATE_FORCE : 0;
  return IDXChangeImage(&item);
}

IDXSTATUS Catalog::SetImageAttribute(const std::string& path, std::uint8_t attribute) {
  StringVariable name(path);
  IDXITEM item = ImageItem(name);
  item.attribute = attribute;
  item.mask |= IDXMASK_ATTRIBUTE;
  return IDXChangeImage(&item);
}

IDXSTATUS Catalog::RemoveImage(const std::string& path, bool isForced) {
  StringVariable name(path);
  IDXITEM item = ImageItem(name);
  item.state = isForced ? IDXSTATE_FORCE : 0;
  const IDXSTATUS status = IDXRemoveImage(&item);
  if (status != IDX_OK) return status;
  missing_.erase(path);
  if (paths_) paths_->erase(path);
  return status;
}

IDXSTATUS Catalog::AddIndex(std::int32_t parent, const std::string& name, std::uint8_t attribute,
                            std::int32_t& number) {
  StringVariable text(name);
  IDXITEM item = IndexItem(parent);
  item.operation = IDXOP_GETINFO;
  item.name = text.Variable();
  item.attribute = attribute;
  item.mask |= IDXMASK_NAME | IDXMASK_ATTRIBUTE;
  const IDXSTATUS status = IDXAddIndex(&item);
  number = item.index;
  return status;
}

IDXSTATUS Catalog::RenameIndex(std::int32_t number, const std::string& name, bool isForced) {
  StringVariable text(name);
  IDXITEM item = IndexItem(number);
  item.name = text.Variable();
  item.mask |= IDXMASK_NAME;
  item.state = isForced ? IDXSTATE_FORCE : 0;
  return IDXChangeIndex(&item);
}

IDXSTATUS Catalog::SetIndexAttribute(std::int32_t number, std::uint8_t attribute) {
  IDXITEM item = IndexItem(number);
  item.attribute = attribute;
  item.mask |= IDXMASK_ATTRIBUTE;
  return IDXChangeIndex(&item);
}

IDXSTATUS Catalog::RemoveIndex(std::int32_t number, bool isForced) {
  IDXITEM item = IndexItem(number);
  item.state = isForced ? IDXSTATE_FORCE : 0;
  const IDXSTATUS status = IDXRemoveIndex(&item);
  paths_.reset();  // its images went with it, some of them even if it failed
  return status;
}

void Catalog::SaveIndexes() const { Save(indexFile_, IDXWriteIndexFile); }

void Catalog::SaveImages() const { Save(imageFile_, IDXWriteImageFile); }

void Catalog::Save(const FileState& state, FileCall write) const {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (error) throw CatalogError("cannot make " + folder_.string() + ": " + error.message());
  StringVariable name(state.file.filename().string());
  const IDXSTATUS status = write(name.Variable());
  if (status == IDX_OK) return;
  const std::string reason = status == IDXERR_FAILED ? "" : ": " + FileStatusWords(status);
  throw CatalogError("cannot write " + state.file.string() + reason +
                     " (the file is as it was; see that its folder can be written and has room)");
}

std::size_t Catalog::ForgetMissing() {
  const std::vector<std::string> missing(missing_.begin(), missing_.end());
  for (const std::string& path : missing) RemoveImage(path, true);
  indexFile_.lost = imageFile_.lost = 0;
  return missing.size();
}

}  // namespace catalogcore::app
