// The search has two steps. A survey runs the detector over the whole picture and keeps weak answers too. Then the
// detector looks again at each candidate of low confidence in slightly changed copies: it finds a face in most of them,
// a chance pattern in few.
#include "engines/faces/face_search.h"

#include <dlib/array2d.h>
#include <dlib/image_processing/frontal_face_detector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numeric>
#include <utility>

#include "engines/faces/patch_sampler.h"

namespace catalogcore::faces {
namespace {

using Detector = dlib::frontal_face_detector;
using Scanner = Detector::image_scanner_type;
using GreyImage = dlib::array2d<unsigned char>;

// A confidence is the distance from the detector's own threshold; a plain detection has 0 or more. The values were
// chosen on photographs labelled by eye.
constexpr double kSurveyFloor = -0.8;      // of a candidate's confidence
constexpr double kBeyondDoubt = 0.5;       // confidence from which a candidate needs no second look
constexpr double kLookFloor = -1.0;        // the value of a look without an answer
constexpr double kFaceThreshold = -0.15;   // of a face's score
constexpr double kSmallFacePenalty = 0.2;  // the smallest size has a third of all windows
constexpr std::size_t kMaxCandidates = 256;
constexpr std::size_t kMaxSecondLooks = 8;  // candidates; bounds the time of a search

constexpr double kWindowSide = 80;                // pixels of the detector's window
constexpr double kSmallFace = 1.1 * kWindowSide;  // separates the smallest size of the survey from the next
constexpr std::int32_t kPatchSide = 112;
constexpr double kMaxShift = 0.25;  // of an answer from the middle of a patch, in sides of the face
constexpr std::size_t kBestLooks = 4;

struct Candidate {
  double confidence = 0;
  dlib::rectangle box;
};

bool IsMoreConfident(const Candidate& a, const Candidate& b) { return a.confidence > b.confidence; }

// Never changes after its creation, so all searches share it.
const Detector& TheDetector() {
  static const Detector detector = dlib::get_frontal_face_detector();
  return detector;
}

GreyImage ToImage(const PixelView& picture) {
  GreyImage image(picture.Rows(), picture.Stride());
  for (std::int32_t y = 0; y < picture.Rows(); ++y) std::ranges::copy(picture.Row(y), &image[y][0]);
  return image;
}

// The answers of all filters of the detector in the scanner's picture.
std::vector<Candidate> Answers(const Scanner& scanner, double floor) {
  const Detector& detector = TheDetector();
  std::vector<Candidate> answers;
  std::vector<std::pair<double, dlib::rectangle>> found;
  for (unsigned long i = 0; i < detector.num_detectors(); ++i) {
    const double threshold = detector.get_w(i)(scanner.get_num_dimensions());
    scanner.detect(detector.get_processed_w(i).get_detect_argument(), found, threshold + floor);
    for (const auto& [score, box] : found) answers.push_back({score - threshold, box});
  }
  return answers;
}

// Keeps the answer with the highest confidence of those that overlap.
std::vector<Candidate> WithoutOverlaps(std::vector<Candidate> answers) {
  std::sort(answers.begin(), answers.end(), IsMoreConfident);
  const dlib::test_box_overlap overlap = TheDetector().get_overlap_tester();
  std::vector<Candidate> kept;
  for (const Candidate& answer : answers) {
    if (kept.size() == kMaxCandidates) break;
    const auto overlaps = [&](const Candidate& other) { return overlap(other.box, answer.box); };
    if (std::none_of(kept.begin(), kept.end(), overlaps)) kept.push_back(answer);
  }
  return kept;
}

std::vector<Candidate> Survey(const PixelView& picture) {
  Scanner scanner;
  scanner.copy_configuration(TheDetector().get_scanner());
  scanner.load(ToImage(picture));
  return WithoutOverlaps(Answers(scanner, kSurveyFloor));
}

class SecondLook {
 public:
  explicit SecondLook(const PixelView& picture) : sampler_(picture) {
    scanner_.copy_configuration(TheDetector().get_scanner());
    scanner_.set_max_pyramid_levels(1);
    patch_.size = {kPatchSide, kPatchSide};
    patch_.pixels.resize(patch_.size.Area());
  }

  // The mean of the candidate's confidence and its best looks. Only the best count, because most poses fit a given face
  // badly.
  double Score(const Candidate& candidate) {
    std::array<double, kPoseCount> looks;
    std::size_t look = 0;
    for (const double side : kSides) {
      for (const double degrees : kTurns) {
        for (const bool isMirrored : {false, true}) looks[look++] = Look(candidate, {side, degrees, isMirrored});
      }
    }
    std::partial_sort(looks.begin(), looks.begin() + kBestLooks, looks.end(), std::greater<>());
    const double sum = std::accumulate(looks.begin(), looks.begin() + kBestLooks, candidate.confidence);
    return sum / (kBestLooks + 1);
  }

 private:
  // Close to the window's side, because the survey's sizes are a sixth apart.
  static constexpr std::array<double, 3> kSides = {0.9 * kWindowSide, kWindowSide, 1.1 * kWindowSide};
  static constexpr std::array<double, 3> kTurns = {-8, 0, 8};
  static constexpr std::size_t kPoseCount = kSides.size() * kTurns.size() * 2;
  static_assert(kBestLooks <= kPoseCount);

  double Look(const Candidate& candidate, const Pose& pose) {
    const dlib::rectangle& box = candidate.box;
    const Square square = {static_cast<double>(box.left() + box.right() + 1) / 2,
                           static_cast<double>(box.top() + box.bottom() + 1) / 2, static_cast<double>(box.width())};
    sampler_.Sample(square, pose, patch_);
    scanner_.load(ToImage(patch_.View()));
    double best = kLookFloor;
    for (const Candidate& answer : Answers(scanner_, kLookFloor)) {
      const double shiftX = static_cast<double>(answer.box.left() + answer.box.right() + 1 - kPatchSide) / 2;
      const double shiftY = static_cast<double>(answer.box.top() + answer.box.bottom() + 1 - kPatchSide) / 2;
      const double shift = std::max(std::abs(shiftX), std::abs(shiftY));
      if (shift < kMaxShift * pose.side) best = std::max(best, answer.confidence);
    }
    return best;
  }

  PatchSampler sampler_;
  Scanner scanner_;
  GreyPicture patch_;
};

double RequiredScore(const Candidate& candidate) {
  const bool isSmall = static_cast<double>(candidate.box.width()) < kSmallFace;
  return isSmall ? kFaceThreshold + kSmallFacePenalty : kFaceThreshold;
}

OrloFace ToFace(const dlib::rectangle& box) {
  return {static_cast<std::int32_t>(box.left()), static_cast<std::int32_t>(box.top()),
          static_cast<std::int32_t>(box.right() + 1), static_cast<std::int32_t>(box.bottom() + 1)};
}

}  // namespace

void PrepareFaceSearch() { TheDetector(); }

std::vector<OrloFace> FindFaces(const PixelView& picture) {
  SecondLook secondLook(picture);
  std::size_t looksLeft = kMaxSecondLooks;
  std::vector<OrloFace> faces;
  for (const Candidate& candidate : Survey(picture)) {
    double score = candidate.confidence;
    if (score < kBeyondDoubt) {
      if (looksLeft-- == 0) break;
      score = secondLook.Score(candidate);
    }
    if (score >= RequiredScore(candidate)) faces.push_back(ToFace(candidate.box));
  }
  return faces;
}

}  // namespace catalogcore::faces
