#include "app/index_tree.h"

#include <strings.h>

#include <map>

#include "api/index_number.h"
#include "app/session.h"

namespace catalogcore::app {
namespace {

std::int32_t ParentOf(std::int32_t number) {
  const std::string path = IndexPath(number);
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? kRoot : NumberOfIndexPath(path.substr(0, slash));
}

// Whether the number has a place in the tree. For an invalid key of a file the library makes a number that stands for no
// index (0), for the root (-1) or for another key.
bool IsPlaced(std::int32_t number) { return number > 0 && NumberOfIndexPath(IndexPath(number)) == number; }

std::string Listed(const std::vector<const IndexNode*>& nodes) {
  std::string text;
  for (const IndexNode* node : nodes) {
    text += (text.empty() ? "" : ", ") + std::to_string(node->entry.number) + " (" + node->path + ")";
  }
  return text;
}

}  // namespace

IndexTree::IndexTree(const StoredCatalog& catalog) {
  std::map<std::int32_t, std::size_t> counts;
  catalog.ForEachImage({}, [&counts](const Image& image) { ++counts[image.index]; });
  for (Index entry : catalog.Calls().Indexes().value()) {
    if (!IsPlaced(entry.number) || Find(entry.number)) continue;
    if (!entry.isText) entry.name = "(no UTF-8)";
    IndexNode node;
    node.parent = ParentOf(entry.number);
    node.images = node.below = counts[entry.number];
    const auto parent = positions_.find(node.parent);
    const bool isTop = parent == positions_.end();
    node.level = isTop ? 0 : nodes_[parent->second].level + 1;
    node.path = isTop ? entry.name : nodes_[parent->second].path + '/' + entry.name;
    positions_[entry.number] = nodes_.size();
    node.entry = std::move(entry);
    nodes_.push_back(std::move(node));
  }
  for (auto node = nodes_.rbegin(); node != nodes_.rend(); ++node) {
    const auto parent = positions_.find(node->parent);
    if (parent != positions_.end()) nodes_[parent->second].below += node->below;
  }
}

const IndexNode* IndexTree::Find(std::int32_t number) const {
  const auto position = positions_.find(number);
  return position == positions_.end() ? nullptr : &nodes_[position->second];
}

std::string IndexTree::NameOf(std::int32_t number) const {
  const IndexNode* const node = Find(number);
  return node ? node->entry.name : std::to_string(number);
}

const IndexNode& IndexTree::Resolve(const std::string& text) const {
  std::vector<const IndexNode*> exact;
  std::vector<const IndexNode*> inAnyCase;
  for (const IndexNode& node : nodes_) {
    // Numbers take precedence over names, so a number always finds its index.
    if (text == std::to_string(node.entry.number) || text == IndexPath(node.entry.number)) return node;
    if (text == node.path || text == node.entry.name) {
      exact.push_back(&node);
    } else if (strcasecmp(text.c_str(), node.path.c_str()) == 0 ||
               strcasecmp(text.c_str(), node.entry.name.c_str()) == 0) {
      inAnyCase.push_back(&node);
    }
  }
  const std::vector<const IndexNode*>& found = exact.empty() ? inAnyCase : exact;
  if (found.empty()) throw UsageError("there is no index \"" + text + "\" (`catalogcore tree` lists the indexes)");
  if (found.size() > 1)
    throw UsageError("\"" + text + "\" names several indexes: " + Listed(found) + "; give the number");
  return *found.front();
}

std::vector<std::string> Protections(Attributes attributes) {
  std::vector<std::string> words;
  if (HasAny(attributes, Attributes::kNoMove)) words.emplace_back("move");
  if (HasAny(attributes, Attributes::kNoRemove)) words.emplace_back("remove");
  if (HasAny(attributes, Attributes::kNoRename)) words.emplace_back("rename");
  return words;
}

}  // namespace catalogcore::app
