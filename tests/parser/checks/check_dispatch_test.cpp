// The block checks, rights records and article conditions through the
// automation boundary: every member and record type is described, records
// come back as objects with named fields, by-reference flags come back.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/dispatcher.h"
#include "automation/record_object.h"
#include "automation/type_library.h"
#include "check_test_support.h"

namespace zarvik {
namespace {

using automation::Argument;

class CheckDispatchTest : public testing::CheckTest {
 protected:
  CheckDispatchTest() {
    automation::CreationContext context;
    context.env = Env{sink, std::make_shared<SystemClock>()};
    object = automation::CreateObject(library, "CLSFW_PARSER", context);
    object->PutProperty("ConnectionADO", Variant(ObjectRef(db)));
    object->PutProperty("DittaCorrente", Variant(int32_t{1}));
    object->PutProperty("CodiceGruppo", Variant("VEN"));
    object->PutProperty("CodiceUtente", Variant("ROSSI"));
    object->PutProperty("CodiceUtenteCLIFOR", Variant("ROSSI"));
  }

  Variant Call(const std::string& name, std::vector<Argument>& args) {
    return object->Call(name, args);
  }
  static Argument Arg(const Variant& v) { return Argument{v, false}; }

  // The fields of a record result, in order, as (name, Boolean value).
  static std::vector<std::pair<std::string, bool>> RecordFields(const Variant& value,
                                                                const std::string& type) {
    auto record = std::dynamic_pointer_cast<automation::RecordObject>(value.ToObject());
    EXPECT_NE(record, nullptr);
    if (!record) return {};
    EXPECT_EQ(record->TypeName(), type);
    std::vector<std::pair<std::string, bool>> fields;
    for (const auto& [name, field] : record->Fields()) {
      EXPECT_EQ(field.Type(), VarType::kBoolean) << name;
      fields.emplace_back(name, field.ToBool());
    }
    return fields;
  }

