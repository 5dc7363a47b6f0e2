// One catalogue, open: the library's calls, with the checks and the files that the command adds to them.
//
// A changing command takes the catalogue's lock before it opens it. One catalogue a process, one thread.
#ifndef CATALOGCORE_APP_STORED_CATALOG_H_
#define CATALOGCORE_APP_STORED_CATALOG_H_

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

#include "catalogcore.hpp"

namespace catalogcore::app {

struct CatalogRecord;

// A catalogue that cannot be read or written. what() says which file, and what to do.
class CatalogError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Why an image cannot be added whose path the library takes for another's.
inline constexpr char kCaseTwin[] = "its name differs from a catalogued one in letter case alone";

// What loading found of a file.
struct FileState {
  std::filesystem::path file;
  Status status = Status::kOk;  // of the library's call
  std::string problem;          // why the file cannot be used; empty if it can
  std::size_t lost = 0;         // records that the catalogue does not take, which a write would forget
};

// What came of a call that loads or writes a file, in words for people.
std::string FileStatusWords(Status status);

// The library with an empty catalogue, the presets named as people know them. Throws CatalogError.
catalogcore::Catalog OpenLibrary();

class Catalog {
 public:
  // Loads what the folder holds; a folder that is not there is an empty catalogue. Files that cannot be used are left
  // to RequireReadable() and RequireWhole(). Images whose file is gone, which the library drops, are filed again.
  // Throws CatalogError when the library does not start.
  explicit Catalog(const std::filesystem::path& folder);

  const std::filesystem::path& Folder() const { return folder_; }
  const FileState& IndexFile() const { return indexFile_; }
  const FileState& ImageFile() const { return imageFile_; }

  // How many images are in "Other" because the index that they were filed under is not there.
  std::size_t Displaced() const { return displaced_; }

  // Throws CatalogError unless both files could be read.
  void RequireReadable() const;

  // And unless all of their records are in the catalogue, so that writing them again loses none.
  void RequireWhole() const;

  // Why the catalogue cannot hold an image of this path beside those it has; empty if it can, or holds it.
  std::string WhyNotHeld(const std::string& path);

  // Whether the catalogue holds this very path; the library takes some paths for the same that differ in letter case.
  bool Contains(const std::string& path);
  bool IsMissing(const std::string& path) const { return missing_.count(path) != 0; }
  std::size_t MissingCount() const { return missing_.size(); }

  // The library's calls, to look and to change what this class does not keep: not to add or remove images.
  const catalogcore::Catalog& Calls() const { return calls_; }
  catalogcore::Catalog& Calls() { return calls_; }

  // Gives the images of the query to `visit`, which must not change the catalogue. Throws Error.
  template <typename Visit>
  void ForEachImage(const ImageQuery& query, Visit visit) const {
    for (const Image& image : calls_.Images(query).value()) {
      if (image.isText) visit(image);
    }
  }
  std::optional<Image> FindImage(const std::string& path);

  // The library's calls. A path must be one that Contains() knows, but for AddImage.
  Result<void> AddImage(const std::string& path, IndexNumber index, Attributes attributes = Attributes::kNone);
  Result<void> RemoveImage(const std::string& path, Options options);
  Result<void> RemoveIndex(IndexNumber number, Options options);

  // Writes a file. Throws CatalogError; the old file is whole then.
  void SaveIndexes() const;
  void SaveImages() const;

  // Takes the missing images out, and lets the next write forget the records that the catalogue does not take.
  // Returns how many images went.
  std::size_t ForgetMissing();

 private:
  template <typename Call, typename Restore>
  void Load(FileState& state, CFStringRef key, Call load, Restore restore);
  void CheckIndexes(const std::vector<CatalogRecord>& records);
  void RefileImages(const std::vector<CatalogRecord>& records);
  void RefileImage(const std::string& path, std::int32_t index, std::uint8_t attribute);
  void Save(const FileState& state, Result<void> (catalogcore::Catalog::*write)(std::string_view) const) const;

  catalogcore::Catalog calls_ = OpenLibrary();
  std::filesystem::path folder_;
  FileState indexFile_;
  FileState imageFile_;
  std::size_t displaced_ = 0;
  std::unordered_set<std::string> missing_;
  std::optional<std::unordered_set<std::string>> paths_;  // of all images, once they were asked for
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_STORED_CATALOG_H_
