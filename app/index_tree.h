// The tree of indexes as people see it: names, counts, and finding an index by what a person calls it.
#ifndef CATALOGCORE_APP_INDEX_TREE_H_
#define CATALOGCORE_APP_INDEX_TREE_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/stored_catalog.h"

namespace catalogcore::app {

// A wrong use of the command; what() says what is wrong and what would be right.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct IndexNode {
  Index entry;
  std::int32_t parent = kRoot;
  std::size_t level = 0;   // 0: top of the tree
  std::size_t images = 0;  // filed under it
  std::size_t below = 0;   // filed under it and the indexes below it
  std::string path;        // of names, "Photographs/People"
};

class IndexTree {
 public:
  // With the counts as they are now.
  explicit IndexTree(const Catalog& catalog);

  // Parents before children. Indexes of numbers that no command can make are passed over.
  const std::vector<IndexNode>& Nodes() const { return nodes_; }

  // Null if there is none.
  const IndexNode* Find(std::int32_t number) const;

  // The name of an index, its number if it is not there.
  std::string NameOf(std::int32_t number) const;

  // The index that a person means by its number (1010000), its path in numbers (1/1), or else its path in names
  // (Photographs/People) or its name, in any letter case if there is none in this one. Throws UsageError if there is
  // none or more than one.
  const IndexNode& Resolve(const std::string& text) const;

 private:
  std::vector<IndexNode> nodes_;
  std::map<std::int32_t, std::size_t> positions_;  // in nodes_, by number
};

// The protections among the attributes in words: "move", "remove", "rename".
std::vector<std::string> Protections(Attributes attributes);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_INDEX_TREE_H_
