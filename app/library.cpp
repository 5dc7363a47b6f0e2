#include "app/library.h"

#include <new>

#include "app/picture_pool.h"

namespace catalogcore::app {

Catalog OpenLibrary() {
  // A library without the recognizer's parameters opens; scene detection then reports that they are missing.
  Result<Catalog> library = Catalog::Open();
  if (!library) throw CatalogError("cannot open the library: " + Message(library.error()));
  for (const Preset& preset : kPresets) library->SetPresetName(preset.number, preset.name).value();
  return *std::move(library);
}

Decision DecideScene(PicturePool& pictures, const Catalog& library, const std::string& file) {
  Decision decision;
  try {
    pictures.Decode(file, [&](const PictureShape& picture, std::span<const std::uint8_t> pixels) {
      const Result<Scene> scene = library.Classify({.pixels = std::as_bytes(pixels),
                                                    .width = picture.width,
                                                    .height = picture.height,
                                                    .bitsPerPixel = picture.bitsPerPixel,
                                                    .resolution = picture.resolution});
      decision.warning = picture.warning;
      if (!scene) {
        decision.problem = Message(scene.error());
      } else {
        // Only a picture without pixels stays undecided.
        decision.preset = scene->Kind() == SceneKind::kUndecided ? preset::kOther : scene->Preset();
      }
    });
  } catch (const PictureError& error) {
    decision.problem = error.what();
  } catch (const std::bad_alloc&) {
    decision.problem = Message(Status::kMemory);
  }
  return decision;
}

}  // namespace catalogcore::app
