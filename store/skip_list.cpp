// The groups of a folder's image list: one marker for each index that its images are filed under, in tree
// order.
#include <new>

#include "store/index_data.h"

void DeleteSkipList(CIDXCell* cell) {
  while (CIDXSkipNode* const marker = cell->skipHead) {
    cell->skipHead = marker->next;
    delete marker;
  }
}

CIDXSkipNode* CIndexData::CreateSkipNode(CIDXNode* node) {
  auto* const marker = new (std::nothrow) CIDXSkipNode;
  if (marker) marker->node = node;
  return marker;
}

CIDXNode* CIndexData::InsertNode(std::int32_t tree, CIDXCell* cell, CIDXNode* node) {
  const std::int32_t other = OtherTree(tree);
  // Stop at the first group that comes after the image's own.
  CIDXSkipNode* previous = nullptr;
  CIDXSkipNode* following = cell->skipHead;
  bool isInPrevious = false;
  for (; following; previous = following, following = following->next) {
    const std::int32_t order = CompareCell(other, following->node->cell[other], node->cell[other]);
    if (order == 1) break;
    isInPrevious = order == 0;
  }
  if (!isInPrevious) {
    CIDXSkipNode* const marker = CreateSkipNode(node);
    if (!marker) return nullptr;
    marker->next = following;
    (previous ? previous->next : cell->skipHead) = marker;
  }
  // Behind its group's last image, which is the one before the following group's first.
  if (following) {
    LinkNodesSub(tree, following->node->prev[tree], following->node, node);
  } else {
    LinkNodesSub(tree, cell->lastNode, nullptr, node);
  }
  return node;
}

void CIndexData::DropFromGroup(std::int32_t tree, CIDXNode* node) {
  const std::int32_t other = OtherTree(tree);
  CIDXCell* const cell = node->cell[other];
  if (!cell) return;
  CIDXSkipNode** link = &cell->skipHead;
  while (*link && (*link)->node != node) link = &(*link)->next;
  CIDXSkipNode* const marker = *link;
  if (!marker) return;
  CIDXNode* const successor = node->next[other];
  const bool goesOn = successor && successor->cell[tree] == node->cell[tree];
  // After a move of cells the run that follows may be of the same index and have a marker of its own.
  if (goesOn && !(marker->next && marker->next->node == successor)) {
    marker->node = successor;
    return;
  }
  *link = marker->next;
  delete marker;
}

CIDXNode* CIndexData::SearchSkipNode(std::int32_t tree, const CIDXCell* cell, const CIDXCell* filter) const {
  if (!cell->skipHead) return cell->firstNode;
  for (const CIDXSkipNode* marker = cell->skipHead; marker; marker = marker->next) {
    if (IsParent(filter, marker->node->cell[tree])) return marker->node;
  }
  return nullptr;
}
