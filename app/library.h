// What the preset indexes are called, and what they hold, in words.
#ifndef CATALOGCORE_APP_LIBRARY_H_
#define CATALOGCORE_APP_LIBRARY_H_

#include <array>
#include <cstdint>

#include "catalogcore.hpp"

namespace catalogcore::app {

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
    {preset::kDocumentCard, "Cards", "documents of a card's size"},
    {preset::kDocumentPost, "Postcards and 4 × 6", "documents of a postcard's size, or 4 × 6 inches"},
    {preset::kDocumentPage, "Pages", "documents of A5, B5, A4, Letter or Legal size"},
    {preset::kDocumentFixed, "Declared documents", "documents by an application's word"},
    {preset::kDocumentOther, "Other documents", "documents of another size, or of none that is known"},
    {preset::kOther, "Other", "everything else"},
}};

// The preset of that number; null if it is none.
constexpr const Preset* FindPreset(std::int32_t number) {
  for (const Preset& preset : kPresets) {
    if (preset.number == number) return &preset;
  }
  return nullptr;
}

// "document", "photograph", or null, as the number of a preset tells.
constexpr const char* PictureClass(std::int32_t preset) {
  const SceneKind kind = Scene(preset).Kind();
  return kind == SceneKind::kUndecided ? nullptr : kind == SceneKind::kDocument ? "document" : "photograph";
}

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_LIBRARY_H_
