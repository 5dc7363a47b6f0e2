#include "app/session.h"

#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "app/catalog_lock.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

void SayOddities(Session& session, const Catalog& catalog) {
  if (catalog.Displaced() == 0) return;
  session.progress.Say(Counted(catalog.Displaced(), "image") + " of indexes that are not there (any more) " +
                       (catalog.Displaced() == 1 ? "is" : "are") + " now in \"Other\"");
}

}  // namespace

std::string DefaultCatalogFolder() {
  const char* const data = std::getenv("XDG_DATA_HOME");
  if (data && *data == '/') return std::string(data) + "/catalogcore";
  const char* const home = std::getenv("HOME");
  return home && *home ? std::string(home) + "/.local/share/catalogcore" : "";
}

Catalog& OpenForReading(Session& session, std::optional<Catalog>& catalog) {
  catalog.emplace(session.catalogFolder);
  catalog->RequireReadable();
  SayOddities(session, *catalog);
  return *catalog;
}

void ChangeUnchecked(Session& session, const std::string& command, const std::function<void(Catalog&)>& change) {
  const auto waiting = [&session](const std::string& holder) { session.progress.Say(holder + "; waiting for it"); };
  const CatalogLock lock(session.catalogFolder, command, session.waits ? waiting : CatalogLock::Waiting());
  Catalog catalog(session.catalogFolder);
  SayOddities(session, catalog);
  change(catalog);
}

void Change(Session& session, const std::string& command, const std::function<void(Catalog&)>& change) {
  ChangeUnchecked(session, command, [&change](Catalog& catalog) {
    catalog.RequireWhole();
    change(catalog);
  });
}

void PrintJsonLine(const nlohmann::ordered_json& value) { std::puts(JsonText(value).c_str()); }

}  // namespace catalogcore::app
