// Converts between the application's strings (IDXSTR) and the library's (CIDXString).
#ifndef CATALOGCORE_BASE_STRING_CONVERSION_H_
#define CATALOGCORE_BASE_STRING_CONVERSION_H_

#include <cstdint>

#include "base/idx_string.h"
#include "catalogcore.h"

namespace catalogcore {

// Copies the application's string into `target`, up to the first zero character. Returns
// - IDX_OK;
// - IDXERR_FAILED, with `target` unchanged, if the string is missing or cannot be converted, or if the allocation for
//   the conversion fails;
// - IDXERR_MEMORY if the text is empty (`target` then holds the empty text) or if `target` cannot allocate its copy.
std::int32_t CopyIDXSTRtoCIDXString(CIDXString& target, IDXSTR source);

// Stores a new string in the application's variable; the application owns the new string. Does not release the old
// value. If the string cannot be created, the variable stays unchanged. Always returns IDX_OK.
std::int32_t CopyCIDXStringtoIDXSTR(IDXSTR target, const CIDXString& source);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_STRING_CONVERSION_H_
