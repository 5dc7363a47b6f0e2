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

// Checks all buckets and the key table; `chained` gets their entries.
template <typename Entry, typename ChainOf>
std::string BrokenTable(ChainOf chainOf, const KeyTable<Entry>& table, std::set<const Entry*>& chained) {
  for (std::uint32_t bucket = 0; bucket < CIDXString::kBucketCount; ++bucket) {
    const HashChain<Entry>& chain = chainOf(bucket);
    const Entry* before = nullptr;
    for (const Entry* entry = chain.head; entry; before = entry, entry = entry->hashNext) {
      if (entry->hashPrev != before) return "chain link back from " + KeyOf(entry);
      chained.insert(entry);
      const Entry* first = chain.head;
      while (first->info->key != entry->info->key) first = first->hashNext;
      if (table.Find(HashedKey(entry->info->key)) != first) return "key table at " + KeyOf(entry);
    }
    if (chain.tail != before) return "end of chain " + std::to_string(bucket);
  }
  return table.Count() == chained.size() ? "" : "count of a key table";
}

// Checks the lists of a cell; `filed` gets its images.
std::string BrokenLists(const CIDXCell* cell, int tree, std::set<const CIDXNode*>& filed) {
  const CIDXCell* childBefore = nullptr;
  for (const CIDXCell* child = cell->firstChild; child; childBefore = child, child = child->nextSibling) {
    if (child->parent != cell || child->prevSibling != childBefore) return "links of child " + KeyOf(child);
  }
  const CIDXNode* before = nullptr;
  for (const CIDXNode* node = cell->firstNode; node; before = node, node = node->next[tree]) {
    if (node->cell[tree] != cell || node->prev[tree] != before) return "links of image " + KeyOf(node);
    filed.insert(node);
  }
  return cell->lastChild == childBefore && cell->lastNode == before ? "" : "end of a list of " + KeyOf(cell);
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
  std::set<const CIDXNode*> images;
  const auto imageChain = [&](std::uint32_t bucket) -> auto& { return inspector.ImageChain(bucket); };
  std::string broken = BrokenTable(imageChain, inspector.ImageTable(), images);
  for (int tree = 0; tree < kTreeCount && broken.empty(); ++tree) {
    std::set<const CIDXNode*> filed;
    std::set<const CIDXCell*> inTable, inTree;
    const auto cellChain = [&](std::uint32_t bucket) -> auto& { return inspector.CellChain(tree, bucket); };
    broken = BrokenTable(cellChain, inspector.CellTable(tree), inTable);
    const auto visit = [&](const CIDXCell* cell) {
      if (broken.empty()) broken = BrokenLists(cell, tree, filed);
      if (!cell->info->moved) inTree.insert(cell);
    };
    ForEachCell(store, tree, visit);
    for (const CIDXCell* cell = inspector.MovedCells(tree).head; cell; cell = cell->hashNext) visit(cell);
    if (broken.empty() && filed != images) broken = "images filed and images in the table differ";
    // Without a root, only the table leads to the cells.
    if (broken.empty() && inspector.Root(tree) && inTree != inTable) broken = "cells filed and in the table differ";
  }
  return broken;
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
