#include "tests/support/catalogue_state.h"

#include <set>

#include "store/cell_order.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

std::string KeyOf(const CIDXNode* node) { return node->info->key.Text(); }
std::string KeyOf(const CIDXCell* cell) { return cell->info->key.Text(); }

template <typename Entry>
Keys ChainKeys(const HashChain<Entry>& chain) {
  Keys keys;
  for (const Entry* entry = chain.head; entry; entry = entry->hashNext) keys.push_back(KeyOf(entry));
  return keys;
}

CellState StateOfCell(const CIDXCell* cell, int tree) {
  CellState state{KeyOf(cell), cell->info->name.Text(), cell->info->attribute, 0, {}, {}};
  for (const CIDXCell* up = cell->parent; up; up = up->parent) ++state.depth;
  for (const CIDXNode* node = cell->firstNode; node; node = node->next[tree]) state.images.push_back(KeyOf(node));
  for (const CIDXSkipNode* marker = cell->skipHead; marker; marker = marker->next) {
    state.groups.push_back(KeyOf(marker->node));
  }
  return state;
}

template <typename Visit>
void ForEachCell(const CIndexData& store, int tree, Visit visit) {
  const CIDXCell* const root = StoreInspector(store).Root(tree);
  for (auto* cell = const_cast<CIDXCell*>(root); cell; cell = NextInPreOrder(root, cell)) visit(cell);
}

template <typename Entry>
std::string BrokenChain(const HashChain<Entry>& chain, const KeyTable<Entry>& table, std::uint32_t bucket,
                        std::set<const Entry*>& chained) {
  const Entry* before = nullptr;
  for (const Entry* entry = chain.head; entry; before = entry, entry = entry->hashNext) {
    if (entry->hashPrev != before) return "chain link back from " + KeyOf(entry);
    if (entry->info->key.GetHashKey() != bucket) return "wrong bucket of " + KeyOf(entry);
    if (!chained.insert(entry).second) return "twice in the table: " + KeyOf(entry);
    const Entry* first = chain.head;
    while (first->info->key != entry->info->key) first = first->hashNext;
    if (table.Find(HashedKey(entry->info->key)) != first) return "key table at " + KeyOf(entry);
  }
  return chain.tail == before ? "" : "end of chain " + std::to_string(bucket);
}

std::string BrokenLinks(const CIDXCell* cell) {
  const CIDXCell* before = nullptr;
  for (const CIDXCell* child = cell->firstChild; child; before = child, child = child->nextSibling) {
    if (child->parent != cell || child->prevSibling != before) return "links of child " + KeyOf(child);
    if (before && before->ordinal >= child->ordinal) return "ordinal of child " + KeyOf(child);
  }
  return cell->lastChild == before ? "" : "last child of " + KeyOf(cell);
}

std::string BrokenImageList(const CIDXCell* cell, int tree, bool isOrdered, std::set<const CIDXNode*>& filed) {
  const CIDXNode* before = nullptr;
  const CIDXSkipNode* marker = cell->skipHead;
  const std::vector<CIDXSkipNode*> noRuns;
  const std::vector<CIDXSkipNode*>& runs = isOrdered && cell->skipRuns ? *cell->skipRuns : noRuns;
  std::size_t runsSeen = 0;
  for (const CIDXNode* node = cell->firstNode; node; before = node, node = node->next[tree]) {
    if (node->cell[tree] != cell || node->prev[tree] != before) return "links of image " + KeyOf(node);
    if (!filed.insert(node).second) return "filed twice: " + KeyOf(node);
    if (tree == kIndexTree) continue;
    const bool beginsGroup = !before || before->cell[kIndexTree] != node->cell[kIndexTree];
    const bool isSecondGroup = !isOrdered && marker && marker->node == node;  // of the same index, side by side
    if (!beginsGroup && !isSecondGroup) continue;
    if (!marker || marker->node != node) return "marker of group at " + KeyOf(node);
    if (before && isOrdered && StoreInspector::Compare(before->cell[kIndexTree], node->cell[kIndexTree]) != -1) {
      return "order of groups at " + KeyOf(node);
    }
    if (runsSeen < runs.size() && runs[runsSeen] == marker) ++runsSeen;
    marker = marker->next;
  }
  if (runsSeen != runs.size()) return "run of groups in " + KeyOf(cell);
  if (marker) return "marker without a group in " + KeyOf(cell);
  return cell->lastNode == before ? "" : "last image of " + KeyOf(cell);
}

