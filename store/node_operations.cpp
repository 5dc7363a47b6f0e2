// The public operations on images.
#include <cstring>

#include "catalogcore.h"
#include "store/index_data.h"

CIDXNode* CIndexData::SearchNode(const CIDXString& key) const { return nodeTable.Find(key); }

std::uint32_t CIndexData::AddNode(const CIDXString& key, const CIDXString& indexKey, const CIDXString& folderKey,
                                  std::uint8_t attribute) {
  if (SearchNode(key)) return StoreImageExists;
  // An empty index key gets past this on purpose: it names the root, and the image is filed there.
  if (NamesRoot(kIndexTree, indexKey)) return StoreInvalidKey;
  if (!SearchCell(kIndexTree, indexKey)) return StoreIndexNotFound;
  if (!IsValidKey(kFolderTree, folderKey) || std::strlen(key.Text()) > kMaxKeyBytes) return StoreInvalidKey;
  const CIDXString noName;
  const std::uint32_t result = AddCell(kFolderTree, folderKey, noName, 0);
  if (result != StoreOk && result != StoreIndexExists) return result;
  return CreateNode(key, indexKey, folderKey, attribute) ? StoreOk : StoreFailed;
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
