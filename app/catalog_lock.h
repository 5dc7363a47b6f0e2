// The lock of a catalogue: one command at a time changes it.
#ifndef CATALOGCORE_APP_CATALOG_LOCK_H_
#define CATALOGCORE_APP_CATALOG_LOCK_H_

#include <filesystem>
#include <functional>
#include <string>

#include "app/regular_file.h"

namespace catalogcore::app {

// Holds the lock of a folder until the end of its lifetime or of the process. Creates the folder if it is missing. The
// file "lock" in the folder names the holder and is never removed. Only its owner can open it, so no other user can keep
// the catalogue locked. Any other file with that name is refused and left unchanged.
class CatalogLock {
 public:
  // Called before the wait for a lock that another command holds, with the holder: "FOLDER is being changed by process
  // 4711 (catalogcore sort)".
  using Waiting = std::function<void(const std::string& holder)>;

  // Throws CatalogError if the folder cannot be used, or if another command holds the lock and `waiting` is empty.
  CatalogLock(const std::filesystem::path& folder, const std::string& command, const Waiting& waiting);

 private:
  FileDescriptor file_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_CATALOG_LOCK_H_
