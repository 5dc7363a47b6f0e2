// Compares random sequences of exported calls with the model. Then both files are written and loaded, and the loaded
// catalogue is compared.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "tests/support/compared_calls.h"

namespace catalogcore {

namespace {

namespace fs = std::filesystem;

TEST(RandomCalls, LibraryAndModelAgreeAndSoDoesWhatIsLoaded) {
  const fs::path folder = fs::temp_directory_path() / ("catalogcore_calls_" + std::to_string(getpid()));
  Keys names;
  for (int i = 0; i < 30; ++i) {
    const fs::path path = folder / ("f" + std::to_string(i % 3)) / ("image, " + std::to_string(i) + ".jpg");
    fs::create_directories(path.parent_path());
    if (i % 10) std::ofstream(path) << "x";  // some files are missing
    names.push_back(path);
  }
  for (unsigned long seed = 1; seed <= 30 && !testing::Test::HasFailure(); ++seed) {
    std::mt19937_64 random(seed);
    ComparedCalls run([&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); },
                      names);
    for (int step = 0; step < 300; ++step) {
      run.Step();
      ASSERT_FALSE(testing::Test::HasFailure()) << "seed " << seed << ", step " << step;
    }
    run.WriteAndLoad(folder);
    EXPECT_FALSE(testing::Test::HasFailure()) << "seed " << seed;
  }
  fs::remove_all(folder);
}

}  // namespace

}  // namespace catalogcore
