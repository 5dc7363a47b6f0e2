#include "app/scene.h"

#include <new>

#include "app/picture.h"

namespace catalogcore::app {

Decision DecideScene(const catalogcore::Catalog& library, const std::string& file) {
  try {
    const Picture picture = DecodePicture(file);
    const Result<Scene> scene = library.Classify({.pixels = std::as_bytes(std::span(picture.pixels)),
                                                  .width = picture.width,
                                                  .height = picture.height,
                                                  .bitsPerPixel = picture.bitsPerPixel,
                                                  .resolution = picture.resolution});
    if (!scene) return {-1, Message(scene.error())};
    // Only a picture without pixels stays undecided.
    return {scene->Kind() == SceneKind::kUndecided ? preset::kOther : scene->Preset(), ""};
  } catch (const PictureError& error) {
    return {-1, error.what()};
  } catch (const std::bad_alloc&) {
    return {-1, Message(Status::kMemory)};
  }
}

}  // namespace catalogcore::app
