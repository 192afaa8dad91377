// The condition builders' scene of `zarvik demo`: the predicates
// CLSFW_PARSER gives an ordinary user, pasted into real statements.
#ifndef ZARVIK_CLI_CONDITION_SCENE_H_
#define ZARVIK_CLI_CONDITION_SCENE_H_

#include "cli/tour.h"

namespace zarvik::cli {

// Runs on a private in-memory copy of the demo database (the tour's own
// database, possibly a file, is not touched).
void ShowConditionScene(TourContext& tour);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_CONDITION_SCENE_H_
