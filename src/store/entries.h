// What the store consists of: images, cells and group markers; and the results of the store's operations.
//
// Glossary
//   image        one image file of the catalogue: a node (CIDXNode). Its key is the full path of the file.
//   cell         an element of one of the two trees (CIDXCell). Its key is the path from the root, without the root.
//   tree         kIndexTree: its cells are indexes, the categories (key 1/10).
//                kFolderTree: its cells are folders of the file system (key /Users/a).
//                An array with one element for each tree is indexed by this number.
//   entry        an image or a cell.
//   image list   the images of a cell, linked by `prev` and `next`. An image is in two image lists: that of its index
//                and that of its folder.
//   child list   the children of a cell, linked by `prevSibling` and `nextSibling`.
//   to file      to insert an image into the image list of an index and into the image list of a folder.
//   bucket       a chain of entries. There are three hash tables, one each for images, indexes and folders, and each
//                has 1987 buckets. CIDXString::GetHashKey of an entry's key is the number of its bucket.
//   key table    another hash table of the same entries, which finds a key in constant time (key_table.h). There is one
//                each for images, indexes and folders.
//   twins        two entries whose keys differ only in the case of ASCII letters and have different buckets.
//   group        the images of a folder that are filed in the same index; they are adjacent in the folder's image list.
//   marker       an object that points to the first image of a group (CIDXSkipNode).
//   skip list    the markers of a folder, in the order of its groups (folder_groups.cpp).
//   block        memory from one allocation.
//   walk         an iteration over the cells of a subtree, or over their images; SearchHandle is its state (walks.h).
//   find         a walk that stays open between calls of the application (open_finds.h).
//   removed      a removed entry is in no list, bucket or key table. The store keeps the entry as long as the position
//                of a find may be this entry.
//   moved        a moved cell was moved to another parent by MoveCell, or was below a cell when MoveCell moved that
//                cell. No exported call uses MoveCell, so the catalogue of an application has no moved cells.
//   the lock     the store's critical region (CIndexData::CriticalRegion), which the store's callers hold.
//
// Invariants, between two operations of the store:
// - Cells: a cell is at one place in its parent's child list. The list is in the order of insertion, and `ordinal`
//   increases along the list. The root has no parent. A cell is also in its bucket. (See below for moved
//   cells.)
// - Images: an image is in the image list of cell[kIndexTree], in the image list of cell[kFolderTree], and in its
//   bucket. The image list of an index is in the order of filing.
// - Groups: the image list of a folder consists of groups in the order of their indexes in the tree (CompareCell).
//   Within a group, images are in the order of filing. The folder's skip list has one marker for each group, in the
//   same order. Indexes have no skip list. After an index was moved, or if the root of the index tree is missing, the
//   groups may be out of order. One index may then have several groups, even adjacent ones, but all images from one
//   marker to the next have the same index.
// - Key tables: an entry is in its key table exactly while it is in its bucket. Entries may have equal keys, but only
//   in a tree without a root. The table then returns the entry that comes first in the bucket.
// - Removed entries: an entry that is not removed never points to a removed entry. The `next` of a removed image points
//   to the image that followed it when it was removed. That image is still filed or was removed later, so following
//   `next` leads to a filed image of the same cell or to the end of the list. A removed cell has no links. A removed
//   entry is deleted only after every find is closed that was open when the entry was removed (open_finds.h).
// - Moved cells: a move separates the moved cell from its children. The children keep their `parent`, but are in no
//   child list. The moved cell and its former descendants are marked as `moved`. They are in no bucket and in no key
//   table, so no key finds them. A cell below a moved cell is also a moved cell.
#ifndef CATALOGCORE_STORE_ENTRIES_H_
#define CATALOGCORE_STORE_ENTRIES_H_

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "base/idx_string.h"

