// A folder that the program writes into, by descriptor: what is made, replaced or removed in it is in it, wherever its
// name leads meanwhile. Links below it are never followed. Names here are those of single entries, without a slash.
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

// Who may read a file besides its owner. A file that is made from another is no more readable than that one.
class Readers {
 public:
  Readers() = default;  // everybody
  explicit Readers(const struct stat& status) : mode_(status.st_mode), group_(status.st_gid) {}

  // The widest permissions of a file of our own that belongs to `group`.
  mode_t Limit(gid_t group) const;

 private:
  mode_t mode_ = 0666;
  std::optional<gid_t> group_;
};

class Folder {
 public:
  // Makes the folder, and those above it, if it is not there. Links in the path are followed: a person has named it.
  // Throws std::runtime_error.
  explicit Folder(const std::filesystem::path& path);

  // The folder of that name in this one, made if it is not there. Throws std::runtime_error, if it is a link, too.
  Folder Inner(const std::string& name) const;

  // The same, without making it. Nothing if it is missing, a link, or not a folder.
  std::optional<Folder> FindInner(const std::string& name) const;

  const std::filesystem::path& Path() const { return path_; }
  int Descriptor() const { return descriptor_.Get(); }

  // Throws std::runtime_error.
  std::vector<std::string> Names() const;

  // The status of the regular file of that name. Nothing if it is missing, a link, or not a regular file.
  std::optional<struct stat> FindFile(const std::string& name) const;

  // Writes the content to a temporary file of a unique name in the folder and renames it to `name`, so that a file of
  // that name is the old or the new one, whole. A link of that name is replaced. The file's permissions are those that
  // the umask and the readers allow. Nothing is flushed to the disk. Throws std::runtime_error, which names the file.
  void Replace(const std::string& name, std::string_view content, const Readers& readers) const;

  // Takes a regular file from those who are not among the readers.
  void Restrict(const std::string& name, const Readers& readers) const;

  // Removes a file or a link; goes on if that cannot be done.
  void Remove(const std::string& name) const;

  // Removes the temporary files that an interrupted writer left.
  void RemoveLeftovers() const;

  // Whether a name is one that a temporary file may have.
  static bool IsTemporary(std::string_view name);

 private:
  Folder(OwnedDescriptor descriptor, std::filesystem::path path);

  [[noreturn]] void Fail(const std::string& verb, const std::string& name, int code) const;
  OwnedDescriptor CreateTemporary(std::string& name) const;

  std::filesystem::path path_;  // for messages
  OwnedDescriptor descriptor_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_FOLDER_H_
