// catalogcore gallery: the catalogue as a static page.
#include "app/gallery/gallery.h"

#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/interrupt.h"
#include "app/picture.h"
#include "app/library.h"
#include "app/text.h"

namespace catalogcore::app {
namespace {

struct GalleryOptions {
  std::string folder;
  PictureLimits limits;
};

GalleryRequest RequestFor(const Catalog& catalog) {
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
  std::optional<Catalog> opened;
  GalleryRequest request = RequestFor(OpenForReading(session, opened));
  opened.reset();
  request.folder = options.folder;
  PicturePool pictures(options.limits);
  request.jobs = pictures.Jobs();
  request.pictures = &pictures;
  request.stop = &CatchInterrupts("finishing the pictures under way; press Ctrl-C again to stop at once");
  request.progress = [&session](std::size_t done, std::size_t total, const std::string& file) {
    session.progress.Step(done, total, file);
  };
  const GalleryReport report = WriteGallery(request);
  for (const auto& [file, reason] : report.failed) {
    session.Skip("cannot make a thumbnail of " + file + ": " + reason);
  }
  session.progress.Clear();
  std::printf("%s, %s made now\n%s\n", Counted(request.images.size(), "picture").c_str(),
              Counted(report.made, "thumbnail").c_str(), ForOutput((request.folder / "index.html").string()).c_str());
  if (*request.stop) session.status = kInterruptedStatus;
}

}  // namespace

void AddGallery(CLI::App& app, Session& session) {
  const auto options = std::make_shared<GalleryOptions>();
  CLI::App* const command = app.add_subcommand("gallery", "Make a page to look at the catalogue with a browser");
  command->add_option("OUT", options->folder, "Folder for the page, made if it is not there")
      ->type_name("")
      ->required();
  AddPictureLimits(*command, options->limits);
  command->footer(
      "The page needs no server and no network. Made again, it takes the thumbnails that are still right.\n\n" +
      TellPictureLimits() + "\n\nExample:\n  catalogcore gallery ~/gallery && xdg-open ~/gallery/index.html");
  command->callback([options, &session] { MakeGallery(session, *options); });
}

}  // namespace catalogcore::app
