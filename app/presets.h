// What the preset indexes are called, and what they hold, in words.
#ifndef CATALOGCORE_APP_PRESETS_H_
#define CATALOGCORE_APP_PRESETS_H_

#include <array>
#include <cstdint>

#include "catalogcore.h"

namespace catalogcore::app {

struct Preset {
  std::int32_t number;
  const char* name;
  const char* meaning;
};

inline constexpr std::array<Preset, 10> kPresets = {{
    {IDXPRESET_PHOTO, "Photographs", "photographs"},
    {IDXPRESET_PHOTO_FACES, "People", "photographs that show faces"},
    {IDXPRESET_PHOTO_OTHER, "Other photographs", "photographs without faces"},
    {IDXPRESET_DOCUMENT, "Documents", "documents"},
    {IDXPRESET_DOCUMENT_CARD, "Cards", "documents of a card's size"},
    {IDXPRESET_DOCUMENT_POST, "Postcards and 4 × 6", "documents of a postcard's size, or 4 × 6 inches"},
    {IDXPRESET_DOCUMENT_PAGE, "Pages", "documents of A5, B5, A4, Letter or Legal size"},
    {IDXPRESET_DOCUMENT_FIXED, "Declared documents", "documents by an application's word"},
    {IDXPRESET_DOCUMENT_OTHER, "Other documents", "documents of another size, or of none that is known"},
    {IDXPRESET_OTHER, "Other", "everything else"},
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
  if (preset >= IDXPRESET_DOCUMENT && preset < IDXPRESET_DOCUMENT + IDXPRESET_PHOTO) return "document";
  if (preset >= IDXPRESET_PHOTO && preset < IDXPRESET_DOCUMENT) return "photograph";
  return nullptr;
}

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PRESETS_H_
