#include "bench/store/store_bench.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "bench/store/catalogues.h"
#include "bench/support/ratios.h"

namespace catalogcore {

namespace {

constexpr char kMap[] = "std::unordered_map";
constexpr char kSqlite[] = "SQLite :memory:";

using SharedImages = std::shared_ptr<Images>;

// Creates the images on first use, because a filter may exclude their rows.
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

// The number of repetitions in one round: small catalogues are too fast to be measured once.
int Repetitions(const Images& images) { return std::max(1, 200000 / images.count); }

// The time per image of `all`, which performs an operation on every image.
template <typename All>
double TimeEach(const Images& images, All all) {
  const int repetitions = Repetitions(images);
  return ThreadTime(static_cast<double>(images.count) * repetitions, [&] {
    for (int repetition = 0; repetition < repetitions; ++repetition) all();
  });
}

// The same for operations that change the catalogue: `prepare` creates a new catalogue for each repetition.
template <typename Prepare, typename All>
double TimeEachOnNew(const Images& images, Prepare prepare, All all) {
  const int repetitions = Repetitions(images);
  double sum = 0;
  for (int repetition = 0; repetition < repetitions; ++repetition) {
    const auto catalogue = prepare();
    sum += ThreadTime(images.count, [&] { all(*catalogue); });
  }
  return sum / repetitions;
}

template <typename Catalogue>
double AddAll(Images& images) {
  return TimeEachOnNew(
      images, [&] { return std::make_unique<Catalogue>(images); },
      [&](Catalogue& catalogue) {
        for (int image = 0; image < images.count; ++image) catalogue.Add(image);
      });
}

// The time of the slowest addition: the longest that a caller waits.
template <typename Catalogue>
double WorstAdd(Images& images) {
  Catalogue catalogue(images);
  double worst = 0;
  for (int image = 0; image < images.count; ++image) {
    worst = std::max(worst, ThreadTime(1, [&] { catalogue.Add(image); }));
  }
  return worst;
}

template <typename Catalogue>
double BytesPerImage(Images& images) {
  return Filled<Catalogue>(images)->Bytes() / images.count;
}

template <typename Catalogue>
double FindAll(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return TimeEach(images, [&] {
    for (const int image : images.shuffled) {
      if (!catalogue->Find(image)) std::abort();
    }
  });
}

double TouchAll(Images& images) {
  const auto catalogue = Filled<StoreCatalogue>(images);
  catalogue->Resolve();
  return TimeEach(images, [&] {
    for (const int image : images.shuffled) {
      if (!catalogue->Touch(image)) std::abort();
    }
  });
}

template <typename Catalogue>
double MoveAll(Images& images) {
  return TimeEachOnNew(
      images, [&] { return Filled<Catalogue>(images); },
      [&](Catalogue& catalogue) {
        for (const int image : images.shuffled) catalogue.Move(image, (Images::IndexOf(image) + 1) % kIndexCount);
      });
}

template <typename Catalogue>
double RemoveAll(Images& images) {
  return TimeEachOnNew(
      images, [&] { return Filled<Catalogue>(images); },
      [&](Catalogue& catalogue) {
        for (const int image : images.shuffled) catalogue.Remove(image);
      });
}

template <typename Catalogue>
double WalkIndexes(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return TimeEach(images, [&] {
    for (int index = 0; index < kIndexCount; ++index) {
      if (catalogue->WalkIndex(index) == 0) std::abort();
    }
  });
}

template <typename Catalogue>
double WalkFolders(Images& images) {
  const auto catalogue = Filled<Catalogue>(images);
  return TimeEach(images, [&] {
    for (std::size_t folder = 0; folder < images.folders.size(); ++folder) {
      if (catalogue->WalkFolder(folder) == 0) std::abort();
    }
  });
}

}  // namespace

void AddStoreRows() {
  std::vector<int> counts{10000, 100000, 1000000};
  if (const char* const more = std::getenv("CATALOGCORE_BENCH_IMAGES")) counts.push_back(std::atoi(more));
  for (const int count : counts) {
    const std::string suffix = "_" + std::to_string(count);
    const int rounds = count > 1000000 ? 1 : count > 100000 ? 3 : 9;
    const auto images = std::make_shared<SharedImages>();
    const auto round = [images, count](double (*measure)(Images&)) -> Round {
      return [images, count, measure] { return measure(*MakeImages(*images, count)); };
    };
    const auto row = [&](const char* name, double (*ours)(Images&), const char* alternative, double (*other)(Images&),
                         const char* unit = "ns") {
      AddRow(name + suffix, round(ours), alternative, round(other), rounds, unit);
    };
    row("lookup", FindAll<StoreCatalogue>, kMap, FindAll<MapCatalogue>);
    row("lookup_floor", FindAll<StoreCatalogue>, "memory alone", TouchAll);
    row("lookup_sqlite", FindAll<StoreCatalogue>, kSqlite, FindAll<SqliteCatalogue>);
    row("add", AddAll<StoreCatalogue>, kMap, AddAll<MapCatalogue>);
    row("worst_add", WorstAdd<StoreCatalogue>, kMap, WorstAdd<MapCatalogue>);
    row("memory", BytesPerImage<StoreCatalogue>, kMap, BytesPerImage<MapCatalogue>, "B");
    row("add_sqlite", AddAll<StoreCatalogue>, kSqlite, AddAll<SqliteCatalogue>);
    row("move", MoveAll<StoreCatalogue>, kSqlite, MoveAll<SqliteCatalogue>);
    row("remove", RemoveAll<StoreCatalogue>, kSqlite, RemoveAll<SqliteCatalogue>);
    row("walk_index", WalkIndexes<StoreCatalogue>, kSqlite, WalkIndexes<SqliteCatalogue>);
    row("walk_folder", WalkFolders<StoreCatalogue>, kSqlite, WalkFolders<SqliteCatalogue>);
  }
}

}  // namespace catalogcore
