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

bool CIndexData::AreGroupsOrdered() const { return !movedCells[kIndexTree].head; }

CIDXSkipNode* CIndexData::GroupUpTo(const CIDXCell* folder, const CIDXCell* index) const {
  if (AreGroupsOrdered()) {  // mostly the index's own group is there, and found without comparing indexes
    for (CIDXSkipNode* group = folder->skipHead; group; group = group->next) {
      if (group->node->cell[kIndexTree] == index) return group;
    }
  }
  CIDXSkipNode* last = nullptr;
  for (CIDXSkipNode* group = folder->skipHead; group; last = group, group = group->next) {
    if (CompareCell(kIndexTree, group->node->cell[kIndexTree], index) == 1) break;
  }
  return last;
}

CIDXNode* CIndexData::InsertNode(CIDXCell* folder, CIDXNode* node) {
  CIDXSkipNode* const group = GroupUpTo(folder, node->cell[kIndexTree]);
  CIDXSkipNode* const following = group ? group->next : folder->skipHead;
  const bool isOwn = group && group->node->cell[kIndexTree] == node->cell[kIndexTree];
  if (!isOwn) {
    CIDXSkipNode* const marker = CreateSkipNode(node);
    if (!marker) return nullptr;
    marker->next = following;
    (group ? group->next : folder->skipHead) = marker;
  }
  // Behind its group's last image, which is the one before the following group's first.
  if (following) {
    LinkNodesSub(kFolderTree, following->node->prev[kFolderTree], following->node, node);
  } else {
    LinkNodesSub(kFolderTree, folder->lastNode, nullptr, node);
  }
  return node;
}

void CIndexData::DropFromGroup(const CIDXNode* node) {
  CIDXCell* const folder = node->cell[kFolderTree];
  const CIDXCell* const index = node->cell[kIndexTree];
  const CIDXNode* const before = node->prev[kFolderTree];
  // Not the first of its group: no marker names it.
  if (AreGroupsOrdered() && before && before->cell[kIndexTree] == index) return;
  CIDXSkipNode** link = &folder->skipHead;
  while (*link && (*link)->node != node) link = &(*link)->next;
  CIDXSkipNode* const marker = *link;
  if (!marker) return;
  CIDXNode* const successor = node->next[kFolderTree];
  const bool goesOn = successor && successor->cell[kIndexTree] == index;
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
