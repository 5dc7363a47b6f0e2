// The catalogue in memory: images filed in a tree of indexes and in a tree of folders.
#ifndef CATALOGCORE_STORE_INDEX_DATA_H_
#define CATALOGCORE_STORE_INDEX_DATA_H_

#include <cstddef>
#include <cstdint>

#include "base/critical_region.h"
#include "base/idx_string.h"
#include "store/entries.h"
#include "store/key_table.h"
#include "store/open_finds.h"
#include "store/walks.h"

namespace catalogcore {

// The length limit of all keys, in bytes.
inline constexpr std::int32_t kMaxKeyBytes = 4096;

// entries.h has the glossary and the invariants.
//
// Thread rule: the store does not lock. Every caller holds the lock (`criticalRegion`) during a call and while it uses
// the result.
//
// `tree` is kIndexTree or kFolderTree. `force` (non-zero) overrides the protection by attributes. A key passed in must
// not be a string of the store.
//
// The comment of an operation lists the results of its checks, in the order of the checks. A check that fails leaves
// the store unchanged; exceptions are stated.
//
// Walks: between two steps of a find (Finds().Open) the store may change in any way. Any other walk requires that
// nothing is removed before its end. Each step uses the store as it is at that time. A step from a removed image
// continues with the image that followed it in its list when it was removed. A step from a removed cell ends the walk.
// A step from a moved cell continues from the cell's new place, or ends the walk if that place is outside the subtree
// where the walk began.
class CIndexData {
 public:
  CIndexData();
  ~CIndexData();
  CIndexData(const CIndexData&) = delete;
  CIndexData& operator=(const CIndexData&) = delete;

  // Deletes all entries and creates the two roots (key and name ".", all protections). Always returns StoreOk: a root
  // that could not be allocated is null, and operations that need it find no cell.
  std::uint32_t Initialize();

  // Deletes all entries, including the roots. Always returns StoreOk.
  std::uint32_t Uninitialize();

  MPCriticalRegionID* CriticalRegion() { return &criticalRegion; }

  // Initialize and Uninitialize close all finds.
  OpenFinds& Finds() { return openFinds; }

  // The first image of a bucket (below CIDXString::kBucketCount), null if the bucket is empty.
  CIDXNode* FirstNodeOfBucket(std::uint32_t bucket) const { return nodeHash[bucket].head; }

  // ---- Images

  // Files an image. StoreImageExists; StoreIndexNotFound; StoreInvalidKey for the index key ".", for an invalid folder
  // key and for an image key that is too long. (The empty index key also names the root and is accepted, but no
  // exported call and no catalogue file can pass it.) Creates the folder and its missing ancestors as AddCell does.
  // StoreFailed: the image is not filed. If AddCell failed, it may have removed folders. If the image itself could not
  // be allocated, the folder that was created for it stays.
  std::uint32_t AddNode(const CIDXString& key, const CIDXString& indexKey, const CIDXString& folderKey,
                        std::uint8_t attribute);

  // Removes an image. StoreImageNotFound; StoreRemoveProtected.
  std::uint32_t RemoveNode(const CIDXString& key, std::int32_t force);

  // Files an image in another cell of one tree. StoreImageNotFound; StoreInvalidKey for the key ".";
  // StoreIndexNotFound; StoreOk, without a change, if the image is already there; StoreMoveProtected. The image is
  // removed and filed again as a new object: at the end of the index's list, and at the end of its group in the
  // folder's list. If filing fails, the image is lost, and the result is that of AddNode.
  std::uint32_t MoveNode(std::int32_t tree, const CIDXString& key, const CIDXString& newCellKey, std::int32_t force);

  // Replaces the attribute of an image. StoreImageNotFound.
  std::uint32_t ChangeAttributeNode(const CIDXString& key, std::uint8_t attribute);

  // Returns the image with this key, or null.
  CIDXNode* SearchNode(const CIDXString& key) const;

