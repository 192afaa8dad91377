#include "cli/tour.h"

#include <algorithm>
#include <map>
#include <ostream>

#include "cli/revocation_kinds.h"
#include "cli/text_table.h"
#include "demo/demo_db.h"

namespace zarvik::cli {
using namespace zarvik::demo;
namespace {

constexpr size_t kLineWidth = 100;

std::string Text(const Variant& v) { return v.ConcatText(); }

int32_t Int(const Variant& v) { return v.IsNull() || v.IsEmpty() ? 0 : v.ToLong(); }

std::string Join(const std::vector<std::string>& items, const std::string& separator) {
  std::string text;
  for (size_t i = 0; i < items.size(); ++i) text += (i == 0 ? "" : separator) + items[i];
  return text;
}

std::string Company(int32_t code) { return "company " + std::to_string(code); }

// An entry of a revocation row: the code alone when the row revokes it,
// else the code with the changes the row still forbids.
std::string Entry(const std::string& code, int32_t enabled, int32_t update, int32_t remove,
                  int32_t insert) {
  if (enabled == 0) return code;
  std::vector<std::string> limits;
  if (update == 0) limits.push_back("no update");
  if (remove == 0) limits.push_back("no delete");
  if (insert == 0) limits.push_back("no insert");
  return code + " (" + (limits.empty() ? "enabled" : Join(limits, ", ")) + ")";
}

// Collects entries under a label and a prefix (a company, a scope), in the
// order they are first added, and turns them into summary lines:
// "prefix: a, b; other prefix: c".
class SummaryBuilder {
 public:
  void Add(const std::string& label, const std::string& prefix, const std::string& entry) {
    auto line =
        std::find_if(lines_.begin(), lines_.end(), [&](const Line& l) { return l.label == label; });
    if (line == lines_.end()) line = lines_.insert(lines_.end(), Line{label, {}});
    auto group = std::find_if(line->groups.begin(), line->groups.end(),
                              [&](const Group& g) { return g.prefix == prefix; });
    if (group == line->groups.end())
      group = line->groups.insert(line->groups.end(), Group{prefix, {}});
    group->entries.push_back(entry);
  }

  std::vector<SummaryLine> Lines() const {
    std::vector<SummaryLine> out;
    for (const Line& line : lines_) {
      std::vector<std::string> parts;
      for (const Group& g : line.groups) {
        parts.push_back((g.prefix.empty() ? "" : g.prefix + ": ") + Join(g.entries, ", "));
      }
      out.push_back(SummaryLine{line.label, Join(parts, "; ")});
    }
    return out;
  }

