// Images: filing, moving, changing and removing them, and their places in image lists and buckets.
#include <cstring>
#include <memory>

#include "catalogcore.h"
#include "store/index_data.h"

namespace catalogcore {

CIDXNode* CIndexData::SearchNode(const CIDXString& key) const { return nodeTable.Find(HashedKey(key)); }

std::uint32_t CIndexData::AddNode(const CIDXString& key, const CIDXString& indexKey, const CIDXString& folderKey,
                                  std::uint8_t attribute) {
  const HashedKey hashed(key);
  nodeTable.Prefetch(hashed);  // memory answers while the cells are looked up
  CIDXCell* const index = SearchCell(kIndexTree, indexKey);
  CIDXCell* folder = SearchFolder(folderKey);
  if (nodeTable.Find(hashed)) return StoreImageExists;
  if (!index) return StoreIndexNotFound;
  // The empty index key also names the root, and the image would be filed there. No exported call and no catalogue file
  // can pass an empty index key.
  if (index == root[kIndexTree] && indexKey.Length() != 0) return StoreInvalidKey;
  if (hashed.size > kMaxKeyBytes) return StoreInvalidKey;
  if (!folder) {
    const CIDXString noName;
    const std::uint32_t result = AddCell(kFolderTree, folderKey, noName, 0);
    if (result != StoreOk) return result;
    folder = SearchCell(kFolderTree, folderKey);
  }
  return CreateNode(hashed, index, folder, attribute) ? StoreOk : StoreFailed;
}

// Looks up the folder. Remembers the latest result, because images are usually added folder by folder.
CIDXCell* CIndexData::SearchFolder(const CIDXString& key) {
  const bool isRecent =
      recentFolder && key.Length() != 0 && std::strcmp(recentFolder->info->key.Text(), key.Text()) == 0;
  if (!isRecent) recentFolder = SearchCell(kFolderTree, key);
  return recentFolder;
}

CIDXNode* CIndexData::CreateNode(const HashedKey& key, CIDXCell* index, CIDXCell* folder, std::uint8_t attribute) {
  std::unique_ptr<CIDXNode> node(CIDXNode::Create(key.text, key.size));
  if (!node) return nullptr;
  node->info->attribute = attribute;
  if (!LinkNodes(kIndexTree, index, node.get())) return nullptr;
  if (!LinkNodes(kFolderTree, folder, node.get())) {
    ReleaseNode(kIndexTree, node.get());  // otherwise the index would keep a pointer to a deleted image
    return nullptr;
  }
  HashNode(key, node.get());
  return node.release();
}

bool CIndexData::LinkNodes(std::int32_t tree, CIDXCell* cell, CIDXNode* node) {
  node->cell[tree] = cell;
  if (!cell) return true;
  if (tree == kFolderTree) return InsertNode(cell, node) != nullptr;
  LinkNodesSub(tree, cell->lastNode, nullptr, node);
  return true;
}

void CIndexData::LinkNodesSub(std::int32_t tree, CIDXNode* before, CIDXNode* after, CIDXNode* node) {
  CIDXCell* const cell = node->cell[tree];
  node->prev[tree] = before;
  node->next[tree] = after;
  (before ? before->next[tree] : cell->firstNode) = node;
  (after ? after->prev[tree] : cell->lastNode) = node;
}

void CIndexData::HashNode(const HashedKey& key, CIDXNode* node) {
  const std::uint32_t bucket = key.Bucket();
  node->info->bucket = static_cast<std::uint16_t>(bucket);
  nodeHash[bucket].Append(node);
  nodeTable.Insert(key, node);
}

std::uint32_t CIndexData::RemoveNode(const CIDXString& key, std::int32_t force) {
  CIDXNode* const node = SearchNode(key);
  return node ? RemoveNodeSub(node, force) : StoreImageNotFound;
}

std::uint32_t CIndexData::RemoveNodeSub(CIDXNode* node, std::int32_t force) {
  if (force == 0 && (node->info->attribute & IDXATTR_NOREMOVE) != 0) return StoreRemoveProtected;
  IsolateNode(node);
  ReleaseHashNode(node);
  openFinds.Keep(node);
  return StoreOk;
}

CIDXNode* CIndexData::IsolateNode(CIDXNode* node) {
  ReleaseNode(kIndexTree, node);
  return ReleaseNode(kFolderTree, node);
}

// Takes the image out of the cell's list. The image keeps its own links: a find whose current image it is follows them.
CIDXNode* CIndexData::ReleaseNode(std::int32_t tree, CIDXNode* node) {
  CIDXCell* const cell = node->cell[tree];
  if (!cell) return node;
  if (tree == kFolderTree) DropFromGroup(node);  // first: it needs the image in the list
  CIDXNode* const before = node->prev[tree];
  CIDXNode* const after = node->next[tree];
  (before ? before->next[tree] : cell->firstNode) = after;
  (after ? after->prev[tree] : cell->lastNode) = before;
  return node;
}

void CIndexData::ReleaseHashNode(CIDXNode* node) {
  nodeHash[node->info->bucket].Remove(node);
  nodeTable.Remove(node);
}

std::uint32_t CIndexData::MoveNode(std::int32_t tree, const CIDXString& key, const CIDXString& newCellKey,
                                   std::int32_t force) {
  const CIDXNode* const node = SearchNode(key);
  if (!node) return StoreImageNotFound;
  if (NamesRoot(tree, newCellKey)) return StoreInvalidKey;
  const CIDXCell* const target = SearchCell(tree, newCellKey);
  if (!target) return StoreIndexNotFound;
  if (target == node->cell[tree]) return StoreOk;
  if (force == 0 && (node->info->attribute & IDXATTR_NOMOVE) != 0) return StoreMoveProtected;

  CIDXString otherKey;
  const CIDXCell* const otherCell = node->cell[OtherTree(tree)];
  if (otherKey.CopyString(otherCell ? otherCell->info->key.Text() : "") < 0) return StoreFailed;
  const std::uint8_t attribute = node->info->attribute;
  RemoveNode(key, 1);
  return tree == kIndexTree ? AddNode(key, newCellKey, otherKey, attribute)
                            : AddNode(key, otherKey, newCellKey, attribute);
}

std::uint32_t CIndexData::ChangeAttributeNode(const CIDXString& key, std::uint8_t attribute) {
  CIDXNode* const node = SearchNode(key);
  if (!node) return StoreImageNotFound;
  node->info->attribute = attribute;
  return StoreOk;
}

}  // namespace catalogcore
