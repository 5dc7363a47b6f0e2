// The ten indexes that the catalogue begins with.
#ifndef CATALOGCORE_API_INDEX_CALLS_H_
#define CATALOGCORE_API_INDEX_CALLS_H_

#include <cstdint>

#include "catalogcore.h"

namespace catalogcore {

// Their numbers, parents before children.
inline constexpr std::int32_t kaPresetIndex[] = {
    IDXPRESET_PHOTO,          IDXPRESET_DOCUMENT,      IDXPRESET_OTHER,         IDXPRESET_PHOTO_FACES,
    IDXPRESET_PHOTO_OTHER,    IDXPRESET_DOCUMENT_CARD, IDXPRESET_DOCUMENT_POST, IDXPRESET_DOCUMENT_PAGE,
    IDXPRESET_DOCUMENT_FIXED, IDXPRESET_DOCUMENT_OTHER};

// Makes one, with all protections and the name "idx" and its number. The status of adding it.
IDXSTATUS CreatePresetIndex(int number);

// Makes them all, up to the first that fails: 1 if none does, else 0.
int MakePresetIndex();

}  // namespace catalogcore

#endif  // CATALOGCORE_API_INDEX_CALLS_H_
