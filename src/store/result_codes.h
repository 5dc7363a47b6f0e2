// What the store's operations return; the interface turns these into the exported statuses.
#ifndef CATALOGCORE_STORE_RESULT_CODES_H_
#define CATALOGCORE_STORE_RESULT_CODES_H_

#include <cstdint>

namespace catalogcore {

enum StoreResult : std::uint32_t {
  StoreOk = 0,                // done; also a move to where the entry is already
  StoreFailed = 1,            // an entry could not be created
  StoreImageExists = 2,       // an image with this key is filed already
  StoreImageNotFound = 3,     // no image with this key
  StoreIndexExists = 4,       // a cell with this key exists already
  StoreIndexNotFound = 5,     // no such cell, or no parent for a moved one
  StoreIndexHasChildren = 6,  // the cell to remove has child cells
  StoreInvalidKey =
      8,  // the key breaks its tree's rules, or names a root or the cell's own subtree where that is refused
  StoreMoveProtected = 17,    // refused by IDXATTR_NOMOVE
  StoreRemoveProtected = 18,  // refused by IDXATTR_NOREMOVE, of a cell or of one of its images
  StoreRenameProtected = 19,  // refused by IDXATTR_NORENAME
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_RESULT_CODES_H_
