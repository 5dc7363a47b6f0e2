// Making images and hanging them into the lists of their cells and into the hash table.
#include <memory>

#include "catalogcore.h"
#include "store/index_data.h"

namespace catalogcore {

CIDXNode* CIndexData::CreateNode(const HashedKey& key, CIDXCell* index, CIDXCell* folder, std::uint8_t attribute) {
  std::unique_ptr<CIDXNode> node(CIDXNode::Create(key.text, key.size));
  if (!node) return nullptr;
  node->info->attribute = attribute;
  if (!LinkNodes(kIndexTree, index, node.get())) return nullptr;
  if (!LinkNodes(kFolderTree, folder, node.get())) {
    ReleaseNode(kIndexTree, node.get());  // or the index would keep a deleted image
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

CIDXNode* CIndexData::IsolateNode(CIDXNode* node) {
  ReleaseNode(kIndexTree, node);
  return ReleaseNode(kFolderTree, node);
}

CIDXNode* CIndexData::ReleaseNode(std::int32_t tree, CIDXNode* node) {
  CIDXCell* const cell = node->cell[tree];
  if (!cell) return node;
  if (tree == kFolderTree) DropFromGroup(node);  // while the list is whole
  CIDXNode* const before = node->prev[tree];
  CIDXNode* const after = node->next[tree];
  (before ? before->next[tree] : cell->firstNode) = after;
  (after ? after->prev[tree] : cell->lastNode) = before;
  return node;
}

std::uint32_t CIndexData::RemoveNodeSub(CIDXNode* node, std::int32_t force) {
  if (force == 0 && (node->info->attribute & IDXATTR_NOREMOVE) != 0) return StoreRemoveProtected;
  IsolateNode(node);
  ReleaseHashNode(node);
  openFinds.Keep(node);
  return StoreOk;
}

void CIndexData::HashNode(const HashedKey& key, CIDXNode* node) {
  const std::uint32_t bucket = key.Bucket();
  node->info->bucket = static_cast<std::uint16_t>(bucket);
  nodeHash[bucket].Append(node);
  nodeTable.Insert(key, node);
}

void CIndexData::ReleaseHashNode(CIDXNode* node) {
  nodeHash[node->info->bucket].Remove(node);
  nodeTable.Remove(node);
}

}  // namespace catalogcore
