#include "engines/faces/face_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "engines/faces/network_files.h"
#include "engines/faces/pyramid.h"
#include "engines/network/network.h"

namespace catalogcore::faces {
namespace {

// Chosen together with the networks in resources/ (docs/face-networks.md).
constexpr double kProposalThreshold = -4.0;  // a logit of the search network
constexpr std::size_t kMostProposals = 32;   // that are checked; bounds the time of a search
constexpr double kProposalOverlap = 0.3;     // of two proposals, at most; shares of their union
constexpr double kFaceOverlap = 0.4;         // of two faces, at most

// The geometry of the networks, as they were trained (tools/faces/networks.py).
constexpr double kCellStep = 8;          // pixels from one cell of the search network to the next
constexpr double kMiddleSize = 26;       // size of a face whose logarithm of the size is 0, in pixels of a level
constexpr double kFarthestSize = 1.5;    // of the search network's logarithm from 0
constexpr double kFarthestSide = 1;      // of the check network's logarithms
constexpr std::int32_t kPatchSide = 48;  // pixels of the check network's input
constexpr double kPatchFace = 26;        // size of a proposal in that patch
constexpr std::size_t kMostCandidates = 40 * kMostProposals;

enum SearchAnswer : std::size_t { kSearchScore, kSearchX, kSearchY, kSearchSize, kFirstQuarter, kSearchAnswers = 8 };
enum CheckAnswer : std::size_t { kCheckScore, kCheckX, kCheckY, kCheckWidth, kCheckHeight, kCheckAnswers };

struct Networks {
  Networks() : search(Read(NetworkFiles()[0], kSearchAnswers)), check(Read(NetworkFiles()[1], kCheckAnswers)) {}

  network::Network search;
  network::Network check;

