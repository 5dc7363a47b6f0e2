// The ten preset indexes, which every catalogue has from the start.
#ifndef CATALOGCORE_API_INDEX_CALLS_H_
#define CATALOGCORE_API_INDEX_CALLS_H_

#include <cstdint>

#include "catalogcore.h"

namespace catalogcore {

// Parents before children.
inline constexpr std::int32_t kaPresetIndex[] = {
    IDXPRESET_PHOTO,          IDXPRESET_DOCUMENT,      IDXPRESET_OTHER,         IDXPRESET_PHOTO_FACES,
    IDXPRESET_PHOTO_OTHER,    IDXPRESET_DOCUMENT_CARD, IDXPRESET_DOCUMENT_POST, IDXPRESET_DOCUMENT_PAGE,
    IDXPRESET_DOCUMENT_FIXED, IDXPRESET_DOCUMENT_OTHER};

// Adds the index of this number with all protections and the name "idx1000000", and returns the status of adding it.
IDXSTATUS CreatePresetIndex(int number);

// Adds all ten, up to the first that fails. 1 when none failed, else 0.
int MakePresetIndex();

}  // namespace catalogcore

#endif  // CATALOGCORE_API_INDEX_CALLS_H_
