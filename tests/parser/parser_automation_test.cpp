// CLSFW_PARSER through the automation boundary: every member and record
// type is described, omitted optional arguments take their defaults,
// by-reference arguments come back, records come back as objects with named
// fields, and the answers equal those of the typed calls.
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "automation/automation_object.h"
#include "automation/dispatcher.h"
#include "automation/record_object.h"
#include "automation/type_library.h"
#include "parser_test_support.h"

namespace zarvik {
namespace {

using automation::Argument;
using Fields = std::vector<std::pair<std::string, bool>>;

class ParserAutomationTest : public testing::ParserTest {
 protected:
  ParserAutomationTest() {
    automation::CreationContext context;
    context.env = Env{sink, std::make_shared<SystemClock>()};
    object = automation::CreateObject(library, "CLSFW_PARSER", context);
    object->PutProperty("ConnectionADO", Variant(ObjectRef(db)));
    object->PutProperty("DittaCorrente", Variant(int32_t{1}));
    object->PutProperty("CodiceGruppo", Variant("VEN"));
    object->PutProperty("CodiceUtente", Variant("ROSSI"));
    object->PutProperty("CodiceUtenteCLIFOR", Variant("ROSSI"));
    AsUser("ROSSI");
  }

  Variant Call(const std::string& name, std::vector<Argument> args) {
    return object->Call(name, args);
  }
  static Argument Arg(const Variant& v) { return Argument{v, false}; }
  static Argument Int(int32_t v) { return Argument{Variant(v), false}; }
  static Argument Bool(bool v) { return Argument{Variant::Boolean(v), false}; }

  // The fields of a record result, in order, with their Boolean values.
  static Fields RecordFields(const Variant& value, const std::string& type) {
    auto record = std::dynamic_pointer_cast<automation::RecordObject>(value.ToObject());
    EXPECT_NE(record, nullptr);
    if (!record) return {};
    EXPECT_EQ(record->TypeName(), type);
    Fields fields;
    for (const auto& [name, field] : record->Fields()) {
      EXPECT_EQ(field.Type(), VarType::kBoolean) << name;
      fields.emplace_back(name, field.ToBool());
    }
    return fields;
  }

