// The preset index that a scene is filed under.
#ifndef CATALOGCORE_SCENE_SCENE_INDEX_H_
#define CATALOGCORE_SCENE_SCENE_INDEX_H_

#include <cstdint>

namespace catalogcore {

// The number of the preset index; -1 for a scene that is not determined.
std::int32_t ConvertScenetoIndex(std::int32_t sceneClass, std::int32_t sceneValue);

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_SCENE_INDEX_H_
