#include "bench/store/store_bench.h"

#include <cstdlib>
#include <memory>

#include "bench/store/catalogues.h"
#include "bench/support/ratios.h"

namespace {

constexpr char kMap[] = "std::unordered_map";
constexpr char kSqlite[] = "SQLite :memory:";

using SharedImages = std::shared_ptr<Images>;

// The images, made on first use: a filter may leave their row out.
SharedImages MakeImages(SharedImages& images, int count) {
  if (!images) images = std::make_shared<Images>(count);
  return images;
}

template <typename Catalogue>
std::unique_ptr<Catalogue> Filled(Images& images) {
  auto catalogue = std::make_unique<Catalogue>(images);
  for (int image = 0; image < images.count; ++image) catalogue->Add(image);
  return catalogue;
}

template <typename Catalogue>
double AddAll(Images& images) {
  Catalogue catalogue(images);
  return Time(images.count, [&] {
    for (int image = 0; image < images.count; ++image) catalogue.Add(image);
  });
}

template <typename Catalogue>
double FindAll(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return Time(images.count, [&] {
    for (const int image : images.shuffled) {
      if (!catalogue->Find(image)) std::abort();
    }
  });
}

template <typename Catalogue>
double MoveAll(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return Time(images.count, [&] {
    for (const int image : images.shuffled) catalogue->Move(image, (Images::IndexOf(image) + 1) % kIndexCount);
  });
}

template <typename Catalogue>
double RemoveAll(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return Time(images.count, [&] {
    for (const int image : images.shuffled) catalogue->Remove(image);
  });
}

template <typename Catalogue>
double WalkIndexes(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return Time(images.count, [&] {
    for (int index = 0; index < kIndexCount; ++index) {
      if (catalogue->WalkIndex(index) == 0) std::abort();
    }
  });
}

template <typename Catalogue>
double WalkFolders(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return Time(images.count, [&] {
    for (std::size_t folder = 0; folder < images.folders.size(); ++folder) {
      if (catalogue->WalkFolder(folder) == 0) std::abort();
    }
  });
}

}  // namespace

void AddStoreRows() {
  for (const int count : {10000, 100000}) {
    const std::string suffix = "_" + std::to_string(count);
    const auto images = std::make_shared<SharedImages>();
    const auto round = [images, count](double (*measure)(Images&)) -> Round {
      return [images, count, measure] { return measure(*MakeImages(*images, count)); };
    };
    const auto row = [&](const char* name, double (*ours)(Images&), const char* alternative, double (*other)(Images&)) {
      AddRow(name + suffix, round(ours), alternative, round(other));
    };
    row("lookup", FindAll<StoreCatalogue>, kMap, FindAll<MapCatalogue>);
    row("lookup_sqlite", FindAll<StoreCatalogue>, kSqlite, FindAll<SqliteCatalogue>);
    row("add", AddAll<StoreCatalogue>, kMap, AddAll<MapCatalogue>);
    row("add_sqlite", AddAll<StoreCatalogue>, kSqlite, AddAll<SqliteCatalogue>);
    row("move", MoveAll<StoreCatalogue>, kSqlite, MoveAll<SqliteCatalogue>);
    row("remove", RemoveAll<StoreCatalogue>, kSqlite, RemoveAll<SqliteCatalogue>);
    row("walk_index", WalkIndexes<StoreCatalogue>, kSqlite, WalkIndexes<SqliteCatalogue>);
    row("walk_folder", WalkFolders<StoreCatalogue>, kSqlite, WalkFolders<SqliteCatalogue>);
  }
}
