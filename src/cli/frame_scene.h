// The tour scene of the revocation frame: which application user each
// object resolves, and what the guard does for the privileged user and for
// a disabled context.
#ifndef ZARVIK_CLI_FRAME_SCENE_H_
#define ZARVIK_CLI_FRAME_SCENE_H_

#include "cli/tour.h"

namespace zarvik::cli {

// Body of the scene (register it in TourScenes() with its title).
void ShowUserContextScene(TourContext& tour);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_FRAME_SCENE_H_