 private:
  static network::Network Read(const EmbeddedFile& file, std::size_t answers) {
    const std::span content(reinterpret_cast<const std::uint8_t*>(file.content.data()), file.content.size());
    const std::optional<network::Description> description = network::ReadBlock(content);
    if (!description || description->inputs != 1 || description->layers.back().outputs != answers) {
      throw std::runtime_error(std::string(file.name) + " is damaged");
    }
    return network::Network(*description);
  }
};

const Networks& TheNetworks() {
  static const Networks networks;
  return networks;
}

std::int32_t ToScore(double logit, const network::Network& network) {
  return static_cast<std::int32_t>(std::lround(std::ldexp(logit, network.AnswerBits())));
}

double ToLogit(std::int32_t answer, const network::Network& network) {
  return std::ldexp(static_cast<double>(answer), -network.AnswerBits());
}

// e^x for x between -2 and 2, with an error below 1e-9. std::exp differs from one C library to another.
double Exponential(double x) {
  constexpr int kTerms = 9;
  double power = 1;
  for (int n = kTerms; n > 0; --n) power = 1 + power * (x / 8) / n;
  for (int doublings = 0; doublings < 3; ++doublings) power *= power;
  return power;
}

FoundFace AsSquare(const Place& place) {
  const double half = place.size / 2;
  return {place.x - half, place.y - half, place.x + half, place.y + half, 0};
}

double Area(const FoundFace& face) { return (face.right - face.left) * (face.bottom - face.top); }

// The part of their union that both cover.
double Overlap(const FoundFace& a, const FoundFace& b) {
  const double across = std::min(a.right, b.right) - std::max(a.left, b.left);
  const double down = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
  if (across <= 0 || down <= 0) return 0;
  return across * down / (Area(a) + Area(b) - across * down);
}

bool OverlapsOne(const FoundFace& face, const std::vector<FoundFace>& others, double most) {
  return std::any_of(others.begin(), others.end(), [&](const FoundFace& other) { return Overlap(face, other) > most; });
}

struct Proposal {
  Place place;
  std::int32_t score = 0;
};

Place PlaceOfCell(std::size_t row, std::size_t column, std::span<const std::int32_t> answers, double step) {
  const auto answer = [&](SearchAnswer i) { return ToLogit(answers[i], TheNetworks().search); };
  const double size = kMiddleSize * Exponential(std::clamp(answer(kSearchSize), -kFarthestSize, kFarthestSize));
  const auto quarters = answers.subspan(kFirstQuarter);
  return {((static_cast<double>(column) + answer(kSearchX)) * kCellStep + 0.5) * step,
          ((static_cast<double>(row) + answer(kSearchY)) * kCellStep + 0.5) * step, size * step,
          static_cast<int>(std::max_element(quarters.begin(), quarters.end()) - quarters.begin())};
}

std::vector<Proposal> SearchLevels(const Pyramid& pyramid, network::Workspace& workspace) {
  const network::Network& search = TheNetworks().search;
  const std::int32_t threshold = ToScore(kProposalThreshold, search);
  std::vector<Proposal> proposals;
  double step = 1;
  for (std::size_t level = 0; level < pyramid.LevelCount(); ++level, step *= 2) {
    const network::Answers cells = search.Evaluate(pyramid.Level(level), workspace);
    for (std::size_t row = 0; row < cells.rows; ++row) {
      for (std::size_t column = 0; column < cells.columns; ++column) {
        const auto answers = cells.At(row, column);
        if (answers[kSearchScore] < threshold) continue;
        proposals.push_back({PlaceOfCell(row, column, answers, step), answers[kSearchScore]});
      }
    }
  }
  return proposals;
}

std::vector<Proposal> BestProposals(const Pyramid& pyramid, network::Workspace& workspace) {
  std::vector<Proposal> proposals = SearchLevels(pyramid, workspace);
  std::stable_sort(proposals.begin(), proposals.end(),
                   [](const Proposal& a, const Proposal& b) { return a.score > b.score; });
  if (proposals.size() > kMostCandidates) proposals.resize(kMostCandidates);
  std::vector<Proposal> best;
  std::vector<FoundFace> squares;
  for (const Proposal& proposal : proposals) {
    const FoundFace square = AsSquare(proposal.place);
    if (OverlapsOne(square, squares, kProposalOverlap)) continue;
    squares.push_back(square);
    best.push_back(proposal);
    if (best.size() == kMostProposals) break;
  }
  return best;
}

using CheckAnswers = std::array<double, kCheckAnswers>;

CheckAnswers Check(const GreyPicture& patch, network::Workspace& workspace) {
  const network::Network& check = TheNetworks().check;
  const network::Answers answers = check.Evaluate(patch.View(), workspace);
  if (answers.rows == 0 || answers.columns == 0) throw std::runtime_error("the check network has no answer");
  CheckAnswers values{};
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = ToLogit(answers.At(0, 0)[i], check);
  return values;
}

void Mirror(GreyPicture& patch) {
  const MutablePixelView pixels(patch.pixels.data(), patch.size.height, patch.size.width);
  for (std::int32_t y = 0; y < pixels.Rows(); ++y) std::reverse(pixels.Row(y).begin(), pixels.Row(y).end());
}

// The mean of what the network answers for the patch and for its mirror image, which errs less. Mirrors the patch.
CheckAnswers CheckBothWays(GreyPicture& patch, network::Workspace& workspace) {
  CheckAnswers mean = Check(patch, workspace);
  Mirror(patch);
  CheckAnswers mirrored = Check(patch, workspace);
  mirrored[kCheckX] = -mirrored[kCheckX];
  for (std::size_t i = 0; i < mean.size(); ++i) mean[i] = (mean[i] + mirrored[i]) / 2;
  return mean;
}

FoundFace FaceOfPlace(const Place& place, const CheckAnswers& answers) {
  const auto side = [&](CheckAnswer i) {
    return place.size * Exponential(std::clamp(answers[i], -kFarthestSide, kFarthestSide));
  };
  const Direction shift = InPicture(place.quarter, {answers[kCheckX], answers[kCheckY]});
  const Direction extent = InPicture(place.quarter, {side(kCheckWidth), side(kCheckHeight)});
  const double halfWidth = std::abs(extent.right) / 2, halfHeight = std::abs(extent.down) / 2;
  const double x = place.x + shift.right * place.size, y = place.y + shift.down * place.size;
  return {x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight, answers[kCheckScore]};
}

}  // namespace

void PrepareFaceSearch() { TheNetworks(); }

std::vector<FoundFace> FindFaces(const PixelView& picture, double threshold) {
  const Pyramid pyramid(picture);
  network::Workspace workspace;
  GreyPicture patch{{kPatchSide, kPatchSide}, std::vector<std::uint8_t>(std::size_t{kPatchSide} * kPatchSide)};
  std::vector<FoundFace> checked;
  for (const Proposal& proposal : BestProposals(pyramid, workspace)) {
    pyramid.CutUpright(proposal.place, kPatchFace, patch);
    const FoundFace face = FaceOfPlace(proposal.place, CheckBothWays(patch, workspace));
    if (face.score >= threshold) checked.push_back(face);
  }
  std::stable_sort(checked.begin(), checked.end(),
                   [](const FoundFace& a, const FoundFace& b) { return a.score > b.score; });
  std::vector<FoundFace> faces;
  for (const FoundFace& face : checked) {
    if (!OverlapsOne(face, faces, kFaceOverlap)) faces.push_back(face);
  }
  return faces;
}

}  // namespace catalogcore::faces
