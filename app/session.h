// What all commands share: the catalogue that they work on, how they report, how a signal stops them, and the exit status.
#ifndef CATALOGCORE_APP_SESSION_H_
#define CATALOGCORE_APP_SESSION_H_

#include <atomic>
#include <csignal>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "app/progress.h"
#include "app/stored_catalog.h"

namespace catalogcore::app {

enum ExitStatus {
  kDone = 0,
  kSomeSkipped = 1,
  kWrongUse = 2,
  kCatalogFailed = 3,
  kInterrupted = 130,  // 128 + SIGINT, the status that shells use
};

// A command line or an argument that is wrong. what() says what is wrong and how to correct it.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Session {
  std::string catalogFolder;
  bool waits = false;  // for the lock of another command
  int status = kDone;
  Progress progress;

  // Reports a file that is skipped, and sets the exit status.
  void Skip(const std::string& message) {
    progress.Say(message);
    status = kSomeSkipped;
  }
};

// The folder of the catalogue without --catalog: below $XDG_DATA_HOME, or else below ~/.local/share.
std::string DefaultCatalogFolder();

// Opens the catalogue for reading. Throws CatalogError if a file cannot be read.
StoredCatalog& OpenForReading(Session& session, std::optional<StoredCatalog>& catalog);

// Locks and opens the catalogue, and runs `change`. Throws CatalogError before `change` if writing a file would lose
// records.
void Change(Session& session, const std::string& command, const std::function<void(StoredCatalog&)>& change);

// As Change(), for a change that checks the files itself.
void ChangeUnchecked(Session& session, const std::string& command, const std::function<void(StoredCatalog&)>& change);

// Prints one line of JSON to standard output. Bytes that are not UTF-8 become U+FFFD.
void PrintJsonLine(const nlohmann::ordered_json& value);

// From now on the first SIGINT, SIGTERM or SIGHUP sets the flag that is returned, and prints "catalogcore: NOTICE" to
// standard error at once; the second ends the process. Signals that the process ignores stay ignored. Call it once.
const std::atomic<bool>& CatchInterrupts(const std::string& notice);

// Ignores SIGPIPE during its lifetime: a closed output does not end the process.
class IgnoredPipes {
 public:
  IgnoredPipes() : before_(std::signal(SIGPIPE, SIG_IGN)) {}
  IgnoredPipes(const IgnoredPipes&) = delete;
  IgnoredPipes& operator=(const IgnoredPipes&) = delete;
  ~IgnoredPipes() { std::signal(SIGPIPE, before_); }

 private:
  void (*before_)(int);
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_SESSION_H_
