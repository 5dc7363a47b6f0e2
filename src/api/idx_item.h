// Reads and writes the fields of an application's record. A field that its mask does not mark, or whose string variable
// is null, is absent: it is neither read nor written.
#ifndef CATALOGCORE_API_IDX_ITEM_H_
#define CATALOGCORE_API_IDX_ITEM_H_

#include "base/idx_string.h"
#include "catalogcore.h"

namespace catalogcore {

// IDXERR_PARAM when the field is absent; else the status of the conversion (string_conversion.h).
IDXSTATUS GetIDXName(const IDXITEM* item, CIDXString& name);
IDXSTATUS GetIDXPath(const IDXITEM* item, CIDXString& path);

// The key of the index; "." for -1. IDXERR_PARAM when the field is absent or the number is out of range.
IDXSTATUS GetIDXIndex(const IDXITEM* item, CIDXString& key);

// IDXERR_PARAM, with `*attribute` unchanged, when the field is absent.
IDXSTATUS GetIDXAttribute(const IDXITEM* item, unsigned char* attribute);

// 1 if any of the bits is set, else 0.
int GetIDXOperation(const IDXITEM* item, unsigned int bits);
int GetIDXState(const IDXITEM* item, unsigned int bits);

// IDXERR_PARAM when the field is absent; the calls ignore the result.
IDXSTATUS SetIDXName(IDXITEM* item, const CIDXString& name);
IDXSTATUS SetIDXPath(IDXITEM* item, const CIDXString& path);
IDXSTATUS SetIDXIndex(IDXITEM* item, const CIDXString& key);
IDXSTATUS SetIDXAttribute(IDXITEM* item, unsigned char attribute);

}  // namespace catalogcore

#endif  // CATALOGCORE_API_IDX_ITEM_H_
