// Turns what the store returns into the status of a call.
#ifndef CATALOGCORE_API_STORE_STATUS_H_
#define CATALOGCORE_API_STORE_STATUS_H_

#include <cstdint>

#include "catalogcore.h"

namespace catalogcore {

inline constexpr int kStoreCodeBase = 0x1000;

// IDX_OK for 0. With kStoreCodeBase the status that stands for the store's code, IDXERR_FAILED if none does; with any
// other base the sum of both.
IDXSTATUS ConvertErrorCode(int code, int base);

inline IDXSTATUS StoreStatus(std::uint32_t code) { return ConvertErrorCode(static_cast<int>(code), kStoreCodeBase); }

}  // namespace catalogcore

#endif  // CATALOGCORE_API_STORE_STATUS_H_
