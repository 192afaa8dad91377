// The tour scene of the revocation frame: which application user each
// object resolves, and what the guard does for the privileged user and for
// a disabled context.
#ifndef ZARVIK_DEMO_FRAME_SCENE_H_
#define ZARVIK_DEMO_FRAME_SCENE_H_

#include "demo/tour.h"

namespace zarvik::demo {

// Body of the scene (register it in TourScenes() with its title).
void ShowUserContextScene(TourContext& tour);

}  // namespace zarvik::demo

#endif  // ZARVIK_DEMO_FRAME_SCENE_H_
