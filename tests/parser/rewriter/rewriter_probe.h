// The private parts of CLSFW_PARSER the parser tests reach (a friend class).
#ifndef ZARVIK_TESTS_PARSER_REWRITER_REWRITER_PROBE_H_
#define ZARVIK_TESTS_PARSER_REWRITER_REWRITER_PROBE_H_

#include <cstdint>
#include <string>

#include "parser/clsfw_parser.h"

namespace zarvik {

class RewriterProbe {
 public:
  // FiltriStrSQL with the current alias the scanner would have set.
  static std::string Filtri(CLSFW_PARSER& p, const std::string& prefix, int16_t where_pos,
                            bool is_from_list, const std::string& alias = "") {
    p.current_alias_ = alias;
    std::string condition = "left over";
    p.FiltriStrSQL(prefix, where_pos, is_from_list, condition);
    return condition;
  }
  // The dispatch's text for a table, for the resolved user.
  static std::string Table(CLSFW_PARSER& p, const std::string& prefix) {
    p.Frame().ResolveUser();
    return p.TableText(prefix);
  }
  static int16_t TipoCFHint(const CLSFW_PARSER& p) { return p.tipo_cf_hint_; }
  static void SetCurrentAlias(CLSFW_PARSER& p, const std::string& alias) {
    p.current_alias_ = alias;
  }
  static void SetFromRewriter(CLSFW_PARSER& p, bool value) { p.from_rewriter_ = value; }
  static std::string AgentRule(const CLSFW_PARSER& p) { return p.AgentRule(); }

  static std::string RvkDitte(CLSFW_PARSER& p) { return p.RvkDitte(); }
  static std::string Sedi(CLSFW_PARSER& p, const std::string& tabella, bool inserire_and) {
    return p.Sedi(tabella, inserire_and);
  }
  static std::string CausaliContabili(CLSFW_PARSER& p) { return p.CausaliContabili(); }
};

}  // namespace zarvik

#endif  // ZARVIK_TESTS_PARSER_REWRITER_REWRITER_PROBE_H_
