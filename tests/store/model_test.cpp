// Random sequences of the store's operations, on the store and on the model side by side, with walks open across them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "tests/support/catalogue_model.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

// CATALOGCORE_MODEL_OPERATIONS sets the number of operations of all tests, CATALOGCORE_MODEL_SEED the first seed.
unsigned long Setting(const char* name, unsigned long standard) {
  const char* const value = std::getenv(name);
  return value ? std::strtoul(value, nullptr, 10) : standard;
}

// The keys that the operations use.
struct KeyPool {
  Keys indexes, folders, images;
};

// Folders with images of many indexes.
KeyPool ManyGroups() {
  KeyPool pool{{""}, {"/p", "/p/q"}, {}};
  for (int i = 0; i < 50; ++i) pool.indexes.push_back(std::to_string(i % 10));
  for (int i = 0; i < 150; ++i) pool.indexes.push_back(std::to_string(i % 10) + "/" + std::to_string(i));
  for (int i = 0; i < 300; ++i) pool.images.push_back("/p/" + std::to_string(i));
  return pool;
}

// Keys of all kinds. With `crowded`, all images and half of the indexes lie in three buckets.
KeyPool AllKinds(bool crowded) {
  // Two spellings that share a bucket, so that they are the same key.
  const std::string one = "SumMerholiday", other = "sUMMeRholiday";
  EXPECT_EQ(ModelHash(one), ModelHash(other));
  KeyPool pool;
  pool.indexes = {"",  ".", "1",  "1/1",  "1/10", "1/10/3", "1/9", "2",       "2/1", "2/9", "2/9/4/5/6",
                  "3", "9", "/1", "1//2", "2/",   "A/b/c",  "a/B", "1/10/3/", "10",  "./x", "./x/y"};
  pool.indexes.insert(pool.indexes.end(), {one, other, one + "/1", other + "/1"});
  pool.folders = {"",         "/",        ".",           "/Users",   "/Users/a",        "/Users/a/Pictures",
                  "/Users/b", "/users/b", "/volumes/x",  "/Volumes", "/Volumes/disk/x", "/Volumes2",
                  "/x",       "rel",      "rel/deep/er", "./rel",    "/a//b",           "/Users/a/"};
  pool.folders.insert(pool.folders.end(), {"/" + one, "/" + other, "/\xC3\xA4\xE2\x82\xAC"});
  pool.images = {"", "/" + one, "/" + other, "/Users/a/IMG_0.jpg"};
  for (int i = 0; pool.images.size() < 64; ++i) {
    const std::string name = "/Users/a/img_" + std::to_string(i) + ".jpg";
    if (!crowded || ModelHash(name) < 3) pool.images.push_back(name);
  }
  for (int i = 0; crowded && pool.indexes.size() < 48; ++i) {
    const std::string name = "3/x" + std::to_string(i);
    if (ModelHash(name) < 3) pool.indexes.push_back(name);
  }
  return pool;
}

// What a walk found. Reads all of it, so that the sanitizers notice freed memory.
std::string Told(const CIDXNode* node) {
  if (!node) return "the end";
  return node->info->key.Text() + std::string("=") + node->cell[kIndexTree]->info->key.Text() + "=" +
         std::to_string(node->info->attribute);
}
std::string Told(const CIDXCell* cell) {
  if (!cell) return "the end";
  return cell->info->name.Text() + std::string("=") + cell->info->key.Text() + "=" +
         std::to_string(cell->info->attribute);
}

class SideBySide {
 public:
  SideBySide(const KeyPool& pool, unsigned long seed) : pool_(pool), random_(seed) { store_.Initialize(); }

