// The groups of a folder's image list, and the skip list of their markers.
//
// A long skip list is divided into runs of markers, so that binary search finds the run of a group. `skipRuns` contains
// the first marker of each run except the first run, which begins at `skipHead` and may be empty. A run longer than
// kLongestRun is split in two. If the allocation for that fails, the run stays long. Only ordered groups have runs.
#include <algorithm>
#include <new>

#include "store/index_data.h"

namespace catalogcore {

namespace {

constexpr std::size_t kLongestRun = 32;

const CIDXCell* IndexOf(const CIDXSkipNode* marker) { return marker->node->cell[kIndexTree]; }

void DeleteRuns(CIDXCell* folder) {
  delete folder->skipRuns;
  folder->skipRuns = nullptr;
}

// Splits a run that has become too long.
void SplitRun(CIDXCell* folder, std::size_t run) {
  const std::vector<CIDXSkipNode*>* const runs = folder->skipRuns;
  CIDXSkipNode* marker = run == 0 ? folder->skipHead : (*runs)[run - 1];
  const CIDXSkipNode* const end = runs && run < runs->size() ? (*runs)[run] : nullptr;
  CIDXSkipNode* middle = marker;
  std::size_t length = 0;
  for (; marker != end && length <= kLongestRun; marker = marker->next) {
    if (length++ == kLongestRun / 2) middle = marker;
  }
  if (length <= kLongestRun) return;
  try {
    if (!folder->skipRuns) folder->skipRuns = new std::vector<CIDXSkipNode*>;
    folder->skipRuns->insert(folder->skipRuns->begin() + static_cast<std::ptrdiff_t>(run), middle);
  } catch (const std::bad_alloc&) {  // the next group inserted in this run tries again
  }
}

}  // namespace

void DeleteSkipList(CIDXCell* cell) {
  DeleteRuns(cell);
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

bool CIndexData::AreGroupsOrdered() const { return root[kIndexTree] && !movedCells[kIndexTree].head; }

// Finds the place of the index's group among ordered groups.
CIndexData::GroupPlace CIndexData::PlaceOfGroup(const CIDXCell* folder, const CIDXCell* index) {
  const auto isBefore = [index](const CIDXSkipNode* group) {
    return CompareCell(kIndexTree, IndexOf(group), index) == -1;
  };
  GroupPlace place{};
  const CIDXSkipNode* end = nullptr;  // where the next run begins
  if (const std::vector<CIDXSkipNode*>* const runs = folder->skipRuns) {
    const auto next = std::partition_point(runs->begin(), runs->end(), isBefore);
    place.run = static_cast<std::size_t>(next - runs->begin());
    if (next != runs->begin()) place.before = next[-1];
    if (next != runs->end()) end = *next;
  }
  CIDXSkipNode* const first = place.before ? place.before->next : folder->skipHead;
  // Usually the group exists; then it is found without comparing the order of indexes.
  CIDXSkipNode* before = place.before;
  for (CIDXSkipNode* group = first; group; before = group, group = group->next) {
    if (IndexOf(group) == index) return {group, before, group->next, place.run};
    if (group == end) break;
  }
  for (place.after = first; place.after && place.after != end && isBefore(place.after);) {
    place.before = place.after;
    place.after = place.after->next;
  }
  return place;
}

// Finds the place for an image of the index among groups that may be out of order. `own` is the group before that
// place, if it is of this index.
CIndexData::GroupPlace CIndexData::PlaceInDisorder(const CIDXCell* folder, const CIDXCell* index) {
  GroupPlace place{};
  place.after = folder->skipHead;
  while (place.after && CompareCell(kIndexTree, IndexOf(place.after), index) != 1) {
    place.before = place.after;
    place.after = place.after->next;
  }
  if (place.before && IndexOf(place.before) == index) place.own = place.before;
  return place;
}

// Finds the marker that points to this image.
CIndexData::GroupPlace CIndexData::PlaceOfMarker(const CIDXCell* folder, const CIDXNode* node) {
  GroupPlace place{};
  for (place.own = folder->skipHead; place.own && place.own->node != node; place.own = place.own->next) {
    place.before = place.own;
  }
  if (place.own) place.after = place.own->next;
  return place;
}

// The last image of the node's group if it is found without a search, otherwise null.
CIDXNode* CIndexData::LastOfGroup(const CIDXCell* folder, const CIDXNode* node) const {
  if (!AreGroupsOrdered()) return nullptr;
  const CIDXCell* const index = node->cell[kIndexTree];
  CIDXNode* const lastOfFolder = folder->lastNode;
  if (lastOfFolder && lastOfFolder->cell[kIndexTree] == index) return lastOfFolder;
  // The index's list and the group are both in the order of filing.
  CIDXNode* const lastOfIndex = node->prev[kIndexTree];
  return lastOfIndex && lastOfIndex->cell[kFolderTree] == folder ? lastOfIndex : nullptr;
}

// Inserts the image into the folder's list. Returns null if a marker could not be allocated.
CIDXNode* CIndexData::InsertNode(CIDXCell* folder, CIDXNode* node) {
  if (CIDXNode* const last = LastOfGroup(folder, node)) {
    LinkNodesSub(kFolderTree, last, last->next[kFolderTree], node);
    return node;
  }
  const CIDXCell* const index = node->cell[kIndexTree];
  const GroupPlace place = AreGroupsOrdered() ? PlaceOfGroup(folder, index) : PlaceInDisorder(folder, index);
  if (!place.own && !InsertGroup(folder, place, node)) return nullptr;
  // Inserts after the last image of its group, which precedes the first image of the next group.
  CIDXNode* const after = place.after ? place.after->node : nullptr;
  LinkNodesSub(kFolderTree, after ? after->prev[kFolderTree] : folder->lastNode, after, node);
  return node;
}

bool CIndexData::InsertGroup(CIDXCell* folder, const GroupPlace& place, CIDXNode* node) const {
  CIDXSkipNode* const marker = CreateSkipNode(node);
  if (!marker) return false;
  marker->next = place.after;
  (place.before ? place.before->next : folder->skipHead) = marker;
  if (AreGroupsOrdered()) SplitRun(folder, place.run);
  return true;
}

void CIndexData::RemoveGroup(CIDXCell* folder, const GroupPlace& place) const {
  std::vector<CIDXSkipNode*>* const runs = folder->skipRuns;
  if (!AreGroupsOrdered()) {
    DeleteRuns(folder);
  } else if (runs && place.run < runs->size() && (*runs)[place.run] == place.own) {
    const auto start = runs->begin() + static_cast<std::ptrdiff_t>(place.run);
    const bool wasRun = !place.after || (start + 1 != runs->end() && start[1] == place.after);
    if (wasRun) {
      runs->erase(start);
    } else {
      *start = place.after;
    }
  }
  (place.before ? place.before->next : folder->skipHead) = place.after;
  delete place.own;
}

// Updates the markers before the image leaves its folder's list.
void CIndexData::DropFromGroup(const CIDXNode* node) {
  CIDXCell* const folder = node->cell[kFolderTree];
  const CIDXCell* const index = node->cell[kIndexTree];
  const CIDXNode* const before = node->prev[kFolderTree];
  // No marker points to an image that is not the first of its group.
  if (AreGroupsOrdered() && before && before->cell[kIndexTree] == index) return;
  const GroupPlace place = AreGroupsOrdered() ? PlaceOfGroup(folder, index) : PlaceOfMarker(folder, node);
  if (!place.own) return;
  CIDXNode* const successor = node->next[kFolderTree];
  const bool goesOn = successor && successor->cell[kIndexTree] == index;
  // Without order, the next group may have the same index and its own marker.
  if (goesOn && !(place.after && place.after->node == successor)) {
    place.own->node = successor;
  } else {
    RemoveGroup(folder, place);
  }
}

// Returns the first image of the cell whose index is in the subtree of `filter`, or null. All images of an index cell
// match.
CIDXNode* CIndexData::SearchSkipNode(std::int32_t tree, const CIDXCell* cell, const CIDXCell* filter) const {
  if (!cell->skipHead) return cell->firstNode;
  const CIDXSkipNode* marker = cell->skipHead;
  if (IsParent(filter, marker->node->cell[tree])) return marker->node;
  if (cell->skipRuns && AreGroupsOrdered()) {  // the place of a subtree's top is where its groups begin
    const GroupPlace place = PlaceOfGroup(cell, filter);
    marker = place.own ? place.own : place.after;
    return marker && IsParent(filter, marker->node->cell[tree]) ? marker->node : nullptr;
  }
  while (marker && !IsParent(filter, marker->node->cell[tree])) marker = marker->next;
  return marker ? marker->node : nullptr;
}

}  // namespace catalogcore
