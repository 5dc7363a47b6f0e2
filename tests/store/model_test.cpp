// Random sequences of the store's operations, on the store and on the model side by side, with walks open across them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>

#include "tests/support/catalogue_model.h"
#include "tests/support/store_inspector.h"

namespace catalogcore {

namespace {

// CATALOGCORE_MODEL_OPERATIONS and CATALOGCORE_MODEL_SEED ask for more, or for the same again.
unsigned long Setting(const char* name, unsigned long standard) {
  const char* const value = std::getenv(name);
  return value ? std::strtoul(value, nullptr, 10) : standard;
}

// Two spellings of one word, different in letter case alone, that share a bucket, and so are one key.
std::pair<std::string, std::string> SameKeyInTwoCases(const std::string& word) {
  std::map<unsigned, std::string> byBucket;
  for (unsigned bits = 0; bits < 1u << word.size(); ++bits) {
    std::string spelling = word;
    for (std::size_t i = 0; i < word.size(); ++i) {
      if (bits >> i & 1u) spelling[i] = static_cast<char>(spelling[i] - 'a' + 'A');
    }
    const auto [found, isNew] = byBucket.emplace(ModelHash(spelling), spelling);
    if (!isNew) return {found->second, spelling};
  }
  return {};
}

struct KeyPool {
  Keys indexes, folders, images;
};

enum class Pool { kSpread, kInFewBuckets, kInManyGroups };

// In few buckets: all images and half of the cells lie in three. In many groups: folders have images of many indexes.
KeyPool MakePool(Pool kind) {
  if (kind == Pool::kInManyGroups) {
    KeyPool pool{{""}, {"/p", "/p/q"}, {}};
    for (int i = 0; i < 150; ++i) pool.indexes.push_back(std::to_string(i % 10) + "/" + std::to_string(i));
    for (int i = 0; i < 300; ++i) pool.images.push_back("/p/" + std::to_string(i));
    return pool;
  }
  const bool crowded = kind == Pool::kInFewBuckets;
  const auto [lower, upper] = SameKeyInTwoCases("summerholiday");
  KeyPool pool;
  pool.indexes = {"",    ".",         "1",          "1/1",        "1/10",    "1/10/3", "1/9", "2",     "2/1",
                  "2/9", "2/9/4/5/6", "3",          "9",          "/1",      "1//2",   "2/",  "A/b/c", "a/B",
                  lower, upper,       lower + "/1", upper + "/1", "1/10/3/", "10",     "./x", "./x/y"};
  pool.folders = {"",         "/",        ".",           "/Users",   "/Users/a",        "/Users/a/Pictures",
                  "/Users/b", "/users/b", "/volumes/x",  "/Volumes", "/Volumes/disk/x", "/Volumes2",
                  "/x",       "rel",      "rel/deep/er", "./rel",    "/a//b",           "/Users/a/"};
  pool.folders.insert(pool.folders.end(), {"/" + lower, "/" + upper, "/\xC3\xA4\xE2\x82\xAC"});
  for (int i = 0; pool.images.size() < 60; ++i) {
    const std::string name = "/Users/a/img_" + std::to_string(i) + ".jpg";
    if (!crowded || ModelHash(name) < 3) pool.images.push_back(name);
  }
  for (int i = 0; crowded && pool.indexes.size() < 48; ++i) {
    const std::string name = "3/x" + std::to_string(i);
    if (ModelHash(name) < 3) pool.indexes.push_back(name);
  }
  pool.images.insert(pool.images.end(), {"", "/" + lower, "/" + upper, "/Users/a/IMG_0.jpg"});
  return pool;
}

// What a walk found; reading all of it shows that it is there.
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

