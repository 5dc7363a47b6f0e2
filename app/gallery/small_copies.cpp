#include "app/gallery/small_copies.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string_view>

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

constexpr int kThumbnailSide = 256;  // pixels
constexpr int kPreviewSide = 1600;
constexpr std::size_t kFolderDigits = 2;  // first digits of a copy's name, the name of its folder
constexpr std::string_view kCopyExtension = ".jpg";

// The hash of Fowler, Noll and Vo, variant 1a (RFC 9923).
std::uint64_t HashFnv1a(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
  return hash;
}

std::string CopyName(const std::string& path, const GalleryRecord& record) {
  const std::string key = path + '\0' + std::to_string(record.changed) + '\0' + std::to_string(record.size);
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(HashFnv1a(key)));
  return digits.data();
}

std::string FolderOf(const std::string& name) { return name.substr(0, kFolderDigits); }

std::string FileOf(const std::string& name) { return name + std::string(kCopyExtension); }

// Whether the gallery has the copy. Makes an existing copy unreadable for others than `readers`.
bool CheckCopy(const Folder& folder, const std::string& name, const Readers& readers) {
  if (name.empty()) return false;
  const std::optional<Folder> inner = folder.FindInner(FolderOf(name));
  const std::optional<struct stat> status = inner ? inner->FindFile(FileOf(name)) : std::nullopt;
  if (!status) return false;
  if ((status->st_mode & 0077 & ~readers.Limit(status->st_gid)) != 0) inner->Restrict(FileOf(name), readers);
  return true;
}

// Whether browsers show the format, so that no preview is needed.
bool IsShownByBrowsers(const fs::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  constexpr std::array kShown = {".jpg", ".jpeg", ".jpe", ".jfif", ".png", ".webp", ".gif"};
  return std::find(kShown.begin(), kShown.end(), extension) != kShown.end();
}

// Whether a file with this name in this folder is a copy.
bool IsCopyFile(const std::string& folder, const std::string& file) {
  if (!file.ends_with(kCopyExtension) || !file.starts_with(folder)) return false;
  return IsCopyName(std::string_view(file).substr(0, file.size() - kCopyExtension.size()));
}

void RemoveOthersIn(const Folder& folder, const std::set<std::string>& names) {
  for (const std::string& part : folder.Names()) {
    if (part.size() != kFolderDigits) continue;
    const std::optional<Folder> inner = folder.FindInner(part);
    if (!inner) continue;
    inner->RemoveLeftovers();
    for (const std::string& file : inner->Names()) {
      const bool isCopy = IsCopyFile(part, file) && inner->FindFile(file);
      if (isCopy && !names.contains(fs::path(file).stem().string())) inner->Remove(file);
    }
  }
}

}  // namespace

bool SmallCopies::Check(const std::string& path, GalleryRecord& record, const Readers& readers) const {
  if (!CheckCopy(thumbnails_, record.thumbnail, readers)) record.thumbnail.clear();
  record.preview = record.preview && CheckCopy(previews_, record.thumbnail, readers);
  return !record.thumbnail.empty() && (record.preview || IsShownByBrowsers(path));
}

// Returns whether the copy is new.
bool SmallCopies::MakeCopy(const std::string& picture, const Folder& folder, const std::string& name, int side,
                           const Readers& readers) const {
  const Folder inner = folder.Inner(FolderOf(name));
  if (inner.FindFile(FileOf(name))) return false;
  const std::string copy = request_.makeCopy(picture, side);
  inner.Replace(FileOf(name), copy, readers);
  return true;
}

bool SmallCopies::Make(const std::string& path, GalleryRecord& record, const Readers& readers) const {
  record.facts = request_.readFacts(path);
  const std::string name = CopyName(path, record);
  const bool made = MakeCopy(path, thumbnails_, name, kThumbnailSide, readers);
  record.thumbnail = name;
  if (IsShownByBrowsers(path)) return made;
  MakeCopy(path, previews_, name, kPreviewSide, readers);
  record.preview = true;
  return made;
}

void SmallCopies::RemoveOthers(const std::set<std::string>& thumbnails, const std::set<std::string>& previews) const {
  RemoveOthersIn(thumbnails_, thumbnails);
  RemoveOthersIn(previews_, previews);
}

}  // namespace catalogcore::app
