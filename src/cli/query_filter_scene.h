// The query-filter scene of `zarvik demo`: what CLSFW_FILTROQUERY gives the
// host's filter dialog for one field of each kind, the SQL form beside the
// report form.
#ifndef ZARVIK_CLI_QUERY_FILTER_SCENE_H_
#define ZARVIK_CLI_QUERY_FILTER_SCENE_H_

#include "cli/tour.h"

namespace zarvik::cli {

// Runs on a private in-memory copy of the demo database (the tour's own
// database, possibly a file, is not touched).
void ShowQueryFilterScene(TourContext& tour);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_QUERY_FILTER_SCENE_H_
