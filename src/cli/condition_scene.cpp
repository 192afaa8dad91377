#include "cli/condition_scene.h"

#include <functional>
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

// One line of the scene: a call and the statement its predicate is pasted
// into.
struct ConditionLine {
  const char* call;
  const char* statement;  // ends where the predicate (with " AND ") goes
  std::function<std::string(CLSFW_PARSER&)> predicate;
};

std::string Joined(const std::vector<std::vector<Variant>>& rows) {
  std::string text;
  for (const auto& row : rows) text += (text.empty() ? "" : ", ") + row.at(0).ConcatText();
  return text.empty() ? "(none)" : text;
}

}  // namespace

void ShowConditionScene(TourContext& tour) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  CLSFW_PARSER parser(Env{DefaultMessageSink(), std::make_shared<SystemClock>()});
  parser.SetConnectionADO(database);
  parser.SetDittaCorrente(Variant(int32_t{1}));
  parser.SetCodiceGruppo("VEN");
  parser.SetCodiceUtente("ROSSI");
  parser.SetCodiceUtenteCLIFOR("ROSSI");

  const std::vector<ConditionLine> lines = {
      {"SQLConditionCliFor(\"CG44\", True)",
       "SELECT CG44_CLIFOR FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = 1",
       [](CLSFW_PARSER& p) { return p.SQLConditionCliFor("CG44", true); }},
      {"SQLConditionDepositi(\"MG58_CODDEP\", True)",
       "SELECT MG58_CODDEP FROM MG58_DEPOSITI WHERE MG58_DITTA_CG18 = 1",
       [](CLSFW_PARSER& p) { return p.SQLConditionDepositi("MG58_CODDEP", true); }},
      {"SQLConditionSediMov(\"CG31_CODICE\", True)",
       "SELECT CG31_CODICE FROM CG31_SEDI WHERE CG31_DITTA_CG18 = 1",
       [](CLSFW_PARSER& p) { return p.SQLConditionSediMov("CG31_CODICE", true); }},
      {"SQLConditionDocMG36(\"MG36_CODDOCUM\", True)",
       "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI WHERE 1=1",
       [](CLSFW_PARSER& p) { return p.SQLConditionDocMG36("MG36_CODDOCUM", true); }},
      {"SQLConditionProgetto(\"PD68_CODPROG\", True)",
       "SELECT PD68_CODPROG FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = 1",
       [](CLSFW_PARSER& p) { return p.SQLConditionProgetto("PD68_CODPROG", true); }},
      {"SQLConditionNodo(\"PD0C_CODNODO\", \"PD0C_CODPROG_PD68\", True)",
       "SELECT PD0C_CODPROG_PD68 || '/' || PD0C_CODNODO FROM PD0C_NODO WHERE PD0C_DITTA_CG18 = 1",
       [](CLSFW_PARSER& p) {
         return p.SQLConditionNodo("PD0C_CODNODO", "PD0C_CODPROG_PD68", true);
       }},
      {"SQLConditionCodSimPD90(\"PD90_SIMULAZIONE\", True)",
       "SELECT PD90_SIMULAZIONE FROM PD90_SIMULAZIONI WHERE PD90_DITTA_CG18 = 1",
       [](CLSFW_PARSER& p) { return p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", true); }},
      {"SQLConditionContiPDC(\"CG42_GRUPPOPDC\", \"CG42_CONTOPDC\", True)",
       "SELECT DISTINCT CG42_GRUPPOPDC || '/' || CG42_CONTOPDC FROM CG42_MOVCONT WHERE 1=1",
       [](CLSFW_PARSER& p) {
         return p.SQLConditionContiPDC("CG42_GRUPPOPDC", "CG42_CONTOPDC", true);
       }},
      {"SQLConditionDO11(True)", "SELECT DO11_NUMREG_CO99 FROM DO11_DOCTESTATA WHERE 1=1",
       [](CLSFW_PARSER& p) { return p.SQLConditionDO11(true); }},
  };

  tour.out << "  CLSFW_PARSER for ROSSI (group VEN) in company 1, on a private copy of the\n"
              "  demo database. Each predicate is appended to the WHERE of a statement on\n"
              "  its table; below each call: how many rows the statement keeps with it,\n"
              "  out of how many without it, and which.\n\n";
  for (const ConditionLine& line : lines) {
    const std::string order = " ORDER BY 1";
    const auto kept = demo::QueryRows(*database, line.statement + line.predicate(parser) + order);
    const auto all = demo::QueryRows(*database, line.statement + order);
    tour.out << "  " << line.call << "\n";
    PrintLabelled(tour.out, "      ",
                  std::to_string(kept.size()) + " of " + std::to_string(all.size()) + ":", 8,
                  Joined(kept), 100);
  }

  tour.out << "\n  The list conditions read the revoked codes first and return the list:\n"
           << "  SQLConditionSediMov(\"DO11_CODSEDE_CG31\", False, False)\n"
           << "      \"" << parser.SQLConditionSediMov("DO11_CODSEDE_CG31", false, false) << "\"\n"
           << "  SQLConditionDepositi(\"DO11_CODDEP\", True)\n"
           << "      \"" << parser.SQLConditionDepositi("DO11_CODDEP", true) << "\"\n"
           << "  For the privileged user ZentAd every one of them is \"\".\n";
  database->Close();
}

}  // namespace zarvik::cli
