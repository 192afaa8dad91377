// Values carrying a quote and a second statement reach the database as they
// stand and change no row.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "parser/parser_test_support.h"

namespace zarvik::testing {
namespace {

const std::string kPayload = "; DELETE FROM FW31_RVKPARAMETRI; DELETE FROM FW07_APPUSER; --";

TEST(HostileValues, ChangeNoRowOfTheEmbeddedDatabase) {
  const struct {
    const char* what;
    std::function<void(CLSFW_PARSER&)> call;
  } cases[] = {
      {"warehouse code", [](CLSFW_PARSER& p) { p.DepositoBloccato("A1'" + kPayload); }},
      {"project code", [](CLSFW_PARSER& p) { p.ProgettoBloccato(Variant("P1'" + kPayload)); }},
      {"company",
       [](CLSFW_PARSER& p) {
         p.SetDittaCorrente(Variant("1" + kPayload));
         p.DepositoBloccato("A1");
       }},
      {"user code",
       [](CLSFW_PARSER& p) {
         SetUser(p, "ROSSI'" + kPayload, "VEN");
         p.DepositoBloccato("A1");
       }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ParserSession s("ROSSI");
    const std::string counts =
        "SELECT (SELECT COUNT(*) FROM FW31_RVKPARAMETRI) || '/' || "
        "(SELECT COUNT(*) FROM FW07_APPUSER)";
    const std::string before = s.Rows(counts);
    s.log->statements.clear();
    c.call(s.parser);
    bool sent = false;
    for (const std::string& statement : s.Statements()) {
      sent = sent || statement.find(kPayload) != std::string::npos;
    }
    EXPECT_TRUE(sent);
    EXPECT_EQ(s.Rows(counts), before);
  }
}

}  // namespace
}  // namespace zarvik::testing