  // Performs one random operation on both, and steps of some walks.
  void Step() {
    SweepOnce();
    const CatalogueModel::Walk at = walks_.empty() || Below(3) ? CatalogueModel::Walk() : AnyWalk().model;
    const Key image(at.image ? KeyFrom(at) : Any(pool_.images));
    const int tree = at.cell ? at.tree : Below(2);
    const Key index(Any(pool_.indexes)), folder(Any(pool_.folders)), name(Any(pool_.images));
    const Key cell(at.cell ? at.cell->key : Any(tree == kIndexTree ? pool_.indexes : pool_.folders));
    const int force = Below(2);
    const auto attribute = static_cast<std::uint8_t>(Below(3) ? 0 : Below(16));
    const int kind = Below(100);
    if (kind < 32) {
      Both(&CIndexData::AddNode, &CatalogueModel::AddNode, image, index, folder, attribute);
    } else if (kind < 40) {
      Both(&CIndexData::RemoveNode, &CatalogueModel::RemoveNode, image, force);
    } else if (kind < 54) {
      Both(&CIndexData::MoveNode, &CatalogueModel::MoveNode, tree, image, cell, force);
    } else if (kind < 58) {
      Both(&CIndexData::ChangeAttributeNode, &CatalogueModel::ChangeAttributeNode, image, attribute);
    } else if (kind < 74) {
      Both(&CIndexData::AddCell, &CatalogueModel::AddCell, tree, cell, name, attribute);
    } else if (kind < 82) {
      Both(&CIndexData::RemoveCell, &CatalogueModel::RemoveCell, tree, cell, force);
    } else if (kind < 85) {
      Both(&CIndexData::RenameCell, &CatalogueModel::RenameCell, tree, cell, name, force);
    } else if (kind < 88) {
      Both(&CIndexData::ChangeAttributeCell, &CatalogueModel::ChangeAttributeCell, tree, cell, attribute);
    } else {
      const Key everything("/"), everyIndex("");
      const Key* const start = Below(4) ? &folder : Below(2) ? &everything : nullptr;
      const Key& filter = Below(3) ? everyIndex : index;
      Walk(kind >= 92, tree, Below(4) ? cell : everything, filter, start ? start->Text() : nullptr, Below(4) > 0);
    }
    ContinueWalks();
    EXPECT_EQ(BrokenInvariant(store_), "") << "after an operation of kind " << kind;
    EXPECT_EQ(StateOf(store_), model_.State()) << "after an operation of kind " << kind;
  }

 private:
  struct OpenWalk {
    SearchHandle handle{};
    CatalogueModel::Walk model;
    bool isOverImages = false;
    int recursive = 0;
    std::size_t removalsBefore = 0;
  };

  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  const std::string& Any(const Keys& keys) { return keys[random_() % keys.size()]; }
  OpenWalk& AnyWalk() { return walks_[random_() % walks_.size()]; }

  static const char* ForModel(const Key& key) { return key.Text(); }
  static int ForModel(int number) { return number; }

  template <typename Ours, typename Expected, typename... Arguments>
  void Both(Ours ours, Expected expected, const Arguments&... arguments) {
    EXPECT_EQ((store_.*ours)(arguments...), (model_.*expected)(ForModel(arguments)...));
  }
  template <typename Entry, typename ModelEntry>
  bool SameEntry(const Entry* ours, const ModelEntry* expected) {
    EXPECT_EQ(Told(ours), Told(expected));
    return ours != nullptr;
  }

  // The key of the image on which the walk stands; if that was removed, of the image that the walk continues with.
  static std::string KeyFrom(const CatalogueModel::Walk& walk) {
    const CatalogueModel::Image* image = walk.image;
    while (image->isRemoved && image->behind[walk.tree]) image = image->behind[walk.tree];
    return image->key;
  }

