// The recognizer's parameter block: the input itself, and the input with a valid tag, version, size and check sum.
#include <algorithm>
#include <cstring>
#include <span>

#include "engines/document_type/model.h"
#include "fuzz/support/fuzzer.h"
#include "tests/engines/painted.h"

namespace catalogcore {

namespace {

using namespace document_type;
using ParameterBytes = std::vector<std::uint8_t>;

std::int32_t Recognize(const ParameterBytes& block, std::uint16_t& word) {
  static const tools::PreparedPicture picture = PreparePicture(Painted(64, 50, 24, [](int x, int y) {
    return PaintedColour{4.0 * x, 5.0 * y, x * y % 256 * 1.0};
  }));
  unsigned char result[kBrennResultSize] = {};
  const std::int32_t code = DocumentTypeRecognize(0, "CatalogCr       ", picture.record.data(), picture.pixels.data(),
                                                  result, static_cast<std::uint32_t>(block.size()), block.data());
  std::memcpy(&word, result, sizeof word);
  return code;
}

void Check(const ParameterBytes& block) {
  std::uint16_t word = 0;
  const std::int32_t code = Recognize(block, word);
  EXPECT_TRUE(code >= 0 && code < 256) << code;
  EXPECT_EQ(code == 0, word == kPrintOnPaper || word == kDocumentWithPictures || word == kPhotograph) << word;
  Model model;
  if (code != 0 || ReadParameterBlock(block, model) != Fault::kNone) return;
  std::uint16_t again = 0;
  EXPECT_EQ(Recognize(MakeParameterBlock(model), again), 0);
  EXPECT_EQ(again, word);
}

void Seal(ParameterBytes& block) {
  block.resize(std::max(block.size(), std::size_t{20}));
  std::memcpy(block.data(), "SGIPPDEF", 8);
  const auto put = [&block](std::size_t at, std::size_t value) {
    for (std::size_t i = 0; i < 4; ++i) block[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
  };
  put(8, kBlockVersion);
  put(12, block.size());
  put(16, CheckSum(std::span<const std::uint8_t>(block).subspan(20)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ParameterBytes block(data, data + size);
  Check(block);
  Seal(block);
  Check(block);
  return 0;
}

}  // namespace catalogcore
