// Making images and hanging them into the lists of their cells and into the hash table.
#include <memory>
#include <new>

#include "catalogcore.h"
#include "store/index_data.h"

CIDXNode* CIndexData::CreateNode(const CIDXString& key, const CIDXString& indexKey, const CIDXString& folderKey,
                                 std::uint8_t attribute) {
  std::unique_ptr<CIDXNode> node(new (std::nothrow) CIDXNode);
  if (!node || node->info->key.CopyString(key.Text()) < 0) return nullptr;
  node->info->attribute = attribute;
  if (!LinkNodes(kIndexTree, indexKey, node.get(), 0)) return nullptr;
  if (!LinkNodes(kFolderTree, folderKey, node.get(), 1)) {
    ReleaseNode(kIndexTree, node.get());  // or the index would keep a deleted image
    return nullptr;
  }
  HashNode(key.GetHashKey(), node.get());
  return node.release();
}

std::int32_t CIndexData::LinkNodes(std::int32_t tree, const CIDXString& cellKey, CIDXNode* node, std::int32_t sorted) {
  CIDXCell* const cell = SearchCell(tree, cellKey);
  node->cell[tree] = cell;
  if (!cell) return 1;
  if (!cell->firstNode) {
    if (sorted == 1 && !(cell->skipHead = CreateSkipNode(node))) return 0;
    cell->firstNode = node;
    cell->lastNode = node;
    return 1;
  }
  if (sorted == 1) return InsertNode(tree, cell, node) ? 1 : 0;
  LinkNodesSub(tree, cell->lastNode, nullptr, node);
  return 1;
}

void CIndexData::LinkNodesSub(std::int32_t tree, CIDXNode* before, CIDXNode* after, CIDXNode* node) {
  if (!before && !after) return;
  node->prev[tree] = before;
  node->next[tree] = after;
  (before ? before->next[tree] : after->cell[tree]->firstNode) = node;
  (after ? after->prev[tree] : before->cell[tree]->lastNode) = node;
}

CIDXNode* CIndexData::IsolateNode(CIDXNode* node) {
  ReleaseNode(kIndexTree,
              node);  // first: it mends the groups of the folder's list, which must still be whole
  return ReleaseNode(kFolderTree, node);
}

CIDXNode* CIndexData::ReleaseNode(std::int32_t tree, CIDXNode* node) {
  DropFromGroup(tree, node);
  CIDXCell* const cell = node->cell[tree];
  if (!cell) return node;
  CIDXNode* const before = node->prev[tree];
  CIDXNode* const after = node->next[tree];
  (before ? before->next[tree] : cell->firstNode) = after;
  (after ? after->prev[tree] : cell->lastNode) = before;
  return node;
}

std::uint32_t CIndexData::RemoveNodeSub(CIDXNode* node, std::int32_t force) {
  if (force == 0 && (node->info->attribute & IDXATTR_NOREMOVE) != 0) return StoreRemoveProtected;
  IsolateNode(node);
  ReleaseHashNode(node->info->key.GetHashKey(), node);
  delete node;
  return StoreOk;
}

void CIndexData::HashNode(std::uint32_t hash, CIDXNode* node) {
  if (hash >= CIDXString::kBucketCount) return;
  nodeHash[hash].Append(node);
  nodeTable.Insert(node);
}

void CIndexData::ReleaseHashNode(std::uint32_t hash, CIDXNode* node) {
  if (!node || hash >= CIDXString::kBucketCount) return;
  nodeHash[hash].Remove(node);
  nodeTable.Remove(node);
}
