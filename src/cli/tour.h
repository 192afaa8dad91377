// The tour of the demo database that `zarvik demo` prints: a list of
// scenes, each a titled section.
#ifndef ZARVIK_CLI_TOUR_H_
#define ZARVIK_CLI_TOUR_H_

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "db/connection.h"
#include "platform/variant.h"

namespace zarvik::cli {

struct TourContext {
  db::Connection& db;  // open on the demo database
  std::ostream& out;
};

struct TourScene {
  const char* title;
  void (*show)(TourContext& tour);
};

// The scenes in the order the tour shows them.
const std::vector<TourScene>& TourScenes();

// Prints the scene's title underlined with '=', its body and a blank line.
void ShowScene(const TourScene& scene, TourContext& tour);

// Every scene in order.
void RunTour(TourContext& tour);

// One line of a user's revocation summary: what kind of thing, and which.
struct SummaryLine {
  std::string label;  // "warehouses (kind 6)", "excluded companies", ...
  std::string text;   // "company 1: A1, B2"
};

// What is revoked for one user, read from the revocation tables and views
// as the component sees them (group rows merged for group-based users).
// Empty when nothing is revoked.
std::vector<SummaryLine> RevocationSummary(db::Connection& db, int32_t user_id);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_TOUR_H_