  // Begins a walk over the images whose index is in the subtree of `indexKey`. Walks the index tree if `folderKey` has
  // no block or is ".", otherwise the folder `folderKey` (recursive 1: and its subfolders); each cell in the order of
  // its image list. Returns the first image or null. Removes one trailing "/" from the key where the walk begins.
  CIDXNode* GetFirstNode(SearchHandle* handle, CIDXString& indexKey, CIDXString& folderKey,
                         std::int32_t recursive) const;

  // Returns the next image, or null at the end of the walk.
  CIDXNode* GetNextNode(SearchHandle* handle, std::int32_t recursive) const;

  // ---- Cells

  // Creates a cell and its missing ancestors, all with this name and attribute. StoreIndexExists; StoreInvalidKey.
  // StoreFailed: an allocation failed. Then RemoveCell without force is called for the parent of the cell that could
  // not be created, and for every cell above the parent. This removes the cells that this call created. It also removes
  // older ancestors that have no other child, with their images.
  std::uint32_t AddCell(std::int32_t tree, const CIDXString& key, const CIDXString& name, std::uint8_t attribute);

  // Removes a cell and its images. StoreIndexNotFound; StoreIndexHasChildren; StoreRemoveProtected; StoreInvalidKey for
  // a root. Stops at the first protected image with StoreRemoveProtected; the images before it stay removed.
  std::uint32_t RemoveCell(std::int32_t tree, const CIDXString& key, std::int32_t force);

  // Changes the name of a cell; its key stays. StoreIndexNotFound; StoreRenameProtected; StoreFailed.
  std::uint32_t RenameCell(std::int32_t tree, const CIDXString& key, const CIDXString& newName, std::int32_t force);

  // Replaces the attribute of a cell. StoreIndexNotFound.
  std::uint32_t ChangeAttributeCell(std::int32_t tree, const CIDXString& key, std::uint8_t attribute);

  // Returns the cell with this key, or null. A key of length 0 names the root.
  CIDXCell* SearchCell(std::int32_t tree, const CIDXString& key) const;

  // Begins a walk at the cell `key` and returns this cell, null if it is missing. With `recursive` 1 the walk continues
  // through the subtree in pre-order. Removes one trailing "/" from `key`. A recursive walk of the folder tree from "/"
  // begins at the root and skips cells whose key begins with "/Volumes".
  CIDXCell* GetFirstCell(SearchHandle* handle, std::int32_t tree, CIDXString& key, std::int32_t recursive) const;

  // Returns the next cell, or null at the end of the walk.
  CIDXCell* GetNextCell(SearchHandle* handle, std::int32_t recursive) const;

  // Moves a cell under the parent that `newKey` names. No exported call uses this operation. StoreIndexNotFound;
  // StoreInvalidKey; StoreIndexExists; StoreIndexNotFound for the parent; StoreOk, without a change, if that is already
  // the parent; StoreInvalidKey for a parent below the cell itself; StoreMoveProtected. The moved cell keeps its key.
  // Walks find it in its new place, but no key does. Neither walks nor keys find its former descendants. Keys and walks
  // of folders still find the images of all of them.
  std::uint32_t MoveCell(std::int32_t tree, const CIDXString& oldKey, const CIDXString& newKey, std::int32_t force);

 private:
  friend class StoreInspector;  // gives the tests access to check the invariants

  template <typename Entry>
  using HashTable = HashChain<Entry>[CIDXString::kBucketCount];

  // index_data.cpp
  void DeleteAllNodes();
  void DeleteAllCells(std::int32_t tree);

  // images.cpp. `cell` may be null, but only in a tree without a root. The image is then in no list of that tree.
  CIDXCell* SearchFolder(const CIDXString& key);
  CIDXNode* CreateNode(const HashedKey& key, CIDXCell* index, CIDXCell* folder, std::uint8_t attribute);
  bool LinkNodes(std::int32_t tree, CIDXCell* cell, CIDXNode* node);
  static void LinkNodesSub(std::int32_t tree, CIDXNode* before, CIDXNode* after, CIDXNode* node);
  CIDXNode* IsolateNode(CIDXNode* node);
  CIDXNode* ReleaseNode(std::int32_t tree, CIDXNode* node);
  std::uint32_t RemoveNodeSub(CIDXNode* node, std::int32_t force);
  void HashNode(const HashedKey& key, CIDXNode* node);
  void ReleaseHashNode(CIDXNode* node);

