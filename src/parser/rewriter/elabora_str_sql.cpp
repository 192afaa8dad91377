// ElaboraStrSQL: the statement rewriter. Cuts each UNION segment into its
// head, the host's WHERE condition, a GROUP BY and an ORDER BY tail, asks the
// table condition dispatch for the condition of every recognised table and
// glues everything back in this order:
//   head + " WHERE ( " + host condition + " ) " + conditions + GROUP BY + ORDER BY
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "parser/clsfw_parser.h"
#include "parser/rewriter/statement_scanner.h"
#include "platform/message_sink.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik {
namespace {

using rewriter::Pos16;

// The message box of a statement whose select list the scanner cannot pair
// with its FROMs.
const char kParserErrorText[] = "Caso non contemplato dal Parser, segnalare il problema a Norvello";
const char kParserErrorTitle[] = "Parser Error";

int16_t FindKeyword(int16_t start, const std::string& text, const char* keyword) {
  return Pos16(vb::InStr(start, text, keyword, vb::Compare::kText));
}

}  // namespace

std::string CLSFW_PARSER::ElaboraStrSQL(std::string& n_str_sql) {
  rewriter::ScanReport report;
  return ElaboraStrSQLExplained(n_str_sql, report);
}

std::string CLSFW_PARSER::ElaboraStrSQLExplained(std::string& n_str_sql,
                                                 rewriter::ScanReport& report) {
  report = rewriter::ScanReport();
  std::string result;
  // The rewrite traps its errors without the reporter: the host gets the
  // result as it stood ("" once the guard has passed).
  auto fail = [&](int32_t number, const std::string& description) {
    report.outcome = rewriter::ScanOutcome::kRunTimeError;
    report.error_number = number;
    report.error_description = description;
  };
  try {
    if (frame_.GuardFull()) return n_str_sql;
    RewriteSegments(n_str_sql, result, report);
  } catch (const VbError& e) {
    fail(e.Number(), e.Description());
  } catch (const std::bad_alloc&) {
    fail(kOutOfMemoryNumber, VbErrorText(kOutOfMemoryNumber));
  } catch (const std::exception& e) {
    fail(kInternalErrorNumber, e.what());
  }
  return result;
}

void CLSFW_PARSER::RewriteSegments(std::string& statement, std::string& result,
                                   rewriter::ScanReport& report) {
  using rewriter::ScanOutcome;
  std::string done;  // the rewritten text of the finished segments
  for (int segment = 1;; ++segment) {
    const rewriter::UnionCut cut = rewriter::CutAtUnion(statement);

    int16_t from_pos = 0;
    const rewriter::MainFrom main = rewriter::FindMainFrom(statement, from_pos);
    if (main == rewriter::MainFrom::kNoFrom) {
      done += statement;
      ++report.segments_without_from;
      if (!cut.has_union) {
        result = done;
        report.outcome = ScanOutcome::kRewritten;
        return;
      }
      statement = cut.rest;
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
      result = statement;
      report.outcome = ScanOutcome::kDerivedTable;
      return;
    }

    int16_t where_pos = FindKeyword(from_pos, statement, "WHERE");
    const std::vector<std::string> tables = rewriter::ReadFromList(statement, from_pos);
    where_pos = rewriter::MainWherePos(statement, from_pos, where_pos);
    const int16_t join_pos = FindKeyword(from_pos, statement, "JOIN");
    const std::string first_alias = rewriter::FirstTableAlias(statement, from_pos, join_pos);
    const std::string order_tail = rewriter::CutOrderBy(statement);
    const std::string group_tail = rewriter::CutGroupBy(statement);
    const std::string where_tail = rewriter::CutWhere(statement, where_pos);
    tipo_cf_hint_ = rewriter::CustomerKindHint(where_tail);

    std::string conditions;
    for (const std::string& prefix : tables) {
      // Deliberate: every FROM-list table is qualified with the first
      // table's alias.
      current_alias_ = first_alias;
      std::string condition;
      FiltriStrSQL(prefix, where_pos, true, condition);
      report.tables.push_back(
          {segment, prefix, rewriter::TableSource::kFromList, first_alias, condition});
      conditions += condition;
      // From now on a WHERE exists: the next condition starts with " AND ".
      if (!condition.empty() && where_pos == 0) where_pos = Pos16(vb::Len(statement) + 2);
    }

    current_alias_.clear();
    const std::vector<rewriter::JoinedTable> joins =
        rewriter::ReadJoins(statement, join_pos, tables);
    for (const rewriter::JoinedTable& join : joins) {
      current_alias_ = join.alias;
      std::string condition;
      // Deliberate: unlike the FROM list, a join condition does not mark the
      // WHERE as present, so without a WHERE every join condition opens with
      // " WHERE ".
      FiltriStrSQL(join.prefix, where_pos, false, condition);
      report.tables.push_back(
          {segment, join.prefix, rewriter::TableSource::kJoin, join.alias, condition});
      conditions += condition;
    }

    clifor_done_ = false;
    current_alias_.clear();
    std::string text = done + statement + where_tail + conditions + group_tail + order_tail;
    if (!cut.has_union) {
      result = std::move(text);
      report.outcome = ScanOutcome::kRewritten;
      return;
    }
    done = std::move(text);
    statement = cut.rest;
  }
}

}  // namespace zarvik
