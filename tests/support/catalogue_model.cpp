#include "tests/support/catalogue_model.h"

#include <strings.h>

#include <algorithm>

#include "store/entries.h"

namespace catalogcore {

unsigned ModelHash(const std::string& text) {
  long long hash = 0;
  for (const char c : text) {
    const int byte = c & 0xFF;
    hash = (hash * 137 + (byte < 128 ? byte : byte - 256)) % (1LL << 32);
    if (hash < 0) hash += 1LL << 32;
  }
  return static_cast<unsigned>(hash % 1987);
}

namespace {

// Compares by the rules of the C locale, which is the locale of every test.
bool IsSameKey(const std::string& a, const std::string& b) {
  return ModelHash(a) == ModelHash(b) && strcasecmp(a.c_str(), b.c_str()) == 0;
}

bool IsValid(int tree, const std::string& key) {
  if (key.empty()) return tree == kFolderTree;
  if (tree == kIndexTree && key[0] == '/') return false;
  const auto levels = std::count(key.begin(), key.end(), '/') + (key[0] == '/' ? 0 : 1);
  if (key.size() > 4096 || levels > (tree == kIndexTree ? 64 : 512)) return false;
  return key.find("//") == std::string::npos && key.back() != '/';
}

void TrimSlash(std::string& key) {
  if (!key.empty() && key.back() == '/') key.pop_back();
}

}  // namespace

CatalogueModel::CatalogueModel() {
  for (int tree = 0; tree < kTreeCount; ++tree) NewCell(tree, nullptr, ".", ".", 7);
}

CatalogueModel::Image* CatalogueModel::FindImage(const std::string& key) {
  const auto found =
      std::find_if(images_.begin(), images_.end(), [&](const Image& i) { return IsSameKey(i.key, key); });
  return found == images_.end() ? nullptr : &*found;
}

CatalogueModel::Cell* CatalogueModel::FindByText(int tree, const std::string& key) const {
  for (const auto& cell : cells_[tree]) {
    if (IsSameKey(cell->key, key)) return cell.get();
  }
  return nullptr;
}

CatalogueModel::Cell* CatalogueModel::FindCell(int tree, const std::string& key) const {
  return key.empty() ? cells_[tree].front().get() : FindByText(tree, key);
}

CatalogueModel::Cell* CatalogueModel::NewCell(int tree, Cell* parent, const std::string& key, const std::string& name,
                                              int attribute) {
  cells_[tree].push_back(std::make_unique<Cell>(Cell{key, name, attribute, parent, {}}));
  if (parent) parent->children.push_back(cells_[tree].back().get());
  return cells_[tree].back().get();
}

std::vector<CatalogueModel::Cell*> CatalogueModel::PreOrder(const Cell* start) const {
  std::vector<Cell*> cells{const_cast<Cell*>(start)};
  for (const Cell* child : start->children) {
    const std::vector<Cell*> below = PreOrder(child);
    cells.insert(cells.end(), below.begin(), below.end());
  }
  return cells;
}

// An index's images in the order of filing; a folder's grouped by index, in tree order.
std::vector<const CatalogueModel::Image*> CatalogueModel::ImagesOf(int tree, const Cell* cell) const {
  std::vector<const Image*> images;
  for (const Image& image : images_) {
    if (image.cell[tree] == cell) images.push_back(&image);
  }
  if (tree == kIndexTree || images.size() < 2) return images;
  const std::vector<Cell*> order = PreOrder(cells_[kIndexTree].front().get());
  const auto rank = [&](const Image* image) { return std::find(order.begin(), order.end(), image->cell[kIndexTree]); };
  std::stable_sort(images.begin(), images.end(), [&](auto* a, auto* b) { return rank(a) < rank(b); });
  return images;
}

unsigned CatalogueModel::AddNode(const std::string& key, const std::string& indexKey, const std::string& folderKey,
                                 int attribute) {
  if (FindImage(key)) return StoreImageExists;
  if (indexKey == ".") return StoreInvalidKey;
  if (!FindCell(kIndexTree, indexKey)) return StoreIndexNotFound;
  if (!IsValid(kFolderTree, folderKey)) return StoreInvalidKey;
  AddCell(kFolderTree, folderKey, "", 0);
  images_.push_back({key, attribute, {FindCell(kIndexTree, indexKey), FindCell(kFolderTree, folderKey)}});
  return StoreOk;
}

unsigned CatalogueModel::RemoveNode(const std::string& key, bool force) {
  Image* const image = FindImage(key);
  if (!image) return StoreImageNotFound;
  if (!force && (image->attribute & 2)) return StoreRemoveProtected;
  for (int tree = 0; tree < kTreeCount; ++tree) image->behind[tree] = Behind(tree, image);
  image->isRemoved = true;
  removedImages_.splice(removedImages_.end(), images_,
                        std::find_if(images_.begin(), images_.end(), [image](auto& other) { return &other == image; }));
  return StoreOk;
}

unsigned CatalogueModel::MoveNode(int tree, const std::string& key, const std::string& newCellKey, bool force) {
  Image* const image = FindImage(key);
  if (!image) return StoreImageNotFound;
  if (newCellKey == ".") return StoreInvalidKey;
  Cell* const target = FindCell(tree, newCellKey);
  if (!target) return StoreIndexNotFound;
  if (image->cell[tree] == target) return StoreOk;
  if (!force && (image->attribute & 1)) return StoreMoveProtected;
  const Image old = *image;  // what is filed again is another image
  RemoveNode(key, true);
  return tree == kIndexTree ? AddNode(key, newCellKey, old.cell[kFolderTree]->key, old.attribute)
                            : AddNode(key, old.cell[kIndexTree]->key, newCellKey, old.attribute);
}

unsigned CatalogueModel::ChangeAttributeNode(const std::string& key, int attribute) {
  Image* const image = FindImage(key);
  if (!image) return StoreImageNotFound;
  image->attribute = attribute;
  return StoreOk;
}

unsigned CatalogueModel::AddCell(int tree, const std::string& key, const std::string& name, int attribute) {
  if (FindCell(tree, key)) return StoreIndexExists;
  if (!IsValid(tree, key)) return StoreInvalidKey;
  Keys missing;
  Cell* parent = nullptr;
  for (std::string path = key; !parent;) {
    missing.insert(missing.begin(), path);
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) {
      parent = cells_[tree].front().get();
    } else {
      path.resize(slash);
      parent = FindByText(tree, path);
    }
  }
  for (const std::string& path : missing) parent = NewCell(tree, parent, path, name, attribute);
  return StoreOk;
}

