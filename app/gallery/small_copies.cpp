#include "app/gallery/small_copies.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace catalogcore::app {
namespace {

namespace fs = std::filesystem;

constexpr int kThumbnailSide = 256;  // pixels
constexpr int kPreviewSide = 1600;
constexpr const char* kThumbnails = "thumbs";
constexpr const char* kPreviews = "previews";

// Fowler, Noll and Vo, variant 1a; RFC 9923 has the constants.
std::uint64_t HashFnv1a(std::string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
  return hash;
}

std::string CopyName(const std::string& path, const PictureRecord& record) {
  const std::string key = path + '\0' + std::to_string(record.changed) + '\0' + std::to_string(record.size);
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(HashFnv1a(key)));
  return digits.data();
}

fs::path CopyFile(const fs::path& folder, const std::string& name) {
  return folder / name.substr(0, 2) / (name + ".jpg");
}

bool Exists(const fs::path& file) {
  std::error_code error;
  return fs::exists(file, error);
}

// Browsers show these themselves.
bool IsShownByBrowsers(const fs::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  constexpr std::array kShown = {".jpg", ".jpeg", ".jpe", ".jfif", ".png", ".webp", ".gif"};
  return std::find(kShown.begin(), kShown.end(), extension) != kShown.end();
}

bool MakeCopy(const fs::path& picture, const fs::path& copy, int side) {
  if (Exists(copy)) return false;
  std::error_code error;
  fs::create_directories(copy.parent_path(), error);
  if (error) throw std::runtime_error("cannot make the folder " + copy.parent_path().string() + ": " + error.message());
  WriteSmallCopy(picture, copy, side);
  return true;
}

void RemoveOthersIn(const fs::path& folder, const std::set<std::string>& names) {
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (!entry->is_regular_file(error)) continue;
    const fs::path& file = entry->path();
    std::error_code ignored;
    if (file.extension() != ".jpg" || !names.contains(file.stem().string())) fs::remove(file, ignored);
  }
}

}  // namespace

bool SmallCopies::Check(const std::string& path, PictureRecord& record) const {
  if (!Exists(CopyFile(folder_ / kThumbnails, record.thumbnail))) record.thumbnail.clear();
  record.preview = record.preview && Exists(CopyFile(folder_ / kPreviews, record.thumbnail));
  return !record.thumbnail.empty() && (record.preview || IsShownByBrowsers(path));
}

bool SmallCopies::Make(const std::string& path, PictureRecord& record) const {
  record.facts = ReadPictureFacts(path);
  const std::string name = CopyName(path, record);
  const bool made = MakeCopy(path, CopyFile(folder_ / kThumbnails, name), kThumbnailSide);
  record.thumbnail = name;
  if (IsShownByBrowsers(path)) return made;
  MakeCopy(path, CopyFile(folder_ / kPreviews, name), kPreviewSide);
  record.preview = true;
  return made;
}

void SmallCopies::RemoveOthers(const std::set<std::string>& thumbnails, const std::set<std::string>& previews) const {
  RemoveOthersIn(folder_ / kThumbnails, thumbnails);
  RemoveOthersIn(folder_ / kPreviews, previews);
}

}  // namespace catalogcore::app
