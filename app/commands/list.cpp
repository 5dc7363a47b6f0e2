// catalogcore ls: lists the images of an index or of a folder.
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands/commands.h"
#include "app/file_finder.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

struct ListOptions {
  std::string index;
  std::string folder;
  bool isJson = false;
};

void List(Session& session, const ListOptions& options) {
  std::optional<StoredCatalog> opened;
  const StoredCatalog& catalog = OpenForReading(session, opened);
  const IndexTree tree(catalog);
  const std::int32_t index = options.index.empty() ? kRoot : tree.Resolve(options.index).entry.number;
  const std::string folder = options.folder.empty() ? "" : CatalogPath(options.folder);
  if (!IsText(folder))
    throw UsageError("the name of the folder is not valid UTF-8; the catalogue cannot hold its images");
  const bool isTerminal = isatty(STDOUT_FILENO) != 0;
  catalog.ForEachImage({.index = index, .folder = folder}, [&](const Image& image) {
    const bool isMissing = catalog.IsMissing(image.path);
    if (!options.isJson) {
      std::printf("%s%s\n", ForOutput(image.path).c_str(), isMissing && isTerminal ? "  (missing)" : "");
      return;
    }
    PrintJsonLine({{"file", image.path},
                   {"index", image.index},
                   {"name", tree.NameOf(image.index)},
                   {"attribute", image.attributes},
                   {"missing", isMissing}});
  });
}

}  // namespace

void AddList(CLI::App& app, Session& session) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App* const command = app.add_subcommand("ls", "List the images of an index or of a folder");
  command->add_option("INDEX", options->index, "Number, path or name of an index; without it, list all images")
      ->type_name("");
  command->add_option("--folder", options->folder, "Only images in this folder and below it")->type_name("DIR");
  command->add_flag("--json", options->isJson, "Print one JSON object for each image");
  command->footer(
      "Lists the images of the indexes below too.\n\n"
      "Examples:\n"
      "  catalogcore ls People\n"
      "  catalogcore ls 2030000 --folder ~/Scans\n"
      "  catalogcore ls Documents/Pages --json");
  command->callback([options, &session] { List(session, *options); });
}

}  // namespace catalogcore::app
