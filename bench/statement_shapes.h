// Host statements of the shapes the rewriter has to stay linear on, padded
// to a target size: the usual document query, a long WHERE, many distinct
// joins, many UNION segments and deeply nested parentheses. Each shape comes
// realistic (host tables of the demo database, so conditions are built) or
// text-only (unknown tables, so only the scan runs). The benchmark and the
// rewriter's byte-identity test share them.
#ifndef ZARVIK_BENCH_STATEMENT_SHAPES_H_
#define ZARVIK_BENCH_STATEMENT_SHAPES_H_

#include <cstddef>
#include <string>

namespace zarvik::shapes {

enum class Shape { kNormal, kLongWhere, kDistinctJoins, kUnions, kDeepParentheses };
inline constexpr Shape kAllShapes[] = {Shape::kNormal, Shape::kLongWhere, Shape::kDistinctJoins,
                                       Shape::kUnions, Shape::kDeepParentheses};

inline const char* ShapeName(Shape shape) {
  switch (shape) {
    case Shape::kNormal:
      return "normal";
    case Shape::kLongWhere:
      return "long_where";
    case Shape::kDistinctJoins:
      return "distinct_joins";
    case Shape::kUnions:
      return "unions";
    case Shape::kDeepParentheses:
      return "deep_parens";
  }
  return "?";
}

namespace detail {

// The tables a shape names: host tables, or unknown ones of the same length.
struct Tables {
  std::string doc, customer, join;
  std::string union_tables[4];
};

inline Tables TablesFor(bool realistic) {
  if (realistic) {
    return {"DO11_DOCTESTATA",
            "CG44_CLIFOR",
            "MG36_DOCUMENTI",
            {"MG36_DOCUMENTI", "CG44_CLIFOR", "MG58_DEPOSITI", "PD68_PROGETTI"}};
  }
  return {"XX99_NESSUNA",
          "XX98_NESSUNA",
          "XX97_NESSUNA",
          {"XX96_NESSUNA", "XX95_NESSUNA", "XX94_NESSUNA", "XX93_NESSUNA"}};
}

// A four-letter prefix no host table has: Q followed by n in base 36.
inline std::string UnknownPrefix(int n) {
  const char* digits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::string p = "Q000";
  for (int i = 3; i >= 1; --i, n /= 36) p[i] = digits[n % 36];
  return p;
}

// Document header and customer, joined; `columns`, `more_joins`, `where`
// and `order` complete it.
inline std::string DocumentQuery(const Tables& t, const std::string& columns,
                                 const std::string& more_joins, const std::string& where,
                                 const std::string& order) {
  return "SELECT " + columns + " FROM " + t.doc + " D INNER JOIN " + t.customer +
         " C ON C.CG44_DITTA_CG18 = D.DO11_DITTACF_CG44 AND C.CG44_CLIFOR = D.DO11_CLIFOR_CG44" +
         more_joins + where + order;
}

}  // namespace detail

// The statement of `shape`, grown step by step until it is at least
// `target` characters long.
inline std::string Statement(Shape shape, size_t target, bool realistic) {
  const detail::Tables t = detail::TablesFor(realistic);
  const std::string order = " ORDER BY D.DO11_NUMREG_CO99";
  std::string columns = "D.DO11_NUMREG_CO99, D.DO11_DATADOC, C.CG44_RAGSOC";
  std::string joins;
  std::string where = " WHERE D.DO11_DITTA_CG18 = 1";
  std::string text;
  for (int n = 0; text.size() < target; ++n) {
    const std::string k = std::to_string(n);
    switch (shape) {
      case Shape::kNormal:
        // More columns, repeated joins (restricted once) and predicates.
        if (n > 0 && n % 3 == 0) columns += ", D.DO11_TOTALE * " + k + " AS T" + k;
        if (n % 3 == 1) {
          joins += " INNER JOIN " + t.join + " M" + k + " ON M" + k +
                   ".MG36_CODDOCUM = D.DO11_DOCUM_MG36";
        }
        if (n % 3 == 2) where += " AND D.DO11_TOTALE <> " + k;
        text = detail::DocumentQuery(t, columns, joins, where, order);
        break;
      case Shape::kLongWhere:
        if (n > 0) where += " AND (D.DO11_TOTALE <> " + k + " OR D.DO11_NOTE LIKE '" + k + "%')";
        text = detail::DocumentQuery(t, columns, joins, where, order);
        break;
      case Shape::kDistinctJoins: {
        // Every table a different prefix; every fifth join a LEFT one.
        const char* const known[] = {"MG36_DOCUMENTI", "MG58_DEPOSITI", "PD68_PROGETTI"};
        const std::string name =
            n >= 1 && n <= 3 && realistic ? known[n - 1] : detail::UnknownPrefix(n) + "_TAB";
        if (n > 0) {
          joins += std::string(n % 5 == 0 ? " LEFT OUTER JOIN " : " INNER JOIN ") + name + " J" +
                   k + " ON J" + k + ".KEY_" + k + " = D.DO11_NUMREG_CO99";
        }
        text = detail::DocumentQuery(t, columns, joins, where, order);
        break;
      }
      case Shape::kUnions:
        text += (n == 0 ? "" : n % 2 == 1 ? " UNION " : " UNION ALL ");
        text += "SELECT A.KEY_" + k + ", A.DESCR FROM " + t.union_tables[n % 4] +
                " A WHERE A.DITTA = " + k;
        break;
      case Shape::kDeepParentheses:
        // ((...(D.DO11_DITTA_CG18 = 1 AND (... OR ...)) AND (... OR ...))...)
        where = " WHERE " + std::string(static_cast<size_t>(n), '(') + "D.DO11_DITTA_CG18 = 1";
        for (int i = 1; i <= n; ++i) {
          where += " AND (D.DO11_TOTALE <> " + std::to_string(i) + " OR C.CG44_TIPOCF = 0))";
        }
        text = detail::DocumentQuery(t, columns, joins, where, order);
        break;
    }
  }
  return shape == Shape::kUnions ? text + " ORDER BY 1" : text;
}

}  // namespace zarvik::shapes

#endif  // ZARVIK_BENCH_STATEMENT_SHAPES_H_
