#include "cli/rewrite_scene.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/text_table.h"
#include "demo/demo_db.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"

namespace zarvik::cli {
namespace {

constexpr size_t kLineWidth = 100;

// A host statement of the scene and the headings of its columns.
struct HostStatement {
  const char* what;
  const char* sql;
  std::vector<std::string> headings;
};

// A demo user as the host would set up CLSFW_PARSER for him.
struct SceneUser {
  const char* code;
  const char* group;
  int32_t company;
};

using Row = std::vector<std::string>;

std::vector<Row> Rows(db::Connection& db, const std::string& sql) {
  std::vector<Row> rows;
  for (const auto& values : demo::QueryRows(db, sql)) {
    Row row;
    for (const Variant& v : values) row.push_back(v.ConcatText());
    rows.push_back(std::move(row));
  }
  return rows;
}

// The statement as ElaboraStrSQL returns it for the user.
std::string Rewritten(const std::shared_ptr<db::Connection>& database, const SceneUser& user,
                      const std::string& statement) {
  CLSFW_PARSER parser(Env{DefaultMessageSink(), std::make_shared<SystemClock>()});
  parser.SetConnectionADO(database);
  parser.SetCodiceGruppo(user.group);
  parser.SetCodiceUtente(user.code);
  parser.SetDittaCorrente(Variant(user.company));
  std::string buffer = statement;
  return parser.ElaboraStrSQL(buffer);
}

}  // namespace

void ShowRewriteScene(TourContext& tour) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  const std::vector<SceneUser> users = {{"ROSSI", "VEN", 1}, {"VERDI", "AMM", 1}};
  const std::vector<HostStatement> statements = {
      {"Projects of every company",
       "SELECT P.PD68_DITTA_CG18, P.PD68_CODPROG, P.PD68_DESCR FROM PD68_PROGETTI P "
       "ORDER BY P.PD68_DITTA_CG18, P.PD68_CODPROG",
       {"COMPANY", "PROJECT", "DESCRIPTION"}},
      {"Warehouses and their stock",
       "SELECT W.MG58_DITTA_CG18, W.MG58_CODDEP, W.MG58_DESCR, COUNT(G.MG97_CODART_MG66) "
       "FROM MG58_DEPOSITI W LEFT OUTER JOIN MG97_GIACENZE G ON G.MG97_DITTA_CG18 = "
       "W.MG58_DITTA_CG18 AND G.MG97_CODDEP_MG58 = W.MG58_CODDEP "
       "GROUP BY W.MG58_DITTA_CG18, W.MG58_CODDEP, W.MG58_DESCR "
       "ORDER BY W.MG58_DITTA_CG18, W.MG58_CODDEP",
       {"COMPANY", "WAREHOUSE", "DESCRIPTION", "ARTICLES"}},
      {"Customers of every company",
       "SELECT D.CG18_DITTA, C.CG44_CLIFOR, C.CG44_RAGSOC FROM CG18_DITTE D INNER JOIN "
       "CG44_CLIFOR C ON C.CG44_DITTA_CG18 = D.CG18_DITTA WHERE C.CG44_TIPOCF = 0 "
       "ORDER BY D.CG18_DITTA, C.CG44_CLIFOR",
       {"COMPANY", "CUSTOMER", "NAME"}},
  };

  tour.out << "  The host hands CLSFW_PARSER.ElaboraStrSQL its own statement and runs what\n"
              "  comes back. Each statement below is rewritten for ROSSI (ordinary user) and\n"
              "  VERDI (revocations from his groups AMM and MAG), both in company 1, on a\n"
              "  private copy of the demo database. The last columns tell whether the user\n"
              "  still sees the row.\n";
  for (const HostStatement& s : statements) {
    tour.out << "\n  " << s.what << "\n";
    PrintLabelled(tour.out, "    ", "host:", 6, s.sql, kLineWidth);
    const std::vector<Row> all = Rows(*database, s.sql);
    std::vector<std::vector<Row>> kept;
    for (const SceneUser& user : users) {
      const std::string rewritten = Rewritten(database, user, s.sql);
      kept.push_back(Rows(*database, rewritten));
    }
    std::vector<std::string> headings = s.headings;
    for (const SceneUser& user : users) headings.push_back(user.code);
    TextTable table(headings);
    for (const Row& row : all) {
      Row cells = row;
      for (const auto& user_rows : kept) {
        const bool seen = std::find(user_rows.begin(), user_rows.end(), row) != user_rows.end();
        cells.push_back(seen ? "yes" : "-");
      }
      table.AddRow(cells);
    }
    table.Print(tour.out, "    ");
    std::string counts;
    for (size_t u = 0; u < users.size(); ++u) {
      counts += (u == 0 ? "" : ", ") + std::string(users[u].code) + " " +
                std::to_string(kept[u].size()) + " of " + std::to_string(all.size());
    }
    tour.out << "    rows kept: " << counts << "\n";
  }

  // The mechanics, once: the first statement as ROSSI's host receives it.
  const std::string rossi = Rewritten(database, users[0], statements[0].sql);
  tour.out << "\n  The first statement as ElaboraStrSQL returns it for ROSSI: the project\n"
              "  condition is appended and ORDER BY is put back at the end (wrapped here;\n"
              "  `zarvik rewrite --user ROSSI \"...\"` prints it blank for blank):\n";
  PrintLabelled(tour.out, "    ", "", 0, rossi, kLineWidth);
  database->Close();
}

}  // namespace zarvik::cli
