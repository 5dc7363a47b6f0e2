// catalogcore mv, rm, protect: changing images of the catalogue. Their files are never touched.
#include <memory>

#include "app/commands/commands.h"
#include "app/file_finder.h"
#include "app/protection.h"

namespace catalogcore::app {
namespace {

struct ImageOptions {
  std::vector<std::string> files;
  ProtectionOptions protection;
  bool isForced = false;
};

// By the name as it is given first: since its images were filed, a folder may have become a link.
std::optional<Image> FindNamed(Catalog& catalog, const std::string& file) {
  std::error_code error;
  const std::optional<Image> image =
      catalog.FindImage(std::filesystem::absolute(file, error).lexically_normal().string());
  return image ? image : catalog.FindImage(CatalogPath(file));
}

// Changes image after image, names those that cannot be changed, and writes the others.
void ChangeImages(Session& session, Catalog& catalog, const std::vector<std::string>& files, const std::string& verb,
                  const std::function<Result<void>(const Image&)>& change) {
  bool isChanged = false;
  for (const std::string& file : files) {
    const std::optional<Image> image = FindNamed(catalog, file);
    const Status status = image ? change(*image).error() : Status::kNoImage;
    if (status == Status::kMemory) throw CatalogError("out of memory (nothing was changed)");
    if (status == Status::kOk) {
      isChanged = true;
    } else {
      session.Skip("cannot " + verb + ' ' + file + ": " + Message(status) +
                   (status == Status::kProtected ? " (--force does it all the same)" : ""));
    }
  }
  if (isChanged) catalog.SaveImages();
}

void Move(Session& session, Catalog& catalog, const ImageOptions& options) {
  const std::vector<std::string> files(options.files.begin(), options.files.end() - 1);
  const std::int32_t index = IndexTree(catalog).Resolve(options.files.back()).entry.number;
  ChangeImages(session, catalog, files, "move", [&](const Image& image) {
    return catalog.Calls().ChangeImage(image.path, {.index = index}, ForcedIf(options.isForced));
  });
}

void Remove(Session& session, Catalog& catalog, const ImageOptions& options) {
  ChangeImages(session, catalog, options.files, "remove",
               [&](const Image& image) { return catalog.RemoveImage(image.path, ForcedIf(options.isForced)); });
}

void Protect(Session& session, Catalog& catalog, const ImageOptions& options) {
  options.protection.RequireAny();
  ChangeImages(session, catalog, options.files, "protect", [&](const Image& image) {
    return catalog.Calls().ChangeImage(image.path, {.attributes = options.protection.Applied(image.attributes)});
  });
}

}  // namespace

void AddImageCommands(CLI::App& app, Session& session) {
  const auto options = std::make_shared<ImageOptions>();

  CLI::App* const move = app.add_subcommand("mv", "Move images to another index");
  move->add_option("FILE... INDEX", options->files, "Image files, and at the end the index")
      ->type_name("")
      ->required()
      ->expected(2, -1);
  move->add_flag("--force", options->isForced, "Even if they are protected");
  move->footer("The files stay where they are.\n\nExample:\n  catalogcore mv beach.jpg dune.jpg Holiday");
  move->callback(
      [options, &session] { Change(session, "mv", [&](Catalog& catalog) { Move(session, catalog, *options); }); });

  CLI::App* const remove = app.add_subcommand("rm", "Take images out of the catalogue");
  remove->add_option("FILE", options->files, "Image files")->type_name("")->required();
  remove->add_flag("--force", options->isForced, "Even if they are protected");
  remove->footer("The files stay where they are.\n\nExample:\n  catalogcore rm beach.jpg");
  remove->callback(
      [options, &session] { Change(session, "rm", [&](Catalog& catalog) { Remove(session, catalog, *options); }); });

  CLI::App* const protect = app.add_subcommand("protect", "Say what may not be done to images");
  protect->add_option("FILE", options->files, "Image files")->type_name("")->required();
  AddProtection(*protect, options->protection, false);
  protect->add_flag("--none", options->protection.none, "Take all protections away first");
  protect->footer(
      "Examples:\n  catalogcore protect contract.tif --no-move --no-remove\n  catalogcore protect contract.tif --none");
  protect->callback([options, &session] {
    Change(session, "protect", [&](Catalog& catalog) { Protect(session, catalog, *options); });
  });
}

}  // namespace catalogcore::app
