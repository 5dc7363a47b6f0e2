// The groups of a folder's image list: one marker for each index that its images are filed under, in tree order.
//
// A long skip list is cut into runs of markers, so that a group is found without a walk along all of them: `skipRuns` has
// the first marker of each run but the first run, which begins at `skipHead` and may be empty. A run that grows beyond
// kLongestRun is cut in two, unless there is no memory for it; then it gets longer, and nothing fails. Only ordered
// groups have runs.
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

// Cuts a run that has become too long.
void CutRun(CIDXCell* folder, std::size_t run) {
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
  } catch (const std::bad_alloc&) {  // the next group in this run tries again
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
  // Mostly the index's own group is there, and found without comparing indexes.
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

CIndexData::GroupPlace CIndexData::PlaceOfMarker(const CIDXCell* folder, const CIDXNode* node) {
  GroupPlace place{};
  for (place.own = folder->skipHead; place.own && place.own->node != node; place.own = place.own->next) {
    place.before = place.own;
  }
  if (place.own) place.after = place.own->next;
  return place;
}

// An image of the same group, the last one, if it is found without a search; null otherwise.
CIDXNode* CIndexData::LastOfGroup(const CIDXCell* folder, const CIDXNode* node) const {
  if (!AreGroupsOrdered()) return nullptr;
  const CIDXCell* const index = node->cell[kIndexTree];
  CIDXNode* const lastOfFolder = folder->lastNode;
  if (lastOfFolder && lastOfFolder->cell[kIndexTree] == index) return lastOfFolder;
  // An index's list and a group are both in the order of filing.
  CIDXNode* const lastOfIndex = node->prev[kIndexTree];
  return lastOfIndex && lastOfIndex->cell[kFolderTree] == folder ? lastOfIndex : nullptr;
}

CIDXNode* CIndexData::InsertNode(CIDXCell* folder, CIDXNode* node) {
  if (CIDXNode* const last = LastOfGroup(folder, node)) {
    LinkNodesSub(kFolderTree, last, last->next[kFolderTree], node);
    return node;
  }
  const CIDXCell* const index = node->cell[kIndexTree];
  const GroupPlace place = AreGroupsOrdered() ? PlaceOfGroup(folder, index) : PlaceInDisorder(folder, index);
  if (!place.own && !InsertGroup(folder, place, node)) return nullptr;
  // Behind its group's last image, which is the one before the following group's first.
  CIDXNode* const after = place.after ? place.after->node : nullptr;
  LinkNodesSub(kFolderTree, after ? after->prev[kFolderTree] : folder->lastNode, after, node);
  return node;
}

bool CIndexData::InsertGroup(CIDXCell* folder, const GroupPlace& place, CIDXNode* node) const {
  CIDXSkipNode* const marker = CreateSkipNode(node);
  if (!marker) return false;
  marker->next = place.after;
  (place.before ? place.before->next : folder->skipHead) = marker;
  if (AreGroupsOrdered()) CutRun(folder, place.run);
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

void CIndexData::DropFromGroup(const CIDXNode* node) {
  CIDXCell* const folder = node->cell[kFolderTree];
  const CIDXCell* const index = node->cell[kIndexTree];
  const CIDXNode* const before = node->prev[kFolderTree];
  // Not the first of its group: no marker names it.
  if (AreGroupsOrdered() && before && before->cell[kIndexTree] == index) return;
  const GroupPlace place = AreGroupsOrdered() ? PlaceOfGroup(folder, index) : PlaceOfMarker(folder, node);
  if (!place.own) return;
  CIDXNode* const successor = node->next[kFolderTree];
  const bool goesOn = successor && successor->cell[kIndexTree] == index;
  // In disorder the run that follows may be of the same index and have a marker of its own.
  if (goesOn && !(place.after && place.after->node == successor)) {
    place.own->node = successor;
  } else {
    RemoveGroup(folder, place);
  }
}

CIDXNode* CIndexData::SearchSkipNode(std::int32_t tree, const CIDXCell* cell, const CIDXCell* filter) const {
  if (!cell->skipHead) return cell->firstNode;
  const CIDXSkipNode* marker = cell->skipHead;
  if (IsParent(filter, marker->node->cell[tree])) return marker->node;
  if (cell->skipRuns && AreGroupsOrdered()) {  // a subtree begins with its top
    const GroupPlace place = PlaceOfGroup(cell, filter);
    marker = place.own ? place.own : place.after;
    return marker && IsParent(filter, marker->node->cell[tree]) ? marker->node : nullptr;
  }
  while (marker && !IsParent(filter, marker->node->cell[tree])) marker = marker->next;
  return marker ? marker->node : nullptr;
}

}  // namespace catalogcore