  // Begins a walk, which then stays open or goes on to its end.
  void Walk(bool isOverImages, int tree, const Key& cell, const Key& index, const char* folder, int recursive) {
    OpenWalk walk{{}, {}, isOverImages, recursive, model_.Removals()};
    const bool staysOpen = walks_.size() < 8 && Below(2);
    EXPECT_TRUE(!staysOpen || store_.Finds().Open(walk.handle));
    Key cellKey(cell.Text()), indexKey(index.Text()), folderKey(folder);
    bool goesOn = isOverImages
                      ? SameEntry(store_.GetFirstNode(&walk.handle, indexKey, folderKey, recursive),
                                  model_.FirstImage(walk.model, index.Text(), folder, folder ? folder : "", recursive))
                      : SameEntry(store_.GetFirstCell(&walk.handle, tree, cellKey, recursive),
                                  model_.FirstCell(walk.model, tree, cell.Text(), recursive));
    if (staysOpen && goesOn) {
      walks_.push_back(walk);
      return;
    }
    while (!staysOpen && goesOn) goesOn = Advance(walk);
    store_.Finds().Close(walk.handle);
  }

  bool Advance(OpenWalk& walk) {
    return walk.isOverImages ? SameEntry(store_.GetNextNode(&walk.handle, walk.recursive), model_.NextImage(walk.model))
                             : SameEntry(store_.GetNextCell(&walk.handle, walk.recursive), model_.NextCell(walk.model));
  }

  // Advances some walks, also beyond their end, closes some and forgets to close a few. Sometimes empties the store.
  void ContinueWalks() {
    if (Below(500) == 0) {
      store_.Initialize();
      model_ = CatalogueModel();
      for (const OpenWalk& walk : walks_) {
        EXPECT_FALSE(store_.Finds().IsOpen(walk.handle));
        store_.Finds().Close(walk.handle);
      }
      walks_.clear();
      forgotten_.clear();
    }
    for (OpenWalk& walk : walks_) {
      if (Below(6) == 0) Advance(walk);
    }
    if (walks_.empty() || Below(8)) return;
    OpenWalk& walk = AnyWalk();
    Below(100) ? store_.Finds().Close(walk.handle) : forgotten_.push_back(walk);
    walk = walks_.back();
    walks_.pop_back();
  }

  // A sweep leaves the entries that were removed since the oldest open find was opened, and those beyond its limit.
  void SweepOnce() {
    const StoreInspector inspector(store_);
    const std::size_t before = inspector.Waiting() + inspector.Spans();
    store_.Finds().Sweep();
    std::size_t needed = 0;
    for (const auto* walks : {&walks_, &forgotten_}) {
      for (const OpenWalk& walk : *walks) needed = std::max(needed, model_.Removals() - walk.removalsBefore);
    }
    const std::size_t waits = inspector.Waiting();
    const std::size_t swept = before - waits - inspector.Spans();
    EXPECT_TRUE(waits == needed || (waits > needed && swept == OpenFinds::kSweptAtOnce)) << waits << " " << needed;
  }

  const KeyPool& pool_;
  std::mt19937_64 random_;
  CIndexData store_;
  CatalogueModel model_;
  std::vector<OpenWalk> walks_, forgotten_;
};

void ExpectSameAfterEveryStep(const KeyPool& pool) {
  constexpr unsigned long kStepsPerRun = 1000;
  const unsigned long operations = Setting("CATALOGCORE_MODEL_OPERATIONS", 30000) / 3;
  const unsigned long firstSeed = Setting("CATALOGCORE_MODEL_SEED", 1);
  for (unsigned long done = 0; done < operations; done += kStepsPerRun) {
    const unsigned long seed = firstSeed + done / kStepsPerRun;
    SideBySide run(pool, seed);
    for (unsigned long step = 0; step < kStepsPerRun; ++step) {
      run.Step();
      ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", step " << step;
    }
  }
}

TEST(ModelTest, KeysOfAllKinds) { ExpectSameAfterEveryStep(AllKinds(false)); }
TEST(ModelTest, KeysInFewBuckets) { ExpectSameAfterEveryStep(AllKinds(true)); }
TEST(ModelTest, FoldersWithManyGroups) { ExpectSameAfterEveryStep(ManyGroups()); }

}  // namespace

}  // namespace catalogcore
