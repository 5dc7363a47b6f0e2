// Blocks with networks: the input itself, and the input with a valid tag, version, size and check sum. A network that is
// accepted gives the same answers in every form.
#include <algorithm>

#include "fuzz/support/fuzzer.h"
#include "tests/engines/network_blocks.h"

namespace catalogcore {

namespace {

void Check(const BlockBytes& block) {
  const auto description = network::ReadBlock(block);
  if (!description) return;
  std::vector<std::uint8_t> picture(24 * 24 * description->inputs);
  for (std::size_t i = 0; i < picture.size(); ++i) picture[i] = static_cast<std::uint8_t>(i * 37);
  std::vector<std::int64_t> first;
  for (const network::Form& form : network::Forms()) {
    network::Workspace workspace;
    const network::Network network(*description, form);
    const PixelView view(picture.data(), 24, 24 * description->inputs);
    const std::vector<std::int64_t> values = AllAnswers(network.Evaluate(view, workspace));
    if (&form == &network::Forms().front()) first = values;
    EXPECT_EQ(values, first) << form.name;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  BlockBytes block(data, data + size);
  Check(block);
  Seal(block);
  Check(block);
  return 0;
}

}  // namespace catalogcore
