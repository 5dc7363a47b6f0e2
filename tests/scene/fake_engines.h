// Engines that record their arguments and return what the test sets.
#ifndef CATALOGCORE_TESTS_SCENE_FAKE_ENGINES_H_
#define CATALOGCORE_TESTS_SCENE_FAKE_ENGINES_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace catalogcore {

struct FakeEngines {
  // Answers.
  std::int32_t recognizeResult = 0, setBitmapResult = 0, detectResult = 0;
  std::uint16_t recognizeWord = 0;
  std::uintptr_t faces = 0;
  bool allocates = true;              // blocks that the caller has to release
  bool throws = false;                // Orlo_DetectFacePosition throws std::bad_alloc
  std::function<void()> recognizing;  // called while the recognizer runs

  // Arguments. `calls` has a letter for each call: Recognize, Initialize, Bitmap, Detect, Uninitialize, Free.
  std::string calls, caller;
  bool isZeroed = true;                                         // every record to be filled came zeroed
  std::vector<std::uint8_t> record, recognized, bitmap, block;  // the pixels of both engines; the parameters
  std::vector<std::int32_t> sizes;                              // bits per pixel, width, height, negated stride
  int blocksHeld = 0;                                           // allocated and not released
};

extern FakeEngines fakeEngines;

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_SCENE_FAKE_ENGINES_H_
