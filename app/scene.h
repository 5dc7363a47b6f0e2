// What a picture file shows.
#ifndef CATALOGCORE_APP_SCENE_H_
#define CATALOGCORE_APP_SCENE_H_

#include <cstdint>
#include <string>

#include "catalogcore.hpp"

namespace catalogcore::app {

struct Decision {
  std::int32_t preset = -1;  // number of the preset index that the picture belongs in
  std::string problem;       // why there is none: "not an image file"; empty if there is one
};

// Decodes the file and asks the library. Any thread; threads wait for each other only while the library looks at a
// picture.
Decision DecideScene(const catalogcore::Catalog& library, const std::string& file);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_SCENE_H_
