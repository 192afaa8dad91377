// ElaboraStrSQL per statement on an in-memory demo database, for host
// statements of about 200 characters, 2 KB and 20 KB. The statements grow
// the way real ones do (more columns, more joins, more predicates), so the
// scan grows with the text while the set of tables to restrict stays the
// same; the cost per character should stay flat.
//
//   build/rewrite_bench --benchmark_counters_tabular=true
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "demo/demo_db.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"
#include "platform/message_sink.h"

namespace {

using zarvik::CLSFW_PARSER;

// A document-header statement padded to at least `target` characters:
// select-list columns, duplicate joins (restricted once) and predicates are
// added in turn. The three table names are the document header, the
// customer and the joined table (host tables, or unknown ones to measure
// the scan without any condition).
std::string HostStatement(size_t target, const std::string& doc_table,
                          const std::string& customer_table, const std::string& join_table) {
  std::string columns = "D.DO11_NUMREG_CO99, D.DO11_DATADOC, C.CG44_RAGSOC";
  std::string joins = " INNER JOIN " + customer_table +
                      " C ON C.CG44_DITTA_CG18 = D.DO11_DITTACF_CG44 AND C.CG44_CLIFOR = "
                      "D.DO11_CLIFOR_CG44";
  std::string where = " WHERE D.DO11_DITTA_CG18 = 1";
  const std::string order = " ORDER BY D.DO11_NUMREG_CO99";
  auto assemble = [&] {
    return "SELECT " + columns + " FROM " + doc_table + " D" + joins + where + order;
  };
  for (int n = 1; assemble().size() < target; ++n) {
    const std::string k = std::to_string(n);
    switch (n % 3) {
      case 0:
        columns += ", D.DO11_TOTALE * " + k + " AS T" + k;
        break;
      case 1:
        joins += " INNER JOIN " + join_table + " M" + k + " ON M" + k +
                 ".MG36_CODDOCUM = D.DO11_DOCUM_MG36";
        break;
      default:
        where += " AND D.DO11_TOTALE <> " + k;
        break;
    }
  }
  return assemble();
}

// Message boxes are discarded (none is expected).
class NullSink : public zarvik::MessageSink {
 public:
  void Show(const zarvik::Message&) override {}
};

// ElaboraStrSQL for ROSSI (id 5) of the demo database, company 1.
void RunRewrite(benchmark::State& state, const std::string& doc_table,
                const std::string& customer_table, const std::string& join_table) {
  const auto db = zarvik::demo::OpenDemoDatabase(":memory:");
  CLSFW_PARSER parser(
      zarvik::Env{std::make_shared<NullSink>(), std::make_shared<zarvik::SystemClock>()});
  parser.SetConnectionADO(db);
  parser.SetCodiceUtente("ROSSI");
  parser.SetCodiceGruppo("VEN");
  parser.SetDittaCorrente(zarvik::Variant(int32_t{1}));
  const std::string statement =
      HostStatement(static_cast<size_t>(state.range(0)), doc_table, customer_table, join_table);
  std::string rewritten;
  for (auto _ : state) {
    std::string buffer = statement;
    rewritten = parser.ElaboraStrSQL(buffer);
    benchmark::DoNotOptimize(rewritten);
  }
  if (rewritten.size() <= statement.size() && doc_table != "XX99_NESSUNA") {
    state.SkipWithError("the statement was not rewritten");
  }
  state.SetComplexityN(static_cast<int64_t>(statement.size()));
  state.counters["chars"] = static_cast<double>(statement.size());
  state.counters["ns_per_char"] = benchmark::Counter(
      static_cast<double>(statement.size()),
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// The realistic case: DO11, CG44 and MG36 get their conditions (queries of
// the document, office and warehouse lists included).
void BM_ElaboraStrSQL(benchmark::State& state) {
  RunRewrite(state, "DO11_DOCTESTATA", "CG44_CLIFOR", "MG36_DOCUMENTI");
}

// The scan alone: no table is known, no condition is built.
void BM_ElaboraStrSQLScanOnly(benchmark::State& state) {
  RunRewrite(state, "XX99_NESSUNA", "XX98_NESSUNA", "XX97_NESSUNA");
}

BENCHMARK(BM_ElaboraStrSQL)->Arg(200)->Arg(2048)->Arg(20480)->Complexity(benchmark::oN);
BENCHMARK(BM_ElaboraStrSQLScanOnly)->Arg(200)->Arg(2048)->Arg(20480)->Complexity(benchmark::oN);

}  // namespace