  const automation::TypeLibrary library = automation::BuildTypeLibrary();
  std::shared_ptr<automation::AutomationObject> object;
};

TEST_F(CheckDispatchTest, EveryMemberAndRecordIsDescribed) {
  const auto cls = library.FindClass("CLSFW_PARSER");
  ASSERT_NE(cls, nullptr);
  for (const char* name : {"DittaBloccata",
                           "CliForBloccato",
                           "CliForBloccato_New",
                           "DocumentoTestataBloccato",
                           "ContoPDCBloccato",
                           "ProgettoBloccato",
                           "NodoBloccato",
                           "ModelloBloccoMerceBloccato",
                           "StampaGestionaleBloccata",
                           "DSExportDatiGestBloccata",
                           "ConfigOfficeBloccata",
                           "StatoRigaOrdineBloccato",
                           "CodiceSimulazioneBloccato",
                           "DepositoBloccato",
                           "FunzioneApplicativaRevocata",
                           "StatoRevisioneDistintaBloccato",
                           "StatoRevisioneCicloBloccato",
                           "SceltaDistintaRevisionataDocumentoBloccata",
                           "SceltaDistintaManualeDocumentoBloccata",
                           "AutorizzaAttivitaSuDocumentoProduzione",
                           "InitRevokeTipiMov",
                           "InitRevokeFamiglia",
                           "InitRevokeTipoTrasPNota",
                           "PermessiDocTipologie",
                           "PermessiTipologieDistintaBase",
                           "PermessiTipologieCicliLavorazione",
                           "StatiArticoloMaga",
                           "SQLConditionStatiArticolo",
                           "SQLConditionTipiListiniP",
                           "StatiArticoloMagaArray",
                           "TrasferimentoDepositi",
                           "InitRevokeTipiMovimenti",
                           "SQLConditionTipiMovimenti",
                           "SQLConditionCerved"}) {
    EXPECT_NE(cls->Find(name, automation::MemberKind::kMethod), nullptr) << name;
  }
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
    std::vector<std::string> names;
    for (const auto& field : record->fields) {
      names.push_back(field.name);
      EXPECT_EQ(field.type.base, automation::BaseType::kBoolean);
    }
    EXPECT_EQ(names, fields) << name;
  }
  // The by-reference flags of the account check.
  const auto* account = cls->Find("ContoPDCBloccato", automation::MemberKind::kMethod);
  ASSERT_EQ(account->params.size(), 4u);
  EXPECT_FALSE(account->params[1].by_ref);
  EXPECT_TRUE(account->params[2].by_ref);
  EXPECT_TRUE(account->params[3].by_ref);
}

TEST_F(CheckDispatchTest, ChecksAnswerAsTheTypedCalls) {
  std::vector<Argument> args = {Arg(Variant("P1"))};
  EXPECT_EQ(Call("ProgettoBloccato", args).Type(), VarType::kBoolean);
  EXPECT_TRUE(Call("ProgettoBloccato", args).ToBool());
  // A Long for a 16-bit parameter and text for a Variant one.
  args = {Arg(Variant(int32_t{25})), Arg(Variant(int32_t{1})), Arg(Variant(int32_t{2}))};
  EXPECT_TRUE(Call("AutorizzaAttivitaSuDocumentoProduzione", args).ToBool());
  args = {Arg(Variant("2"))};
  EXPECT_TRUE(Call("DittaBloccata", args).ToBool());
}

TEST_F(CheckDispatchTest, AccountCheckHandsBothFlagsBack) {
  std::vector<Argument> args = {Arg(Variant(int32_t{10})), Arg(Variant("1002")),
                                Arg(Variant(int16_t{9})), Arg(Variant(int16_t{9}))};
  EXPECT_FALSE(Call("ContoPDCBloccato", args).ToBool());
  EXPECT_EQ(args[2].value.ToInteger(), 1);
  EXPECT_EQ(args[3].value.ToInteger(), 0);
}

TEST_F(CheckDispatchTest, RecordsComeBackWithNamedFields) {
  std::vector<Argument> args = {Arg(Variant("OCL")), Arg(Variant(int16_t{0}))};
  EXPECT_EQ(
      RecordFields(Call("PermessiDocTipologie", args), "tsRvkDocumenti"),
      (std::vector<std::pair<std::string, bool>>{
          {"rvkExists", true}, {"CanDelete", true}, {"CanUpdate", false}, {"CanInsert", false}}));
  args = {};
  EXPECT_EQ(RecordFields(Call("InitRevokeTipiMov", args), "tsRvkTipiMov"),
            (std::vector<std::pair<std::string, bool>>{
                {"Cons", true}, {"DaCons", false}, {"Prev", false}, {"PrevSim", true}}));
  args = {Arg(Variant(int16_t{35}))};
  EXPECT_EQ(
      RecordFields(Call("PermessiTipologieDistintaBase", args), "tsRvkConfig"),
      (std::vector<std::pair<std::string, bool>>{
          {"Abilitato", false}, {"CanDelete", false}, {"CanUpdate", false}, {"CanInsert", false}}));
  // A field reads like a property.
  args = {Arg(Variant("MEC"))};
  const Variant family = Call("InitRevokeFamiglia", args);
  EXPECT_FALSE(family.ToObject()->GetProperty("CanUpdate").ToBool());
  args = {};
  EXPECT_TRUE(Call("InitRevokeTipoTrasPNota", args).ToObject()->GetProperty("Prev_Cons").ToBool());
}

TEST_F(CheckDispatchTest, ArticleMembersThroughTheBoundary) {
  std::vector<Argument> args;
  const Variant states = Call("StatiArticoloMagaArray", args);
  ASSERT_EQ(states.Type(), VarType::kArray);
  EXPECT_EQ(states.ToArray()->UBound(2), 3);
  args = {Arg(Variant("TL")), Arg(Variant::Boolean(false))};
  EXPECT_EQ(Call("SQLConditionTipiListiniP", args).ToString(), " TL NOT IN (2, 5)");
  args = {Arg(Variant("C")), Arg(Variant::Boolean(true)), Arg(Variant(int16_t{0}))};
  EXPECT_EQ(Call("SQLConditionCerved", args).ToString().rfind(" AND  NOT EXISTS (", 0), 0u);
  EXPECT_EQ(args[0].value.ToString(), "C");
  args = {Arg(Variant("A1")), Arg(Variant("C3"))};
  // The user is resolved by an earlier call, then the transfer uses the id.
  std::vector<Argument> none;
  Call("InitRevokeTipiMov", none);
  EXPECT_EQ(Call("TrasferimentoDepositi", args).ToInteger(), 1);
  EXPECT_TRUE(Boxes().empty());
}

}  // namespace
}  // namespace zarvik