  // One random operation on both, and maybe a step of a walk; adds to `log_` what it was.
  void Step() {
    SweepOnce();
    const CatalogueModel::Walk at = walks_.empty() || Below(3) ? CatalogueModel::Walk() : AnyWalk().model;
    const Key image(at.image ? KeyFrom(at) : Any(pool_.images));
    const int tree = at.cell ? at.tree : Below(2);
    const Key index(Any(pool_.indexes)), folder(Any(pool_.folders));
    const Key cell(at.cell ? at.cell->key : Any(tree == kIndexTree ? pool_.indexes : pool_.folders));
    const Key name(Any(pool_.images));
    const int force = Below(2);
    const auto attribute = static_cast<std::uint8_t>(Below(3) ? 0 : Below(16));
    log_ = std::string(" tree ") + std::to_string(tree) + " image " + image.Text() + " index " + index.Text() +
           " folder " + folder.Text() + " cell " + cell.Text() + " force " + std::to_string(force);
    const int kind = Below(100);
    if (kind < 32) {
      Same("AddNode", store_.AddNode(image, index, folder, attribute),
           model_.AddNode(image.Text(), index.Text(), folder.Text(), attribute));
    } else if (kind < 40) {
      Same("RemoveNode", store_.RemoveNode(image, force), model_.RemoveNode(image.Text(), force));
    } else if (kind < 54) {
      Same("MoveNode", store_.MoveNode(tree, image, cell, force),
           model_.MoveNode(tree, image.Text(), cell.Text(), force));
    } else if (kind < 58) {
      Same("ChangeAttributeNode", store_.ChangeAttributeNode(image, attribute),
           model_.ChangeAttributeNode(image.Text(), attribute));
    } else if (kind < 74) {
      Same("AddCell", store_.AddCell(tree, cell, name, attribute),
           model_.AddCell(tree, cell.Text(), name.Text(), attribute));
    } else if (kind < 82) {
      Same("RemoveCell", store_.RemoveCell(tree, cell, force), model_.RemoveCell(tree, cell.Text(), force));
    } else if (kind < 85) {
      Same("RenameCell", store_.RenameCell(tree, cell, name, force),
           model_.RenameCell(tree, cell.Text(), name.Text(), force));
    } else if (kind < 88) {
      Same("ChangeAttributeCell", store_.ChangeAttributeCell(tree, cell, attribute),
           model_.ChangeAttributeCell(tree, cell.Text(), attribute));
    } else {
      OpenWalk walk;
      const bool staysOpen = walks_.size() < 8 && Below(2);
      if (staysOpen) Open(walk);
      walk.isOverImages = kind >= 92;
      walk.recursive = force;
      const bool isAnywhere = walk.isOverImages ? BeginImages(walk, index.Text(), Below(4) != 0, folder.Text())
                                                : BeginCells(walk, tree, cell.Text());
      while (!staysOpen && Advance(walk)) {
      }
      if (isAnywhere && staysOpen) {
        walks_.push_back(walk);
      } else {
        store_.Finds().Close(walk.handle);
      }
    }
    GoOnWithWalks();
    EXPECT_EQ(BrokenInvariant(store_), "") << log_;
    EXPECT_EQ(StateOf(store_), model_.State()) << log_;
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  const std::string& Any(const Keys& keys) {
    return keys[static_cast<std::size_t>(Below(static_cast<int>(keys.size())))];
  }

  template <typename Result>
  void Same(const char* operation, const Result& ours, const Result& expected) {
    log_ = operation + (";" + log_);
    EXPECT_EQ(ours, expected) << log_;
  }

  struct OpenWalk {
    SearchHandle handle{};
    CatalogueModel::Walk model;
    bool isOverImages = false;
    int recursive = 0;
    std::size_t removalsBefore = 0;
  };

  OpenWalk& AnyWalk() { return walks_[static_cast<std::size_t>(Below(static_cast<int>(walks_.size())))]; }

  // Of the image that the walk stands on, or would come to if that was removed.
  static std::string KeyFrom(const CatalogueModel::Walk& walk) {
    const CatalogueModel::Image* image = walk.image;
    while (image->isRemoved && image->behind[walk.tree]) image = image->behind[walk.tree];
    return image->key;
  }

  void Open(OpenWalk& walk) {
    EXPECT_TRUE(store_.Finds().Open(walk.handle));
    walk.removalsBefore = model_.Removals();
  }

  template <typename Entry, typename ModelEntry>
  bool SameStep(const char* step, const Entry* ours, const ModelEntry* expected) {
    Same(step, Told(ours), Told(expected));
    return ours != nullptr;
  }

  bool BeginCells(OpenWalk& walk, int tree, const char* key) {
    Key start(key);
    return SameStep("GetFirstCell", store_.GetFirstCell(&walk.handle, tree, start, walk.recursive),
                    model_.FirstCell(walk.model, tree, key, walk.recursive));
  }

  bool BeginImages(OpenWalk& walk, const char* indexKey, bool hasFolder, const char* folderKey) {
    Key index(indexKey), folder(hasFolder ? folderKey : nullptr);
    return SameStep("GetFirstNode", store_.GetFirstNode(&walk.handle, index, folder, walk.recursive),
                    model_.FirstImage(walk.model, indexKey, hasFolder, folderKey, walk.recursive));
  }

  bool Advance(OpenWalk& walk) {
    if (!walk.isOverImages) {
      return SameStep("GetNextCell", store_.GetNextCell(&walk.handle, walk.recursive), model_.NextCell(walk.model));
    }
    return SameStep("GetNextNode", store_.GetNextNode(&walk.handle, walk.recursive), model_.NextImage(walk.model));
  }

  // A few go a step, also beyond their end; some are closed, a few are forgotten; and seldom everything begins anew.
  void GoOnWithWalks() {
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
    if (Below(100)) {
      store_.Finds().Close(walk.handle);
    } else {
      forgotten_.push_back(walk);
    }
    walk = walks_.back();
    walks_.pop_back();
  }

  // Leaves what was removed since the oldest of the open finds was opened, and what is too much for one sweep.
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
    EXPECT_TRUE(waits == needed ? swept <= OpenFinds::kSweptAtOnce : waits > needed && swept == OpenFinds::kSweptAtOnce)
        << waits << " wait, " << needed << " have to, " << swept << " swept";
  }

