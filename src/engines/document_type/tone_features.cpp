// Features of the tones: of the whole picture's histogram, and tile by tile.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "engines/document_type/features.h"

namespace catalogcore::document_type {
namespace {

constexpr std::size_t kTilesPerSide = 8;
constexpr std::size_t kTiles = kTilesPerSide * kTilesPerSide;
constexpr std::size_t kBins = 64;  // of four tones each
constexpr std::size_t kNear = 3;   // bins on either side that count as the same tone

using Histogram = std::array<std::uint32_t, kBins>;

// The histograms cover every pixel: the last row and column of tiles take the remainder.
std::array<Histogram, kTiles> TileHistograms(const WorkingCopy& copy) {
  std::array<Histogram, kTiles> tiles{};
  const std::size_t tileWidth = copy.width / kTilesPerSide;
  const std::size_t tileHeight = copy.height / kTilesPerSide;
  const PixelView grey = copy.Grey();
  for (std::size_t y = 0; y < copy.height; ++y) {
    const std::size_t tileRow = std::min(y / tileHeight, kTilesPerSide - 1);
    const auto row = grey.Row(y);
    for (std::size_t column = 0; column < kTilesPerSide; ++column) {
      Histogram& tile = tiles[tileRow * kTilesPerSide + column];
      const std::size_t end = column + 1 == kTilesPerSide ? copy.width : (column + 1) * tileWidth;
      for (std::size_t x = column * tileWidth; x < end; ++x) ++tile[row[x] / 4U];
    }
  }
  return tiles;
}

double Share(const Histogram& histogram, std::size_t from, std::size_t to, double total) {
  std::uint32_t count = 0;
  for (std::size_t bin = from; bin < std::min(to, kBins); ++bin) count += histogram[bin];
  return count / total;
}

double Total(const Histogram& histogram) { return Share(histogram, 0, kBins, 1.0); }

std::size_t Below(std::size_t bin, std::size_t by) { return bin < by ? 0 : bin - by; }

// The bin with the most pixels in it and its two neighbours.
std::size_t Peak(const Histogram& histogram) {
  std::size_t best = 0;
  double most = -1;
  for (std::size_t bin = 0; bin < kBins; ++bin) {
    const double here = Share(histogram, Below(bin, 1), bin + 2, 1.0);
    if (here > most) {
      most = here;
      best = bin;
    }
  }
  return best;
}

double ToneOf(std::size_t bin) { return static_cast<double>(bin) / static_cast<double>(kBins - 1); }

double Entropy(const Histogram& histogram, double total) {
  double sum = 0;
  for (const std::uint32_t count : histogram) {
    if (count > 0) sum -= count / total * std::log2(count / total);
  }
  return sum / std::log2(static_cast<double>(kBins));
}

// The threshold at which the variance between the two classes is largest: N. Otsu, "A threshold selection method from
// gray-level histograms", 1979.
struct TwoClasses {
  double separation = 0;  // between-class over total variance
  double darkShare = 1;
  double darkMean = 0;
  double lightMean = 0;
};

TwoClasses SplitTones(const Histogram& histogram, double total) {
  double mean = 0;
  double square = 0;
  for (std::size_t bin = 0; bin < kBins; ++bin) {
    mean += ToneOf(bin) * histogram[bin] / total;
    square += ToneOf(bin) * ToneOf(bin) * histogram[bin] / total;
  }
  const double variance = square - mean * mean;
  TwoClasses best;
  best.darkMean = best.lightMean = mean;
  if (variance < 1e-9) return best;

  double share = 0;
  double sum = 0;
  for (std::size_t bin = 0; bin + 1 < kBins; ++bin) {
    share += histogram[bin] / total;
    sum += ToneOf(bin) * histogram[bin] / total;
    if (share <= 0 || share >= 1) continue;
    const double between = (mean * share - sum) * (mean * share - sum) / (share * (1 - share));
    if (between / variance > best.separation) {
      best = {between / variance, share, sum / share, (mean - sum) / (1 - share)};
    }
  }
  return best;
}

double SquareRoot(double variance) { return std::sqrt(std::max(0.0, variance)); }

// Paper has one tone, some pixels far darker and hardly any lighter. A tile without ink counts half.
double PaperLikeness(const Histogram& tile, std::size_t peak, double total) {
  const double same = Share(tile, Below(peak, kNear), peak + kNear + 1, total);
  const double lighter = Share(tile, peak + kNear + 1, kBins, total);
  const double muchDarker = Share(tile, 0, Below(peak, 15), total);
  if (same < 0.4 || lighter > 0.1) return 0;
  return muchDarker > 0.01 ? 1 : 0.5;
}

void MeasureTiles(const std::array<Histogram, kTiles>& tiles, FeatureVector& features) {
  std::array<double, kTiles> shares{};
  double paper = 0;
  double sum = 0;
  double square = 0;
  for (std::size_t i = 0; i < kTiles; ++i) {
    const double total = Total(tiles[i]);
    const std::size_t peak = Peak(tiles[i]);
    shares[i] = Share(tiles[i], Below(peak, kNear), peak + kNear + 1, total);
    paper += PaperLikeness(tiles[i], peak, total);
    sum += ToneOf(peak);
    square += ToneOf(peak) * ToneOf(peak);
  }
  std::nth_element(shares.begin(), shares.begin() + kTiles / 2, shares.end());
  features[kTilePeak] = shares[kTiles / 2];
  features[kPaperTiles] = paper / kTiles;
  features[kTilePeakSpread] = SquareRoot(square / kTiles - sum / kTiles * (sum / kTiles));
}

}  // namespace

void MeasureTones(const WorkingCopy& copy, FeatureVector& features) {
  const auto tiles = TileHistograms(copy);
  MeasureTiles(tiles, features);

  Histogram all{};
  for (const Histogram& tile : tiles) {
    for (std::size_t bin = 0; bin < kBins; ++bin) all[bin] += tile[bin];
  }
  const double total = Total(all);
  const std::size_t peak = Peak(all);
  features[kPaperTone] = ToneOf(peak);
  features[kPaperShare] = Share(all, Below(peak, kNear), peak + kNear + 1, total);
  features[kPeakSharpness] = Share(all, Below(peak, 1), peak + 2, total) / features[kPaperShare];
  features[kLighterShare] = Share(all, peak + kNear + 1, kBins, total);
  features[kDarkerShare] = Share(all, 0, Below(peak, 15), total);
  features[kToneEntropy] = Entropy(all, total);

  const TwoClasses classes = SplitTones(all, total);
  const double contrast = classes.lightMean - classes.darkMean;
  features[kToneSeparation] = classes.separation;
  features[kDarkClassShare] = classes.darkShare;
  features[kClassContrast] = contrast;
  const auto binAt = [](double tone) { return static_cast<std::size_t>(std::ceil(tone * (kBins - 1))); };
  features[kBetweenShare] =
      Share(all, binAt(classes.darkMean + contrast / 4), binAt(classes.lightMean - contrast / 4), total);
}

}  // namespace catalogcore::document_type