unsigned CatalogueModel::RemoveCell(int tree, const std::string& key, bool force) {
  Cell* const cell = FindCell(tree, key);
  if (!cell) return StoreIndexNotFound;
  if (!cell->children.empty()) return StoreIndexHasChildren;
  if (!force && (cell->attribute & 2)) return StoreRemoveProtected;
  if (!cell->parent) return StoreInvalidKey;
  for (const Image* image : ImagesOf(tree, cell)) {
    if (const unsigned result = RemoveNode(std::string(image->key), force)) return result;
  }
  std::erase(cell->parent->children, cell);
  const auto own = std::find_if(cells_[tree].begin(), cells_[tree].end(), [cell](auto& c) { return c.get() == cell; });
  removedCells_.push_back(std::move(*own));
  cells_[tree].erase(own);
  return StoreOk;
}

unsigned CatalogueModel::RenameCell(int tree, const std::string& key, const std::string& newName, bool force) {
  Cell* const cell = FindCell(tree, key);
  if (!cell) return StoreIndexNotFound;
  if (!force && (cell->attribute & 4)) return StoreRenameProtected;
  cell->name = newName;
  return StoreOk;
}

unsigned CatalogueModel::ChangeAttributeCell(int tree, const std::string& key, int attribute) {
  Cell* const cell = FindCell(tree, key);
  if (!cell) return StoreIndexNotFound;
  cell->attribute = attribute;
  return StoreOk;
}