  const automation::TypeLibrary library = automation::BuildTypeLibrary();
  std::shared_ptr<automation::AutomationObject> object;
};

TEST_F(ParserAutomationTest, EveryMemberAndRecordIsDescribed) {
  const auto cls = library.FindClass("CLSFW_PARSER");
  ASSERT_NE(cls, nullptr);
  std::istringstream names(
      "ElaboraStrSQL SQLConditionCliFor CLIFORCondition SQLConditionDestinazioni CliForRevocati "
      "SQLConditionDepositi SQLConditionSediMov SQLConditionDocMG36 SQLConditionAgentiDoc "
      "SQLConditionDO11 SQLConditionContesto SQLConditionProgetto SQLConditionNodo "
      "SQLConditionWizAnag SQLConditionTracciatiImport SQLConditionTracciatiExport "
      "SQLConditionInsiemi SQLConditionContiPDC SQLConditionContiPDCBloccati "
      "SQLinnerjoinContiPDCBloccati SQLConditionCodSimPD90 DittaBloccata CliForBloccato "
      "CliForBloccato_New DocumentoTestataBloccato ContoPDCBloccato ProgettoBloccato "
      "NodoBloccato ModelloBloccoMerceBloccato StampaGestionaleBloccata DSExportDatiGestBloccata "
      "ConfigOfficeBloccata StatoRigaOrdineBloccato CodiceSimulazioneBloccato DepositoBloccato "
      "FunzioneApplicativaRevocata StatoRevisioneDistintaBloccato StatoRevisioneCicloBloccato "
      "SceltaDistintaRevisionataDocumentoBloccata SceltaDistintaManualeDocumentoBloccata "
      "AutorizzaAttivitaSuDocumentoProduzione InitRevokeTipiMov InitRevokeFamiglia "
      "InitRevokeTipoTrasPNota PermessiDocTipologie PermessiTipologieDistintaBase "
      "PermessiTipologieCicliLavorazione StatiArticoloMaga SQLConditionStatiArticolo "
      "SQLConditionTipiListiniP StatiArticoloMagaArray TrasferimentoDepositi "
      "InitRevokeTipiMovimenti SQLConditionTipiMovimenti SQLConditionCerved");
  for (std::string name; names >> name;) {
    EXPECT_NE(cls->Find(name, automation::MemberKind::kMethod), nullptr) << name;
  }
  // The explained rewrite and the agent rule are not part of the interface.
  EXPECT_FALSE(cls->HasMember("ElaboraStrSQLExplained"));
  EXPECT_FALSE(cls->HasMember("AgentRule"));
  const std::vector<std::pair<const char*, std::vector<std::string>>> records = {
      {"tsRvkTipiMov", {"Cons", "DaCons", "Prev", "PrevSim"}},
      {"tsRvkFamiglia", {"rvkExists", "CanDelete", "CanUpdate", "CanInsert"}},
      {"tsRvkConsMov", {"DaCons_Cons", "Prev_Cons"}},
      {"tsRvkDocumenti", {"rvkExists", "CanDelete", "CanUpdate", "CanInsert"}},
      {"tsRvkConfig", {"Abilitato", "CanDelete", "CanUpdate", "CanInsert"}},
  };
  for (const auto& [name, fields] : records) {
    const automation::RecordDescription* record = library.FindRecord(name);
    ASSERT_NE(record, nullptr) << name;
    std::vector<std::string> field_names;
    for (const auto& field : record->fields) {
      field_names.push_back(field.name);
      EXPECT_EQ(field.type.base, automation::BaseType::kBoolean);
    }
    EXPECT_EQ(field_names, fields) << name;
  }
  // The by-reference arguments.
  const auto* rewrite = cls->Find("ElaboraStrSQL", automation::MemberKind::kMethod);
  ASSERT_EQ(rewrite->params.size(), 1U);
  EXPECT_EQ(rewrite->params[0].name, "nStrSQL");
  EXPECT_TRUE(rewrite->params[0].by_ref);
  const auto* account = cls->Find("ContoPDCBloccato", automation::MemberKind::kMethod);
  ASSERT_EQ(account->params.size(), 4U);
  EXPECT_FALSE(account->params[1].by_ref);
  EXPECT_TRUE(account->params[2].by_ref);
  EXPECT_TRUE(account->params[3].by_ref);
}

TEST_F(ParserAutomationTest, RewriteHandsTheConsumedBufferBack) {
  const std::string statement =
      "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A WHERE A.MG36_DITTA_CG18 = 1 ORDER BY "
      "A.MG36_NUMREG";
  std::vector<Argument> args = {Arg(Variant(statement))};
  const Variant answer = object->Call("ElaboraStrSQL", args);
  std::string buffer = statement;
  EXPECT_EQ(answer.ToString(), parser.ElaboraStrSQL(buffer));
  EXPECT_EQ(args[0].value.ToString(), "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A ");
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ParserAutomationTest, OmittedOptionalArgumentsTakeTheirDefaults) {
  EXPECT_EQ(Call("SQLConditionDepositi", {Arg("DO11_CODDEP"), Bool(true)}).ToString(),
            parser.SQLConditionDepositi("DO11_CODDEP", true, true));
  EXPECT_EQ(Call("SQLConditionSediMov", {Arg("S"), Bool(false), Argument::Missing()}).ToString(),
            " (S NOT IN (3 , 12 ) OR S IS NULL )");
  EXPECT_EQ(Call("SQLConditionCliFor", {Arg("CG44"), Int(1)}).ToString(),
            parser.SQLConditionCliFor("CG44", true));
  EXPECT_EQ(Call("SQLConditionContiPDC", {Arg("G"), Arg("C"), Bool(false)}).ToString(),
            parser.SQLConditionContiPDC("G", "C", false, true));
  EXPECT_EQ(Call("SQLinnerjoinContiPDCBloccati", {Arg("G"), Arg("C")}).ToString(),
            parser.SQLinnerjoinContiPDCBloccati("G", "C", false));
  // Numbers for a 16-bit wizard kind and a Variant layout column.
  EXPECT_EQ(Call("SQLConditionWizAnag", {Int(4), Arg("M"), Arg("I"), Bool(false)}).ToString(),
            parser.SQLConditionWizAnag(4, "M", "I", false));
  EXPECT_EQ(Call("SQLConditionTracciatiImport", {Arg("S"), Int(7), Bool(true)}).ToString(),
            parser.SQLConditionTracciatiImport("S", Variant(int32_t{7}), true));
  EXPECT_TRUE(Boxes().empty());
  try {
    Call("SQLConditionDO11", {});
    FAIL() << "no error";
  } catch (const VbError& e) {
    EXPECT_EQ(e.Number(), vberr::kWrongArgCount);
  }
}

TEST_F(ParserAutomationTest, ByReferenceArgumentsComeBack) {
  std::vector<Argument> args{Arg("cg44"), Int(1)};
  EXPECT_EQ(object->Call("CLIFORCondition", args).ToString(),
            parser.SQLConditionCliFor("CG44", true, "", "", "", false));
  EXPECT_EQ(args[0].value.ToString(), "cg44");
  EXPECT_EQ(args[1].value.Type(), VarType::kBoolean);
  EXPECT_EQ(args[1].value.RawNumber(), -1);
  // Both flags of the account check.
  args = {Int(10), Arg("1002"), Arg(Variant(int16_t{9})), Arg(Variant(int16_t{9}))};
  EXPECT_FALSE(object->Call("ContoPDCBloccato", args).ToBool());
  EXPECT_EQ(args[2].value.ToInteger(), 1);
  EXPECT_EQ(args[3].value.ToInteger(), 0);
  args = {Arg("C"), Bool(true), Arg(Variant(int16_t{0}))};
  EXPECT_EQ(object->Call("SQLConditionCerved", args).ToString().rfind(" AND  NOT EXISTS (", 0), 0U);
  EXPECT_EQ(args[0].value.ToString(), "C");
}

TEST_F(ParserAutomationTest, ChecksAnswerAsTheTypedCalls) {
  const Variant project = Call("ProgettoBloccato", {Arg("P1")});
  EXPECT_EQ(project.Type(), VarType::kBoolean);
  EXPECT_TRUE(project.ToBool());
  // A Long for a 16-bit parameter and text for a Variant one.
  EXPECT_TRUE(Call("AutorizzaAttivitaSuDocumentoProduzione", {Int(25), Int(1), Int(2)}).ToBool());
  EXPECT_TRUE(Call("DittaBloccata", {Arg("2")}).ToBool());
  EXPECT_EQ(Call("SQLConditionTipiListiniP", {Arg("TL"), Bool(false)}).ToString(),
            " TL NOT IN (2, 5)");
  const Variant states = Call("StatiArticoloMagaArray", {});
  ASSERT_EQ(states.Type(), VarType::kArray);
  EXPECT_EQ(states.ToArray()->UBound(2), 3);
  // The user is resolved by an earlier call, then the transfer uses the id.
  Call("InitRevokeTipiMov", {});
  EXPECT_EQ(Call("TrasferimentoDepositi", {Arg("A1"), Arg("C3")}).ToInteger(), 1);
  auto revoked = std::dynamic_pointer_cast<db::Recordset>(Call("CliForRevocati", {}).ToObject());
  ASSERT_NE(revoked, nullptr);
  EXPECT_EQ(revoked->GetProperty("RecordCount").ToLong(), 8);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(ParserAutomationTest, RecordsComeBackWithNamedFields) {
  EXPECT_EQ(
      RecordFields(Call("PermessiDocTipologie", {Arg("OCL"), Arg(Variant(int16_t{0}))}),
                   "tsRvkDocumenti"),
      (Fields{
          {"rvkExists", true}, {"CanDelete", true}, {"CanUpdate", false}, {"CanInsert", false}}));
  EXPECT_EQ(RecordFields(Call("InitRevokeTipiMov", {}), "tsRvkTipiMov"),
            (Fields{{"Cons", true}, {"DaCons", false}, {"Prev", false}, {"PrevSim", true}}));
  EXPECT_EQ(
      RecordFields(Call("PermessiTipologieDistintaBase", {Arg(Variant(int16_t{35}))}),
                   "tsRvkConfig"),
      (Fields{
          {"Abilitato", false}, {"CanDelete", false}, {"CanUpdate", false}, {"CanInsert", false}}));
  // A field reads like a property.
  EXPECT_FALSE(
      Call("InitRevokeFamiglia", {Arg("MEC")}).ToObject()->GetProperty("CanUpdate").ToBool());
  EXPECT_TRUE(Call("InitRevokeTipoTrasPNota", {}).ToObject()->GetProperty("Prev_Cons").ToBool());
}

}  // namespace
}  // namespace zarvik
