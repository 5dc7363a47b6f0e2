// What a picture file shows.
#ifndef CATALOGCORE_APP_SCENE_H_
#define CATALOGCORE_APP_SCENE_H_

#include <cstdint>
#include <string>

#include "catalogcore.hpp"

namespace catalogcore::app {

class PicturePool;

struct Decision {
  std::int32_t preset = -1;  // number of the preset index that the picture belongs in
  std::string problem;       // why there is none: "not an image file"; empty if there is one
  std::string warning;       // what is wrong with a file that could be looked at all the same
};

// Decodes the file and asks the library. Any thread; threads wait for each other only while the library looks at a
// picture.
Decision DecideScene(PicturePool& pictures, const catalogcore::Catalog& library, const std::string& file);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_SCENE_H_
