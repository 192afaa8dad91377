#include "parser/rewriter/scan_report.h"

namespace zarvik::rewriter {

const char* TableSourceName(TableSource source) {
  return source == TableSource::kFromList ? "FROM list" : "join";
}

const char* ScanOutcomeName(ScanOutcome outcome) {
  switch (outcome) {
    case ScanOutcome::kNotScanned:
      return "not scanned (revocations off, no user, privileged user or no connection)";
    case ScanOutcome::kRewritten:
      return "rewritten";
    case ScanOutcome::kDerivedTable:
      return "derived table after FROM: segment returned as it is";
    case ScanOutcome::kParserError:
      return "parser error: unpaired FROM in the select list";
    case ScanOutcome::kRunTimeError:
      return "run-time error: scan ended silently";
  }
  return "";
}

}  // namespace zarvik::rewriter
