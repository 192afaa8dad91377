// What the statement rewriter found in one call of ElaboraStrSQL: every
// table it recognised, where, with which qualifier and the condition it
// received, and how the call ended. `zarvik rewrite --explain` prints it;
// the rewriter fills it while it works, so nothing is scanned twice.
#ifndef ZARVIK_PARSER_REWRITER_SCAN_REPORT_H_
#define ZARVIK_PARSER_REWRITER_SCAN_REPORT_H_

#include <cstdint>
#include <string>
#include <vector>

namespace zarvik::rewriter {

// Where a recognised table stands in its statement segment.
enum class TableSource { kFromList, kJoin };

struct RecognisedTable {
  int segment = 1;     // 1 for the first UNION segment, 2 for the next ...
  std::string prefix;  // the 4- or 5-character table prefix
  TableSource source = TableSource::kFromList;
  std::string alias;      // the qualifier handed to the dispatch ("D." or "")
  std::string condition;  // the text appended for it (possibly "")
};

// How the call ended.
enum class ScanOutcome {
  kNotScanned,    // the guard gave the statement back (disabled, no user,
                  // privileged user, no connection)
  kRewritten,     // every segment scanned
  kDerivedTable,  // the main FROM reads a derived table: segment returned as it is
  kParserError,   // unpaired FROM in the select list: "Parser Error", result ""
  kRunTimeError,  // a run-time error ended the scan silently
};

struct ScanReport {
  ScanOutcome outcome = ScanOutcome::kNotScanned;
  std::vector<RecognisedTable> tables;
  // Segments copied unchanged because they have no FROM.
  int segments_without_from = 0;
  // kRunTimeError: the error that ended the scan.
  int32_t error_number = 0;
  std::string error_description;
};

// "FROM list" / "join".
const char* TableSourceName(TableSource source);
// A short phrase for the outcome ("rewritten", "parser error", ...).
const char* ScanOutcomeName(ScanOutcome outcome);

}  // namespace zarvik::rewriter

#endif  // ZARVIK_PARSER_REWRITER_SCAN_REPORT_H_
