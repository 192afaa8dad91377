// Project and node fields: the probe, the counting rule of the report form,
// both forms of the condition, and the SQL form inside real statements.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/filtroquery_test_support.h"
#include "filtroquery/project_statements.h"

namespace zarvik::filtroquery {
namespace {

using testing::BoxTags;
using testing::FilterOnDemo;

const char kRossiProjectCondition[] =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
    "FW31_INDTIPO = 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1 AND FW31_CODTIPO = "
    "PD68_CODPROG) ";

// Adds kind-8 revocations of ROSSI in company 1 (codes 9000 and up).
void RevokeForRossi(FilterOnDemo& f, const std::vector<std::string>& projects) {
  int code = 9000;
  for (const std::string& p : projects) {
    f.Setup(
        "INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, "
        "FW31_DITTARAGG, FW31_CODTIPO, FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
        "FW31_FLGINSERISCI) VALUES (" +
        std::to_string(code++) + ", 5, 8, 1, '" + p + "', 0, 1, 1, 1)");
  }
}

// Adds projects to company 1.
void AddProjects(FilterOnDemo& f, int first, int last) {
  for (int n = first; n <= last; ++n) {
    f.Setup("INSERT INTO PD68_PROGETTI VALUES (1, 'P" + std::to_string(n) + "', 'Progetto')");
  }
}

TEST(ProjectStatements, TextsForOneUser) {
  const Variant one(int32_t{1});
  EXPECT_EQ(ProjectProbeStatement(5, one),
            " SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI   WHERE FW31_ID_FW07 = 5      AND "
            "FW31_INDTIPO = 8       AND FW31_FLGABILITATO = 0       AND FW31_DITTARAGG = 1");
  EXPECT_EQ(ProjectCountStatement(5, one),
            " SELECT COUNT(*) AS NUMPROG, (SELECT COUNT(FW31_CODTIPO)   FROM VFW31_RVKPARAMETRI   "
            "WHERE FW31_ID_FW07 = 5      AND FW31_INDTIPO = 8       AND FW31_FLGABILITATO = 0     "
            "  AND FW31_DITTARAGG = 1) AS NUMREVOKE  FROM PD68_PROGETTI ");
  EXPECT_EQ(RevokedProjectsStatement(5, one),
            " SELECT FW31_CODTIPO  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_INDTIPO = 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1");
  EXPECT_EQ(AllowedProjectsStatement(5, one),
            " SELECT PD68_CODPROG as FW31_CODTIPO  FROM PD68_PROGETTI  WHERE PD68_DITTA_CG18 = 1"
            "     AND NOT EXISTS (SELECT TOP 1 1                         FROM VFW31_RVKPARAMETRI "
            "                        WHERE FW31_ID_FW07 = 5                          AND "
            "FW31_INDTIPO = 8                           AND FW31_FLGABILITATO = 0              "
            "             AND FW31_DITTARAGG = 1                         AND PD68_CODPROG = "
            "FW31_CODTIPO)");
  EXPECT_EQ(ProjectCondition(5, one, "PD68_CODPROG"), kRossiProjectCondition);
  EXPECT_EQ(
      NodeProbeStatement(5, one),
      " SELECT TOP 1 1  FROM VFW3N_RVKNODI   WHERE FW3N_ID_FW07 = 5  AND FW3N_DITTA_CG18 = 1");
  EXPECT_EQ(NodeCondition(5, one, "PD0C_CODNODO", "PD0C_CODPROG_PD68"),
            " NOT EXISTS (SELECT TOP 1 1  FROM VFW3N_RVKNODI  WHERE FW3N_ID_FW07 = 5  AND "
            "FW3N_DITTA_CG18 = 1 AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68 AND FW3N_CODNODO = "
            "PD0C_CODNODO) ");
}

TEST(Progetti, HundredProjectsThreeRevoked) {
  // 11 demo projects + 89 = 100 in all companies; ROSSI may not see P1, P2
  // and P9 of company 1.
  FilterOnDemo f;
  AddProjects(f, 9, 97);
  RevokeForRossi(f, {"P9"});
  ASSERT_EQ(f.Column("SELECT COUNT(*) FROM PD68_PROGETTI"), std::vector<std::string>{"100"});
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(f.Report(), " (NOT (R IN [\"P1\",\"P2\",\"P9\"]))");
  EXPECT_EQ(f.Sql(), kRossiProjectCondition);
  // Probe, counts, list (after the user lookup of the first call).
  ASSERT_GE(f.Sent().size(), 3u);
  const size_t n = f.Sent().size();
  EXPECT_EQ(f.Sent()[n - 3], ProjectProbeStatement(5, Variant(int32_t{1})));
  EXPECT_EQ(f.Sent()[n - 2], ProjectCountStatement(5, Variant(int32_t{1})));
  EXPECT_EQ(f.Sent()[n - 1], RevokedProjectsStatement(5, Variant(int32_t{1})));
}

TEST(Progetti, ThreeProjectsTwoRevokedListsTheAllowedOne) {
  FilterOnDemo f;
  f.Setup("DELETE FROM FW3N_RVKNODI");
  f.Setup("DELETE FROM PD0C_NODO");
  f.Setup("DELETE FROM PD68_PROGETTI WHERE PD68_CODPROG NOT IN ('P1', 'P2', 'P3')");
  f.Filter("PD68_CODPROG", Variant("{PD68.CODPROG}"));
  EXPECT_EQ(f.Report(), " ( ({PD68.CODPROG} IN [\"P3\"]))");
  EXPECT_EQ(f.Sql(), kRossiProjectCondition);
  EXPECT_EQ(f.Sent().back(), AllowedProjectsStatement(5, Variant(int32_t{1})));
}

TEST(Progetti, TieListsTheAllowedProjectsOneFewerTheRevokedOnes) {
  // 12 projects (P9 added to company 1), 6 revoked: P1..P6.
  FilterOnDemo f;
  AddProjects(f, 9, 9);
  RevokeForRossi(f, {"P3", "P4", "P5", "P6"});
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(f.Report(), " ( (R IN [\"P7\",\"P8\",\"P9\"]))");
  // One revocation fewer (5 against 7) lists the revoked ones.
  FilterOnDemo fewer;
  AddProjects(fewer, 9, 9);
  RevokeForRossi(fewer, {"P3", "P4", "P5"});
  fewer.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(fewer.Report(), " (NOT (R IN [\"P1\",\"P2\",\"P3\",\"P4\",\"P5\"]))");
}

TEST(Progetti, EveryProjectRevokedOrABlankReportFieldLeaveOnlyTheSqlForm) {
  FilterOnDemo all;
  RevokeForRossi(all, {"P3", "P4", "P5", "P6", "P7", "P8"});
  all.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(all.Report(), "");
  EXPECT_EQ(all.Sql(), kRossiProjectCondition);
  // A blank report field skips the count and the list.
  FilterOnDemo f;
  f.Filter("PD68_CODPROG", Variant(" "));
  EXPECT_EQ(f.Report(), "");
  EXPECT_EQ(f.Sql(), kRossiProjectCondition);
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(), ProjectProbeStatement(5, Variant(int32_t{1})));
  for (const std::string& s : f.Sent()) EXPECT_EQ(s.find("COUNT"), std::string::npos);
}

TEST(Progetti, NoRevocationInTheCurrentCompany) {
  // BIANCHI's project revocation is in company 2; he has no node revoked.
  FilterOnDemo f("BIANCHI");
  f.Filter("PD0C_CODNODO", Variant("R"));
  EXPECT_EQ(f.Sql() + f.Report(), "");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(), NodeProbeStatement(6, Variant(int32_t{1})));
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(f.Sql() + f.Report(), "");
  f.filter->SetDittaCorrente(Variant(int32_t{2}));
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(f.Report(), " (NOT (R IN [\"Q1\"]))");
}

