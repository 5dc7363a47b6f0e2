// One catalogue, open: the library's calls, with the texts, the checks and the files that the command adds to them.
//
// A changing command takes the catalogue's lock before it opens it. One catalogue a process, one thread.
#ifndef CATALOGCORE_APP_CATALOG_H_
#define CATALOGCORE_APP_CATALOG_H_

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

#include "catalogcore.h"

namespace catalogcore::app {

struct CatalogRecord;

// A catalogue that cannot be read or written. what() says which file, and what to do.
class CatalogError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Why an image cannot be added whose path the library takes for another's.
inline constexpr char kCaseTwin[] = "its name differs from a catalogued one in letter case alone";

struct ImageEntry {
  std::string path;
  std::int32_t index = 0;
  std::uint8_t attribute = 0;
  bool isMissing = false;  // its file is not there now
};

struct IndexEntry {
  std::int32_t number = 0;
  std::string name;
  std::uint8_t attribute = 0;
};

// What loading found of a file.
struct FileState {
  std::filesystem::path file;
  IDXSTATUS status = IDX_OK;  // of the library's call
  std::string problem;        // why the file cannot be used; empty if it can
  std::size_t lost = 0;       // records that the catalogue does not take, which a write would forget
};

// The library without a catalogue, for scene detection.
class Library {
 public:
  // Throws CatalogError.
  Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() { IDXUninitialize(); }
};

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

  // The images of an index (IDX_ROOT: all) and of what is below it, if they lie in the folder (empty: any) or below it.
  // `visit` must not change the catalogue.
  void ForEachImage(std::int32_t index, const std::string& folder,
                    const std::function<void(const ImageEntry&)>& visit) const;
  std::optional<ImageEntry> FindImage(const std::string& path);

  // All indexes but the root, parents before children.
  std::vector<IndexEntry> Indexes() const;

  // The library's calls. A path must be one that Contains() knows, but for AddImage.
  IDXSTATUS AddImage(const std::string& path, std::int32_t index, std::uint8_t attribute = 0);
  IDXSTATUS MoveImage(const std::string& path, std::int32_t index, bool isForced);
  IDXSTATUS SetImageAttribute(const std::string& path, std::uint8_t attribute);
  IDXSTATUS RemoveImage(const std::string& path, bool isForced);
  IDXSTATUS AddIndex(std::int32_t parent, const std::string& name, std::uint8_t attribute, std::int32_t& number);
  IDXSTATUS RenameIndex(std::int32_t number, const std::string& name, bool isForced);
  IDXSTATUS SetIndexAttribute(std::int32_t number, std::uint8_t attribute);
  IDXSTATUS RemoveIndex(std::int32_t number, bool isForced);

  // Writes a file. Throws CatalogError; the old file is whole then.
  void SaveIndexes() const;
  void SaveImages() const;

  // Takes the missing images out, and lets the next write forget the records that the catalogue does not take.
  // Returns how many images went.
  std::size_t ForgetMissing();

 private:
  using FileCall = IDXSTATUS (*)(IDXSTR);

  template <typename Restore>
  void Load(FileState& state, CFStringRef key, FileCall load, Restore restore);
  void CheckIndexes(const std::vector<CatalogRecord>& records);
  void RefileImages(const std::vector<CatalogRecord>& records);
  void RefileImage(const std::string& path, std::int32_t index, std::uint8_t attribute);
  void Save(const FileState& state, FileCall write) const;

  Library library_;
  std::filesystem::path folder_;
  FileState indexFile_;
  FileState imageFile_;
  std::size_t displaced_ = 0;
  std::unordered_set<std::string> missing_;
  std::optional<std::unordered_set<std::string>> paths_;  // of all images, once they were asked for
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_CATALOG_H_
