#include "app/session.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "app/catalog_lock.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

std::atomic<bool> isInterrupted{false};
std::string noticeLine;  // read by the signal handler; constant once signals are caught
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only use lock-free atomics");

// Calls only async-signal-safe functions.
void HandleInterrupt(int) {
  const int error = errno;
  if (!isInterrupted.exchange(true)) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, noticeLine.data(), noticeLine.size());
  }
  errno = error;
}

void ReportDisplaced(Session& session, const StoredCatalog& catalog) {
  const std::size_t count = catalog.Displaced();
  if (count == 0) return;
  session.progress.Say(Counted(count, "image") + (count == 1 ? " is" : " are") +
                       " now in \"Other\": the index is missing");
}

}  // namespace

std::string DefaultCatalogFolder() {
  const char* const data = std::getenv("XDG_DATA_HOME");
  if (data && *data == '/') return std::string(data) + "/catalogcore";
  const char* const home = std::getenv("HOME");
  return home && *home ? std::string(home) + "/.local/share/catalogcore" : "";
}

StoredCatalog& OpenForReading(Session& session, std::optional<StoredCatalog>& catalog) {
  catalog.emplace(session.catalogFolder);
  catalog->RequireReadable();
  ReportDisplaced(session, *catalog);
  return *catalog;
}

void ChangeUnchecked(Session& session, const std::string& command, const std::function<void(StoredCatalog&)>& change) {
  const auto waiting = [&session](const std::string& holder) { session.progress.Say(holder + "; waiting for it"); };
  const CatalogLock lock(session.catalogFolder, command, session.waits ? waiting : CatalogLock::Waiting());
  StoredCatalog catalog(session.catalogFolder);
  ReportDisplaced(session, catalog);
  change(catalog);
}

void Change(Session& session, const std::string& command, const std::function<void(StoredCatalog&)>& change) {
  ChangeUnchecked(session, command, [&change](StoredCatalog& catalog) {
    catalog.RequireWhole();
    change(catalog);
  });
}

void PrintJsonLine(const nlohmann::ordered_json& value) { std::puts(JsonText(value).c_str()); }

const std::atomic<bool>& CatchInterrupts(const std::string& notice) {
  const bool isOnTerminal = isatty(STDERR_FILENO) != 0;
  noticeLine = (isOnTerminal ? "\r\x1B[Kcatalogcore: " : "catalogcore: ") + notice + '\n';
  struct sigaction action {};
  action.sa_handler = HandleInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN)
      sigaction(signal, &action, nullptr);  // ignored under nohup and in a background job
  }
  return isInterrupted;
}

}  // namespace catalogcore::app
