// The table texts of the statement rewriter's dispatch: the excluded
// companies, the branch-office and accounting-reason lists read from the
// revocation views, and the correlated NOT EXISTS tests of the coded tables.
//
// Correlated columns are written bare: every column of the host schema
// carries its table's prefix, so a bare name binds to the outer table.
#include <string>

#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "platform/vb_string.h"

namespace zarvik {
namespace {

// The VFW31_RVKPARAMETRI test of one kind behind " EXISTS(SELECT * ".
std::string ParametriTail(const std::string& user_id, int16_t kind, const std::string& scope_column,
                          const std::string& code_column) {
  return std::string(" FROM VFW31_RVKPARAMETRI ") + " WHERE FW31_ID_FW07 = " + user_id + " " +
         " AND FW31_INDTIPO = " + sql::Number(kind) + " " + " AND FW31_FLGABILITATO = 0 " +
         " AND FW31_DITTARAGG = " + sql::Column(scope_column) + " " +
         " AND FW31_CODTIPO = " + sql::Column(code_column) + ") ";
}

// " NOT " in front of the positive test when negated: NOT and EXISTS are then
// separated by two blanks.
std::string NotPiece(bool negate) { return negate ? " NOT " : ""; }

// One level of the customer/supplier classification hierarchy on
// VFW32_RVKCLIFOR. The code columns are column names or '' (the whole upper
// level).
struct ClassificationTable {
  const char* prefix;
  const char* grouping;  // FW32_TIPORAGG
  const char* kind_column;
  const char* macro_column;
  const char* middle_column;  // "" on level 1
  const char* leaf_column;    // "" on levels 1 and 2
};

// MG07..MG09 areas, MG10..MG12 categories, MG31..MG33 groupings 1 to 3.
constexpr ClassificationTable kClassificationTables[] = {
    {"MG07", "AREA", "MG07_TIPOCF", "MG07_MACROAREA", "", ""},
    {"MG08", "AREA", "MG08_TIPOCF_MG07", "MG08_MACROAREA_MG07", "MG08_AREA", ""},
    {"MG09", "AREA", "MG09_TIPOCF_MG08", "MG09_MACROAREA_MG08", "MG09_AREA_MG08", "MG09_ZONA"},
    {"MG10", "CAT", "MG10_TIPOCF", "MG10_MACROCAT", "", ""},
    {"MG11", "CAT", "MG11_TIPOCF_MG10", "MG11_MACROCAT_MG10", "MG11_CATEG", ""},
    {"MG12", "CAT", "MG12_TIPOCF_MG11", "MG12_MACROCAT_MG11", "MG12_CATEG_MG11", "MG12_SOTTCAT"},
    {"MG31", "RAGG1", "MG31_TIPOCF", "MG31_CODRAGGRCF1", "", ""},
    {"MG32", "RAGG2", "MG32_TIPOCF", "MG32_CODRAGGRCF2", "", ""},
    {"MG33", "RAGG3", "MG33_TIPOCF", "MG33_CODRAGGRCF3", "", ""},
};

// "  (SELECT * FROM VFW32_RVKCLIFOR ..." for one macro/middle/leaf triple.
std::string ClassificationSubquery(const std::string& user_id, const ClassificationTable& t,
                                   const std::string& middle, const std::string& leaf) {
  return std::string("  (SELECT * FROM VFW32_RVKCLIFOR ") + " WHERE FW32_ID_FW07 = " + user_id +
         " " + " AND FW32_DITTA = " + t.prefix + "_DITTA_CG18 " +
         " AND FW32_TIPOCF = " + t.kind_column + " " + " AND FW32_FLGABILITATO = 0 " +
         " AND FW32_TIPORAGG = '" + t.grouping + "'" + " AND FW32_CODMACRO = " + t.macro_column +
         " AND FW32_CODMIDDLE = " + middle + " AND FW32_CODRAGG = " + leaf + ")";
}

}  // namespace

std::string CLSFW_PARSER::RvkDitte() {
  std::string result;
  frame_.Trap("RvkDitte", [&] {
    const std::string user_id = sql::Number(frame_.UserId());
    std::string statement;
    if (frame_.FlgGrpRevoke() != 1) {
      statement = std::string("SELECT * FROM FW05_DITTAESCLUSI ") +
                  " WHERE FW05_ID_FW07 = " + user_id + " " + " AND FW05_FLGABIL = 0";
    } else {
      statement = std::string("SELECT DISTINCT FW05_DITTA_CG18 FROM VFW05_DITTAESCLUSI ") +
                  " WHERE FW05_ID_FW07 = " + user_id + " " + " AND FW05_FLGVISIBLE = 0 ";
    }
    const auto rs = frame_.Execute(statement);
    std::string list;
    while (!rs->EOF()) {
      list += sql::Unquoted(rs->Fields("FW05_DITTA_CG18")) + ", ";
      rs->MoveNext();
    }
    rs->Close();
    if (!list.empty()) {
      result = " CG18_DITTA NOT IN (" + vb::Left(list, vb::Len(list) - 2) + ") ";
    }
  });
  return result;
}

std::string CLSFW_PARSER::Sedi(const std::string& tabella, bool inserire_and) {
  const std::string statement =
      std::string("SELECT * FROM VFW32_RVKCLIFOR") +
      " WHERE FW32_ID_FW07 = " + sql::Number(frame_.UserId()) + " " +
      "   AND FW32_FLGABILITATO = 0  " + "   AND FW32_TIPORAGG = 'SEDE' " +
      "   AND FW32_DITTA = " + sql::Unquoted(frame_.ctx.DittaCorrente) +
      " ORDER BY FW32_DITTA, FW32_TIPOCF , FW32_CODRAGG , FW32_CODMIDDLE , FW32_CODMACRO";
  const auto rs = frame_.Execute(statement);
  std::string list;
  while (!rs->EOF()) {
    list += sql::Unquoted(rs->Fields("FW32_CODRAGG")) + " , ";
    rs->MoveNext();
  }
  rs->Close();
  if (list.empty()) return std::string();
  // Deliberate: only two of the three separator characters are cut, so the
  // list keeps one trailing blank.
  list = vb::Left(list, vb::Len(list) - 2);
  std::string column;
  if (tabella == "CG31") {
    column = "CG31_CODICE NOT IN (";
  } else if (tabella == "DO11") {
    column = "DO11_CODSEDE_CG31 NOT IN (";
  } else {
    column = tabella + "_CODSEDE_CG31 NOT IN (";
  }
  const std::string text = column + list + ")";
  return inserire_and ? " AND " + text : text;
}

std::string CLSFW_PARSER::CausaliContabili() {
  std::string result;
  frame_.Trap("CausaliContabili", [&] {
    const std::string statement = std::string("SELECT * ") + " FROM VFW31_RVKPARAMETRI " +
                                  " WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " " +
                                  "     AND FW31_FLGABILITATO = 0 " + "     AND FW31_INDTIPO = 0 " +
                                  " ORDER BY FW31_INDTIPO, FW31_CODTIPO, FW31_DITTARAGG";
    const auto rs = frame_.Execute(statement);
    // A row without a code revokes a whole register type (its scope); a row
    // with a code revokes that one reason. Rows without a code sort first.
    std::string register_types;
    std::string reasons;
    while (!rs->EOF()) {
      const Variant code = rs->Fields("FW31_CODTIPO");
      if (RevocationFrame::IsBlank(code)) {
        register_types += register_types.empty() ? " " + current_alias_ + "CG33_INDTIPOREG NOT IN ("
                                                 : std::string(" , ");
        register_types += sql::Unquoted(rs->Fields("FW31_DITTARAGG"));
      } else {
        reasons +=
            reasons.empty() ? " " + current_alias_ + "CG33_CODICE NOT IN ('" : std::string(" , '");
        reasons += sql::Unquoted(code) + "' ";
      }
      rs->MoveNext();
    }
    rs->Close();
    if (!register_types.empty() && !reasons.empty()) {
      result = register_types + ") AND " + reasons + ") ";
    } else if (!register_types.empty()) {
      result = register_types + ") ";
    } else if (!reasons.empty()) {
      result = reasons + ") ";
    }
  });
  return result;
}

std::string CLSFW_PARSER::RvkParametri(int16_t kind, const std::string& scope_column,
                                       const std::string& code_column) {
  return " NOT EXISTS(SELECT * " +
         ParametriTail(sql::Number(frame_.UserId()), kind, scope_column, code_column);
}

std::string CLSFW_PARSER::RvkDepositi(const std::string& code_column) {
  return RvkParametri(6, vb::Left(code_column, 4) + "_DITTA_CG18", code_column);
}

std::string CLSFW_PARSER::RvkProgetti(bool negate) {
  return NotPiece(negate) + " EXISTS(SELECT * " +
         ParametriTail(sql::Number(frame_.UserId()), 8, "PD68_DITTA_CG18", "PD68_CODPROG");
}

std::string CLSFW_PARSER::RvkNodi(bool negate) {
  return NotPiece(negate) + " EXISTS(SELECT * " + " FROM VFW3N_RVKNODI " +
         " WHERE FW3N_ID_FW07 = " + sql::Number(frame_.UserId()) + " " +
         " AND FW3N_DITTA_CG18 = PD0C_DITTA_CG18 " + " AND FW3N_CODNODO = PD0C_CODNODO " +
         " AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68) ";
}

std::string CLSFW_PARSER::RvkBlmParam(bool negate) {
  return NotPiece(negate) + " EXISTS(SELECT * " +
         ParametriTail(sql::Number(frame_.UserId()), 30, "MG0F_DITTA_CG18", "MG0F_CODPARAM");
}

std::string CLSFW_PARSER::RvkVisSource(const std::string& code_column) {
  return std::string(" NOT EXISTS (SELECT FW31_CODICE  ") + "         FROM VFW31_RVKPARAMETRI " +
         "         WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " " +
         "             AND FW31_CODTIPO = " + sql::Column(code_column) +
         "             AND FW31_DITTARAGG = 0 " + "             AND FW31_INDTIPO = 13 )";
}

std::string CLSFW_PARSER::RvkVisMatrici() {
  return std::string(" NOT EXISTS (SELECT FW31_CODICE  ") + "         FROM VFW31_RVKPARAMETRI " +
         "         WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " " +
         "             AND FW31_CODTIPO = FW36_CODICEMATR " +
         "             AND FW31_DITTARAGG = 1 " + "             AND FW31_INDTIPO = 13 )";
}

std::string CLSFW_PARSER::RvkStpLibere() {
  return std::string(" NOT EXISTS (SELECT FW31_CODICE  ") + "         FROM VFW31_RVKPARAMETRI " +
         "         WHERE FW31_ID_FW07 = " + sql::Number(frame_.UserId()) + " " +
         "             AND FW31_CODTIPO = FW57_CODICE " + "             AND FW31_INDTIPO = 12 )";
}

std::string CLSFW_PARSER::RvkAreeCategorie(const std::string& table_prefix) {
  const std::string user_id = sql::Number(frame_.UserId());
  for (const ClassificationTable& t : kClassificationTables) {
    if (table_prefix != t.prefix) continue;
    const std::string middle = t.middle_column;
    const std::string leaf = t.leaf_column;
    // Level 1: the macro code alone; then the middle code of the table (or
    // of its parent), then the leaf code.
    std::string text = " NOT EXISTS" + ClassificationSubquery(user_id, t, "''", "''");
    if (!middle.empty()) {
      text += " AND NOT EXISTS" + ClassificationSubquery(user_id, t, middle, "''");
    }
    if (!leaf.empty()) {
      text += " AND NOT EXISTS" + ClassificationSubquery(user_id, t, middle, leaf);
    }
    return text;
  }
  return std::string();
}

}  // namespace zarvik
