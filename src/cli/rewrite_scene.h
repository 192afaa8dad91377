// The statement rewriter's scene of `zarvik demo`: host statements before
// and after ElaboraStrSQL, with the rows two users keep.
#ifndef ZARVIK_CLI_REWRITE_SCENE_H_
#define ZARVIK_CLI_REWRITE_SCENE_H_

#include "cli/tour.h"

namespace zarvik::cli {

// Runs on a private in-memory copy of the demo database (the tour's own
// database, possibly a file, is not touched).
void ShowRewriteScene(TourContext& tour);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_REWRITE_SCENE_H_
