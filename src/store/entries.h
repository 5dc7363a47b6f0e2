// What the store consists of: images, cells and group markers; and the results of the store's operations.
//
// Glossary
//   image        one image file of the catalogue: a node (CIDXNode). Its key is the full path of the file.
//   cell         an element of one of the two trees (CIDXCell). Its key is the path from the root, without the root.
//   tree         kIndexTree: its cells are indexes, the categories (key 1/10).
//                kFolderTree: its cells are folders of the file system (key /Users/a).
//                An array with one element for each tree is indexed by this number.
//   entry        an image or a cell.
//   filed        an image is filed in one index and in one folder. It stands in the image list of both cells.
//   bucket       one of 1987 chains in each of three hash tables: the images, the indexes and the folders.
//                CIDXString::GetHashKey of an entry's key is the number of its bucket.
//   key table    a second hash table over the same entries, which finds a key in constant time (key_table.h).
//   twins        two entries whose keys differ only in the case of ASCII letters and have different buckets.
//   group        the images of a folder that are filed in the same index; they are adjacent in the folder's image list.
//   marker       an object that points to the first image of a group (CIDXSkipNode).
//   skip list    the markers of a folder, in the order of its groups (folder_groups.cpp).
//   walk         an iteration over the cells of a subtree, or over their images; SearchHandle is its state (walks.h).
//   find         a walk that stays open between calls of the application (open_finds.h).
//   removed      a removed entry is in no list, chain or table. The store keeps it for finds that may stand on it.
//   moved        a moved cell was moved to another parent, or was a descendant of a cell when that cell was moved.
//
// Invariants, between two operations of the store (its callers hold the store's critical region):
// - Cells: a cell stands in its parent's child list, in the order of linking; `ordinal` increases along that list. The
//   root has no parent. A cell also stands in its bucket.
// - Moved cells: a move cuts the moved cell off from its children. The children keep their `parent`, but stand in no
//   child list. The moved cell and its former descendants are marked as `moved`. They are in no bucket, so that no key
//   finds them. A cell below a moved cell is also a moved cell.
// - Images: an image stands in the image list of cell[kIndexTree], in the image list of cell[kFolderTree], and in its
//   bucket. The image list of an index is in the order of filing.
// - Groups: the image list of a folder consists of groups in the order of their indexes in the tree (CompareCell).
//   Within a group, images are in the order of filing. The folder's skip list has one marker for each group, in the
//   same order. Indexes have no skip list. After an index was moved, or if the root of the index tree is missing, the
//   groups may be out of order and one index may have several groups, even adjacent ones. Still, all images from one
//   marker to the next have the same index.
// - Key tables: an entry is in the key table of images, or of the cells of its tree, exactly while it is in its bucket.
//   Entries may have equal keys, but only in a tree without a root. The table then returns the entry that comes first
//   in the bucket.
// - Removed entries: filed entries never point to removed entries. The `next` of a removed image points to the image
//   that followed it when it was removed; that image is still filed or was removed later. So following `next` leads to
//   a filed image of the same cell or to the end of its list. A removed cell has no links. A removed entry is deleted
//   only after every find is closed that was open when the entry was removed (open_finds.h).
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
  StoreOk = 0,                // done; also a move to the cell where the entry already is
  StoreFailed = 1,            // an entry could not be allocated
  StoreImageExists = 2,       // an image with this key exists
  StoreImageNotFound = 3,     // no image has this key
  StoreIndexExists = 4,       // a cell with this key exists
  StoreIndexNotFound = 5,     // no cell has this key; for a move also: the new parent is missing
  StoreIndexHasChildren = 6,  // the cell to remove has child cells
  StoreInvalidKey = 8,        // the key is invalid in its tree, or names a cell that this operation does not accept
  StoreMoveProtected = 17,    // IDXATTR_NOMOVE is set
  StoreRemoveProtected = 18,  // IDXATTR_NOREMOVE is set, for the cell or one of its images
  StoreRenameProtected = 19,  // IDXATTR_NORENAME is set
};

struct CIDXCell;

// A constant key whose text lies in the memory block of its entry and is freed with it.
class EmbeddedKey : public CIDXString {
 public:
  // The number of bytes needed for a text of `size` bytes.
  static constexpr std::size_t BlockBytes(std::size_t size) { return size + 2; }
  // Copies the first `size` bytes of the text into the block. None of them may be zero.
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

// One memory block holds the node, its record and its key, so that filing an image allocates once. The fields that a
// look-up reads lie together at the end of the node and the start of the record.
struct CIDXNode {
  // Returns an image that is filed nowhere, null on allocation failure. Its key is a copy of the first `size` bytes of
  // the text. None of them may be zero.
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
  CIDXString name;            // always has a block
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
