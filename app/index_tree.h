// The tree of indexes: names, counts, and search by number, path or name.
#ifndef CATALOGCORE_APP_INDEX_TREE_H_
#define CATALOGCORE_APP_INDEX_TREE_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "app/stored_catalog.h"

namespace catalogcore::app {

struct IndexNode {
  Index entry;
  std::int32_t parent = kRoot;
  std::size_t level = 0;   // 0: top of the tree
  std::size_t images = 0;  // filed under this index
  std::size_t below = 0;   // filed under this index and the indexes below it
  std::string path;        // of names, "Photographs/People"
};

class IndexTree {
 public:
  // Counts the images now; later changes of the catalogue do not show.
  explicit IndexTree(const StoredCatalog& catalog);

  // Parents before children. Indexes with an invalid key are left out.
  const std::vector<IndexNode>& Nodes() const { return nodes_; }

  // Null if there is no such index.
  const IndexNode* Find(std::int32_t number) const;

  // The name of an index, or the number of a missing one.
  std::string NameOf(std::int32_t number) const;

  // Finds an index by its number (1010000) or path in numbers (1/1); else by its path in names (Photographs/People) or
  // its name; else by these in any letter case. Throws UsageError unless exactly one index matches.
  const IndexNode& Resolve(const std::string& text) const;

 private:
  std::vector<IndexNode> nodes_;
  std::map<std::int32_t, std::size_t> positions_;  // in nodes_, by number
};

// The operations that the attributes forbid: "move", "remove", "rename".
std::vector<std::string> Protections(Attributes attributes);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_INDEX_TREE_H_
