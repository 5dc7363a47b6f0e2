// catalogcore mv, rm, protect: change images of the catalogue, never their files.
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <sstream>
#include <system_error>

#include "app/commands/commands.h"
#include "app/file_finder.h"
#include "app/index_tree.h"

namespace catalogcore::app {
namespace {

struct ImageOptions {
  std::vector<std::string> files;
  std::string listFile;  // of more files; "-": standard input
  bool isNullSeparated = false;
  std::optional<std::string> index;
  ProtectionOptions protection;
  bool isForced = false;
};

// Tries the given path before the resolved one: a folder may have become a link after its images were filed.
std::optional<Image> FindNamed(StoredCatalog& catalog, const std::string& file) {
  std::error_code error;
  const std::optional<Image> image =
      catalog.FindImage(std::filesystem::absolute(file, error).lexically_normal().string());
  return image ? image : catalog.FindImage(CatalogPath(file));
}

std::string ReadAll(const std::string& listFile) {
  const bool isInput = listFile == "-";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(isInput ? nullptr : std::fopen(listFile.c_str(), "re"),
                                                               [](std::FILE* file) { return std::fclose(file); });
  std::FILE* const file = isInput ? stdin : opened.get();
  std::string text;
  std::array<char, 65536> buffer;
  for (std::size_t size = 1; file && size > 0;) {
    size = std::fread(buffer.data(), 1, buffer.size(), file);
    text.append(buffer.data(), size);
  }
  if (file && std::ferror(file) == 0) return text;
  throw UsageError("cannot read " + (isInput ? "standard input" : listFile) + ": " +
                   std::generic_category().message(errno));
}

// Adds the files of the list, and takes the index from the end of the arguments if --to is missing. Reads the list before
// the catalogue is locked: the program that writes it may be slow, or read the catalogue.
void CompleteFiles(ImageOptions& options, bool hasIndex) {
  if (hasIndex && !options.index) {
    if (options.files.empty()) throw UsageError("the index is missing; name it last, or with --to");
    options.index = std::move(options.files.back());
    options.files.pop_back();
  }
  if (options.listFile.empty() && options.isNullSeparated) throw UsageError("--null needs --files-from");
  if (options.listFile.empty() && options.files.empty())
    throw UsageError("no files given; name files, or use --files-from");
  if (options.listFile.empty()) return;
  const std::string list = ReadAll(options.listFile);
  if (!options.isNullSeparated && list.find('\0') != std::string::npos) {
    throw UsageError("the list of files contains null bytes; use --null");
  }
  std::istringstream names(list);
  for (std::string name; std::getline(names, name, options.isNullSeparated ? '\0' : '\n');) {
    if (!name.empty()) options.files.push_back(name);
  }
}

std::string Refusal(const std::string& verb, const std::string& file, Status status) {
  return "cannot " + verb + ' ' + file + ": " + Message(status) +
         (status == Status::kProtected ? " (--force overrides the protection)" : "");
}

// Changes each image and reports those that cannot be changed; writes the file if any image changed.
void ChangeImages(Session& session, StoredCatalog& catalog, const std::vector<std::string>& files,
                  const std::string& verb, const std::function<Result<void>(const Image&)>& change) {
  bool isChanged = false;
  for (const std::string& file : files) {
    const std::optional<Image> image = FindNamed(catalog, file);
    const Status status = image ? change(*image).error() : Status::kNoImage;
    if (status == Status::kMemory) throw CatalogError("out of memory (nothing was changed)");
    if (status == Status::kOk) {
      isChanged = true;
    } else {
      session.Skip(Refusal(verb, file, status));
    }
  }
  if (isChanged) catalog.SaveImages();
}

void Move(Session& session, StoredCatalog& catalog, const ImageOptions& options) {
  const std::int32_t index = IndexTree(catalog).Resolve(options.index.value()).entry.number;
  ChangeImages(session, catalog, options.files, "move", [&](const Image& image) {
    return catalog.Calls().ChangeImage(image.path, {.index = index}, ForcedIf(options.isForced));
  });
}

void Remove(Session& session, StoredCatalog& catalog, const ImageOptions& options) {
  ChangeImages(session, catalog, options.files, "remove",
               [&](const Image& image) { return catalog.RemoveImage(image.path, ForcedIf(options.isForced)); });
}

void Protect(Session& session, StoredCatalog& catalog, const ImageOptions& options) {
  options.protection.RequireAny();
  ChangeImages(session, catalog, options.files, "protect", [&](const Image& image) {
    return catalog.Calls().ChangeImage(image.path, {.attributes = options.protection.Applied(image.attributes)});
  });
}

CLI::App* AddChange(CLI::App& app, Session& session, const std::shared_ptr<ImageOptions>& options,
                    const std::string& name, const std::string& description,
                    void (*change)(Session&, StoredCatalog&, const ImageOptions&)) {
  CLI::App* const command = app.add_subcommand(name, description);
  const bool hasIndex = name == "mv";
  command
      ->add_option(hasIndex ? "FILE... INDEX" : "FILE", options->files,
                   hasIndex ? "Image files, then the index unless --to names it" : "Image files")
      ->type_name("")
      ->expected(0, -1);
  command
      ->add_option("--files-from", options->listFile, "Read more file names from LIST, one a line; -: standard input")
      ->type_name("LIST");
  command->add_flag("-0,--null", options->isNullSeparated, "Names in LIST end with a null byte instead of a line feed");
  command->callback([options, &session, name, hasIndex, change] {
    CompleteFiles(*options, hasIndex);
    Change(session, name, [&](StoredCatalog& catalog) { change(session, catalog, *options); });
  });
  return command;
}

}  // namespace

void AddImageCommands(CLI::App& app, Session& session) {
  const auto options = std::make_shared<ImageOptions>();

  CLI::App* const move = AddChange(app, session, options, "mv", "Move images to another index", Move);
  move->add_option("-t,--to", options->index, "The index; then all arguments are files")->type_name("INDEX");
  move->add_flag("--force", options->isForced, "Override protections");
  move->footer(
      "The files themselves do not move.\n\n"
      "Examples:\n"
      "  catalogcore mv beach.jpg dune.jpg Holiday\n"
      "  find ~/Pictures/2024 -name '*.jpg' -print0 | catalogcore mv --files-from - -0 -t Holiday");

  CLI::App* const remove = AddChange(app, session, options, "rm", "Remove images from the catalogue", Remove);
  remove->add_flag("--force", options->isForced, "Override protections");
  remove->footer("The files themselves are not removed.\n\nExample:\n  catalogcore rm beach.jpg");

  CLI::App* const protect =
      AddChange(app, session, options, "protect", "Protect images from being moved or removed", Protect);
  AddProtection(*protect, options->protection, false);
  protect->add_flag("--none", options->protection.none, "First remove all protections");
  protect->footer(
      "Examples:\n  catalogcore protect contract.tif --no-move --no-remove\n  catalogcore protect contract.tif --none");
}

}  // namespace catalogcore::app