namespace catalogcore {

inline constexpr std::int32_t kIndexTree = 0;
inline constexpr std::int32_t kFolderTree = 1;
inline constexpr std::int32_t kTreeCount = 2;

constexpr std::int32_t OtherTree(std::int32_t tree) { return tree == kFolderTree ? kIndexTree : kFolderTree; }

// The results of the store's operations. The exported calls convert them to their statuses.
enum StoreResult : std::uint32_t {
  StoreOk = 0,                // done; or nothing to do, because the entry already is where it is moved to
  StoreFailed = 1,            // an entry could not be allocated
  StoreImageExists = 2,       // an image with this key exists
  StoreImageNotFound = 3,     // no image has this key
  StoreIndexExists = 4,       // a cell with this key exists
  StoreIndexNotFound = 5,     // no cell has this key; or the new parent of a moved cell is missing
  StoreIndexHasChildren = 6,  // the cell to remove has child cells
  StoreInvalidKey = 8,        // the key is invalid in its tree, or names a cell that this operation does not accept
  StoreMoveProtected = 17,    // IDXATTR_NOMOVE is set
  StoreRemoveProtected = 18,  // IDXATTR_NOREMOVE is set, for the cell or one of its images
  StoreRenameProtected = 19,  // IDXATTR_NORENAME is set
};

struct CIDXCell;

// A constant key whose text is in the block of its entry and is freed with that block.
class EmbeddedKey : public CIDXString {
 public:
  // The number of bytes needed for a text of `size` bytes.
  static constexpr std::size_t BlockBytes(std::size_t size) { return size + 2; }
  // Copies the first `size` bytes of the text into the block. None of these bytes may be zero.
  EmbeddedKey(char* block, const char* text, std::size_t size);
  ~EmbeddedKey() { buffer = nullptr; }
  EmbeddedKey(const EmbeddedKey&) = delete;
  EmbeddedKey& operator=(const EmbeddedKey&) = delete;
};

struct CIDXNodeInfo {
  CIDXNodeInfo(char* block, const char* text, std::size_t size) : key(block, text, size) {}
  virtual ~CIDXNodeInfo() = default;
  const EmbeddedKey key;
  std::uint32_t keyHash = 0;  // set by the key table
  std::uint16_t bucket = 0;
  std::uint8_t attribute = 0;
  bool removed = false;
};

// One block holds the node, its CIDXNodeInfo (`record`) and its key, so that filing an image allocates once. The fields
// that a look-up reads lie together at the end of the node and the start of `record`.
struct CIDXNode {
  // Returns an image that is not filed yet; null on allocation failure. Its key is a copy of the first `size` bytes of
  // the text. None of these bytes may be zero.
  static CIDXNode* Create(const char* text, std::size_t size);
  CIDXNode(const CIDXNode&) = delete;
  CIDXNode& operator=(const CIDXNode&) = delete;
  virtual ~CIDXNode() = default;
  static void operator delete(void* block) { std::free(block); }

  CIDXCell* cell[kTreeCount] = {};
  CIDXNode* hashPrev = nullptr;
  CIDXNode* hashNext = nullptr;
  CIDXNode* prev[kTreeCount] = {};
  CIDXNode* next[kTreeCount] = {};
  CIDXNode* tableNext = nullptr;  // set by the key table
  CIDXNodeInfo* const info = &record;

 private:
  CIDXNode(const char* text, std::size_t size) : record(reinterpret_cast<char*>(this + 1), text, size) {}

  CIDXNodeInfo record;
};

struct CIDXCellInfo {
  virtual ~CIDXCellInfo() = default;
  CIDXString key;
  CIDXString name;            // always has a block, also if empty
  std::uint32_t keyHash = 0;  // set by the key table
  std::uint16_t bucket = 0;
  std::uint8_t attribute = 0;
  bool moved = false;
};

struct CIDXSkipNode {
  virtual ~CIDXSkipNode() = default;
  CIDXNode* node = nullptr;
  CIDXSkipNode* next = nullptr;
};

struct CIDXCell {
  CIDXCell() = default;
  CIDXCell(const CIDXCell&) = delete;
  CIDXCell& operator=(const CIDXCell&) = delete;
  virtual ~CIDXCell();

  CIDXCellInfo* info = nullptr;  // owned
  CIDXNode* firstNode = nullptr;
  CIDXNode* lastNode = nullptr;
  CIDXCell* parent = nullptr;
  CIDXCell* firstChild = nullptr;
  CIDXCell* lastChild = nullptr;
  CIDXCell* prevSibling = nullptr;
  CIDXCell* nextSibling = nullptr;
  CIDXCell* hashPrev = nullptr;
  CIDXCell* hashNext = nullptr;
  CIDXCell* tableNext = nullptr;                   // set by the key table
  CIDXSkipNode* skipHead = nullptr;                // the first marker; DeleteSkipList must precede the cell's deletion
  std::vector<CIDXSkipNode*>* skipRuns = nullptr;  // the index of a long skip list (folder_groups.cpp)
  std::uint64_t ordinal = 0;
};

// Deletes all markers of the cell.
void DeleteSkipList(CIDXCell* cell);

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_ENTRIES_H_
