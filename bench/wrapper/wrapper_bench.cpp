// Compares the C++ layer with equally careful C calls. It is a separate program that uses the shared library like an
// application.
#include <algorithm>
#include <array>
#include <catalogcore.hpp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/support/ratios.h"

namespace catalogcore {

namespace {

using catalogcore::Catalog;

// Few images, so that all data stays in the caches. Then the layer has the largest share in the time of a call.
constexpr int kImages = 10000;
constexpr int kRounds = 41;
constexpr int kRepetitions = 20;

std::vector<std::string> MakePaths() {
  std::vector<std::string> paths;
  for (int i = 0; i < kImages; ++i) {
    paths.push_back("/srv/pictures/folder" + std::to_string(i / 100) + "/DSC_" + std::to_string(100000 + i) + ".jpg");
  }
  std::ranges::shuffle(paths, std::minstd_rand(1));
  return paths;
}

void Require(bool holds) {
  if (!holds) std::abort();
}

struct Release {
  void operator()(CFStringRef string) const { CFRelease(string); }
};
struct Close {
  void operator()(IDXFIND find) const { IDXCloseFind(find); }
};
using String = std::unique_ptr<std::remove_pointer_t<CFStringRef>, Release>;
using Find = std::unique_ptr<std::remove_pointer_t<IDXFIND>, Close>;

String MakeString(const std::string& text) {
  return String(CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8));
}

void AddWithCalls(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    const String name = MakeString(path);
    CFStringRef variable = name.get();
    IDXITEM item{};
    item.name = &variable;
    item.index = IDXPRESET_PHOTO_OTHER;
    item.mask = IDXMASK_NAME | IDXMASK_INDEX;
    Require(IDXAddImage(&item) == IDX_OK);
  }
}

void Add(Catalog& catalog, const std::vector<std::string>& paths) {
  for (const std::string& path : paths) Require(catalog.AddImage(path, IDXPRESET_PHOTO_OTHER).has_value());
}

void LookUpWithCalls(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    const String name = MakeString(path);
    CFStringRef variable = name.get();
    IDXITEM item{};
    item.name = &variable;
    item.mask = IDXMASK_NAME | IDXMASK_INDEX | IDXMASK_ATTRIBUTE;
    Require(IDXSearchImage(&item) == IDX_OK && item.index == IDXPRESET_PHOTO_OTHER);
  }
}

void LookUp(const Catalog& catalog, const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    const auto filing = catalog.FindImage(path);
    Require(filing && filing->index == IDXPRESET_PHOTO_OTHER);
  }
}

// Both walks make a string of each path and return the total number of bytes.
std::size_t WalkWithCalls() {
  std::size_t bytes = 0;
  std::string path;
  std::array<char, 4096> text;
  CFStringRef variable = nullptr;
  IDXITEM item{};
  item.operation = IDXOP_GETINFO;
  item.name = &variable;
  item.mask = IDXMASK_NAME | IDXMASK_INDEX | IDXMASK_ATTRIBUTE;
  IDXSTATUS status = IDX_OK;
  const Find find(IDXFindFirstImage(&item, &status));
  for (; status == IDX_OK; status = IDXFindNextImage(find.get(), &item)) {
    const String name(std::exchange(variable, nullptr));
    if (!name || !CFStringGetCString(name.get(), text.data(), text.size(), kCFStringEncodingUTF8)) continue;
    path.assign(text.data());
    bytes += path.size();
  }
  return bytes;
}

std::size_t Walk(const Catalog& catalog) {
  std::size_t bytes = 0;
  for (const catalogcore::Image& image : *catalog.Images()) bytes += image.path.size();
  return bytes;
}

void AddRows(Catalog& catalog, const std::vector<std::string>& paths) {
  constexpr char kCalls[] = "the C calls";
  const auto add = [&](auto work) {
    return [&catalog, work] {
      catalog.Clear().value();
      return ThreadTime(kImages, work);
    };
  };
  const auto look = [&](auto work) {
    return [&catalog, &paths, work] {
      catalog.Clear().value();
      Add(catalog, paths);
      return ThreadTime(double{kImages} * kRepetitions, [&] {
        for (int i = 0; i < kRepetitions; ++i) work();
      });
    };
  };
  AddRow("wrapper_add", add([&] { Add(catalog, paths); }), kCalls, add([&] { AddWithCalls(paths); }), kRounds);
  AddRow("wrapper_lookup", look([&] { LookUp(catalog, paths); }), kCalls, look([&] { LookUpWithCalls(paths); }),
         kRounds);
  AddRow("wrapper_walk", look([&] { Require(Walk(catalog) > 0); }), kCalls, look([] { Require(WalkWithCalls() > 0); }),
         kRounds);
}

}  // namespace

}  // namespace catalogcore

using namespace catalogcore;

int main(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') {
    std::fprintf(stderr, "usage: catalogcore_wrapper_bench RATIOS.json [--benchmark_filter=REGEX ...]\n");
    return 2;
  }
  Catalog catalog = Catalog::Open().value();
  const std::vector<std::string> paths = MakePaths();
  AddRows(catalog, paths);
  const char* const file = argv[1];
  argv[1] = argv[0];
  std::vector<Ratio> results;
  return RunRows(argc - 1, argv + 1, file, results);
}
