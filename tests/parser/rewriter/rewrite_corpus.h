// The fuzz and byte-identity statements: random token strings and mutated host
// statements, from picks that are the same with every standard library.
#ifndef ZARVIK_TESTS_PARSER_REWRITER_REWRITE_CORPUS_H_
#define ZARVIK_TESTS_PARSER_REWRITER_REWRITE_CORPUS_H_

#include <cctype>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace zarvik::testing {

// A number in lo..hi (<random>'s distributions differ between libraries).
inline size_t Pick(std::mt19937& rng, size_t lo, size_t hi) { return lo + rng() % (hi - lo + 1); }

// Keywords in both cases, every prefix the dispatch knows, aliases, literals
// and the characters the scanner looks at, '|'-separated.
inline std::vector<std::string> Tokens() {
  const std::string all =
      "SELECT|select|FROM|from|WHERE|where|UNION|union|JOIN|join|INNER|LEFT|left|RIGHT|"
      "OUTER|ON|on|GROUP BY|group by|ORDER BY|ORDER  BY|order\r\nby|WITH(NOLOCK)|WITH|{oj |"
      "}|AND|OR|IN|*|CG16_ANAGRAFICA|CG18_DITTE|CG44_CLIFOR|CG31_SEDI|CG33_TABCAU|"
      "CG41_TESMOVCONT|VCG42_MOVCONT|DO11_DOCTESTATA|MG07_MACROAREE|MG08_AREE|MG09_ZONE|"
      "MG10_MACROCAT|MG11_CATEGORIE|MG12_SOTTOCAT|MG17_AGENTI|MG31_RAGGRCF1|MG36_DOCUMENTI|"
      "MG3N_TRASFDOC|MG58_DEPOSITI|MG0F_BLMPARAM|PD68_PROGETTI|PD0C_NODO|VPD0C_NODIPROG|"
      "PD90_SIMULAZIONI|FW34_VISSOURCE|FW36_VISMATRICI|FW57_STPLIBERE|XX99_ALTRO|A|B|C.|D|"
      "X1|CG44_TIPOCF = 0|CG44_TIPOCF = 1|'|'UNION'|'SELECT'|(|)|,| , | | | |  |\t|\r\n|=|"
      "1|0|.|_|-|\xC3\xA8";
  std::vector<std::string> tokens;
  for (size_t at = 0, bar = 0; bar != std::string::npos; at = bar + 1) {
    bar = all.find('|', at);
    tokens.push_back(all.substr(at, bar - at));
  }
  return tokens;
}
inline const std::vector<std::string> kTokens = Tokens();

inline std::string RandomStatement(std::mt19937& rng, size_t max_tokens) {
  std::string s;
  for (size_t n = Pick(rng, 0, max_tokens); n > 0; --n) {
    s += kTokens[Pick(rng, 0, kTokens.size() - 1)];
    if (Pick(rng, 0, 2) != 0) s += ' ';
  }
  return s;
}

// Realistic statements to mutate.
inline const std::vector<std::string> kCorpus = {
    "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A WHERE A.MG36_DITTA_CG18 = 1 ORDER BY "
    "A.MG36_NUMREG",
    "SELECT D.DO11_NUMREG_CO99, C.CG44_RAGSOC FROM DO11_DOCTESTATA D INNER JOIN CG44_CLIFOR C ON "
    "C.CG44_DITTA_CG18 = D.DO11_DITTACF_CG44 LEFT OUTER JOIN MG36_DOCUMENTI M ON M.MG36_CODDOCUM "
    "= D.DO11_DOCUM_MG36 WHERE D.DO11_DITTA_CG18 = 1 AND C.CG44_TIPOCF = 0 ORDER BY 1",
    "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT PD68_CODPROG FROM PD68_PROGETTI "
    "ORDER BY 1",
    "SELECT (SELECT MAX(B) FROM MG58_DEPOSITI) AS M FROM CG18_DITTE D, CG16_ANAGRAFICA A, "
    "CG44_CLIFOR C WHERE D.CG18_DITTA IN (SELECT 1 FROM PD0C_NODO WHERE 1 = 1) GROUP BY M",
    "SELECT * FROM (SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI) X",
    "SELECT * FROM {oj PD68_PROGETTI P LEFT OUTER JOIN PD0C_NODO N ON N.PD0C_CODPROG_PD68 = "
    "P.PD68_CODPROG} WHERE P.PD68_DESCR <> 'UNION'",
};

inline std::string Mutate(std::mt19937& rng, std::string s) {
  using Op = std::function<void(size_t)>;
  const Op ops[] = {
      [&](size_t p) { s.insert(p, kTokens[Pick(rng, 0, kTokens.size() - 1)]); },
      [&](size_t p) { s.erase(p, Pick(rng, 0, 12)); },
      [&](size_t p) { s.resize(p); },
      // Long statements, for the 16-bit positions.
      [&](size_t) { s += s.size() < 20000 ? s : ""; },
      [&](size_t p) {
        if (p < s.size()) s[p] = static_cast<char>(Pick(rng, 1, 255));
      },
      [&](size_t p) {  // swap the case of a stretch
        for (size_t i = p; i < s.size() && i < p + 10; ++i) {
          if (std::isalpha(static_cast<unsigned char>(s[i]))) s[i] = static_cast<char>(s[i] ^ 0x20);
        }
      },
  };
  for (size_t n = Pick(rng, 1, 8); n > 0; --n) {
    const size_t p = Pick(rng, 0, s.size());
    ops[Pick(rng, 0, 5)](p);
  }
  return s;
}

// 20,000 random statements (every tenth up to 400 tokens), then 10,000 mutated host statements.
inline std::vector<std::string> FuzzStatements() {
  std::vector<std::string> out;
  std::mt19937 random(1234567);
  for (int n = 1; n <= 20000; ++n) out.push_back(RandomStatement(random, n % 10 == 0 ? 400 : 40));
  std::mt19937 mutated(7654321);
  for (int n = 0; n < 10000; ++n) {
    const std::string& base = kCorpus[Pick(mutated, 0, kCorpus.size() - 1)];
    out.push_back(Mutate(mutated, base));
  }
  return out;
}

// Statements beyond 32767 characters, keywords inside and outside 16 bits.
inline std::vector<std::string> LongStatements() {
  std::vector<std::string> out;
  for (size_t pad : {32700U, 32760U, 32770U, 40000U, 70000U}) {
    out.push_back("SELECT " + std::string(pad, 'X') +
                  " FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = 1");
    out.push_back("SELECT * FROM PD68_PROGETTI WHERE PD68_DESCR <> '" + std::string(pad, 'Y') +
                  "'");
  }
  return out;
}

}  // namespace zarvik::testing

#endif  // ZARVIK_TESTS_PARSER_REWRITER_REWRITE_CORPUS_H_