// `filed`: every image that is. Nothing that a removed entry leads to is looked at before it is known to be there.
std::string BrokenWaiting(const FindSpan* first, const std::set<const CIDXNode*>& filed) {
  std::set<const CIDXNode*> there = filed;
  for (const FindSpan* span = first; span; span = span->next) {
    for (const CIDXNode* node = span->nodes.head; node; node = node->hashNext) there.insert(node);
    for (const CIDXCell* cell = span->cells.head; cell; cell = cell->hashNext) {
      if (cell->parent || cell->nextSibling || cell->firstChild || cell->firstNode) return "removed " + KeyOf(cell);
    }
  }
  for (const CIDXNode* node : there) {
    if (node->info->removed == (filed.count(node) == 1)) return "mark of " + KeyOf(node);
    for (int tree = 0; tree < kTreeCount; ++tree) {
      const CIDXNode* const next = node->next[tree];
      if (next && (!there.count(next) || next->cell[tree] != node->cell[tree])) return "what follows " + KeyOf(node);
    }
  }
  return "";
}

}  // namespace

CatalogueState StateOf(const CIndexData& store) {
  const StoreInspector inspector(store);
  CatalogueState state;
  for (std::uint32_t bucket = 0; bucket < CIDXString::kBucketCount; ++bucket) {
    const HashChain<CIDXNode>& images = inspector.ImageChain(bucket);
    if (images.head) state.imageChains[bucket] = ChainKeys(images);
    for (const CIDXNode* node = images.head; node; node = node->hashNext) {
      state.attributes[KeyOf(node)] = node->info->attribute;
    }
    for (int tree = 0; tree < kTreeCount; ++tree) {
      const HashChain<CIDXCell>& cells = inspector.CellChain(tree, bucket);
      if (cells.head) state.cellChains[tree][bucket] = ChainKeys(cells);
    }
  }
  for (int tree = 0; tree < kTreeCount; ++tree) {
    ForEachCell(store, tree, [&](const CIDXCell* cell) { state.cells[tree].push_back(StateOfCell(cell, tree)); });
  }
  return state;
}

std::string BrokenInvariant(const CIndexData& store) {
  const StoreInspector inspector(store);
  std::set<const CIDXNode*> chainedImages;
  std::set<const CIDXCell*> chainedCells;
  for (std::uint32_t bucket = 0; bucket < CIDXString::kBucketCount; ++bucket) {
    std::string broken = BrokenChain(inspector.ImageChain(bucket), inspector.ImageTable(), bucket, chainedImages);
    for (int tree = 0; tree < kTreeCount && broken.empty(); ++tree) {
      broken = BrokenChain(inspector.CellChain(tree, bucket), inspector.CellTable(tree), bucket, chainedCells);
    }
    if (!broken.empty()) return broken;
  }
  std::size_t inTable = 0;
  // Moved indexes leave their groups where they were.
  const bool isOrdered = inspector.Root(kIndexTree) && !inspector.MovedCells(kIndexTree).head;
  for (int tree = 0; tree < kTreeCount; ++tree) {
    std::set<const CIDXNode*> filed;
    std::set<const CIDXCell*> cells;
    std::string broken;
    const auto visit = [&](const CIDXCell* cell) {
      if (!cells.insert(cell).second || !broken.empty()) return;
      broken = BrokenLinks(cell);
      if (broken.empty()) broken = BrokenImageList(cell, tree, isOrdered, filed);
      if (broken.empty() && tree == kIndexTree && cell->skipHead) broken = "marker in index " + KeyOf(cell);
      if (broken.empty() && chainedCells.count(cell) == (cell->info->moved ? 1 : 0)) broken = "table of " + KeyOf(cell);
      if (!cell->info->moved) ++inTable;
    };
    ForEachCell(store, tree, visit);
    for (const CIDXCell* cell = inspector.MovedCells(tree).head; cell; cell = cell->hashNext) visit(cell);
    if (broken.empty() && filed != chainedImages) broken = "images filed and images in the table differ";
    if (!broken.empty()) return broken;
  }
  // A root that there was no memory for leaves its tree's other cells to the table alone.
  const bool hasRoots = inspector.Root(kIndexTree) && inspector.Root(kFolderTree);
  if (hasRoots && inTable != chainedCells.size()) return "a cell in the table is in no tree";
  if (inspector.ImageTable().Count() != chainedImages.size()) return "count of the images' key table";
  const std::uint64_t cells = inspector.CellTable(kIndexTree).Count() + inspector.CellTable(kFolderTree).Count();
  if (cells != chainedCells.size()) return "count of the cells' key tables";
  return BrokenWaiting(inspector.FirstSpan(), chainedImages);
}

std::ostream& operator<<(std::ostream& out, const CatalogueState& state) {
  for (const auto& cells : state.cells) {
    for (const CellState& cell : cells) {
      out << "\n" << cell.depth << " '" << cell.key << "' name '" << cell.name << "' attribute " << cell.attribute;
      for (const std::string& image : cell.images) out << " [" << image << "]";
    }
  }
  return out << "\n";
}

}  // namespace catalogcore
