// The public operations on images.
#include <cstring>

#include "catalogcore.h"
#include "store/index_data.h"

namespace catalogcore {

CIDXNode* CIndexData::SearchNode(const CIDXString& key) const { return nodeTable.Find(HashedKey(key)); }

std::uint32_t CIndexData::AddNode(const CIDXString& key, const CIDXString& indexKey, const CIDXString& folderKey,
                                  std::uint8_t attribute) {
  const HashedKey hashed(key);
  nodeTable.Prefetch(hashed);  // comes from memory while the cells are looked up
  CIDXCell* const index = SearchCell(kIndexTree, indexKey);
  CIDXCell* folder = SearchFolder(folderKey);
  if (nodeTable.Find(hashed)) return StoreImageExists;
  if (!index) return StoreIndexNotFound;
  // An empty index key gets past this on purpose: it names the root, and the image is filed there.
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

CIDXCell* CIndexData::SearchFolder(const CIDXString& key) {
  const bool isRecent =
      recentFolder && key.Length() != 0 && std::strcmp(recentFolder->info->key.Text(), key.Text()) == 0;
  if (!isRecent) recentFolder = SearchCell(kFolderTree, key);
  return recentFolder;
}

std::uint32_t CIndexData::RemoveNode(const CIDXString& key, std::int32_t force) {
  CIDXNode* const node = SearchNode(key);
  return node ? RemoveNodeSub(node, force) : StoreImageNotFound;
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
