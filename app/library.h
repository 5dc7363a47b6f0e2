// The library as the command uses it: opened with the presets named for people, and asked what a picture file shows.
#ifndef CATALOGCORE_APP_LIBRARY_H_
#define CATALOGCORE_APP_LIBRARY_H_

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "catalogcore.hpp"

namespace catalogcore::app {

class PicturePool;

// The library cannot be opened, or a catalogue cannot be read or written. what() names the file and what to do.
class CatalogError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Preset {
  std::int32_t number;
  const char* name;
  const char* meaning;
};

inline constexpr std::array<Preset, 10> kPresets = {{
    {preset::kPhoto, "Photographs", "photographs"},
    {preset::kPhotoFaces, "People", "photographs that show faces"},
    {preset::kPhotoOther, "Other photographs", "photographs without faces"},
    {preset::kDocument, "Documents", "documents"},
    {preset::kDocumentCard, "Cards", "documents of card size"},
    {preset::kDocumentPost, "Postcards and 4 × 6", "documents of postcard size, or 4 × 6 inches"},
    {preset::kDocumentPage, "Pages", "documents of A5, B5, A4, Letter or Legal size"},
    {preset::kDocumentFixed, "Declared documents", "documents declared by an application"},
    {preset::kDocumentOther, "Other documents", "documents of another or an unknown size"},
    {preset::kOther, "Other", "everything else"},
}};

// The preset with this number, or null.
constexpr const Preset* FindPreset(std::int32_t number) {
  for (const Preset& preset : kPresets) {
    if (preset.number == number) return &preset;
  }
  return nullptr;
}

// "document", "photograph", or null for a number that stands for neither.
constexpr const char* PictureClass(std::int32_t preset) {
  const SceneKind kind = Scene(preset).Kind();
  return kind == SceneKind::kUndecided ? nullptr : kind == SceneKind::kDocument ? "document" : "photograph";
}

// Opens the library with an empty catalogue and names the presets. Throws CatalogError.
Catalog OpenLibrary();

struct Decision {
  std::int32_t preset = -1;  // number of the preset index for the picture; -1: there is a problem
  std::string problem;       // why the file has no preset: "not an image file"; empty: it has one
  std::string warning;       // the defect of a file that could still be decoded; empty: none
};

// Decodes the file and asks the library. Any thread; threads wait for each other only while the library examines a
// picture.
Decision DecideScene(PicturePool& pictures, const Catalog& library, const std::string& file);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_LIBRARY_H_
