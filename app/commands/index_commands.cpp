// catalogcore index: adds, renames, removes and protects indexes.
#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/index_tree.h"
#include "app/library.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

struct IndexOptions {
  std::string index;  // "add": the parent
  std::string name;
  ProtectionOptions protection;
  bool isForced = false;
};

// The catalogue files cannot hold other names.
void RequireName(const std::string& name) {
  if (name.empty() || name.find('\n') != std::string::npos || !IsText(name)) {
    throw UsageError("the name of an index must be valid UTF-8, not empty, and without line feeds");
  }
}

void RequireWritten(Attributes attributes) {
  if (attributes != kAllProtections) return;
  throw UsageError(
      "an index with all three protections counts as a preset, which the catalogue file leaves out; omit one "
      "protection");
}

// The library creates the presets at every start, so a changed preset would not last.
const IndexNode& ResolveAdded(const IndexTree& tree, const std::string& text) {
  const IndexNode& node = tree.Resolve(text);
  if (FindPreset(node.entry.number)) throw UsageError("\"" + node.path + "\" is a preset and cannot be changed");
  return node;
}

void Require(Status status, const std::string& what) {
  if (status == Status::kProtected) throw UsageError(what + ": it is protected (--force overrides the protection)");
  if (status == Status::kParam) throw UsageError(what + ": the tree of indexes has at most four levels");
  if (status != Status::kOk) throw UsageError(what + ": " + Message(status));
}

void Add(StoredCatalog& catalog, const IndexOptions& options) {
  RequireName(options.name);
  const Attributes attributes = options.protection.Applied(Attributes::kNone);
  RequireWritten(attributes);
  const bool isTop = options.index == "." || options.index == "/";
  const std::int32_t parent = isTop ? kRoot : IndexTree(catalog).Resolve(options.index).entry.number;
  const Result<IndexNumber> number = catalog.Calls().AddIndex(parent, options.name, attributes);
  Require(number.error(), "cannot add \"" + options.name + "\"");
  catalog.SaveIndexes();
  std::printf("%d\n", *number);
}

void Rename(StoredCatalog& catalog, const IndexOptions& options) {
  RequireName(options.name);
  const IndexTree tree(catalog);
  const IndexNode& node = ResolveAdded(tree, options.index);
  for (const IndexNode& other : tree.Nodes()) {
    if (other.parent == node.parent && &other != &node && other.entry.name == options.name) {
      Require(Status::kIndexExists, "cannot rename \"" + node.path + "\"");
    }
  }
  Require(catalog.Calls().ChangeIndex(node.entry.number, {.name = options.name}, ForcedIf(options.isForced)).error(),
          "cannot rename \"" + node.path + "\"");
  catalog.SaveIndexes();
}

void Remove(StoredCatalog& catalog, const IndexOptions& options) {
  const IndexTree tree(catalog);
  const IndexNode& node = ResolveAdded(tree, options.index);
  // Removing an index removes its images, so an index with images needs --force.
  if (node.images > 0 && !options.isForced) {
    throw UsageError("cannot remove \"" + node.path + "\": " + Counted(node.images, "image") +
                     " would be removed from the catalogue with it (move them with `catalogcore mv`, or use --force)");
  }
  Require(catalog.RemoveIndex(node.entry.number, ForcedIf(options.isForced)).error(),
          "cannot remove \"" + node.path + "\"");
  if (node.images > 0) catalog.SaveImages();  // first: a file must not hold images of a removed index
  catalog.SaveIndexes();
}

void Protect(StoredCatalog& catalog, const IndexOptions& options) {
  options.protection.RequireAny();
  const IndexTree tree(catalog);
  const IndexNode& node = ResolveAdded(tree, options.index);
  const Attributes attributes = options.protection.Applied(node.entry.attributes);
  RequireWritten(attributes);
  Require(catalog.Calls().ChangeIndex(node.entry.number, {.attributes = attributes}).error(),
          "cannot protect \"" + node.path + "\"");
  catalog.SaveIndexes();
}

CLI::App* AddChange(CLI::App& index, Session& session, const std::shared_ptr<IndexOptions>& options,
                    const std::string& name, const std::string& description,
                    void (*change)(StoredCatalog&, const IndexOptions&)) {
  CLI::App* const command = index.add_subcommand(name, description);
  command->callback([options, &session, name, change] {
    Change(session, "index " + name, [&](StoredCatalog& catalog) { change(catalog, *options); });
  });
  return command;
}

}  // namespace

void AddIndexCommands(CLI::App& app, Session& session) {
  const auto options = std::make_shared<IndexOptions>();
  CLI::App* const index = app.add_subcommand("index", "Add, rename, remove or protect an index");
  index->require_subcommand(1);
  index->footer(
      "`catalogcore index COMMAND --help` describes a command.\n\n"
      "Example:\n  catalogcore index add Photographs Holiday");
  const char* const anIndex = "Number, path or name of an index";

  CLI::App* const add =
      AddChange(*index, session, options, "add", "Add an index below another and print its number", Add);
  add->add_option("PARENT", options->index, "Number, path or name of the parent; .: the root")
      ->type_name("")
      ->required();
  add->add_option("NAME", options->name, "Name of the new index")->type_name("")->required();
  AddProtection(*add, options->protection, true);
  add->footer("Examples:\n  catalogcore index add Photographs Holiday\n  catalogcore index add . Work");

  CLI::App* const rename = AddChange(*index, session, options, "rename", "Rename an index", Rename);
  rename->add_option("INDEX", options->index, anIndex)->type_name("")->required();
  rename->add_option("NAME", options->name, "The new name")->type_name("")->required();
  rename->add_flag("--force", options->isForced, "Override the protection");
  rename->footer("Example:\n  catalogcore index rename Holiday \"Summer 2024\"");

  CLI::App* const remove =
      AddChange(*index, session, options, "rm", "Remove an index without indexes below it", Remove);
  remove->add_option("INDEX", options->index, anIndex)->type_name("")->required();
  remove->add_flag("--force", options->isForced, "Override protections, and remove the images of the index");
  remove->footer(
      "--force removes the images of the index from the catalogue; their files are not changed.\n\nExample:\n  "
      "catalogcore index rm 1100000");

  CLI::App* const protect =
      AddChange(*index, session, options, "protect", "Protect an index from being moved, removed or renamed", Protect);
  protect->add_option("INDEX", options->index, anIndex)->type_name("")->required();
  AddProtection(*protect, options->protection, true);
  protect->add_flag("--none", options->protection.none, "First remove all protections");
  protect->footer(
      "Examples:\n  catalogcore index protect Holiday --no-remove\n  catalogcore index protect Holiday --none");
}

}  // namespace catalogcore::app
