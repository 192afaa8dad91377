// The demo database is created cleanly and holds every object the
// component names, with the columns its statements use.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include "demo/demo_sql.h"
#include "demo_test_support.h"
#include "platform/platform_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::demo {
namespace {

using test::CaughtError;
using test::ErrorOf;
using testing::FirstColumn;
using testing::FreshDemo;
using testing::Scalar;

struct ObjectColumns {
  const char* object;
  const char* columns;  // comma-separated, as a SELECT list
};

// Every table and view the component's statements name, with the columns
// they read, compare or write.
const ObjectColumns kComponentObjects[] = {
    {"FW07_APPUSER",
     "FW07_ID, FW07_CODICE, FW07_CODICE_FW06, FW07_FLGGRP, FW07_USERNAME, FW07_FLGATTIVO, "
     "FW07_FLGREVOKE"},
    {"FW00_GRPUSRASSOC", "FW00_ID_FW07, FW00_ID_FW06"},
    {"VFW31_RVKPARAMETRI",
     "FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, FW31_CODTIPO, FW31_FLGABILITATO, "
     "FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI"},
    {"VFW32_RVKCLIFOR",
     "FW32_ID_FW07, FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, FW32_CODMACRO, FW32_CODMIDDLE, "
     "FW32_CODRAGG, FW32_FLGABILITATO"},
    {"VFW32_LISTACFREVOCATI", "RVKDITTA, RVKTIPOCF, RVKCLIFOR, RVKUTENTE"},
    {"VFW3N_RVKNODI", "FW3N_ID_FW07, FW3N_DITTA_CG18, FW3N_CODPROG_PD68, FW3N_CODNODO"},
    {"VFW05_DITTAESCLUSI", "FW05_ID_FW07, FW05_DITTA_CG18, FW05_FLGVISIBLE, FW05_FLGABIL"},
    {"FW05_DITTAESCLUSI", "FW05_ID_FW07, FW05_DITTA_CG18, FW05_FLGVISIBLE, FW05_FLGABIL"},
    {"FW3H_RVKARTICOLI",
     "FW3H_ID_FW07, FW3H_DITTA, FW3H_TIPORAGG, FW3H_CODMACRO, FW3H_FLGINSERIMENTO, "
     "FW3H_FLGMODIFICA, FW3H_FLGELIMINA"},
    {"FW3G_RVKFUNZIONI", "FW3G_ID_FW07, FW3G_ID_FW06, FW3G_CODICE_FW3F, FW3G_FLGABILITATO"},
    {"FW33_RVKUSER",
     "FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, FW33_WINUSER, FW33_DATAORA"},
    {"FW34_VISSOURCE", "FW34_CODICEDS"},
    {"FW36_VISMATRICI", "FW36_CODICEMATR"},
    {"FW57_STPLIBERE", "FW57_CODICE"},
    {"CG18_DITTE", "CG18_DITTA"},
    {"CG16_ANAGRAFICA", "CG16_CODICE"},
    {"CG44_CLIFOR", "CG44_DITTA_CG18, CG44_TIPOCF, CG44_CLIFOR"},
    {"CG31_SEDI", "CG31_CODICE"},
    {"CS05_ASSEGNAZIONI", "CS05_SEDE_CG31"},
    {"CG33_TABCAU", "CG33_CODICE, CG33_INDTIPOREG"},
    {"CG41_TESMOVCONT", "CG41_DITTA_CG18, CG41_NUMREG"},
    {"CG42_MOVCONT", "CG42_GRUPPOPDC, CG42_CONTOPDC"},
    {"VCG42_MOVCONT", "CG42_GRUPPOPDC, CG42_CONTOPDC, CG41_CAUSALE_CG33"},
    {"CG62_PAGAMENTI", "CG62_CODPAG"},
    {"CGT0_TIPOMOV", "CGT0_CODICE, CGT0_FLGCANREVOKE"},
    {"MG07_MACROAREE", "MG07_DITTA_CG18, MG07_TIPOCF, MG07_MACROAREA"},
    {"MG08_AREE", "MG08_DITTA_CG18, MG08_TIPOCF_MG07, MG08_MACROAREA_MG07, MG08_AREA"},
    {"MG09_ZONE",
     "MG09_DITTA_CG18, MG09_TIPOCF_MG08, MG09_MACROAREA_MG08, MG09_AREA_MG08, MG09_ZONA"},
    {"MG10_MACROCAT", "MG10_DITTA_CG18, MG10_TIPOCF, MG10_MACROCAT"},
    {"MG11_CATEGORIE", "MG11_DITTA_CG18, MG11_TIPOCF_MG10, MG11_MACROCAT_MG10, MG11_CATEG"},
    {"MG12_SOTTOCAT",
     "MG12_DITTA_CG18, MG12_TIPOCF_MG11, MG12_MACROCAT_MG11, MG12_CATEG_MG11, MG12_SOTTCAT"},
    {"MG31_RAGGRCF1", "MG31_DITTA_CG18, MG31_TIPOCF, MG31_CODRAGGRCF1"},
    {"MG32_RAGGRCF2", "MG32_DITTA_CG18, MG32_TIPOCF, MG32_CODRAGGRCF2"},
    {"MG33_RAGGRCF3", "MG33_DITTA_CG18, MG33_TIPOCF, MG33_CODRAGGRCF3"},
    {"MG17_AGENTI", "MG17_IDAGENTE, MG17_AGENTE"},
    {"MG1C_CLIFORAGEMUL",
     "MG1C_DITTA_CG18, MG1C_TIPOCF_CG44, MG1C_CLIFOR_CG44, MG1C_IDAGENTE_MG17"},
    {"MG2G_DESTAGEMUL",
     "MG2G_DITTA_CG18, MG2G_TIPOCF_CG44, MG2G_CLIFOR_CG44, MG2G_CODDESTIN_MG22, "
     "MG2G_IDAGENTE_MG17"},
    {"MG19_CLIFORVA",
     "MG19_DITTA_CG18, MG19_TIPOCF_CG44, MG19_CLIFOR_CG44, MG19_MACROAREA, MG19_MACROCAT, "
     "MG19_RAGGRCF1, MG19_RAGGRCF2, MG19_RAGGCRF3"},
    {"MG36_DOCUMENTI", "MG36_CODDOCUM, MG36_INDSTAPER, MG36_NUMREG, MG36_DITTA_CG18"},
    {"MG3G_DOCDITTA", "MG3G_DITTA_CG18, MG3G_CODDOCUM_MG36, MG3G_INDSTAPER_MG36"},
    {"MG3N_TRASFDOC", "MG3N_CODTRASFDOC, MG3N_INDSTAPER"},
    {"MG51_CAUSALIMAG", "MG51_CAUSMAG"},
    {"MG58_DEPOSITI", "MG58_DITTA_CG18, MG58_CODDEP"},
    {"MG97_GIACENZE", "MG97_CODDEP_MG58"},
    {"MG6W_STATIART", "MG6W_INDSTATO, MG6W_DESCR"},
    {"MG66_ARTICOLI", "MG66_INDSTATO_MG6W"},
    {"MG0F_BLMPARAM", "MG0F_DITTA_CG18, MG0F_CODPARAM"},
    {"DO11_DOCTESTATA",
     "DO11_DITTA_CG18, DO11_NUMREG_CO99, DO11_DOCUM_MG36, DO11_DITTACF_CG44, DO11_TIPOCF_CG44, "
     "DO11_CLIFOR_CG44, DO11_CODSEDE_CG31, DO11_CODDEP"},
    {"DO29_DOCTESAGENTI", "DO29_DITTA_CG18, DO29_NUMREG_CO99, DO29_IDAGENTE_MG17"},
    {"PD68_PROGETTI", "PD68_DITTA_CG18, PD68_CODPROG"},
    {"PD0C_NODO", "PD0C_DITTA_CG18, PD0C_CODPROG_PD68, PD0C_CODNODO"},
    {"VPD0C_NODIPROG", "PD0C_DITTA_CG18, PD0C_CODPROG_PD68, PD0C_CODNODO"},
    {"PD90_SIMULAZIONI", "PD90_SIMULAZIONE"},
    {"ZARVIK_ROUTINES", "ROUTINE_NAME, ROUTINE_BODY"},
};

TEST(DemoSchema, EveryObjectTheComponentNamesHasItsColumns) {
  const auto db = FreshDemo();
  for (const ObjectColumns& o : kComponentObjects) {
    const std::string sql = std::string("SELECT ") + o.columns + " FROM " + o.object + " WHERE 1=0";
    EXPECT_NO_THROW(db->Execute(sql, db::kCmdText)) << sql;
  }
  // The query filter spells the agent column of its revoked-customer
  // statement MG1C_AGENTE_IDMG17; the database must refuse it.
  EXPECT_THROW(db->Execute("SELECT MG1C_AGENTE_IDMG17 FROM MG1C_CLIFORAGEMUL", db::kCmdText),
               VbError);
}

TEST(DemoSchema, RevocationViewsAreViewsOverBaseTables) {
  const auto db = FreshDemo();
  const auto type_of = [&](const std::string& name) {
    return FirstColumn(*db, "SELECT type FROM sqlite_master WHERE name = '" + name + "'");
  };
  const std::map<std::string, std::string> view_base = {
      {"VFW31_RVKPARAMETRI", "FW31_RVKPARAMETRI"}, {"VFW32_RVKCLIFOR", "FW32_RVKCLIFOR"},
      {"VFW3N_RVKNODI", "FW3N_RVKNODI"},           {"VFW05_DITTAESCLUSI", "FW05_DITTAESCLUSI"},
      {"VCG42_MOVCONT", "CG42_MOVCONT"},           {"VPD0C_NODIPROG", "PD0C_NODO"},
      {"VFW32_LISTACFREVOCATI", "FW32_RVKCLIFOR"},
  };
  for (const auto& [view, base] : view_base) {
    EXPECT_EQ(type_of(view), std::vector<std::string>{"view"}) << view;
    EXPECT_EQ(type_of(base), std::vector<std::string>{"table"}) << base;
  }
}

// The component's correlated sub-queries name outer columns without a
// qualifier: every column of a table must carry the table's four-character
// code, and no column name may occur in two tables.
TEST(DemoSchema, ColumnsCarryTheirTableCodeAndAreUniqueAcrossTables) {
  const auto db = FreshDemo();
  std::map<std::string, std::string> owner;
  for (const std::string& table :
       FirstColumn(*db,
                   "SELECT name FROM sqlite_master WHERE type = 'table' "
                   "AND name NOT LIKE 'sqlite%' AND name <> 'ZARVIK_ROUTINES' ORDER BY name")) {
    const std::string code = table.substr(0, 4) + "_";
    for (const std::string& column :
         FirstColumn(*db, "SELECT name FROM pragma_table_info('" + table + "')")) {
      EXPECT_EQ(column.substr(0, 5), code) << table << "." << column;
      const auto [it, inserted] = owner.emplace(column, table);
      EXPECT_TRUE(inserted) << column << " is in " << it->second << " and " << table;
    }
  }
  EXPECT_GT(owner.size(), 150u);
}

TEST(DemoSchema, SeedDataIsReferentiallyConsistent) {
  const auto db = FreshDemo();
  const auto problems = QueryRows(*db, "SELECT * FROM pragma_foreign_key_check");
  for (const auto& p : problems) {
    ADD_FAILURE() << "dangling reference in " << p.at(0).ConcatText() << " row "
                  << p.at(1).ConcatText() << " to " << p.at(2).ConcatText();
  }
}

TEST(DemoSchema, EmbeddedFilesComeInOrderAndRunStatementByStatement) {
  const auto& files = DemoSqlFiles();
  ASSERT_EQ(files.size(), 2u);
  EXPECT_STREQ(files[0].name, "schema.sql");
  EXPECT_STREQ(files[1].name, "data.sql");
  for (const SqlFile& f : files) EXPECT_FALSE(SplitSqlScript(f.text).empty()) << f.name;
}

// An empty database is filled once; a second creation fails naming the file
// and leaves the data as it was.
TEST(DemoDatabase, CreatesOnlyAnEmptyDatabase) {
  const auto db = std::make_shared<db::Connection>();
  db->SetConnectionString(DemoConnectionString(":memory:"));
  db->Open();
  EXPECT_TRUE(IsEmptyDatabase(*db));
  CreateDemoDatabase(*db);
  EXPECT_FALSE(IsEmptyDatabase(*db));
  const int32_t users = Scalar(*db, "SELECT COUNT(*) FROM FW07_APPUSER");
  try {
    CreateDemoDatabase(*db);
    ADD_FAILURE() << "a second creation must fail: the tables exist";
  } catch (const VbError& e) {
    EXPECT_EQ(e.Number(), vberr::kProviderError);
    EXPECT_NE(e.Description().find("demo/schema.sql"), std::string::npos) << e.Description();
  }
  EXPECT_EQ(Scalar(*db, "SELECT COUNT(*) FROM FW07_APPUSER"), users);
}

// init-db makes a new file once; opening needs a file it made.
TEST(DemoDatabase, FileDatabaseIsInitialisedOnceAndReusedWithClientCursors) {
  const std::string path =
      ::testing::TempDir() + "zarvik_demo_init_" + std::to_string(getpid()) + ".db";
  std::remove(path.c_str());
  const VbError missing = CaughtError([&] { OpenDemoDatabase(path); });
  EXPECT_NE(missing.Description().find("zarvik init-db"), std::string::npos)
      << missing.Description();
  EXPECT_FALSE(std::ifstream(path).good());  // not created by the attempt

  InitDemoDatabase(path);
  {
    const auto db = OpenDemoDatabase(path);
    db->Execute("UPDATE CG18_DITTE SET CG18_RAGSOC = 'changed' WHERE CG18_DITTA = 2", db::kCmdText);
  }
  EXPECT_EQ(ErrorOf([&] { InitDemoDatabase(path); }), vberr::kInvalidProcedureCall);
  const auto db = OpenDemoDatabase(path);
  EXPECT_EQ(FirstColumn(*db, "SELECT CG18_RAGSOC FROM CG18_DITTE WHERE CG18_DITTA = 2"),
            std::vector<std::string>{"changed"});
  EXPECT_EQ(db->CursorLocation(), db::kUseClient);
  EXPECT_EQ(db->Execute("SELECT * FROM FW07_APPUSER", db::kCmdText)->RecordCount(),
            static_cast<int32_t>(DemoUsers().size()));
  db->Close();
  std::remove(path.c_str());

  // An empty file is no demo database.
  std::ofstream(path).close();
  const VbError empty = CaughtError([&] { OpenDemoDatabase(path); });
  EXPECT_NE(empty.Description().find("holds no tables"), std::string::npos) << empty.Description();
  std::remove(path.c_str());
}

}  // namespace
}  // namespace zarvik::demo