const CatalogueModel::Cell* CatalogueModel::FirstCell(Walk& walk, int tree, std::string key, bool recursive) const {
  walk = {};
  walk.tree = tree;
  walk.recursive = recursive;
  walk.skipsVolumes = tree == kFolderTree && recursive && key == "/";
  TrimSlash(key);
  return walk.start = walk.cell = FindCell(tree, key);
}

const CatalogueModel::Cell* CatalogueModel::NextCell(Walk& walk) const {
  if (!walk.cell) return nullptr;
  const std::vector<Cell*> order = walk.recursive ? PreOrder(walk.start) : std::vector<Cell*>();
  auto at = std::find(order.begin(), order.end(), walk.cell);
  if (at != order.end()) ++at;
  while (at != order.end() && walk.skipsVolumes && (*at)->key.rfind("/Volumes", 0) == 0) ++at;
  return walk.cell = at == order.end() ? nullptr : *at;
}

const CatalogueModel::Image* CatalogueModel::Behind(int tree, const Image* image) const {
  if (image->isRemoved) return image->behind[tree];
  const std::vector<const Image*> images = ImagesOf(tree, image->cell[tree]);
  const auto at = std::find(images.begin(), images.end(), image) + 1;
  return at == images.end() ? nullptr : *at;
}

// From the image, itself included, or else from the next cell on: the first one that is filed, and under the filter.
const CatalogueModel::Image* CatalogueModel::FirstFrom(Walk& walk) const {
  const std::vector<Cell*> wanted = PreOrder(walk.filter);
  const auto isWanted = [&](const Image* i) {
    return !i->isRemoved && std::count(wanted.begin(), wanted.end(), i->cell[kIndexTree]) > 0;
  };
  while (!walk.image || !isWanted(walk.image)) {
    if (walk.image) walk.image = Behind(walk.tree, walk.image);
    while (!walk.image && NextCell(walk)) {
      const std::vector<const Image*> images = ImagesOf(walk.tree, walk.cell);
      if (!images.empty()) walk.image = images.front();
    }
    if (!walk.image) break;
  }
  return walk.image;
}

const CatalogueModel::Image* CatalogueModel::FirstImage(Walk& walk, std::string indexKey, bool hasFolder,
                                                        const std::string& folderKey, bool recursive) const {
  const bool byFolder = hasFolder && folderKey != ".";
  if (!byFolder) TrimSlash(indexKey);
  const Cell* const start =
      FirstCell(walk, byFolder ? kFolderTree : kIndexTree, byFolder ? folderKey : indexKey, recursive);
  walk.filter = FindCell(kIndexTree, indexKey);
  if (!start || !walk.filter) return nullptr;
  const std::vector<const Image*> images = ImagesOf(walk.tree, start);
  if (!images.empty()) walk.image = images.front();
  return FirstFrom(walk);
}

const CatalogueModel::Image* CatalogueModel::NextImage(Walk& walk) const {
  if (!walk.image) return nullptr;
  walk.image = Behind(walk.tree, walk.image);
  return FirstFrom(walk);
}

CatalogueState CatalogueModel::State() const {
  CatalogueState state;
  for (const Image& image : images_) {
    state.attributes[image.key] = image.attribute;
    state.imageChains[ModelHash(image.key)].push_back(image.key);
  }
  for (int tree = 0; tree < kTreeCount; ++tree) {
    for (const auto& cell : cells_[tree]) state.cellChains[tree][ModelHash(cell->key)].push_back(cell->key);
    for (const Cell* cell : PreOrder(cells_[tree].front().get())) {
      CellState seen{cell->key, cell->name, cell->attribute, 0, {}, {}};
      for (const Cell* up = cell->parent; up; up = up->parent) ++seen.depth;
      const Cell* group = nullptr;
      for (const Image* image : ImagesOf(tree, cell)) {
        seen.images.push_back(image->key);
        if (tree == kFolderTree && image->cell[kIndexTree] != group) seen.groups.push_back(image->key);
        group = image->cell[kIndexTree];
      }
      state.cells[tree].push_back(seen);
    }
  }
  return state;
}

}  // namespace catalogcore