TEST(Progetti, FailureIsReportedUnderItsOwnTag) {
  FilterOnDemo f;
  f.filter->SetDittaCorrente(Variant());  // "FW31_DITTARAGG = " with nothing after it
  f.Filter("PD68_CODPROG", Variant("R"));
  EXPECT_EQ(BoxTags(f.Boxes()), std::vector<std::string>{"Progetti"});
  EXPECT_EQ(f.Sql() + f.Report(), "");
  f.Filter("PD0C_CODNODO", Variant("R"));
  EXPECT_EQ(BoxTags(f.Boxes()), (std::vector<std::string>{"Progetti", "CondNodi"}));
}

TEST(CondNodi, ReportFormIsAlwaysTrueAndOmittedReportFields) {
  FilterOnDemo f;
  f.Filter("T.PD68_CODPROG");
  EXPECT_EQ(f.Report(), " (NOT (T.PD68_CODPROG IN [\"P1\",\"P2\"]))");
  // The SQL form names the project column, not the field the host gave.
  EXPECT_EQ(f.Sql(), kRossiProjectCondition);
  f.Filter("PD0C_CODNODO", Variant("{PD0C.CODNODO}"));
  EXPECT_EQ(f.Report(), "(1=1)");
  EXPECT_EQ(f.Sql(), NodeCondition(5, Variant(int32_t{1}), "PD0C_CODNODO", "PD0C_CODPROG_PD68"));
  f.Filter("X.PD0C_CODNODO", Variant(""));
  EXPECT_EQ(f.Report(), "");
  EXPECT_NE(f.Sql(), "");
  f.Filter("X.PD0C_CODNODO");
  EXPECT_EQ(f.Report(), "(1=1)");
}

}  // namespace
}  // namespace zarvik::filtroquery
