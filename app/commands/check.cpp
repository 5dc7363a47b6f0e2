// catalogcore check: the state of the catalogue files, and the missing images.
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands/commands.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

struct CheckOptions {
  bool isForgetting = false;
  bool isJson = false;
};

std::string StateWords(const FileState& state) {
  if (!state.problem.empty()) return state.problem;
  if (state.lost > 0) return Counted(state.lost, "record") + " that the library rejects";
  return FileStatusText(state.status);
}

nlohmann::ordered_json StateJson(const FileState& state) {
  return {{"file", state.file.string()}, {"code", state.status}, {"lost", state.lost}, {"status", StateWords(state)}};
}

void Report(Session& session, const StoredCatalog& catalog, bool isJson) {
  std::vector<std::string> missing;
  std::size_t images = 0;
  catalog.ForEachImage({}, [&](const Image& image) {
    ++images;
    if (catalog.IsMissing(image.path)) missing.push_back(image.path);
  });
  const std::ptrdiff_t indexes = std::ranges::distance(catalog.Calls().Indexes().value());
  for (const FileState* state : {&catalog.IndexFile(), &catalog.ImageFile()}) {
    if (!state->problem.empty()) session.status = kCatalogFailed;
    if (state->lost > 0 && session.status == kDone) session.status = kSomeSkipped;
  }
  if ((!missing.empty() || catalog.Displaced() > 0) && session.status == kDone) session.status = kSomeSkipped;
  if (isJson) {
    return PrintJsonLine({{"indexFile", StateJson(catalog.IndexFile())},
                          {"imageFile", StateJson(catalog.ImageFile())},
                          {"indexes", indexes},
                          {"images", images},
                          {"displaced", catalog.Displaced()},
                          {"missing", missing}});
  }
  for (const FileState* state : {&catalog.IndexFile(), &catalog.ImageFile()}) {
    std::printf("%s: %s\n", ForOutput(state->file.string()).c_str(), ForOutput(StateWords(*state)).c_str());
  }
  std::printf("%td indexes, %s, %s missing\n", indexes, Counted(images, "image").c_str(),
              Grouped(missing.size()).c_str());
  if (catalog.Displaced() > 0) {
    std::printf("%s in \"Other\" because the index is missing\n", Counted(catalog.Displaced(), "image").c_str());
  }
  for (const std::string& path : missing) std::printf("  missing: %s\n", ForOutput(path).c_str());
  if (!missing.empty()) std::puts("Missing images stay in the catalogue; `catalogcore check --forget` drops them.");
}

void Forget(Session& session, StoredCatalog& catalog, bool isJson) {
  catalog.RequireReadable();
  const std::size_t records = catalog.IndexFile().lost + catalog.ImageFile().lost;
  const bool isIndexFileChanged = catalog.IndexFile().lost > 0;
  const std::size_t images = catalog.ForgetMissing();
  if (images > 0 || records > 0) catalog.SaveImages();
  if (isIndexFileChanged) catalog.SaveIndexes();
  Report(session, catalog, isJson);
  if (!isJson) std::printf("Forgot %s and %s.\n", Counted(images, "image").c_str(), Counted(records, "record").c_str());
}

}  // namespace

void AddCheck(CLI::App& app, Session& session) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* const command = app.add_subcommand("check", "Verify the catalogue and list missing files");
  command->add_flag("--forget", options->isForgetting, "Drop missing images and invalid records");
  command->add_flag("--json", options->isJson, "Print one JSON object");
  command->footer(
      "Images whose file is missing stay in the catalogue until --forget: a drive may only be unplugged.\n"
      "Exits with 1 if an image, an index or a record is missing or invalid, 3 if a catalogue file cannot be read.\n\n"
      "Example:\n  catalogcore check");
  command->callback([options, &session] {
    if (options->isForgetting) {
      return ChangeUnchecked(session, "check",
                             [&](StoredCatalog& catalog) { Forget(session, catalog, options->isJson); });
    }
    const StoredCatalog catalog(session.catalogFolder);
    Report(session, catalog, options->isJson);
  });
}

}  // namespace catalogcore::app
