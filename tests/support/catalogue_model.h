// A simple and slow model of the catalogue in standard containers, to compare the store with.
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
    const Image* behind[kTreeCount] = {};  // of a removed image: the image after it at the removal
  };

  // The position of a walk. Anything may change between two steps: a walk on a removed image continues with the image
  // after it at the removal, a walk on a removed cell ends, and everything else ahead is as it is at the step.
  struct Walk {
    int tree = 0;
    bool recursive = false, skipsVolumes = false;
    const Cell *start = nullptr, *cell = nullptr, *filter = nullptr;
    const Image* image = nullptr;
  };

  // The image and the cell with this key, or null; an empty key names the root.
  Image* FindImage(const std::string& key);
  Cell* FindCell(int tree, const std::string& key) const;

  // The result of a step, null at the end. `hasFolder` is false for a folder key without a block.
  const Cell* FirstCell(Walk& walk, int tree, std::string key, bool recursive) const;
  const Cell* NextCell(Walk& walk) const;
  const Image* FirstImage(Walk& walk, std::string indexKey, bool hasFolder, const std::string& folderKey,
                          bool recursive) const;
  const Image* NextImage(Walk& walk) const;

  // The number of removed entries.
  std::size_t Removals() const { return removedImages_.size() + removedCells_.size(); }

  CatalogueState State() const;

 private:
  Cell* FindByText(int tree, const std::string& key) const;
  Cell* NewCell(int tree, Cell* parent, const std::string& key, const std::string& name, int attribute);
  std::vector<Cell*> PreOrder(const Cell* start) const;
  std::vector<const Image*> ImagesOf(int tree, const Cell* cell) const;
  const Image* Behind(int tree, const Image* image) const;
  const Image* FirstFrom(Walk& walk) const;

  // In the order of creation. Removed entries are kept for walks.
  std::list<Image> images_, removedImages_;
  std::vector<std::unique_ptr<Cell>> cells_[kTreeCount], removedCells_;
};

// The result of a step as text.
inline std::string Told(const CatalogueModel::Image* image) {
  return image ? image->key + "=" + image->cell[kIndexTree]->key + "=" + std::to_string(image->attribute) : "the end";
}
inline std::string Told(const CatalogueModel::Cell* cell) {
  return cell ? cell->name + "=" + cell->key + "=" + std::to_string(cell->attribute) : "the end";
}

// The bucket of a key, computed in another way than in the library.
unsigned ModelHash(const std::string& text);

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_SUPPORT_CATALOGUE_MODEL_H_