  const KeyPool& pool_;
  std::mt19937_64 random_;
  CIndexData store_;
  CatalogueModel model_;
  std::vector<OpenWalk> walks_, forgotten_;
  std::string log_;
};

class ModelTest : public testing::TestWithParam<Pool> {};

TEST_P(ModelTest, StoreAndModelAgreeAfterEveryStep) {
  constexpr unsigned long kStepsPerRun = 1000;
  const unsigned long operations = Setting("CATALOGCORE_MODEL_OPERATIONS", 100000);
  const unsigned long firstSeed = Setting("CATALOGCORE_MODEL_SEED", 1);
  const KeyPool pool = MakePool(GetParam());
  std::cout << operations << " operations, seeds from " << firstSeed << "\n";
  for (unsigned long done = 0; done < operations; done += kStepsPerRun) {
    const unsigned long seed = firstSeed + done / kStepsPerRun;
    SideBySide run(pool, seed);
    for (unsigned long step = 0; step < kStepsPerRun; ++step) {
      run.Step();
      ASSERT_FALSE(HasFailure()) << "seed " << seed << ", step " << step;
    }
  }
}

std::string NameOf(const testing::TestParamInfo<Pool>& test) {
  constexpr const char* kNames[] = {"Spread", "InFewBuckets", "InManyGroups"};
  return kNames[static_cast<int>(test.param)];
}

INSTANTIATE_TEST_SUITE_P(Keys, ModelTest, testing::Values(Pool::kSpread, Pool::kInFewBuckets, Pool::kInManyGroups),
                         NameOf);

}  // namespace

}  // namespace catalogcore
