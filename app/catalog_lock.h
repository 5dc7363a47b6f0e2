// One command at a time changes a catalogue.
#ifndef CATALOGCORE_APP_CATALOG_LOCK_H_
#define CATALOGCORE_APP_CATALOG_LOCK_H_

#include <filesystem>
#include <functional>
#include <string>

#include "app/regular_file.h"

namespace catalogcore::app {

// Holds the lock of a catalogue's folder, which is made if it is not there, until it goes out of scope or the process
// ends, however it ends. The file "lock" in the folder says who holds it, and stays. Nobody else can open it, so nobody
// else can keep the catalogue locked; what stands under its name and is not such a file is refused, and left as it is.
class CatalogLock {
 public:
  // Told who holds the lock before it is waited for: "FOLDER is being changed by process 4711 (catalogcore sort)".
  using Waiting = std::function<void(const std::string& holder)>;

  // Throws CatalogError: who holds the lock (unless there is a `waiting`), or why the folder cannot be used.
  CatalogLock(const std::filesystem::path& folder, const std::string& command, const Waiting& waiting);

 private:
  FileDescriptor file_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_CATALOG_LOCK_H_