  // folder_groups.cpp
  // The place of a group in a folder's skip list; if the group is missing, the place where it is to be inserted.
  struct GroupPlace {
    CIDXSkipNode* own;     // the marker of the group; null if the group is missing
    CIDXSkipNode* before;  // the marker before it; null if the group is the first
    CIDXSkipNode* after;   // the marker after it; null if the group is the last
    std::size_t run;       // ordered groups: the number of elements of skipRuns before this place
  };
  // False after an index was moved, or if the root is missing (see "Groups" in entries.h).
  bool AreGroupsOrdered() const;
  static GroupPlace PlaceOfGroup(const CIDXCell* folder, const CIDXCell* index);
  static GroupPlace PlaceInDisorder(const CIDXCell* folder, const CIDXCell* index);
  static GroupPlace PlaceOfMarker(const CIDXCell* folder, const CIDXNode* node);
  CIDXNode* LastOfGroup(const CIDXCell* folder, const CIDXNode* node) const;
  CIDXNode* InsertNode(CIDXCell* folder, CIDXNode* node);
  bool InsertGroup(CIDXCell* folder, const GroupPlace& place, CIDXNode* node) const;
  void RemoveGroup(CIDXCell* folder, const GroupPlace& place) const;
  void DropFromGroup(const CIDXNode* node);
  static CIDXSkipNode* CreateSkipNode(CIDXNode* node);
  CIDXNode* SearchSkipNode(std::int32_t tree, const CIDXCell* cell, const CIDXCell* filter) const;

  // walks.cpp
  CIDXCell* GetNextCellSub(SearchHandle* handle, std::int32_t recursive) const;
  CIDXNode* FirstMatchFromCurrentCell(SearchHandle* handle, std::int32_t recursive) const;
  CIDXNode* GetNextNodeSub(SearchHandle* handle, std::int32_t recursive) const;
  bool IsOutsideSubtree(const SearchHandle& handle) const;

  // cells.cpp
  CIDXCell* CreateCell(std::int32_t tree, CIDXCell* parent, const CIDXString& key, const CIDXString& name,
                       std::uint8_t attribute);
  static CIDXCell* LinkCells(CIDXCell* parent, CIDXCell* child);
  CIDXCell* IsolateCell(std::int32_t tree, CIDXCell* cell);
  static CIDXCell* ReleaseCell(CIDXCell* cell);
  std::uint32_t RemoveCellSub(std::int32_t tree, CIDXCell* cell, std::int32_t force);
  void HashCell(std::int32_t tree, const HashedKey& key, CIDXCell* cell);
  void ReleaseHashCell(std::int32_t tree, CIDXCell* cell);
  static std::int32_t IsValidKey(std::int32_t tree, const CIDXString& key);
  bool NamesRoot(std::int32_t tree, const CIDXString& key) const { return root[tree] && key == root[tree]->info->key; }

  // cell_order.cpp
  std::int32_t IsParent(const CIDXCell* ancestor, const CIDXCell* cell) const;
  static std::int32_t CompareCell(std::int32_t tree, const CIDXCell* a, const CIDXCell* b);
  static std::int32_t CompareCellSub(const CIDXCell* a, const CIDXCell* b);

  CIDXCell* root[kTreeCount] = {};
  HashTable<CIDXNode> nodeHash;
  HashTable<CIDXCell> cellHash[kTreeCount];
  MPCriticalRegionID criticalRegion = nullptr;
  HashChain<CIDXCell> movedCells[kTreeCount];  // so that they are deleted at the end
  KeyTable<CIDXNode> nodeTable;
  KeyTable<CIDXCell> cellTable[kTreeCount];
  OpenFinds openFinds;
  CIDXCell* recentFolder = nullptr;  // the result of the latest SearchFolder; null after this folder was removed
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_INDEX_DATA_H_
