// The entries that the store consists of: images (nodes), the cells of its two trees, and the group markers of a
// folder's image list.
//
// Trees are chosen by a number everywhere: kIndexTree (categories; keys such as 1/10) or kFolderTree (folders of the
// file system; keys such as /Users/a). An array with one element for each tree is indexed by it.
//
// What always holds between two operations of the store (its callers hold the store's critical region):
// - Cells: a cell stands in its parent's child list, in the order of linking, which `ordinal` counts. A root has no
//   parent. Every cell stands in the hash chain of its key, except one that was moved and those that a move cut loose
//   from below it; those are `moved`, and nothing below a moved cell stands in the hash table, so that no key leads to
//   either.
// - Images: an image stands in the image list of cell[kIndexTree] and of cell[kFolderTree], and in the hash chain of
//   its key. An index cell's list is in the order of filing.
// - Groups: a folder cell's list is grouped by index cell, the groups in tree order (CompareCell), the images of a
//   group in the order of filing. A folder cell's skip list holds one marker for each group, in the same order, which
//   names the group's first image. Index cells have no skip list. Once an index cell was moved, or where the index tree
//   has no root, the groups may be out of order, and one index may have several, which may stand side by side; still the
//   images from one marker to the next are of one index. `skipRuns` belongs to the skip list (folder_groups.cpp).
// - The key tables: an entry stands in the key table of images, or of its tree's cells, exactly while it stands in its
//   hash chain. Entries with equal keys, of which there may be several without a root alone, follow one another there
//   in the order of their chain, so that both give the same first one. `tableNext` and
//   `info->keyHash` belong to the table (key_table.h); `info->bucket` is that of the key.
// - Walks: what is filed leads to nothing that was removed. A removed image leads on, in `next`, to the image that stood
//   behind it then, which is filed still or was removed later; so who follows it comes to a filed image of the same cell
//   or to the end. A removed cell leads nowhere. A removed entry is deleted some time after every find is closed that
//   was open when it was removed (open_finds.h), so that a walk stands on nothing that is deleted.
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

// The other of the two trees.
constexpr std::int32_t OtherTree(std::int32_t tree) { return tree == kFolderTree ? kIndexTree : kFolderTree; }

struct CIDXCell;

// A key whose block is the end of its entry's own: it stays as it is, and frees nothing.
class EmbeddedKey : public CIDXString {
 public:
  // The bytes that a text of `size` bytes takes.
  static constexpr std::size_t BlockBytes(std::size_t size) { return size + 2; }
  // Copies the first `size` bytes of the text, none of them zero, into the block.
  EmbeddedKey(char* block, const char* text, std::size_t size);
  ~EmbeddedKey() { buffer = nullptr; }
  EmbeddedKey(const EmbeddedKey&) = delete;
  EmbeddedKey& operator=(const EmbeddedKey&) = delete;
};

struct CIDXNodeInfo {
  CIDXNodeInfo(char* block, const char* text, std::size_t size) : key(block, text, size) {}
  virtual ~CIDXNodeInfo() = default;
  const EmbeddedKey key;      // the image's full path
  std::uint32_t keyHash = 0;  // the key table's
  std::uint16_t bucket = 0;   // of the hash table
  std::uint8_t attribute = 0;
  bool removed = false;  // filed no more, and kept for the walks that may stand on it
};

// One block with its record and its key, so that filing allocates once. What a look-up reads lies together, before the
// key.
struct CIDXNode {
  // An image that is filed nowhere yet. Its key is a copy of the first `size` bytes of the text, none of them zero. Null
  // without memory.
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
  CIDXNode* tableNext = nullptr;
  CIDXNodeInfo* const info = &record;

 private:
  CIDXNode(const char* text, std::size_t size) : record(reinterpret_cast<char*>(this + 1), text, size) {}

  CIDXNodeInfo record;
};

struct CIDXCellInfo {
  virtual ~CIDXCellInfo() = default;
  CIDXString key;             // the whole path from the root, the root left out
  CIDXString name;            // always holds a text, if an empty one
  std::uint32_t keyHash = 0;  // the key table's
  std::uint16_t bucket = 0;   // of the hash table
  std::uint8_t attribute = 0;
  bool moved = false;  // taken out of the hash table by a move, of the cell itself or from above it
};

struct CIDXSkipNode {
  virtual ~CIDXSkipNode() = default;
  CIDXNode* node = nullptr;  // the first image of the group
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
  CIDXCell* tableNext = nullptr;
  CIDXSkipNode* skipHead = nullptr;                // deleted by whoever deletes the cell, with DeleteSkipList
  std::vector<CIDXSkipNode*>* skipRuns = nullptr;  // where the runs of a long skip list begin; deleted with it
  std::uint64_t ordinal = 0;                       // grows along the parent's child list
};

// Deletes every marker of the cell.
void DeleteSkipList(CIDXCell* cell);

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_ENTRIES_H_
