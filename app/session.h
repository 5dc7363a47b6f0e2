// What the commands have in common: the catalogue that they work on, how they report, what they exit with.
#ifndef CATALOGCORE_APP_SESSION_H_
#define CATALOGCORE_APP_SESSION_H_

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "app/stored_catalog.h"
#include "app/index_tree.h"
#include "app/progress.h"

namespace catalogcore::app {

enum ExitStatus { kDone = 0, kSomeSkipped = 1, kWrongUse = 2, kCatalogFailed = 3 };

struct Session {
  std::string catalogFolder;
  bool waits = false;  // for the lock of another command
  int status = kDone;
  Progress progress;

  // Names what is passed over, and remembers it for the exit status.
  void Skip(const std::string& message) {
    progress.Say(message);
    status = kSomeSkipped;
  }
};

// The folder of the catalogue if none is named: in $XDG_DATA_HOME, else in ~/.local/share.
std::string DefaultCatalogFolder();

// Opens the catalogue for looking, and says what is odd about it.
Catalog& OpenForReading(Session& session, std::optional<Catalog>& catalog);

// Changes the catalogue under its lock: opens it, refuses if a write would lose anything, and runs the change.
void Change(Session& session, const std::string& command, const std::function<void(Catalog&)>& change);

// The same for a change that decides itself what may be lost.
void ChangeUnchecked(Session& session, const std::string& command, const std::function<void(Catalog&)>& change);

// One line of JSON on standard output; names that are no UTF-8 lose what cannot be shown.
void PrintJsonLine(const nlohmann::ordered_json& value);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_SESSION_H_
