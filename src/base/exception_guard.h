// Keeps exceptions inside the library.
#ifndef CATALOGCORE_BASE_EXCEPTION_GUARD_H_
#define CATALOGCORE_BASE_EXCEPTION_GUARD_H_

#include <new>

#include "catalogcore.h"

namespace catalogcore {

// The status that `call` returns; IDXERR_MEMORY when it threw for want of memory, IDXERR_FAILED for anything else.
template <typename Call>
IDXSTATUS WithoutExceptions(Call call) noexcept {
  try {
    return call();
  } catch (const std::bad_alloc&) {
    return IDXERR_MEMORY;
  } catch (...) {
    return IDXERR_FAILED;
  }
}

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_EXCEPTION_GUARD_H_
