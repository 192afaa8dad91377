#include "cli/check_scene.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/text_table.h"
#include "demo/demo_db.h"
#include "parser/checks/rights_records.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"

namespace zarvik::cli {
namespace {

struct CheckLine {
  const char* call;
  std::function<bool(CLSFW_PARSER&)> check;
  const char* why;
};

std::string YesNo(int16_t flag) { return flag != 0 ? "yes" : "no"; }

// A parser for a demo user in company 1 on the scene's database.
std::unique_ptr<CLSFW_PARSER> ParserFor(const std::shared_ptr<db::Connection>& database,
                                        const char* group, const char* user) {
  auto parser =
      std::make_unique<CLSFW_PARSER>(Env{DefaultMessageSink(), std::make_shared<SystemClock>()});
  parser->SetConnectionADO(database);
  parser->SetDittaCorrente(Variant(int32_t{1}));
  parser->SetCodiceGruppo(group);
  parser->SetCodiceUtente(user);
  parser->SetCodiceUtenteCLIFOR(user);
  return parser;
}

}  // namespace

void ShowCheckScene(TourContext& tour) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  const auto rossi = ParserFor(database, "VEN", "ROSSI");
  const auto zentad = ParserFor(database, "SYS", "ZentAd");

  const std::vector<CheckLine> checks = {
      {"ProgettoBloccato(\"P1\")", [](CLSFW_PARSER& p) { return p.ProgettoBloccato("P1"); },
       "project P1 revoked (kind 8)"},
      {"ProgettoBloccato(\"P3\")", [](CLSFW_PARSER& p) { return p.ProgettoBloccato("P3"); },
       "no row for P3"},
      {"NodoBloccato(\"P3\", \"N2\")", [](CLSFW_PARSER& p) { return p.NodoBloccato("P3", "N2"); },
       "node revoked"},
      {"DepositoBloccato(\"B2\")", [](CLSFW_PARSER& p) { return p.DepositoBloccato("B2"); },
       "warehouse revoked (kind 6)"},
      {"DepositoBloccato(\"C3\")", [](CLSFW_PARSER& p) { return p.DepositoBloccato("C3"); },
       "no row for C3"},
      {"DocumentoTestataBloccato(\"1005\")",
       [](CLSFW_PARSER& p) { return p.DocumentoTestataBloccato("1005"); },
       "an NCV document: type revoked"},
      {"DocumentoTestataBloccato(\"1008\")",
       [](CLSFW_PARSER& p) { return p.DocumentoTestataBloccato("1008"); },
       "passes every document condition"},
      {"StatoRevisioneDistintaBloccato(2)",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneDistintaBloccato(2); },
       "revision state 2 revoked (kind 34)"},
      {"StatoRevisioneDistintaBloccato(4)",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneDistintaBloccato(4); },
       "only states 1..3 exist: blocked for all"},
      {"ContoPDCBloccato(10, \"1001\", a, v)",
       [](CLSFW_PARSER& p) {
         int16_t enabled = 0;
         int16_t visible = 0;
         return p.ContoPDCBloccato(10, "1001", enabled, visible);
       },
       "SPFW_GetInfoRevokeContoPDC: canAbilitato 0"},
  };
  tour.out << "  CLSFW_PARSER for ROSSI (group VEN) and for ZentAd in company 1, on a\n"
              "  private copy of the demo database. Block checks (True = blocked):\n\n";
  TextTable check_table({"CALL", "ROSSI", "ZentAd", "WHY (ROSSI)"});
  for (const CheckLine& line : checks) {
    check_table.AddRow({line.call, line.check(*rossi) ? "True" : "False",
                        line.check(*zentad) ? "True" : "False", line.why});
  }
  check_table.Print(tour.out, "  ");

  tour.out << "\n  Rights records of ROSSI (yes = allowed):\n\n";
  TextTable rights({"CALL", "EXISTS/ENABLED", "DELETE", "UPDATE", "INSERT"});
  for (const char* code : {"NCV", "OCL", "DDT", "FTV"}) {
    std::string document = code;
    int16_t personalised = 0;
    const tsRvkDocumenti r = rossi->PermessiDocTipologie(document, personalised);
    rights.AddRow({std::string("PermessiDocTipologie(\"") + code + "\", 0)", YesNo(r.rvkExists),
                   YesNo(r.CanDelete), YesNo(r.CanUpdate), YesNo(r.CanInsert)});
  }
  for (int16_t type : {int16_t{35}, int16_t{5}, int16_t{7}}) {
    const tsRvkConfig r = rossi->PermessiTipologieDistintaBase(type);
    rights.AddRow({"PermessiTipologieDistintaBase(" + std::to_string(type) + ")",
                   YesNo(r.Abilitato), YesNo(r.CanDelete), YesNo(r.CanUpdate), YesNo(r.CanInsert)});
  }
  for (const char* family : {"ELE", "MEC", "IDR"}) {
    const tsRvkFamiglia r = rossi->InitRevokeFamiglia(family);
    rights.AddRow({std::string("InitRevokeFamiglia(\"") + family + "\")", YesNo(r.rvkExists),
                   YesNo(r.CanDelete), YesNo(r.CanUpdate), YesNo(r.CanInsert)});
  }
  rights.Print(tour.out, "  ");
  tour.out << "\n  OCL: update revoked, so insert is refused although its flag allows it.\n"
              "  Type 35: its own row is enabled, but the '99' row (all of 30..39) wins.\n"
              "  MEC: the update flag is 2, and only 1 allows.\n";
  database->Close();
}

}  // namespace zarvik::cli
