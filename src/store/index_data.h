// The catalogue in memory: images filed in a tree of indexes and in a tree of folders.
#ifndef CATALOGCORE_STORE_INDEX_DATA_H_
#define CATALOGCORE_STORE_INDEX_DATA_H_

#include <cstddef>
#include <cstdint>

#include "base/critical_region.h"
#include "base/idx_string.h"
#include "store/entries.h"
#include "store/hash_chain.h"
#include "store/key_table.h"
#include "store/open_finds.h"
#include "store/result_codes.h"
#include "store/walks.h"

namespace catalogcore {

// The bytes of the longest key that anything is filed under.
inline constexpr std::int32_t kMaxKeyBytes = 4096;

// The store takes no lock: every caller holds `criticalRegion` for as long as it calls and looks at what it got.
// entries.h says what always holds of the data.
//
// In what follows `tree` is kIndexTree or kFolderTree, and `force` (non-zero) sets an entry's protection aside. A
// refusal comes before anything changes, and the checks come in the order in which they are listed, unless said
// otherwise. Keys handed in must not be the store's own strings.
//
// Walks: between two steps of one that was opened (Finds().Open) anything may change; one that was not opened goes to
// its end while nothing is removed. A step sees the catalogue as it is by then, but for what lies ahead of a removed
// image, which is what stood behind it in its list when it was removed. A walk on a removed cell ends. One on a moved
// cell goes on from where that is now, and ends if that is outside the subtree it began at.
class CIndexData {
 public:
  CIndexData();
  ~CIndexData();
  CIndexData(const CIndexData&) = delete;
  CIndexData& operator=(const CIndexData&) = delete;

  // Empties the store and makes the two roots (key and name ".", all protections). Always StoreOk: a root
  // that could not be made is null, and what needs it finds nothing.
  std::uint32_t Initialize();

  // Deletes every image and every cell, the roots included. Always StoreOk.
  std::uint32_t Uninitialize();

  MPCriticalRegionID* CriticalRegion() { return &criticalRegion; }

  // No find is open after Initialize or Uninitialize, whatever was opened before.
  OpenFinds& Finds() { return openFinds; }

  // The first image of a bucket of the image table, 0 <= bucket < CIDXString::kBucketCount; null if it is
  // empty.
  CIDXNode* FirstNodeOfBucket(std::uint32_t bucket) const { return nodeHash[bucket].head; }

  // ---- Images

  // Files an image. StoreImageExists; StoreInvalidKey for the index key "." (an empty index key does name the root);
  // StoreIndexNotFound; StoreInvalidKey for a folder key against the rules or an image key beyond their length. The
  // folder and its ancestors are made if missing, as AddCell makes them. StoreFailed: the image is not filed; a folder
  // made for it stays unless making it was what failed.
  std::uint32_t AddNode(const CIDXString& key, const CIDXString& indexKey, const CIDXString& folderKey,
                        std::uint8_t attribute);

  // StoreImageNotFound; StoreRemoveProtected.
  std::uint32_t RemoveNode(const CIDXString& key, std::int32_t force);

  // Files the image in another cell of one tree. StoreImageNotFound; StoreInvalidKey for the key ".";
  // StoreIndexNotFound; StoreOk, with nothing done, where it is already; StoreMoveProtected. The image is
  // removed and added again, as a new object at the end of its lists: when adding it fails, it is gone, and
  // the result is AddNode's.
  std::uint32_t MoveNode(std::int32_t tree, const CIDXString& key, const CIDXString& newCellKey, std::int32_t force);

  // StoreImageNotFound.
  std::uint32_t ChangeAttributeNode(const CIDXString& key, std::uint8_t attribute);

  // The image with this key, or null.
  CIDXNode* SearchNode(const CIDXString& key) const;

