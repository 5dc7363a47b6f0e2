#include "bench/store/catalogues.h"

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <random>

namespace catalogcore {

namespace {

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "catalogcore_bench: %s failed\n", what);
  std::abort();
}

// The bytes allocated from the heap, including the allocator's overhead and rounding.
double HeapBytes() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

// The heap bytes that the paths take, each in a block of its own.
double PathBytes(const std::vector<std::string>& paths) {
  double bytes = 0;
  for (const std::string& path : paths) {
    std::string copy = path;
    bytes += static_cast<double>(malloc_usable_size(copy.data()) + sizeof(std::size_t));
  }
  return bytes;
}

}  // namespace

Images::Images(int wanted)
    : count(wanted),
      keys(static_cast<std::size_t>(count)),
      folderKeys(FolderOf(count - 1) + 1),
      indexKeys(kIndexCount),
      shuffled(static_cast<std::size_t>(count)) {
  for (int image = 0; image < count; ++image) {
    if (image % kImagesPerFolder == 0) {
      folders.push_back("/home/user/Pictures/" + std::to_string(2000 + FolderOf(image) % 30) + "/holiday-" +
                        std::to_string(FolderOf(image)));
      folderKeys[FolderOf(image)].CopyString(folders.back().c_str());
    }
    const std::string tail(static_cast<std::size_t>(image) * 7 % 20, 'x');
    paths.push_back(folders.back() + "/IMG_" + std::to_string(1000000 + image) + tail + ".jpg");
    keys[static_cast<std::size_t>(image)].CopyString(paths.back().c_str());
  }
  for (int index = 0; index < kIndexCount; ++index) {
    const std::string key = std::to_string(1 + index % 2) + "/" + std::to_string(10 + index);
    indexKeys[static_cast<std::size_t>(index)].CopyString(key.c_str());
  }
  std::iota(shuffled.begin(), shuffled.end(), 0);
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(1));
}

StoreCatalogue::StoreCatalogue(Images& images) : images_(images) {
  store_.Initialize();
  const CIDXString name;
  for (const CIDXString& index : images_.indexKeys) store_.AddCell(kIndexTree, index, name, 0);
  before_ = HeapBytes();
}

void StoreCatalogue::Add(int image) {
  const auto at = static_cast<std::size_t>(image);
  const auto index = static_cast<std::size_t>(Images::IndexOf(image));
  const std::uint32_t result =
      store_.AddNode(images_.keys[at], images_.indexKeys[index], images_.folderKeys[Images::FolderOf(image)], 0);
  Require(result == StoreOk, "AddNode");
}

bool StoreCatalogue::Find(int image) {
  return store_.SearchNode(images_.keys[static_cast<std::size_t>(image)]) != nullptr;
}

void StoreCatalogue::Move(int image, int index) {
  const std::uint32_t result = store_.MoveNode(kIndexTree, images_.keys[static_cast<std::size_t>(image)],
                                               images_.indexKeys[static_cast<std::size_t>(index)], 0);
  Require(result == StoreOk, "MoveNode");
}

void StoreCatalogue::Remove(int image) {
  Require(store_.RemoveNode(images_.keys[static_cast<std::size_t>(image)], 0) == StoreOk, "RemoveNode");
}

void StoreCatalogue::Resolve() {
  for (const CIDXString& key : images_.keys) nodes_.push_back(store_.SearchNode(key));
}

bool StoreCatalogue::Touch(int image) const {
  const auto at = static_cast<std::size_t>(image);
  return std::strcmp(nodes_[at]->info->key.Text(), images_.keys[at].Text()) == 0;
}

double StoreCatalogue::Bytes() const { return HeapBytes() - before_ - PathBytes(images_.paths); }

long StoreCatalogue::Walk(CIDXString& indexKey, CIDXString& folderKey) {
  SearchHandle handle{};
  long sum = 0;
  for (const CIDXNode* node = store_.GetFirstNode(&handle, indexKey, folderKey, 1); node;
       node = store_.GetNextNode(&handle, 1)) {
    sum += static_cast<long>(std::strlen(node->info->key.Text())) + node->info->attribute;
  }
  return sum;
}

long StoreCatalogue::WalkIndex(int index) {
  CIDXString noFolder;
  return Walk(images_.indexKeys[static_cast<std::size_t>(index)], noFolder);
}

long StoreCatalogue::WalkFolder(std::size_t folder) {
  CIDXString noIndex;
  return Walk(noIndex, images_.folderKeys[folder]);
}

MapCatalogue::MapCatalogue(Images& images)
    : images_(images), byIndex_(kIndexCount), byFolder_(images.folders.size()), before_(HeapBytes()) {}

