// The same catalogue in three implementations: the store, a hash map of the standard library, and SQLite in memory.
#ifndef CATALOGCORE_BENCH_STORE_CATALOGUES_H_
#define CATALOGCORE_BENCH_STORE_CATALOGUES_H_

#include <sqlite3.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "store/index_data.h"

namespace catalogcore {

inline constexpr int kIndexCount = 20;
inline constexpr int kImagesPerFolder = 3000;

// The images to file, with their texts in the form that each implementation needs. Paths have 40 to 70 bytes; images
// take the indexes in turn.
struct Images {
  explicit Images(int count);

  int count;
  std::vector<std::string> paths, folders;  // folders: one for each kImagesPerFolder images
  std::vector<CIDXString> keys, folderKeys, indexKeys;
  std::vector<int> shuffled;  // every number once, in random order

  static int IndexOf(int image) { return image % kIndexCount; }
  static std::size_t FolderOf(int image) { return static_cast<std::size_t>(image / kImagesPerFolder); }
};

class StoreCatalogue {
 public:
  explicit StoreCatalogue(Images& images);
  void Add(int image);
  bool Find(int image);
  void Move(int image, int index);
  void Remove(int image);
  // Looks up all images, so that Touch can find them.
  void Resolve();
  // The memory accesses that every look-up needs: reads the key, a pointer to the image, the image and its key, and
  // compares the two keys.
  bool Touch(int image) const;
  // The heap bytes that the catalogue uses for its images, minus the bytes of their paths.
  double Bytes() const;
  // Each walk returns the sum of the key lengths and attributes of its images.
  long WalkIndex(int index);
  long WalkFolder(std::size_t folder);

 private:
  long Walk(CIDXString& indexKey, CIDXString& folderKey);

  Images& images_;
  CIndexData store_;
  double before_ = 0;
  std::vector<const CIDXNode*> nodes_;
};

// Also keeps a list of the images of each index and of each folder. Only operations that suit a map are measured.
class MapCatalogue {
 public:
  explicit MapCatalogue(Images& images);
  void Add(int image);
  bool Find(int image);
  double Bytes() const;

 private:
  struct Filed {
    int index;
    unsigned char attribute;
  };
  using Map = std::unordered_map<std::string, Filed>;

  Images& images_;
  Map map_;
  std::vector<std::vector<Map::value_type*>> byIndex_, byFolder_;
  double before_ = 0;
};

// One table with the path as its primary key, and database indexes on category and folder. Uses prepared statements in
// one transaction.
class SqliteCatalogue {
 public:
  explicit SqliteCatalogue(Images& images);
  ~SqliteCatalogue();
  SqliteCatalogue(const SqliteCatalogue&) = delete;
  SqliteCatalogue& operator=(const SqliteCatalogue&) = delete;
  void Add(int image);
  bool Find(int image);
  void Move(int image, int index);
  void Remove(int image);
  long WalkIndex(int index);
  long WalkFolder(std::size_t folder);

 private:
  sqlite3_stmt* Prepare(const char* sql);
  void BindPath(sqlite3_stmt* statement, int position, const std::string& path);
  static long SumRows(sqlite3_stmt* statement);

  Images& images_;
  sqlite3* database_ = nullptr;
  std::vector<sqlite3_stmt*> statements_;
  sqlite3_stmt *add_, *find_, *move_, *remove_, *walkIndex_, *walkFolder_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_STORE_CATALOGUES_H_