  // Begins a walk over the images whose index cell lies in the subtree of `indexKey`: through the index tree
  // if `folderKey` has no block or is ".", else through the folders from `folderKey` (recursive 1: and below
  // it), each in the order of its list. Returns the first image or null. A trailing "/" is cut from the key
  // the walk begins at.
  CIDXNode* GetFirstNode(SearchHandle* handle, CIDXString& indexKey, CIDXString& folderKey,
                         std::int32_t recursive) const;

  // The next image, or null when the walk is over.
  CIDXNode* GetNextNode(SearchHandle* handle, std::int32_t recursive) const;

  // ---- Cells

  // Makes a cell and its missing ancestors, all with this name and attribute. StoreIndexExists; StoreInvalidKey.
  // When one cannot be made, every cell from its parent up to the root is removed as RemoveCell does it without force,
  // as far as that goes: those that this call made, and also an older one that has no child. The result is StoreFailed.
  std::uint32_t AddCell(std::int32_t tree, const CIDXString& key, const CIDXString& name, std::uint8_t attribute);

  // Removes a cell with its images. StoreIndexNotFound; StoreIndexHasChildren; StoreRemoveProtected;
  // StoreInvalidKey for a root. The first image that may not be removed stops it: StoreRemoveProtected, with
  // the images before it gone.
  std::uint32_t RemoveCell(std::int32_t tree, const CIDXString& key, std::int32_t force);

  // Hangs a cell under the parent that `newKey` names. StoreIndexNotFound; StoreInvalidKey; StoreIndexExists;
  // StoreIndexNotFound for the parent; StoreOk, with nothing done, where it is already; StoreInvalidKey below itself;
  // StoreMoveProtected. The moved cell keeps its key but is found by walks alone, not by key. Walks no longer reach its
  // descendants, nor does any key; their images are found by key and by walks of folders, as lying below it.
  std::uint32_t MoveCell(std::int32_t tree, const CIDXString& oldKey, const CIDXString& newKey, std::int32_t force);

  // Changes the name; the key stays. StoreIndexNotFound; StoreRenameProtected; StoreFailed without memory.
  std::uint32_t RenameCell(std::int32_t tree, const CIDXString& key, const CIDXString& newName, std::int32_t force);

  // StoreIndexNotFound.
  std::uint32_t ChangeAttributeCell(std::int32_t tree, const CIDXString& key, std::uint8_t attribute);

  // The cell with this key, or null. A key of length 0 names the root.
  CIDXCell* SearchCell(std::int32_t tree, const CIDXString& key) const;

  // Begins a walk at the cell `key`, which is the first result (null if there is none); with `recursive` 1 it goes
  // through the cell's subtree in pre-order. One trailing "/" is cut from `key`. A recursive walk of the folder tree
  // from "/" begins at the root and passes over "/Volumes" and what begins with it.
  CIDXCell* GetFirstCell(SearchHandle* handle, std::int32_t tree, CIDXString& key, std::int32_t recursive) const;

  // The next cell, or null when the walk is over.
  CIDXCell* GetNextCell(SearchHandle* handle, std::int32_t recursive) const;

 private:
  friend class StoreInspector;  // reads everything, for the tests' invariant checker

  template <typename Entry>
  using HashTable = HashChain<Entry>[CIDXString::kBucketCount];

  void DeleteAllNodes();
  void DeleteAllCells(std::int32_t tree);

