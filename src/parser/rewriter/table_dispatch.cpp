// The table condition dispatch: maps the prefix of a table the scanner
// recognised to its revocation condition and puts the connector in front.
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "parser/clsfw_parser.h"

namespace zarvik {

void CLSFW_PARSER::FiltriStrSQL(const std::string& table_prefix, int16_t& where_pos,
                                bool is_from_list, std::string& condition) {
  condition.clear();
  frame_.Trap("FiltriStrSQL", [&] {
    const std::string connector = where_pos != 0 ? " AND " : " WHERE ";
    const std::string text =
        table_prefix == "CG44" ? CliForTableText(is_from_list) : TableText(table_prefix);
    // A table without text (or an unknown prefix) adds no lone connector.
    if (!text.empty()) condition = connector + text;
  });
}

std::string CLSFW_PARSER::CliForTableText(bool is_from_list) {
  const std::string kept_alias = current_alias_;
  // A FROM-list customer table is compared through a single blank; a joined
  // one keeps its alias unless the alias ran into a line break.
  if (is_from_list || current_alias_.find_first_of("\r\n") != std::string::npos) {
    current_alias_ = " ";
  }
  from_rewriter_ = true;
  const std::string text = SQLConditionCliFor("CG44", false, "", "", "", false);
  from_rewriter_ = false;
  current_alias_ = kept_alias;
  clifor_done_ = true;
  return text;
}

std::string CLSFW_PARSER::TableText(const std::string& table_prefix) {
  // Prefixes compare exactly (case-sensitive). CG16 only takes part in the
  // scanner's de-duplication; CG41 and VCG42 have no condition.
  struct Entry {
    std::string_view prefix;
    std::string (*text)(CLSFW_PARSER& self);
  };
  static const Entry kDispatch[] = {
      {"CG18", [](CLSFW_PARSER& self) { return self.RvkDitte(); }},
      {"MG07", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG07"); }},
      {"MG08", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG08"); }},
      {"MG09", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG09"); }},
      {"MG10", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG10"); }},
      {"MG11", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG11"); }},
      {"MG12", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG12"); }},
      {"MG31", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG31"); }},
      {"MG32", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG32"); }},
      {"MG33", [](CLSFW_PARSER& self) { return self.RvkAreeCategorie("MG33"); }},
      {"CG31", [](CLSFW_PARSER& self) { return self.Sedi("CG31", false); }},
      {"CG33", [](CLSFW_PARSER& self) { return self.CausaliContabili(); }},
      {"DO11", [](CLSFW_PARSER& self) { return self.SQLConditionDO11(false); }},
      {"MG17", [](CLSFW_PARSER& self) { return self.AgentRule(); }},
      {"MG36",
       [](CLSFW_PARSER& self) { return self.RvkParametri(7, "MG36_INDSTAPER", "MG36_CODDOCUM"); }},
      {"MG3N",
       [](CLSFW_PARSER& self) {
         return self.RvkParametri(9, "MG3N_INDSTAPER", "MG3N_CODTRASFDOC");
       }},
      {"MG58", [](CLSFW_PARSER& self) { return self.RvkDepositi("MG58_CODDEP"); }},
      {"PD68", [](CLSFW_PARSER& self) { return self.RvkProgetti(true); }},
      {"VPD0C", [](CLSFW_PARSER& self) { return self.RvkNodi(true); }},
      {"PD0C", [](CLSFW_PARSER& self) { return self.RvkNodi(true); }},
      {"FW34", [](CLSFW_PARSER& self) { return self.RvkVisSource("FW34_CODICEDS"); }},
      {"FW36", [](CLSFW_PARSER& self) { return self.RvkVisMatrici(); }},
      {"FW57", [](CLSFW_PARSER& self) { return self.RvkStpLibere(); }},
      {"PD90",
       [](CLSFW_PARSER& self) { return self.SQLConditionCodSimPD90("PD90_SIMULAZIONE", false); }},
      {"MG0F", [](CLSFW_PARSER& self) { return self.RvkBlmParam(true); }},
  };
  // Looked up by halving, in the table sorted once: a statement may name
  // hundreds of tables, most of them unknown.
  static const std::vector<Entry> kSorted = [] {
    std::vector<Entry> sorted(std::begin(kDispatch), std::end(kDispatch));
    std::sort(sorted.begin(), sorted.end(),
              [](const Entry& a, const Entry& b) { return a.prefix < b.prefix; });
    return sorted;
  }();
  const auto found = std::lower_bound(
      kSorted.begin(), kSorted.end(), table_prefix,
      [](const Entry& entry, const std::string& key) { return entry.prefix < key; });
  return found != kSorted.end() && found->prefix == table_prefix ? found->text(*this)
                                                                 : std::string();
}

}  // namespace zarvik
