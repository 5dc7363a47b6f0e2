// catalogcore index: adding, renaming, removing and protecting indexes.
#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/library.h"
#include "app/protection.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

struct IndexOptions {
  std::string index;  // of "add", the parent
  std::string name;
  ProtectionOptions protection;
  bool isForced = false;
};

// The files have room for every name but these.
void RequireName(const std::string& name) {
  if (name.empty() || name.find('\n') != std::string::npos || !IsText(name)) {
    throw UsageError("the name of an index is not empty, has no line feed, and is valid UTF-8");
  }
}

void RequireWritten(Attributes attributes) {
  if (attributes != kAllProtections) return;
  throw UsageError(
      "an index that may not be moved, removed or renamed is not written to the catalogue's file, as the presets are "
      "not, and would be gone the next time; leave one protection out");
}

// Presets are made anew at every start, so a change of one would not stay.
const IndexNode& ResolveAdded(const IndexTree& tree, const std::string& text) {
  const IndexNode& node = tree.Resolve(text);
  if (FindPreset(node.entry.number)) throw UsageError("\"" + node.path + "\" is a preset, and stays as it is");
  return node;
}

void Require(Status status, const std::string& what) {
  if (status == Status::kProtected) throw UsageError(what + ": it is protected (--force overrides the protection)");
  if (status == Status::kParam) throw UsageError(what + ": indexes are at most four levels deep");
  if (status != Status::kOk) throw UsageError(what + ": " + Message(status));
}

void Add(Catalog& catalog, const IndexOptions& options) {
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

void Rename(Catalog& catalog, const IndexOptions& options) {
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

void Remove(Catalog& catalog, const IndexOptions& options) {
  const IndexTree tree(catalog);
  const IndexNode& node = ResolveAdded(tree, options.index);
  // An index that still holds images asks for --force: they would leave the catalogue with it.
  if (node.images > 0 && !options.isForced) {
    throw UsageError("cannot remove \"" + node.path + "\": " + Counted(node.images, "image") +
                     " would leave the catalogue with it (move them with `catalogcore mv`, or use --force)");
  }
  Require(catalog.RemoveIndex(node.entry.number, ForcedIf(options.isForced)).error(),
          "cannot remove \"" + node.path + "\"");
  if (node.images > 0) catalog.SaveImages();  // first, so that no image is ever left without its index
  catalog.SaveIndexes();
}

void Protect(Catalog& catalog, const IndexOptions& options) {
  options.protection.RequireAny();
  const IndexTree tree(catalog);
  const IndexNode& node = ResolveAdded(tree, options.index);
  const Attributes attributes = options.protection.Applied(node.entry.attributes);
  RequireWritten(attributes);
  Require(catalog.Calls().ChangeIndex(node.entry.number, {.attributes = attributes}).error(),
          "cannot protect \"" + node.path + "\"");
  catalog.SaveIndexes();
}

using IndexChange = void (*)(Catalog&, const IndexOptions&);

CLI::App* AddChange(CLI::App& index, Session& session, const std::shared_ptr<IndexOptions>& options,
                    const std::string& name, const std::string& description, IndexChange change) {
  CLI::App* const command = index.add_subcommand(name, description);
  command->callback([options, &session, name, change] {
    Change(session, "index " + name, [&](Catalog& catalog) { change(catalog, *options); });
  });
  return command;
}

}  // namespace

void AddIndexCommands(CLI::App& app, Session& session) {
  const auto options = std::make_shared<IndexOptions>();
  CLI::App* const index = app.add_subcommand("index", "Add, rename, remove or protect an index");
  index->require_subcommand(1);
  index->footer(
      "`catalogcore index COMMAND --help` tells about each.\n\n"
      "Example:\n  catalogcore index add Photographs Holiday");
  const char* const anIndex = "Number, path or name of an index";

  CLI::App* const add =
      AddChange(*index, session, options, "add", "Add an index below another; prints its number", Add);
  add->add_option("PARENT", options->index, "Number, path or name of the index above; . for the top")
      ->type_name("")
      ->required();
  add->add_option("NAME", options->name, "What it is called")->type_name("")->required();
  AddProtection(*add, options->protection, true);
  add->footer("Examples:\n  catalogcore index add Photographs Holiday\n  catalogcore index add . Work");

  CLI::App* const rename = AddChange(*index, session, options, "rename", "Give an index another name", Rename);
  rename->add_option("INDEX", options->index, anIndex)->type_name("")->required();
  rename->add_option("NAME", options->name, "What it is to be called")->type_name("")->required();
  rename->add_flag("--force", options->isForced, "Even if it is protected");
  rename->footer("Example:\n  catalogcore index rename Holiday \"Summer 2024\"");

  CLI::App* const remove = AddChange(*index, session, options, "rm", "Remove an index that holds no others", Remove);
  remove->add_option("INDEX", options->index, anIndex)->type_name("")->required();
  remove->add_flag("--force", options->isForced, "Even if it or an image in it is protected, or it holds images");
  remove->footer(
      "Its images leave the catalogue; their files stay as they are.\n\nExample:\n  catalogcore index rm 1100000");

  CLI::App* const protect =
      AddChange(*index, session, options, "protect", "Say what may not be done to an index", Protect);
  protect->add_option("INDEX", options->index, anIndex)->type_name("")->required();
  AddProtection(*protect, options->protection, true);
  protect->add_flag("--none", options->protection.none, "Take all protections away first");
  protect->footer(
      "Examples:\n  catalogcore index protect Holiday --no-remove\n  catalogcore index protect Holiday --none");
}

}  // namespace catalogcore::app
