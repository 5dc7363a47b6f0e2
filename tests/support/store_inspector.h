// Gives tests access to the store's data.
#ifndef CATALOGCORE_TESTS_SUPPORT_STORE_INSPECTOR_H_
#define CATALOGCORE_TESTS_SUPPORT_STORE_INSPECTOR_H_

#include <cstddef>
#include <string>

#include "store/index_data.h"

namespace catalogcore {

class StoreInspector {
 public:
  explicit StoreInspector(const CIndexData& store) : store_(store) {}

  const CIDXCell* Root(int tree) const { return store_.root[tree]; }
  const HashChain<CIDXNode>& ImageChain(std::uint32_t bucket) const { return store_.nodeHash[bucket]; }
  const HashChain<CIDXCell>& CellChain(int tree, std::uint32_t bucket) const { return store_.cellHash[tree][bucket]; }
  const KeyTable<CIDXNode>& ImageTable() const { return store_.nodeTable; }
  const KeyTable<CIDXCell>& CellTable(int tree) const { return store_.cellTable[tree]; }
  const HashChain<CIDXCell>& MovedCells(int tree) const { return store_.movedCells[tree]; }
  const FindSpan* FirstSpan() const { return store_.openFinds.first; }
  std::size_t Spans() const {
    std::size_t count = 0;
    for (const FindSpan* span = FirstSpan(); span; span = span->next) ++count;
    return count;
  }
  // The number of removed entries that are not deleted yet.
  std::size_t Waiting() const {
    std::size_t count = 0;
    for (const FindSpan* span = FirstSpan(); span; span = span->next) {
      for (const CIDXNode* node = span->nodes.head; node; node = node->hashNext) ++count;
      for (const CIDXCell* cell = span->cells.head; cell; cell = cell->hashNext) ++count;
    }
    return count;
  }

 private:
  const CIndexData& store_;
};

// A string with this text, for arguments.
class Key : public CIDXString {
 public:
  explicit Key(const char* text) { CopyString(text); }
  explicit Key(const std::string& text) : Key(text.c_str()) {}
};

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_SUPPORT_STORE_INSPECTOR_H_
