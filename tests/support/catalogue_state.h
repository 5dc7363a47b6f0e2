// The whole content of a catalogue as plain values, to compare the store with the model.
#ifndef CATALOGCORE_TESTS_SUPPORT_CATALOGUE_STATE_H_
#define CATALOGCORE_TESTS_SUPPORT_CATALOGUE_STATE_H_

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "store/index_data.h"

namespace catalogcore {

using Keys = std::vector<std::string>;

struct CellState {
  std::string key, name;
  int attribute = 0;
  int depth = 0;  // 0 for the root
  Keys images;    // in the order of the cell's list
  Keys groups;    // folders: the first image of each group
  bool operator==(const CellState&) const = default;
};

struct CatalogueState {
  std::vector<CellState> cells[kTreeCount];                      // in pre-order
  std::map<std::string, int> attributes;                         // of images
  std::map<unsigned, Keys> cellChains[kTreeCount], imageChains;  // of the buckets in use
  bool operator==(const CatalogueState&) const = default;
};

std::ostream& operator<<(std::ostream& out, const CatalogueState& state);

CatalogueState StateOf(const CIndexData& store);

// Names a broken link or table of the store and its place; empty when all agree. The order of entries, groups and
// markers is part of the state.
std::string BrokenInvariant(const CIndexData& store);

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_SUPPORT_CATALOGUE_STATE_H_