 private:
  struct Group {
    std::string prefix;
    std::vector<std::string> entries;
  };
  struct Line {
    std::string label;
    std::vector<Group> groups;
  };
  std::vector<Line> lines_;
};

std::string CustomerKind(int32_t tipocf) { return tipocf == 0 ? "customer" : "supplier"; }

std::string GroupingName(const std::string& tiporagg) {
  if (tiporagg == "AREA") return "area";
  if (tiporagg == "CAT") return "category";
  if (tiporagg == "RAGG1") return "grouping 1";
  if (tiporagg == "RAGG2") return "grouping 2";
  if (tiporagg == "RAGG3") return "grouping 3";
  return tiporagg;
}

void AddExcludedCompanies(db::Connection& db, const std::string& id, SummaryBuilder& summary) {
  const auto rows = QueryRows(db,
                              "SELECT DISTINCT FW05_DITTA_CG18, FW05_FLGVISIBLE, FW05_FLGABIL "
                              "FROM VFW05_DITTAESCLUSI WHERE FW05_ID_FW07 = " +
                                  id + " ORDER BY FW05_DITTA_CG18");
  for (const auto& r : rows) {
    std::vector<std::string> what;
    if (Int(r[1]) == 0) what.push_back("not visible");
    if (Int(r[2]) == 0) what.push_back("not enabled");
    if (what.empty()) continue;
    summary.Add("excluded companies", "", Text(r[0]) + " (" + Join(what, ", ") + ")");
  }
}

void AddCustomers(db::Connection& db, const std::string& id, SummaryBuilder& summary) {
  for (const auto& r :
       QueryRows(db,
                 "SELECT FW3C_DITTA_CG18, FW3C_TIPOCF_CG44, FW3C_CLIFOR_CG44, "
                 "FW3C_FLGABILITATO, CG44_RAGSOC FROM FW3C_RVKCLIFORSING "
                 "LEFT JOIN CG44_CLIFOR ON CG44_DITTA_CG18 = FW3C_DITTA_CG18 "
                 "AND CG44_TIPOCF = FW3C_TIPOCF_CG44 AND CG44_CLIFOR = FW3C_CLIFOR_CG44 "
                 "WHERE FW3C_ID_FW07 = " +
                     id + " ORDER BY 1, 2, 3")) {
    const std::string entry = Text(r[2]) + " " + Text(r[4]) + (Int(r[3]) == 0 ? "" : " (enabled)");
    summary.Add(CustomerKind(Int(r[1])) + "s one by one", Company(Int(r[0])), entry);
  }
  for (const auto& r :
       QueryRows(db,
                 "SELECT FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, FW32_CODMACRO, "
                 "FW32_CODMIDDLE, FW32_CODRAGG, FW32_FLGABILITATO FROM VFW32_RVKCLIFOR "
                 "WHERE FW32_ID_FW07 = " +
                     id +
                     " ORDER BY FW32_TIPORAGG = 'SEDE', FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, "
                     "FW32_CODMACRO, FW32_CODMIDDLE, LENGTH(FW32_CODRAGG), FW32_CODRAGG")) {
    const std::string tiporagg = Text(r[2]);
    const std::string flag = Int(r[6]) == 0 ? "" : " (enabled)";
    if (tiporagg == "SEDE") {
      summary.Add("offices (grouping rows)", Company(Int(r[0])), Text(r[5]) + flag);
      continue;
    }
    std::vector<std::string> levels;
    for (int c = 3; c <= 5; ++c) {
      if (!Text(r[c]).empty()) levels.push_back(Text(r[c]));
    }
    summary.Add(CustomerKind(Int(r[1])) + " groupings", Company(Int(r[0])),
                GroupingName(tiporagg) + " " + Join(levels, "/") + flag);
  }
  for (const auto& r : QueryRows(db,
                                 "SELECT RVKDITTA, RVKTIPOCF, RVKCLIFOR FROM VFW32_LISTACFREVOCATI "
                                 "WHERE RVKUTENTE = " +
                                     id + " ORDER BY RVKDITTA, RVKTIPOCF, RVKCLIFOR")) {
    summary.Add("revoked " + CustomerKind(Int(r[1])) + "s, resolved", Company(Int(r[0])),
                Text(r[2]));
  }
}

void AddParameters(db::Connection& db, const std::string& id, SummaryBuilder& summary) {
  for (const auto& r :
       QueryRows(db,
                 "SELECT FW31_INDTIPO, FW31_DITTARAGG, FW31_CODTIPO, FW31_FLGABILITATO, "
                 "FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI "
                 "FROM VFW31_RVKPARAMETRI WHERE FW31_ID_FW07 = " +
                     id +
                     " ORDER BY FW31_INDTIPO, FW31_DITTARAGG, "
                     "LENGTH(FW31_CODTIPO), FW31_CODTIPO")) {
    const int32_t kind = Int(r[0]);
    const int32_t scope = Int(r[1]);
    const RevocationKind* k = FindRevocationKind(kind);
    const std::string label = (k == nullptr ? "unknown kind" : k->name) + std::string(" (kind ") +
                              std::to_string(kind) + ")";
    std::string code = Text(r[2]);
    std::string prefix;
    if (kind == 0 && code.empty()) {
      code = "register type " + std::to_string(scope) + " (every reason)";
    } else if (k != nullptr && k->scope != nullptr) {
      prefix = scope == -1 ? "all" : std::string(k->scope) + " " + std::to_string(scope);
    }
    summary.Add(label, prefix, Entry(code, Int(r[3]), Int(r[4]), Int(r[5]), Int(r[6])));
  }
}

void AddNodesFunctionsFamilies(db::Connection& db, const std::string& id, bool group_based,
                               SummaryBuilder& summary) {
  for (const auto& r : QueryRows(db,
                                 "SELECT FW3N_DITTA_CG18, FW3N_CODPROG_PD68, FW3N_CODNODO "
                                 "FROM VFW3N_RVKNODI WHERE FW3N_ID_FW07 = " +
                                     id + " ORDER BY 1, 2, 3")) {
    summary.Add("project nodes", Company(Int(r[0])), Text(r[1]) + "/" + Text(r[2]));
  }
  // A group-based user loses a function only when every group of his
  // revokes it; anybody else through his own rows.
  const std::string functions =
      group_based ? "SELECT FW3G_CODICE_FW3F, FW3F_DESCR FROM FW3G_RVKFUNZIONI "
                    "INNER JOIN FW00_GRPUSRASSOC ON FW00_ID_FW06 = FW3G_ID_FW06 "
                    "INNER JOIN FW3F_FUNZIONI ON FW3F_CODICE = FW3G_CODICE_FW3F "
                    "WHERE FW00_ID_FW07 = " +
                        id +
                        " GROUP BY FW3G_CODICE_FW3F, FW3F_DESCR "
                        "HAVING MAX(FW3G_FLGABILITATO) = 0 AND COUNT(DISTINCT FW3G_ID_FW06) = "
                        "(SELECT COUNT(*) FROM FW00_GRPUSRASSOC WHERE FW00_ID_FW07 = " +
                        id + ") ORDER BY 1"
                  : "SELECT FW3G_CODICE_FW3F, FW3F_DESCR FROM FW3G_RVKFUNZIONI "
                    "INNER JOIN FW3F_FUNZIONI ON FW3F_CODICE = FW3G_CODICE_FW3F "
                    "WHERE FW3G_ID_FW07 = " +
                        id + " AND FW3G_FLGABILITATO = 0 ORDER BY 1";
  for (const auto& r : QueryRows(db, functions)) {
    summary.Add("application functions", "", Text(r[0]) + " " + Text(r[1]));
  }
  for (const auto& r : QueryRows(db,
                                 "SELECT FW3H_DITTA, FW3H_CODMACRO, FW3H_FLGINSERIMENTO, "
                                 "FW3H_FLGMODIFICA, FW3H_FLGELIMINA FROM FW3H_RVKARTICOLI "
                                 "WHERE FW3H_ID_FW07 = " +
                                     id + " AND FW3H_TIPORAGG = 'FAM' ORDER BY 1, 2")) {
    std::vector<std::string> limits;
    if (Int(r[2]) != 1) limits.push_back("no insert");
    if (Int(r[3]) != 1) limits.push_back("no update");
    if (Int(r[4]) != 1) limits.push_back("no delete");
    summary.Add("article families", Company(Int(r[0])),
                Text(r[1]) + " (" + (limits.empty() ? "all allowed" : Join(limits, ", ")) + ")");
  }
}

// Scenes ------------------------------------------------------------------

void ShowCompanies(TourContext& tour) {
  TextTable table({"COMPANY", "NAME", "CUSTOMERS", "SUPPLIERS", "DOCUMENTS", "PROJECTS"});
  for (size_t c : {0, 2, 3, 4, 5}) table.AlignRight(c);
  for (const auto& r :
       QueryRows(tour.db,
                 "SELECT CG18_DITTA, CG18_RAGSOC, "
                 "(SELECT COUNT(*) FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = CG18_DITTA AND "
                 "CG44_TIPOCF = 0), "
                 "(SELECT COUNT(*) FROM CG44_CLIFOR WHERE CG44_DITTA_CG18 = CG18_DITTA AND "
                 "CG44_TIPOCF = 1), "
                 "(SELECT COUNT(*) FROM DO11_DOCTESTATA WHERE DO11_DITTA_CG18 = CG18_DITTA), "
                 "(SELECT COUNT(*) FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = CG18_DITTA) "
                 "FROM CG18_DITTE ORDER BY CG18_DITTA")) {
    table.AddRow({Text(r[0]), Text(r[1]), Text(r[2]), Text(r[3]), Text(r[4]), Text(r[5])});
  }
  table.Print(tour.out, "  ");
}

void ShowUsers(TourContext& tour) {
  std::map<int32_t, std::vector<std::string>> groups;
  for (const auto& r : QueryRows(tour.db,
                                 "SELECT FW00_ID_FW07, FW06_CODICE FROM FW00_GRPUSRASSOC "
                                 "INNER JOIN FW06_GRUPPI ON FW06_ID = FW00_ID_FW06 "
                                 "ORDER BY FW00_ID_FW07, FW06_CODICE")) {
    groups[Int(r[0])].push_back(Text(r[1]));
  }
  TextTable table({"ID", "CODE", "GROUP", "LOGIN", "STATUS"});
  table.AlignRight(0);
  for (const auto& r : QueryRows(tour.db,
                                 "SELECT FW07_ID, FW07_CODICE, FW07_CODICE_FW06, FW07_USERNAME, "
                                 "FW07_FLGGRP, FW07_FLGATTIVO, FW07_FLGREVOKE "
                                 "FROM FW07_APPUSER ORDER BY FW07_ID")) {
    const int32_t id = Int(r[0]);
    std::vector<std::string> status;
    if (Int(r[4]) == 1) status.push_back("group-based (" + Join(groups[id], "+") + ")");
    status.push_back(Int(r[5]) == 1 ? "active" : "inactive");
    if (Int(r[6]) == 1) status.push_back("locked out");
    for (const DemoUser& u : DemoUsers()) {
      if (u.id == id && u.agent_id != 0) status.push_back("agent " + std::to_string(u.agent_id));
    }
    table.AddRow({Text(r[0]), Text(r[1]), Text(r[2]), Text(r[3]), Join(status, ", ")});
  }
  table.Print(tour.out, "  ");
}

void ShowAgents(TourContext& tour) {
  TextTable table({"ID", "CODE", "COMPANY", "NAME", "CUSTOMERS", "DESTINATIONS", "DOCUMENTS"});
  table.AlignRight(0);
  table.AlignRight(2);
  for (const auto& a : QueryRows(tour.db,
                                 "SELECT MG17_IDAGENTE, MG17_AGENTE, MG17_DITTA_CG18, MG17_DESCR "
                                 "FROM MG17_AGENTI ORDER BY MG17_IDAGENTE")) {
    const std::string id = Text(a[0]);
    std::vector<std::string> customers;
    for (const auto& r : QueryRows(tour.db,
                                   "SELECT MG1C_CLIFOR_CG44 FROM MG1C_CLIFORAGEMUL "
                                   "WHERE MG1C_IDAGENTE_MG17 = " +
                                       id + " ORDER BY 1")) {
      customers.push_back(Text(r[0]));
    }
    std::vector<std::string> destinations;
    for (const auto& r :
         QueryRows(tour.db,
                   "SELECT MG2G_CLIFOR_CG44, MG2G_CODDESTIN_MG22 FROM MG2G_DESTAGEMUL "
                   "WHERE MG2G_IDAGENTE_MG17 = " +
                       id + " ORDER BY 1, 2")) {
      destinations.push_back(Text(r[0]) + "/" + Text(r[1]));
    }
    std::vector<std::string> documents;
    for (const auto& r : QueryRows(tour.db,
                                   "SELECT DO29_NUMREG_CO99 FROM DO29_DOCTESAGENTI "
                                   "WHERE DO29_IDAGENTE_MG17 = " +
                                       id + " ORDER BY 1")) {
      documents.push_back(Text(r[0]));
    }
    // The code is quoted so that trailing blanks show.
    table.AddRow({id, "'" + Text(a[1]) + "'", Text(a[2]), Text(a[3]), Join(customers, ","),
                  Join(destinations, ","), Join(documents, ",")});
  }
  table.Print(tour.out, "  ");
  tour.out << "  A destination assigned to no agent is visible to every agent.\n";
}

void ShowRevocations(TourContext& tour) {
  bool first = true;
  for (const auto& r : QueryRows(tour.db,
                                 "SELECT FW07_ID, FW07_CODICE, FW07_CODICE_FW06 FROM FW07_APPUSER "
                                 "ORDER BY FW07_ID")) {
    const int32_t id = Int(r[0]);
    if (!first) tour.out << "\n";
    first = false;
    // "  CODE (id N, group G) - role", the role wrapped under itself.
    const std::string heading =
        "  " + Text(r[1]) + " (id " + Text(r[0]) + ", group " + Text(r[2]) + ")";
    std::string role;
    for (const DemoUser& u : DemoUsers()) {
      if (u.id == id) role = u.role;
    }
    if (role.empty()) {
      tour.out << heading << "\n";
    } else {
      const std::string lead = heading + " - ";
      const auto role_lines = WrapText(role, kLineWidth - lead.size());
      for (size_t i = 0; i < role_lines.size(); ++i) {
        tour.out << (i == 0 ? lead : std::string(lead.size(), ' ')) << role_lines[i] << "\n";
      }
    }
    const std::vector<SummaryLine> lines = RevocationSummary(tour.db, id);
    if (lines.empty()) {
      tour.out << "    nothing revoked\n";
      continue;
    }
    size_t width = 0;
    for (const SummaryLine& l : lines) width = std::max(width, l.label.size());
    for (const SummaryLine& l : lines) {
      PrintLabelled(tour.out, "    ", l.label, width, l.text, kLineWidth);
    }
  }
}

struct BusinessTable {
  const char* name;
  const char* content;
};

void ShowBusinessTables(TourContext& tour) {
  static const BusinessTable kTables[] = {
      {"CG18_DITTE", "companies"},
      {"CG44_CLIFOR", "customers and suppliers"},
      {"MG19_CLIFORVA", "their areas, categories and groupings"},
      {"MG07_MACROAREE", "macro-areas (MG08 areas, MG09 zones below)"},
      {"MG10_MACROCAT", "macro-categories (MG11, MG12 below)"},
      {"CG31_SEDI", "branch offices"},
      {"CG33_TABCAU", "accounting reasons"},
      {"CG42_MOVCONT", "accounting entry lines (VCG42_MOVCONT)"},
      {"CGT0_TIPOMOV", "movement types"},
      {"MG17_AGENTI", "agents"},
      {"MG1C_CLIFORAGEMUL", "customers of agents"},
      {"MG2G_DESTAGEMUL", "destinations of agents"},
      {"MG36_DOCUMENTI", "document types"},
      {"MG3G_DOCDITTA", "document types per company"},
      {"MG3N_TRASFDOC", "document transfer types"},
      {"MG58_DEPOSITI", "warehouses"},
      {"MG66_ARTICOLI", "articles"},
      {"MG6W_STATIART", "article states"},
      {"MG4T_TIPILISTINO", "price-list types"},
      {"MG0F_BLMPARAM", "goods-blocking models"},
      {"DO11_DOCTESTATA", "document headers"},
      {"DO29_DOCTESAGENTI", "agents of documents"},
      {"PD68_PROGETTI", "projects"},
      {"PD0C_NODO", "project nodes (VPD0C_NODIPROG)"},
      {"PD90_SIMULAZIONI", "simulation codes"},
      {"FW34_VISSOURCE", "export data sources"},
      {"FW36_VISMATRICI", "office configurations"},
      {"FW57_STPLIBERE", "free reports"},
      {"FW3F_FUNZIONI", "application functions"},
      {"FW33_RVKUSER", "login log"},
  };
  TextTable table({"TABLE", "ROWS", "CONTENT"});
  table.AlignRight(1);
  for (const BusinessTable& t : kTables) {
    const auto rows = QueryRows(tour.db, std::string("SELECT COUNT(*) FROM ") + t.name);
    table.AddRow({t.name, Text(rows.at(0).at(0)), t.content});
  }
  table.Print(tour.out, "  ");
}

}  // namespace

std::vector<SummaryLine> RevocationSummary(db::Connection& db, int32_t user_id) {
  const std::string id = std::to_string(user_id);
  const auto user = QueryRows(db, "SELECT FW07_FLGGRP FROM FW07_APPUSER WHERE FW07_ID = " + id);
  const bool group_based = !user.empty() && Int(user[0][0]) == 1;
  SummaryBuilder summary;
  AddExcludedCompanies(db, id, summary);
  AddCustomers(db, id, summary);
  AddParameters(db, id, summary);
  AddNodesFunctionsFamilies(db, id, group_based, summary);
  return summary.Lines();
}

const std::vector<TourScene>& TourScenes() {
  static const std::vector<TourScene> scenes = {
      {"Companies", ShowCompanies},
      {"Users", ShowUsers},
      {"Agents", ShowAgents},
      {"Revocations by user", ShowRevocations},
      {"Business tables", ShowBusinessTables},
  };
  return scenes;
}

void ShowScene(const TourScene& scene, TourContext& tour) {
  const std::string title = scene.title;
  tour.out << title << "\n" << std::string(title.size(), '=') << "\n";
  scene.show(tour);
  tour.out << "\n";
}

void RunTour(TourContext& tour) {
  for (const TourScene& scene : TourScenes()) ShowScene(scene, tour);
}

}  // namespace zarvik::cli
