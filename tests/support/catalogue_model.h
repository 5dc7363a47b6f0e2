// The catalogue in plain standard containers, slow and obviously right: what the store is compared with.
#ifndef CATALOGCORE_TESTS_SUPPORT_CATALOGUE_MODEL_H_
#define CATALOGCORE_TESTS_SUPPORT_CATALOGUE_MODEL_H_

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/catalogue_state.h"

namespace catalogcore {

class CatalogueModel {
 public:
  CatalogueModel();

  unsigned AddNode(const std::string& key, const std::string& indexKey, const std::string& folderKey, int attribute);
  unsigned RemoveNode(const std::string& key, bool force);
  unsigned MoveNode(int tree, const std::string& key, const std::string& newCellKey, bool force);
  unsigned ChangeAttributeNode(const std::string& key, int attribute);

  unsigned AddCell(int tree, const std::string& key, const std::string& name, int attribute);
  unsigned RemoveCell(int tree, const std::string& key, bool force);
  unsigned RenameCell(int tree, const std::string& key, const std::string& newName, bool force);
  unsigned ChangeAttributeCell(int tree, const std::string& key, int attribute);

  struct Cell {
    std::string key, name;
    int attribute;
    Cell* parent;
    std::vector<Cell*> children;
  };
  struct Image {
    std::string key;
    int attribute;
    Cell* cell[kTreeCount];
    bool isRemoved = false;
    const Image* behind[kTreeCount] = {};  // once it is removed: what stood behind it then
  };

  // Where a walk stands. Anything may change between two steps: a removed image leads to what stood behind it, a
  // removed cell to nothing, and whatever else lies ahead is what lies there by then.
  struct Walk {
    int tree = 0;
    bool recursive = false, skipsVolumes = false;
    const Cell *start = nullptr, *cell = nullptr, *filter = nullptr;
    const Image* image = nullptr;
  };

  // The image and the cell with this key, or null; an empty key names the root.
  Image* FindImage(const std::string& key);
  Cell* FindCell(int tree, const std::string& key) const;

  // What the walk comes to, null at its end; `hasFolder` false stands for a folder key that was never assigned.
  const Cell* FirstCell(Walk& walk, int tree, std::string key, bool recursive) const;
  const Cell* NextCell(Walk& walk) const;
  const Image* FirstImage(Walk& walk, std::string indexKey, bool hasFolder, const std::string& folderKey,
                          bool recursive) const;
  const Image* NextImage(Walk& walk) const;

  // How many entries were removed so far.
  std::size_t Removals() const { return removedImages_.size() + removedCells_.size(); }

  CatalogueState State() const;

 private:
  Cell* FindByText(int tree, const std::string& key) const;
  Cell* NewCell(int tree, Cell* parent, const std::string& key, const std::string& name, int attribute);
  std::vector<Cell*> PreOrder(const Cell* start) const;
  std::vector<const Image*> ImagesOf(int tree, const Cell* cell) const;
  const Image* Behind(int tree, const Image* image) const;
  const Image* FirstFrom(Walk& walk) const;

  // In the order of their making; what is removed leaves them for the others, which keep it for walks.
  std::list<Image> images_, removedImages_;
  std::vector<std::unique_ptr<Cell>> cells_[kTreeCount], removedCells_;
};

// All that a walk tells of what it came to.
inline std::string Told(const CatalogueModel::Image* image) {
  return image ? image->key + "=" + image->cell[kIndexTree]->key + "=" + std::to_string(image->attribute) : "the end";
}
inline std::string Told(const CatalogueModel::Cell* cell) {
  return cell ? cell->name + "=" + cell->key + "=" + std::to_string(cell->attribute) : "the end";
}

// The hash of the system and the equality of keys, computed in another way than the library does.
unsigned ModelHash(const std::string& text);
bool ModelEqual(const std::string& a, const std::string& b);

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_SUPPORT_CATALOGUE_MODEL_H_
