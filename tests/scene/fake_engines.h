// Engines that record what reaches them and answer what the test wants.
#ifndef CATALOGCORE_TESTS_SCENE_FAKE_ENGINES_H_
#define CATALOGCORE_TESTS_SCENE_FAKE_ENGINES_H_

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace catalogcore {

struct FakeEngines {
  // Answers.
  std::int32_t recognizeResult = 0;
  std::uint16_t recognizeWord = 0;
  bool writesWord = true;
  std::int32_t setBitmapResult = 0;
  std::int32_t detectResult = 0;
  std::uintptr_t faces = 0;
  bool handsOut = true;               // blocks, which have to be freed
  bool throws = false;                // Orlo_DetectFacePosition runs out of memory
  std::function<void()> recognizing;  // done while the recognizer runs

  // What came in.
  std::string
      calls;  // a letter for each: R recognize, I initialize, B bitmap, D detect, U uninitialize, F free, 0 free null
  std::string caller;
  bool zeroed = true;                                    // what is handed in to be filled was zero each time
  std::vector<std::uint8_t> record, recognized, bitmap;  // the record; the pixels of both engines
  std::vector<std::uint8_t> block;
  std::int32_t bitsPerPixel = 0, width = 0, height = 0, negatedStride = 0;
  int blocksHeld = 0;  // handed out and not freed
};

extern FakeEngines fakeEngines;

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_SCENE_FAKE_ENGINES_H_
