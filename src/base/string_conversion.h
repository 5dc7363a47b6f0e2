// Text from the application's strings into the library's, and back.
#ifndef CATALOGCORE_BASE_STRING_CONVERSION_H_
#define CATALOGCORE_BASE_STRING_CONVERSION_H_

#include <cstdint>

#include "base/idx_string.h"
#include "catalogcore.h"

namespace catalogcore {

// Reads the application's string into `target`, up to its first zero character. Returns IDX_OK;
// IDXERR_FAILED, with `target` unchanged, when there is no string, it cannot be converted, or there is no
// memory to do so; IDXERR_MEMORY when the text is empty (`target` then holds the empty text) or `target`
// could not take it.
std::int32_t CopyIDXSTRtoCIDXString(CIDXString& target, IDXSTR source);

// Hands a new string out to the application, which releases it; what the variable held before is not
// released. When no string can be made of the text, the variable stays as it is. Always IDX_OK.
std::int32_t CopyCIDXStringtoIDXSTR(IDXSTR target, const CIDXString& source);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_STRING_CONVERSION_H_
