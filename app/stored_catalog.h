// The catalogue of a folder: the library with the records of the folder's two files loaded, and the checks that keep a
// change from losing records.
//
// A process has at most one, and uses it on one thread. A command that changes the catalogue holds its lock
// (catalog_lock.h) from before this opens until after the last write.
#ifndef CATALOGCORE_APP_STORED_CATALOG_H_
#define CATALOGCORE_APP_STORED_CATALOG_H_

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "app/library.h"
#include "catalogcore.hpp"

namespace catalogcore {
struct PayloadRecord;
}

namespace catalogcore::app {

// Why an image cannot be added: the library treats its path and a catalogued one as the same.
inline constexpr char kCaseTwin[] = "its name differs from a catalogued one only in letter case";

// The state of a catalogue file after loading.
struct FileState {
  std::filesystem::path file;
  Status status = Status::kOk;  // of the library's call
  std::string problem;          // why the file cannot be used; empty if it can
  std::size_t lost = 0;         // records that the library rejects: writing the file would lose them
};

// The result of a call that loads or writes a file, for messages.
std::string FileStatusText(Status status);

class StoredCatalog {
 public:
  // Loads the files of the folder; a missing folder is an empty catalogue. Files that cannot be used are reported by
  // RequireReadable() and RequireWhole(). The library drops images whose file is missing; they are added again here.
  // Throws CatalogError when the library cannot be opened.
  explicit StoredCatalog(const std::filesystem::path& folder);

  const std::filesystem::path& Folder() const { return folder_; }
  const FileState& IndexFile() const { return indexFile_; }
  const FileState& ImageFile() const { return imageFile_; }

  // The number of images that were moved to "Other" because their index is missing.
  std::size_t Displaced() const { return displaced_; }

  // Throws CatalogError if one of the two files could not be read.
  void RequireReadable() const;

  // As RequireReadable(), and throws CatalogError if writing a file would lose records.
  void RequireWhole() const;

  // Why the catalogue cannot hold an image of this path; empty if it can.
  std::string WhyNotHeld(const std::string& path);

  // Whether the catalogue has exactly this path. (The library finds some paths in any letter case.)
  bool Contains(const std::string& path);

  // Whether the file of a catalogued image was missing when the catalogue was loaded.
  bool IsMissing(const std::string& path) const { return missing_.count(path) != 0; }
  std::size_t MissingCount() const { return missing_.size(); }

  // The library. Add and remove images through this class only, which keeps a set of their paths.
  const Catalog& Calls() const { return calls_; }
  Catalog& Calls() { return calls_; }

  // Calls `visit` for each image that matches the query. `visit` must not change the catalogue. Throws Error.
  template <typename Visit>
  void ForEachImage(const ImageQuery& query, Visit visit) const {
    for (const Image& image : calls_.Images(query).value()) {
      if (image.isText) visit(image);
    }
  }
  std::optional<Image> FindImage(const std::string& path);

  // The library's calls. RemoveImage REQUIRES Contains(path).
  Result<void> AddImage(const std::string& path, IndexNumber index, Attributes attributes = Attributes::kNone);
  Result<void> RemoveImage(const std::string& path, Options options);
  Result<void> RemoveIndex(IndexNumber number, Options options);

  // Writes a file. On failure throws CatalogError; the old file is unchanged then.
  void SaveIndexes() const;
  void SaveImages() const;

  // Removes the missing images and returns their number. The next write drops the records that the library rejects.
  std::size_t ForgetMissing();

 private:
  template <typename Call, typename Restore>
  void Load(FileState& state, CFStringRef key, Call load, Restore restore);
  void CheckIndexes(const std::vector<PayloadRecord>& records);
  void RefileImages(const std::vector<PayloadRecord>& records);
  void RefileImage(const std::string& path, std::int32_t index, std::uint8_t attribute);
  void Save(const FileState& state, Result<void> (Catalog::*write)(std::string_view) const) const;

  Catalog calls_ = OpenLibrary();
  std::filesystem::path folder_;
  FileState indexFile_;
  FileState imageFile_;
  std::size_t displaced_ = 0;
  std::unordered_set<std::string> missing_;
  std::optional<std::unordered_set<std::string>> paths_;  // of all images; set on first use
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_STORED_CATALOG_H_