  // Images: making, linking, walking.
  // SearchCell in the folder tree, for images that come folder by folder.
  CIDXCell* SearchFolder(const CIDXString& key);
  // A null cell leaves the image out of the tree's lists: it has no root.
  CIDXNode* CreateNode(const HashedKey& key, CIDXCell* index, CIDXCell* folder, std::uint8_t attribute);
  bool LinkNodes(std::int32_t tree, CIDXCell* cell, CIDXNode* node);
  CIDXNode* InsertNode(CIDXCell* folder, CIDXNode* node);
  static void LinkNodesSub(std::int32_t tree, CIDXNode* before, CIDXNode* after, CIDXNode* node);
  CIDXNode* IsolateNode(CIDXNode* node);
  CIDXNode* ReleaseNode(std::int32_t tree, CIDXNode* node);
  // Where a group stands in a folder's skip list, or is to stand.
  struct GroupPlace {
    CIDXSkipNode* own;     // null if there is none
    CIDXSkipNode* before;  // null if it is the first
    CIDXSkipNode* after;   // null if it is the last
    std::size_t run;       // of ordered groups: how many of skipRuns come before it
  };
  // False once an index was moved, or without a root: then groups may be out of order, and one index may have several.
  bool AreGroupsOrdered() const;
  static GroupPlace PlaceOfGroup(const CIDXCell* folder, const CIDXCell* index);
  static GroupPlace PlaceInDisorder(const CIDXCell* folder, const CIDXCell* index);
  static GroupPlace PlaceOfMarker(const CIDXCell* folder, const CIDXNode* node);
  CIDXNode* LastOfGroup(const CIDXCell* folder, const CIDXNode* node) const;
  bool InsertGroup(CIDXCell* folder, const GroupPlace& place, CIDXNode* node) const;
  void RemoveGroup(CIDXCell* folder, const GroupPlace& place) const;
  void DropFromGroup(const CIDXNode* node);
  std::uint32_t RemoveNodeSub(CIDXNode* node, std::int32_t force);
  CIDXNode* FirstMatchFromCurrentCell(SearchHandle* handle, std::int32_t recursive) const;
  CIDXNode* GetNextNodeSub(SearchHandle* handle, std::int32_t recursive) const;
  static CIDXSkipNode* CreateSkipNode(CIDXNode* node);
  CIDXNode* SearchSkipNode(std::int32_t tree, const CIDXCell* cell, const CIDXCell* filter) const;
  void HashNode(const HashedKey& key, CIDXNode* node);
  void ReleaseHashNode(CIDXNode* node);

  // Cells: making, linking, walking, order.
  CIDXCell* CreateCell(std::int32_t tree, CIDXCell* parent, const CIDXString& key, const CIDXString& name,
                       std::uint8_t attribute);
  static CIDXCell* LinkCells(CIDXCell* parent, CIDXCell* child);
  CIDXCell* IsolateCell(std::int32_t tree, CIDXCell* cell);
  static CIDXCell* ReleaseCell(CIDXCell* cell);
  std::uint32_t RemoveCellSub(std::int32_t tree, CIDXCell* cell, std::int32_t force);
  CIDXCell* GetNextCellSub(SearchHandle* handle, std::int32_t recursive) const;
  // Whether the cell that the walk stands on was moved out of the subtree it began at.
  bool HasStrayed(const SearchHandle& handle) const;
  void HashCell(std::int32_t tree, const HashedKey& key, CIDXCell* cell);
  void ReleaseHashCell(std::int32_t tree, CIDXCell* cell);
  std::int32_t IsParent(const CIDXCell* ancestor, const CIDXCell* cell) const;
  static std::int32_t CompareCell(std::int32_t tree, const CIDXCell* a, const CIDXCell* b);
  static std::int32_t CompareCellSub(const CIDXCell* a, const CIDXCell* b);
  static std::int32_t IsValidKey(std::int32_t tree, const CIDXString& key);
  bool NamesRoot(std::int32_t tree, const CIDXString& key) const { return root[tree] && key == root[tree]->info->key; }

  CIDXCell* root[kTreeCount] = {};
  HashTable<CIDXNode> nodeHash;
  HashTable<CIDXCell> cellHash[kTreeCount];
  MPCriticalRegionID criticalRegion = nullptr;
  // The cells that moves took out of the hash table, chained by the same links, so that they are deleted at
  // the end.
  HashChain<CIDXCell> movedCells[kTreeCount];
  // What finds an entry of the hash table without a walk along its chain.
  KeyTable<CIDXNode> nodeTable;
  KeyTable<CIDXCell> cellTable[kTreeCount];
  OpenFinds openFinds;
  CIDXCell* recentFolder = nullptr;  // what SearchFolder found last, as long as it stands in the hash table
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_INDEX_DATA_H_
