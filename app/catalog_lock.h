// One command at a time changes a catalogue.
#ifndef CATALOGCORE_APP_CATALOG_LOCK_H_
#define CATALOGCORE_APP_CATALOG_LOCK_H_

#include <filesystem>
#include <string>

namespace catalogcore::app {

// Holds the lock of a catalogue's folder, which is made if it is not there, until it goes out of scope or the process
// ends, however it ends. The file "lock" in the folder says who holds it, and stays.
class CatalogLock {
 public:
  // Throws CatalogError: who holds the lock (unless it is to be waited for), or why the folder cannot be used.
  CatalogLock(const std::filesystem::path& folder, const std::string& command, bool waits);
  CatalogLock(const CatalogLock&) = delete;
  CatalogLock& operator=(const CatalogLock&) = delete;
  ~CatalogLock();

 private:
  int file_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_CATALOG_LOCK_H_
