// The block checks' and rights records' scene of `zarvik demo`: what
// CLSFW_PARSER answers an ordinary user about single entities and what it
// lets him do with them.
#ifndef ZARVIK_CLI_CHECK_SCENE_H_
#define ZARVIK_CLI_CHECK_SCENE_H_

#include "cli/tour.h"

namespace zarvik::cli {

// Runs on a private in-memory copy of the demo database (the tour's own
// database, possibly a file, is not touched).
void ShowCheckScene(TourContext& tour);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_CHECK_SCENE_H_