double MapCatalogue::Bytes() const { return HeapBytes() - before_ - PathBytes(images_.paths); }

void MapCatalogue::Add(int image) {
  const int index = Images::IndexOf(image);
  const auto [filed, isNew] =
      map_.emplace(images_.paths[static_cast<std::size_t>(image)], Filed{index, static_cast<unsigned char>(0)});
  Require(isNew, "emplace");
  byIndex_[static_cast<std::size_t>(index)].push_back(&*filed);
  byFolder_[Images::FolderOf(image)].push_back(&*filed);
}

bool MapCatalogue::Find(int image) { return map_.find(images_.paths[static_cast<std::size_t>(image)]) != map_.end(); }

SqliteCatalogue::SqliteCatalogue(Images& images) : images_(images) {
  Require(sqlite3_open(":memory:", &database_) == SQLITE_OK, "sqlite3_open");
  const char* const schema =
      "CREATE TABLE image(path TEXT PRIMARY KEY, category INTEGER, folder TEXT, attribute INTEGER) WITHOUT ROWID;"
      "CREATE INDEX by_category ON image(category); CREATE INDEX by_folder ON image(folder); BEGIN";
  Require(sqlite3_exec(database_, schema, nullptr, nullptr, nullptr) == SQLITE_OK, "CREATE TABLE");
  add_ = Prepare("INSERT INTO image VALUES(?1, ?2, ?3, 0)");
  find_ = Prepare("SELECT category, attribute FROM image WHERE path = ?1");
  move_ = Prepare("UPDATE image SET category = ?2 WHERE path = ?1");
  remove_ = Prepare("DELETE FROM image WHERE path = ?1");
  walkIndex_ = Prepare("SELECT path, attribute FROM image WHERE category = ?1");
  walkFolder_ = Prepare("SELECT path, attribute FROM image WHERE folder = ?1");
}

SqliteCatalogue::~SqliteCatalogue() {
  for (sqlite3_stmt* statement : statements_) sqlite3_finalize(statement);
  sqlite3_close(database_);
}

sqlite3_stmt* SqliteCatalogue::Prepare(const char* sql) {
  sqlite3_stmt* statement = nullptr;
  Require(sqlite3_prepare_v2(database_, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
  statements_.push_back(statement);
  return statement;
}

void SqliteCatalogue::BindPath(sqlite3_stmt* statement, int position, const std::string& path) {
  sqlite3_bind_text(statement, position, path.data(), static_cast<int>(path.size()), SQLITE_STATIC);
}

void SqliteCatalogue::Add(int image) {
  BindPath(add_, 1, images_.paths[static_cast<std::size_t>(image)]);
  sqlite3_bind_int(add_, 2, Images::IndexOf(image));
  BindPath(add_, 3, images_.folders[Images::FolderOf(image)]);
  Require(sqlite3_step(add_) == SQLITE_DONE, "INSERT");
  sqlite3_reset(add_);
}

bool SqliteCatalogue::Find(int image) {
  BindPath(find_, 1, images_.paths[static_cast<std::size_t>(image)]);
  const bool isFound = sqlite3_step(find_) == SQLITE_ROW;
  sqlite3_reset(find_);
  return isFound;
}

void SqliteCatalogue::Move(int image, int index) {
  BindPath(move_, 1, images_.paths[static_cast<std::size_t>(image)]);
  sqlite3_bind_int(move_, 2, index);
  Require(sqlite3_step(move_) == SQLITE_DONE, "UPDATE");
  sqlite3_reset(move_);
}

void SqliteCatalogue::Remove(int image) {
  BindPath(remove_, 1, images_.paths[static_cast<std::size_t>(image)]);
  Require(sqlite3_step(remove_) == SQLITE_DONE, "DELETE");
  sqlite3_reset(remove_);
}

long SqliteCatalogue::SumRows(sqlite3_stmt* statement) {
  long sum = 0;
  while (sqlite3_step(statement) == SQLITE_ROW) {
    sum += static_cast<long>(std::strlen(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)))) +
           sqlite3_column_int(statement, 1);
  }
  sqlite3_reset(statement);
  return sum;
}

long SqliteCatalogue::WalkIndex(int index) {
  sqlite3_bind_int(walkIndex_, 1, index);
  return SumRows(walkIndex_);
}

long SqliteCatalogue::WalkFolder(std::size_t folder) {
  BindPath(walkFolder_, 1, images_.folders[folder]);
  return SumRows(walkFolder_);
}

}  // namespace catalogcore
