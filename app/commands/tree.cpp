// catalogcore tree: prints the tree of indexes.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "app/commands/commands.h"
#include "app/library.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

std::string ProtectionText(const Index& entry) {
  if (FindPreset(entry.number)) return "preset";
  std::string text;
  for (const std::string& word : Protections(entry.attributes)) text += (text.empty() ? "no " : ", ") + word;
  return text;
}

void PrintText(const StoredCatalog& catalog, const IndexTree& tree) {
  std::size_t width = 0;
  std::size_t images = 0;
  for (const IndexNode& node : tree.Nodes()) {
    width = std::max(width, 2 * node.level + TextWidth(ForOutput(node.entry.name)));
    images += node.images;
  }
  for (const IndexNode& node : tree.Nodes()) {
    const std::string name = std::string(2 * node.level, ' ') + ForOutput(node.entry.name);
    const std::string padding(width - TextWidth(name), ' ');
    const std::string protection = ProtectionText(node.entry);
    std::printf("%s%s  %9d  %9s%s%s\n", name.c_str(), padding.c_str(), node.entry.number, Grouped(node.below).c_str(),
                protection.empty() ? "" : "  ", protection.c_str());
  }
  std::printf("%s", Counted(images, "image").c_str());
  if (catalog.MissingCount() > 0) std::printf(", %s missing", Grouped(catalog.MissingCount()).c_str());
  std::puts("");
}

void PrintJson(const IndexTree& tree) {
  nlohmann::ordered_json nodes = nlohmann::ordered_json::array();
  for (const IndexNode& node : tree.Nodes()) {
    nodes.push_back({{"index", node.entry.number},
                     {"parent", node.parent},
                     {"name", node.entry.name},
                     {"path", node.path},
                     {"images", node.images},
                     {"below", node.below},
                     {"protected", Protections(node.entry.attributes)},
                     {"preset", FindPreset(node.entry.number) != nullptr}});
  }
  PrintJsonLine(nodes);
}

}  // namespace

void AddTree(CLI::App& app, Session& session) {
  const auto isJson = std::make_shared<bool>(false);
  CLI::App* const command = app.add_subcommand("tree", "Show the tree of indexes");
  command->add_flag("--json", *isJson, "Print a JSON list");
  command->footer("The count of an index includes the images of the indexes below it.\n\nExample:\n  catalogcore tree");
  command->callback([isJson, &session] {
    std::optional<StoredCatalog> opened;
    const StoredCatalog& catalog = OpenForReading(session, opened);
    const IndexTree tree(catalog);
    *isJson ? PrintJson(tree) : PrintText(catalog, tree);
  });
}

}  // namespace catalogcore::app
