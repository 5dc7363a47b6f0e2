// catalogcore gallery: makes a static page of the catalogue.
#include "app/gallery/gallery.h"

#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/library.h"
#include "app/picture.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

struct GalleryOptions {
  std::string folder;
  PictureLimits limits;
};

GalleryRequest RequestFor(const StoredCatalog& catalog) {
  GalleryRequest request;
  request.catalogueFile = catalog.ImageFile().file;
  const IndexTree tree(catalog);
  for (const IndexNode& node : tree.Nodes()) {
    const Preset* const preset = FindPreset(node.entry.number);
    request.indexes.push_back({node.entry.number, node.parent, node.entry.name, preset ? preset->meaning : ""});
  }
  catalog.ForEachImage({}, [&](const Image& image) {
    request.images.push_back({image.path, image.index, catalog.IsMissing(image.path)});
  });
  return request;
}

void MakeGallery(Session& session, const GalleryOptions& options) {
  StartPictures("catalogcore");
  std::optional<StoredCatalog> opened;
  GalleryRequest request = RequestFor(OpenForReading(session, opened));
  opened.reset();
  request.folder = options.folder;
  PicturePool pictures(options.limits);
  request.jobs = pictures.Jobs();
  request.readFacts = [&pictures](const std::filesystem::path& file) { return pictures.ReadFacts(file); };
  request.makeCopy = [&pictures](const std::filesystem::path& file, int side) {
    return pictures.SmallCopy(file, side);
  };
  request.stop = &CatchInterrupts("finishing the pictures under way; press Ctrl-C again to stop immediately");
  request.progress = [&session](std::size_t done, std::size_t total, const std::string& file) {
    session.progress.Step(done, total, file);
  };
  const GalleryReport report = WriteGallery(request);
  for (const auto& [file, reason] : report.failed) {
    session.Skip("cannot create a thumbnail of " + file + ": " + reason);
  }
  session.progress.Clear();
  std::printf("%s, %s created\n%s\n", Counted(request.images.size(), "picture").c_str(),
              Counted(report.made, "thumbnail").c_str(), ForOutput((request.folder / "index.html").string()).c_str());
  if (*request.stop) session.status = kInterrupted;
}

}  // namespace

void AddGallery(CLI::App& app, Session& session) {
  const auto options = std::make_shared<GalleryOptions>();
  CLI::App* const command = app.add_subcommand("gallery", "Make a page that shows the catalogue in a browser");
  command->add_option("OUT", options->folder, "Folder for the page; created if it is missing")
      ->type_name("")
      ->required();
  AddPictureLimits(*command, options->limits);
  command->footer(
      "The page needs no server and no network. Run the command again to update the page; valid thumbnails are "
      "kept.\n\n" +
      FixedPictureLimits() + "\n\nExample:\n  catalogcore gallery ~/gallery && xdg-open ~/gallery/index.html");
  command->callback([options, &session] { MakeGallery(session, *options); });
}

}  // namespace catalogcore::app
