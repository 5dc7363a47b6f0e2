// network_answers BLOCK PICTURE ROWS: prints the answers of the network in a file for the bytes of a picture.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "engines/network/network.h"

namespace {

std::vector<std::uint8_t> ContentOf(const char* file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

int main(int argc, char** argv) {
  using namespace catalogcore;
  if (argc != 4) return 2;
  const auto description = network::ReadBlock(ContentOf(argv[1]));
  if (!description) return 1;
  const std::vector<std::uint8_t> picture = ContentOf(argv[2]);
  const auto rows = static_cast<std::size_t>(std::atoi(argv[3]));
  network::Workspace workspace;
  const network::Answers answers =
      network::Network(*description).Evaluate({picture.data(), rows, picture.size() / rows}, workspace);
  std::printf("%zu %zu %zu\n", answers.rows, answers.columns, answers.count);
  for (std::size_t place = 0; place < answers.rows * answers.columns; ++place) {
    for (const std::int32_t answer : answers.At(place / answers.columns, place % answers.columns)) {
      std::printf("%d\n", answer);
    }
  }
}
