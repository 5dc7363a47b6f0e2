// A folder that the program writes into, by descriptor: files are created, replaced and removed in this folder even
// when its path changes meanwhile. Links below the folder are never followed. Names are those of single entries,
// without a "/".
#ifndef CATALOGCORE_APP_FOLDER_H_
#define CATALOGCORE_APP_FOLDER_H_

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/regular_file.h"

namespace catalogcore::app {

// Who may read a file besides its owner. A file that is made from another file is not more readable than that file.
class Readers {
 public:
  Readers() = default;  // everybody
  explicit Readers(const struct stat& status) : mode_(status.st_mode), group_(status.st_gid) {}

  // The widest permissions of a new file that belongs to `group`.
  mode_t Limit(gid_t group) const;

 private:
  mode_t mode_ = 0666;
  std::optional<gid_t> group_;
};

class Folder {
 public:
  // Creates the folder and its parents if missing. Links in the path are followed, since a person named the path.
  // Throws std::runtime_error.
  explicit Folder(const std::filesystem::path& path);

  // The folder of that name in this folder, created if missing. Throws std::runtime_error, also when the name is a
  // link.
  Folder Inner(const std::string& name) const;

  // The folder of that name in this folder. Empty if it is missing, a link, or not a folder.
  std::optional<Folder> FindInner(const std::string& name) const;

  const std::filesystem::path& Path() const { return path_; }
  int Descriptor() const { return descriptor_.Get(); }

  // Throws std::runtime_error.
  std::vector<std::string> Names() const;

  // The status of the regular file of that name. Empty if it is missing, a link, or not a regular file.
  std::optional<struct stat> FindFile(const std::string& name) const;

  // Writes the content to a temporary file in the folder and renames the temporary file to `name`, so that readers see
  // the old file or the new file, each whole. A link of that name is replaced. The new file has the permissions that
  // both the umask and the readers allow. Nothing is flushed to the disk. Throws std::runtime_error, which names the
  // file.
  void Replace(const std::string& name, std::string_view content, const Readers& readers) const;

  // Removes the permissions of a regular file that the readers do not allow.
  void Restrict(const std::string& name, const Readers& readers) const;

  // Removes a file or a link. Errors are ignored.
  void Remove(const std::string& name) const;

  // Removes the temporary files of interrupted writers.
  void RemoveLeftovers() const;

  // Whether a temporary file of this class may have the name.
  static bool IsTemporary(std::string_view name);

 private:
  Folder(FileDescriptor descriptor, std::filesystem::path path);

  [[noreturn]] void Fail(const std::string& verb, const std::string& name, int code) const;

  std::filesystem::path path_;  // for messages
  FileDescriptor descriptor_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_FOLDER_H_
