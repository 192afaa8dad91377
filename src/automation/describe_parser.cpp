// Automation description of CLSFW_PARSER. Each subsystem adds its public
// members in its own function below, bound to the typed C++ member.
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "automation/class_builder.h"
#include "automation/describe_user_context.h"
#include "automation/record_object.h"
#include "automation/type_library.h"
#include "parser/checks/rights_records.h"
#include "parser/clsfw_parser.h"

namespace zarvik::automation {

// The rights records travel as record objects with their named fields. One
// field table per record serves both its description and its conversion.
template <typename Record>
struct RightsField {
  const char* name;
  int16_t Record::*member;
};

template <typename Record>
struct RightsLayout;

template <>
struct RightsLayout<tsRvkTipiMov> {
  static constexpr const char* kName = "tsRvkTipiMov";
  static constexpr RightsField<tsRvkTipiMov> kFields[] = {{"Cons", &tsRvkTipiMov::Cons},
                                                          {"DaCons", &tsRvkTipiMov::DaCons},
                                                          {"Prev", &tsRvkTipiMov::Prev},
                                                          {"PrevSim", &tsRvkTipiMov::PrevSim}};
};
template <>
struct RightsLayout<tsRvkFamiglia> {
  static constexpr const char* kName = "tsRvkFamiglia";
  static constexpr RightsField<tsRvkFamiglia> kFields[] = {
      {"rvkExists", &tsRvkFamiglia::rvkExists},
      {"CanDelete", &tsRvkFamiglia::CanDelete},
      {"CanUpdate", &tsRvkFamiglia::CanUpdate},
      {"CanInsert", &tsRvkFamiglia::CanInsert}};
};
template <>
struct RightsLayout<tsRvkConsMov> {
  static constexpr const char* kName = "tsRvkConsMov";
  static constexpr RightsField<tsRvkConsMov> kFields[] = {
      {"DaCons_Cons", &tsRvkConsMov::DaCons_Cons}, {"Prev_Cons", &tsRvkConsMov::Prev_Cons}};
};
template <>
struct RightsLayout<tsRvkDocumenti> {
  static constexpr const char* kName = "tsRvkDocumenti";
  static constexpr RightsField<tsRvkDocumenti> kFields[] = {
      {"rvkExists", &tsRvkDocumenti::rvkExists},
      {"CanDelete", &tsRvkDocumenti::CanDelete},
      {"CanUpdate", &tsRvkDocumenti::CanUpdate},
      {"CanInsert", &tsRvkDocumenti::CanInsert}};
};
template <>
struct RightsLayout<tsRvkConfig> {
  static constexpr const char* kName = "tsRvkConfig";
  static constexpr RightsField<tsRvkConfig> kFields[] = {{"Abilitato", &tsRvkConfig::Abilitato},
                                                         {"CanDelete", &tsRvkConfig::CanDelete},
                                                         {"CanUpdate", &tsRvkConfig::CanUpdate},
                                                         {"CanInsert", &tsRvkConfig::CanInsert}};
};

// A record as a record object: each field an automation Boolean.
template <typename Record>
struct RightsConverter {
  static Variant To(const Record& r) {
    std::vector<std::pair<std::string, Variant>> fields;
    for (const auto& field : RightsLayout<Record>::kFields) {
      fields.emplace_back(field.name, Variant::Boolean(r.*field.member != 0));
    }
    return MakeRecord(RightsLayout<Record>::kName, fields);
  }
};

template <>
struct VariantConverter<tsRvkTipiMov> : RightsConverter<tsRvkTipiMov> {};
template <>
struct VariantConverter<tsRvkFamiglia> : RightsConverter<tsRvkFamiglia> {};
template <>
struct VariantConverter<tsRvkConsMov> : RightsConverter<tsRvkConsMov> {};
template <>
struct VariantConverter<tsRvkDocumenti> : RightsConverter<tsRvkDocumenti> {};
template <>
struct VariantConverter<tsRvkConfig> : RightsConverter<tsRvkConfig> {};

namespace {

using Parser = CLSFW_PARSER;

template <typename Record>
void DescribeRecord(TypeLibrary& library) {
  RecordDescription description{RightsLayout<Record>::kName, {}};
  for (const auto& field : RightsLayout<Record>::kFields) {
    description.fields.push_back({field.name, types::Boolean()});
  }
  library.records.push_back(std::move(description));
}

// Records of rights (tsRvk*) returned by the rights methods.
void DescribeParserRecords(TypeLibrary& library) {
  DescribeRecord<tsRvkTipiMov>(library);
  DescribeRecord<tsRvkFamiglia>(library);
  DescribeRecord<tsRvkConsMov>(library);
  DescribeRecord<tsRvkDocumenti>(library);
  DescribeRecord<tsRvkConfig>(library);
}

// ElaboraStrSQL (src/parser/rewriter/).
void DescribeRewriterMembers(ClassBuilder<Parser>& b) {
  b.Method("ElaboraStrSQL", {ByRef("nStrSQL", types::String())}, types::String(),
           &Parser::ElaboraStrSQL,
           "the statement rewritten to return only the rows the user may see; nStrSQL is "
           "consumed as the working buffer");
}

// The SQLCondition* family and CliForRevocati (src/parser/conditions/).
void DescribeConditionMembers(ClassBuilder<Parser>& b) {
  const Variant kTrue = Variant::Boolean(true);
  const Variant kFalse = Variant::Boolean(false);
  b.Method("SQLConditionCliFor",
           {In("PrefTabella", types::String()), In("InserireAND", types::Boolean()),
            In("NomeCampoDitta", types::String()).Optional(""),
            In("NomeCampoTipoCf", types::String()).Optional(""),
            In("NomeCampoCliFor", types::String()).Optional(""),
            In("AllowNULL", types::Boolean()).Optional(kTrue)},
           types::String(), &Parser::SQLConditionCliFor,
           "customers/suppliers: NOT EXISTS on the revoked customer/supplier list")
      .Method("CLIFORCondition",
              {ByRef("PrefTabella", types::String()), ByRef("InserireAND", types::Boolean())},
              types::String(), &Parser::CLIFORCondition, "older entry point of SQLConditionCliFor")
      .Method("SQLConditionDestinazioni",
              {In("NomeCampoDestinatario", types::String()), In("NomeCampoDitta", types::String()),
               In("NomeCampoTipoCf", types::String()), In("NomeCampoCliFor", types::String()),
               In("InserireAND", types::Boolean()),
               In("AliasMG2G", types::String()).Optional("MG2GRVK")},
              types::String(), &Parser::SQLConditionDestinazioni,
              "destinations of the host's current agent")
      .Method("CliForRevocati", {}, types::Recordset(), &Parser::CliForRevocati,
              "the revoked customers/suppliers as rows of CG44_CLIFOR")
      .Method("SQLConditionDepositi",
              {In("NomeCampo", types::String()), In("InserireAND", types::Boolean()),
               In("AllowNULL", types::Boolean()).Optional(kTrue)},
              types::String(), &Parser::SQLConditionDepositi, "warehouses (kind 6)")
      .Method("SQLConditionSediMov",
              {In("NomeCampo", types::String()), In("InserireAND", types::Boolean()),
               In("AllowNULL", types::Boolean()).Optional(kTrue)},
              types::String(), &Parser::SQLConditionSediMov, "offices (kind 4)")
      .Method("SQLConditionDocMG36",
              {In("NomeCampo", types::String()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionDocMG36, "document types (kind 7)")
      .Method("SQLConditionAgentiDoc",
              {In("NomeCampoDitta", types::String()), In("NomeCampoNumReg", types::String()),
               In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionAgentiDoc,
              "documents of the agent CodiceAgente")
      .Method("SQLConditionDO11", {In("InserireAND", types::Boolean())}, types::String(),
              &Parser::SQLConditionDO11, "document headers")
      .Method("SQLConditionContesto",
              {In("NomeCampo", types::String()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionContesto, "contexts (kind 20)")
      .Method("SQLConditionProgetto",
              {In("NomeCampo", types::String()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionProgetto, "projects (kind 8)")
      .Method("SQLConditionNodo",
              {In("NomeCampo", types::String()), In("NomeCampoProgetto", types::String()),
               In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionNodo, "project nodes")
      .Method("SQLConditionWizAnag",
              {In("TipoWizard", types::Integer()), In("NomeCampoModello", types::String()),
               In("NomeCampoIndStaPer", types::String()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionWizAnag,
              "models of a registry wizard (kinds 16 to 18)")
      .Method("SQLConditionTracciatiImport",
              {In("NomeCampoStruttura", types::String()),
               In("NomeCampoTracciato", types::Variant()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionTracciatiImport, "import layouts (kind 27)")
      .Method("SQLConditionTracciatiExport",
              {In("NomeCampoStruttura", types::String()), In("NomeCampoTracciato", types::String()),
               In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionTracciatiExport, "export layouts (kind 28)")
      .Method("SQLConditionInsiemi",
              {In("NomeCampo", types::String()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionInsiemi, "sets (kind 29)")
      .Method("SQLConditionContiPDC",
              {In("NomeCampoGruppoPDC", types::String()), In("NomeCampoContoPDC", types::String()),
               In("InserireAND", types::Boolean()),
               In("escludiNonVisualizzabili", types::Boolean()).Optional(kTrue)},
              types::String(), &Parser::SQLConditionContiPDC,
              "chart-of-accounts accounts the user may see (kind 26)")
      .Method("SQLConditionContiPDCBloccati",
              {In("NomeCampoGruppoPDC", types::String()), In("NomeCampoContoPDC", types::String()),
               In("InserireAND", types::Boolean()),
               In("escludiNonVisualizzabili", types::Boolean()).Optional(kTrue)},
              types::String(), &Parser::SQLConditionContiPDCBloccati,
              "chart-of-accounts accounts blocked for the user (kind 26)")
      .Method("SQLinnerjoinContiPDCBloccati",
              {In("NomeCampoGruppoPDC", types::String()), In("NomeCampoContoPDC", types::String()),
               In("escludiNonVisualizzabili", types::Boolean()).Optional(kFalse)},
              types::String(), &Parser::SQLinnerjoinContiPDCBloccati,
              "join that keeps the blocked chart-of-accounts accounts (kind 26)")
      .Method("SQLConditionCodSimPD90",
              {In("NomeCampo", types::String()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionCodSimPD90, "simulation codes (kind 15)");
}

// The block checks, the rights records and StatiArticoloMaga
// (src/parser/checks/).
void DescribeCheckMembers(ClassBuilder<Parser>& b) {
  b.Method("DittaBloccata", {In("vCodDitta", types::Variant())}, types::Boolean(),
           &Parser::DittaBloccata, "the company is excluded for the user")
      .Method("CliForBloccato", {In("vCodiceCliente", types::Variant())}, types::Boolean(),
              &Parser::CliForBloccato, "obsolete: use CliForBloccato_New (always False)")
      .Method("CliForBloccato_New",
              {In("vCodiceCliente", types::String()), In("TipoCF", types::Integer())},
              types::Boolean(), &Parser::CliForBloccato_New,
              "the customer/supplier is revoked for the user")
      .Method("DocumentoTestataBloccato", {In("NumReg", types::String())}, types::Boolean(),
              &Parser::DocumentoTestataBloccato,
              "the document does not pass the document-header condition")
      .Method("ContoPDCBloccato",
              {In("GruppoPDC", types::Integer()), In("ContoPDC", types::String()),
               ByRef("canAbilitato", types::Integer()), ByRef("canVisualizza", types::Integer())},
              types::Boolean(), &Parser::ContoPDCBloccato,
              "rights on an account from SPFW_GetInfoRevokeContoPDC")
      .Method("ProgettoBloccato", {In("vCodiceProgetto", types::Variant())}, types::Boolean(),
              &Parser::ProgettoBloccato, "the project is revoked (kind 8)")
      .Method("NodoBloccato",
              {In("vCodiceProgetto", types::Variant()), In("vCodiceNodo", types::Variant())},
              types::Boolean(), &Parser::NodoBloccato, "the project node is revoked")
      .Method("ModelloBloccoMerceBloccato", {In("vCodiceModello", types::Variant())},
              types::Boolean(), &Parser::ModelloBloccoMerceBloccato,
              "the goods-blocking model is revoked (kind 30)")
      .Method("StampaGestionaleBloccata", {In("vCodiceStampa", types::Variant())}, types::Boolean(),
              &Parser::StampaGestionaleBloccata, "some free report is not revoked (whole table)")
      .Method("DSExportDatiGestBloccata", {In("vCodiceDS", types::Variant())}, types::Boolean(),
              &Parser::DSExportDatiGestBloccata,
              "some export data source is not revoked (whole table)")
      .Method("ConfigOfficeBloccata", {In("vCodiceConfig", types::Variant())}, types::Boolean(),
              &Parser::ConfigOfficeBloccata,
              "some office configuration is not revoked (whole table)")
      .Method("StatoRigaOrdineBloccato", {In("vCodiceStatoRigaOrdine", types::Integer())},
              types::Boolean(), &Parser::StatoRigaOrdineBloccato,
              "the order-line state is revoked (kind 10)")
      .Method("CodiceSimulazioneBloccato", {ByRef("codiceSim", types::String())}, types::Boolean(),
              &Parser::CodiceSimulazioneBloccato, "the simulation code is revoked (kind 15)")
      .Method("DepositoBloccato", {In("CodiceDep", types::String())}, types::Boolean(),
              &Parser::DepositoBloccato, "the warehouse is revoked (kind 6)")
      .Method("FunzioneApplicativaRevocata", {In("IdFunzione", types::Long())}, types::Boolean(),
              &Parser::FunzioneApplicativaRevocata, "the application function is revoked")
      .Method("StatoRevisioneDistintaBloccato", {In("vCodStatoRevDisba", types::Integer())},
              types::Boolean(), &Parser::StatoRevisioneDistintaBloccato,
              "the bill-of-materials revision state is blocked (kind 34)")
      .Method("StatoRevisioneCicloBloccato", {In("vCodStatoRevCiclo", types::Integer())},
              types::Boolean(), &Parser::StatoRevisioneCicloBloccato,
              "the work-cycle revision state is blocked (kind 35)")
      .Method("SceltaDistintaRevisionataDocumentoBloccata",
              {In("pCodiceDocumento", types::String())}, types::Boolean(),
              &Parser::SceltaDistintaRevisionataDocumentoBloccata,
              "the document type may not choose a revised bill of materials (kind 36)")
      .Method("SceltaDistintaManualeDocumentoBloccata", {In("pCodiceDocumento", types::String())},
              types::Boolean(), &Parser::SceltaDistintaManualeDocumentoBloccata,
              "the document type may not choose a manual bill of materials (kind 37)")
      .Method("AutorizzaAttivitaSuDocumentoProduzione",
              {In("pTipoDoc", types::Integer()), In("pSottotipoDoc", types::Integer()),
               In("pCodOperExt", types::Integer())},
              types::Boolean(), &Parser::AutorizzaAttivitaSuDocumentoProduzione,
              "the activity on the production document is authorised (kind 38)")
      .Method("InitRevokeTipiMov", {}, types::Record("tsRvkTipiMov"), &Parser::InitRevokeTipiMov,
              "movement classes revoked for the user (kind 1)")
      .Method("InitRevokeFamiglia", {In("CodFamiglia", types::String())},
              types::Record("tsRvkFamiglia"), &Parser::InitRevokeFamiglia,
              "rights on an article family")
      .Method("InitRevokeTipoTrasPNota", {}, types::Record("tsRvkConsMov"),
              &Parser::InitRevokeTipoTrasPNota, "journal transfers revoked for the user (kind 11)")
      .Method("PermessiDocTipologie",
              {ByRef("codiceDoc", types::String()), ByRef("flagPers", types::Integer())},
              types::Record("tsRvkDocumenti"), &Parser::PermessiDocTipologie,
              "rights on a document type (kind 7)")
      .Method("PermessiTipologieDistintaBase", {In("TipoDistinta", types::Integer())},
              types::Record("tsRvkConfig"), &Parser::PermessiTipologieDistintaBase,
              "rights on a bill-of-materials type (kind 19)")
      .Method("PermessiTipologieCicliLavorazione", {In("TipoCiclo", types::Integer())},
              types::Record("tsRvkConfig"), &Parser::PermessiTipologieCicliLavorazione,
              "rights on a work-cycle type (kind 33)")
      .Method("StatiArticoloMaga", {}, types::Recordset(), &Parser::StatiArticoloMaga,
              "the article states with their ENABLED flag");
}

// Article states, price lists, movement types, CERVED operations and
// warehouse transfers (src/parser/conditions/article_conditions.cpp).
void DescribeArticleConditionMembers(ClassBuilder<Parser>& b) {
  b.Method("SQLConditionStatiArticolo", {In("InserireAND", types::Boolean())}, types::String(),
           &Parser::SQLConditionStatiArticolo, "article states (kind 14)")
      .Method("SQLConditionTipiListiniP",
              {In("NomeCampoTipoList", types::String()), In("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionTipiListiniP, "price-list types (kind 32)")
      .Method("StatiArticoloMagaArray", {}, types::Variant(), &Parser::StatiArticoloMagaArray,
              "the enabled article states as a two-row array, or Empty")
      .Method("TrasferimentoDepositi",
              {ByRef("DepositoOrigine", types::String()),
               ByRef("DepositoDestinazione", types::String())},
              types::Integer(), &Parser::TrasferimentoDepositi,
              "dbo.FNFW_TRASFREVOCATI for the two warehouses")
      .Method("InitRevokeTipiMovimenti", {}, types::Recordset(), &Parser::InitRevokeTipiMovimenti,
              "the movement types that can be revoked, with ABILITATO")
      .Method("SQLConditionTipiMovimenti",
              {ByRef("NomeCampoMov", types::String()), ByRef("InserireAND", types::Boolean())},
              types::String(), &Parser::SQLConditionTipiMovimenti, "movement types (kind 1)")
      .Method("SQLConditionCerved",
              {ByRef("NomeCampoMov", types::String()), ByRef("InserireAND", types::Boolean()),
               ByRef("TipoOperazione", types::Integer())},
              types::String(), &Parser::SQLConditionCerved,
              "CERVED operations (kind 31): insert (0) or update flag");
}

}  // namespace

void DescribeParser(TypeLibrary& library) {
  auto cls = std::make_shared<ClassDescription>();
  ClassBuilder<Parser> b(*cls, "CLSFW_PARSER",
                         "revocation parser: rewritten statements, conditions, checks, rights");
  DescribeUserContext(b);
  DescribeRewriterMembers(b);
  DescribeConditionMembers(b);
  DescribeCheckMembers(b);
  DescribeArticleConditionMembers(b);
  DescribeParserRecords(library);
  library.classes.push_back(std::move(cls));
}

}  // namespace zarvik::automation
