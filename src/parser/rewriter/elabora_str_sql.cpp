// ElaboraStrSQL: the statement rewriter. Cuts each UNION segment into its
// head, the host's WHERE condition, a GROUP BY and an ORDER BY tail, asks the
// table condition dispatch for the condition of every recognised table and
// glues everything back in this order:
//   head + " WHERE ( " + host condition + " ) " + conditions + GROUP BY + ORDER BY
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "parser/clsfw_parser.h"
#include "parser/rewriter/statement_scanner.h"
#include "parser/rewriter/statement_text.h"
#include "platform/message_sink.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

using rewriter::Pos16;

// The message box of a statement whose select list the scanner cannot pair
// with its FROMs.
const char kParserErrorText[] = "Caso non contemplato dal Parser, segnalare il problema a Norvello";
const char kParserErrorTitle[] = "Parser Error";

// Room for the conditions, beyond the length of the statement, that the
// result is given before the first segment is appended.
constexpr size_t kConditionsRoom = 2048;

}  // namespace

std::string CLSFW_PARSER::ElaboraStrSQL(std::string& n_str_sql) {
  rewriter::ScanReport report;
  return Rewrite(n_str_sql, report, false);
}

std::string CLSFW_PARSER::ElaboraStrSQLExplained(std::string& n_str_sql,
                                                 rewriter::ScanReport& report) {
  return Rewrite(n_str_sql, report, true);
}

std::string CLSFW_PARSER::Rewrite(std::string& n_str_sql, rewriter::ScanReport& report,
                                  bool record_tables) {
  report = rewriter::ScanReport();
  std::string result;
  // The rewrite traps its errors without the reporter: the host gets the
  // result as it stood ("" once the guard has passed).
  auto fail = [&](int32_t number, const std::string& description) {
    report.outcome = rewriter::ScanOutcome::kRunTimeError;
    report.error_number = number;
    report.error_description = description;
  };
  std::optional<rewriter::StatementText> statement;
  try {
    if (frame_.GuardFull()) return n_str_sql;
    statement.emplace(std::move(n_str_sql));
    RewriteSegments(*statement, result, report, record_tables);
  } catch (const VbError& e) {
    fail(e.Number(), e.Description());
  } catch (const std::bad_alloc&) {
    fail(kOutOfMemoryNumber, VbErrorText(kOutOfMemoryNumber));
  } catch (const std::exception& e) {
    fail(kInternalErrorNumber, e.what());
  }
  // The argument is the working buffer: it ends holding the segment under
  // work, cut as far as the scan went.
  if (statement) n_str_sql = std::move(*statement).TakeSegment();
  return result;
}

void CLSFW_PARSER::RewriteSegments(rewriter::StatementText& statement, std::string& result,
                                   rewriter::ScanReport& report, bool record_tables) {
  using rewriter::ScanOutcome;
  // The rewritten text of the finished segments, appended to once per
  // segment.
  std::string done;
  done.reserve(statement.Segment().size() + kConditionsRoom);
  for (int segment = 1;; ++segment) {
    const int16_t union_pos = rewriter::CutAtUnion(statement);

    int16_t from_pos = 0;
    const rewriter::MainFrom main = rewriter::FindMainFrom(statement, from_pos);
    if (main == rewriter::MainFrom::kNoFrom) {
      done += statement.Segment();
      ++report.segments_without_from;
      if (union_pos == 0) {
        result = std::move(done);
        report.outcome = ScanOutcome::kRewritten;
        return;
      }
      statement.StartSegmentAt(union_pos);
      continue;
    }
    if (main == rewriter::MainFrom::kUnpaired) {
      const auto& sink = frame_.GetEnv().sink;
      if (sink) sink->Show(Message{kParserErrorText, kParserErrorTitle, msgstyle::kCritical});
      report.outcome = ScanOutcome::kParserError;
      return;
    }

    from_pos = Pos16(from_pos + 3);  // the M of FROM
    if (rewriter::ReadsDerivedTable(statement, from_pos)) {
      // Deliberate: a derived table returns the current segment alone; the
      // finished segments and the rest of a UNION are dropped.
      result = std::string(statement.Segment());
      report.outcome = ScanOutcome::kDerivedTable;
      return;
    }

    int16_t where_pos = statement.Find(from_pos, "WHERE");
    const std::vector<std::string> tables = rewriter::ReadFromList(statement, from_pos);
    where_pos = rewriter::MainWherePos(statement, from_pos, where_pos);
    const int16_t join_pos = statement.Find(from_pos, "JOIN");
    const std::string first_alias = rewriter::FirstTableAlias(statement, from_pos, join_pos);
    const std::string_view order_tail = rewriter::CutOrderBy(statement);
    const std::string_view group_tail = rewriter::CutGroupBy(statement);
    const bool has_where = where_pos != 0;
    const std::string_view where_condition = rewriter::CutWhere(statement, where_pos);
    tipo_cf_hint_ = rewriter::CustomerKindHint(where_condition);

    // The head, then the host's own condition in parentheses, so that the
    // conditions appended after it combine with the whole of it.
    done += statement.Segment();
    if (has_where) {
      done += " WHERE ( ";
      done += where_condition;
      done += " ) ";
    }

    std::string condition;
    for (const std::string& prefix : tables) {
      // Deliberate: every FROM-list table is qualified with the first
      // table's alias.
      current_alias_ = first_alias;
      FiltriStrSQL(prefix, where_pos, true, condition);
      if (record_tables) {
        report.tables.push_back(
            {segment, prefix, rewriter::TableSource::kFromList, first_alias, condition});
      }
      done += condition;
      // From now on a WHERE exists: the next condition starts with " AND ".
      if (!condition.empty() && where_pos == 0) where_pos = Pos16(statement.Len() + 2);
    }

    current_alias_.clear();
    const std::vector<rewriter::JoinedTable> joins =
        rewriter::ReadJoins(statement, join_pos, tables);
    for (const rewriter::JoinedTable& join : joins) {
      current_alias_ = join.alias;
      // Deliberate: unlike the FROM list, a join condition does not mark the
      // WHERE as present, so without a WHERE every join condition opens with
      // " WHERE ".
      FiltriStrSQL(join.prefix, where_pos, false, condition);
      if (record_tables) {
        report.tables.push_back(
            {segment, join.prefix, rewriter::TableSource::kJoin, join.alias, condition});
      }
      done += condition;
    }

    clifor_done_ = false;
    current_alias_.clear();
    done += group_tail;
    done += order_tail;
    if (union_pos == 0) {
      result = std::move(done);
      report.outcome = ScanOutcome::kRewritten;
      return;
    }
    statement.StartSegmentAt(union_pos);
  }
}

}  // namespace zarvik
