// Loads the input as the payload of both catalogue files. The catalogue must be the one that the model makes of the
// records, and must be unchanged after a write and a load.
#include <sys/stat.h>

#include "fuzz/support/fuzzer.h"
#include "persist/catalogue_records.h"
#include "persist/payload.h"
#include "tests/support/compared_calls.h"

namespace catalogcore {

namespace {

void WriteFileWith(std::string_view payload) {
  const CFReference<CFDataRef> data(
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(payload.data()), static_cast<CFIndex>(payload.size())));
  const CFReference<CFMutableDictionaryRef> dictionary(
      CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
  CFDictionarySetValue(dictionary.get(), CATALOGCORE_INDEX_KEY, data.get());
  CFDictionarySetValue(dictionary.get(), CATALOGCORE_IMAGE_KEY, data.get());
  const CFReference<CFDataRef> xml(CFPropertyListCreateXMLData(nullptr, dictionary.get()));
  WriteFile(ScratchFolder() + "file", TextOf(xml.get()));
}

// Into an empty catalogue.
IDXSTATUS Load() {
  EXPECT_EQ(IDXInitialize(), IDX_OK);
  EXPECT_EQ(OnName(IDXSetFilePath, ScratchFolder()), IDX_OK);
  struct stat file {};
  EXPECT_EQ(stat((ScratchFolder() + "file").c_str(), &file), 0);
  const ProportionalMemory memory(static_cast<std::size_t>(file.st_size));
  const IDXSTATUS status = OnName(IDXLoadIndexFile, "file");
  EXPECT_EQ(OnName(IDXLoadImageFile, "file"), status == IDXERR_EMPTY ? IDXSTATUS{IDXERR_VERSION} : status);
  return status;
}

CatalogueState WrittenAndLoaded() {
  EXPECT_EQ(OnName(IDXWriteIndexFile, "file"), IDX_OK);
  EXPECT_EQ(OnName(IDXWriteImageFile, "file"), IDX_OK);
  EXPECT_EQ(Load(), IDX_OK);
  return StateOf(*idData);
}

CatalogueState Expected(std::string_view payload) {
  CatalogueModel model;
  ComparedCalls::AddPresets(model);
  for (const bool images : {false, true}) {
    PayloadReader reader(payload);
    reader.VersionLine();
    for (PayloadRecord record{}; reader.NextRecord(record);) {
      const std::string key(record.first), last(record.last);
      if (!images) model.AddCell(kIndexTree, key, last, record.attribute);
      const bool isImage = images && last.find('/') != last.npos && IsFileExistAPI(last.c_str()) == 1;
      if (isImage) model.AddNode(last, key, last.substr(0, last.rfind('/')), record.attribute);
    }
  }
  return model.State();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostForModel = 2000;  // the model is slow
  WriteFileWith(AsText(data, size));
  if (Load() != IDX_OK) return 0;
  const CatalogueState first = StateOf(*idData);
  EXPECT_EQ(BrokenInvariant(*idData), "");
  EXPECT_TRUE(size > kMostForModel || first == Expected(AsText(data, size))) << first;

  // An index with all three protections, like a preset, is not written; loading its children creates it again.
  const CatalogueState second = WrittenAndLoaded();
  const auto& indexes = first.cells[kIndexTree];
  const auto isProtected = [](const CellState& index) { return index.attribute == 7; };
  const bool comesBack = std::count_if(indexes.begin(), indexes.end(), isProtected) == std::ssize(kaPresetIndex) + 1;
  EXPECT_TRUE(!comesBack || second.cells[kIndexTree] == indexes) << first << second;
  EXPECT_EQ(WrittenAndLoaded(), second);
  return 0;
}

}  // namespace catalogcore
