// Automation description of CLSFW_PARSER. Each subsystem adds its public
// members in its own function below, bound to the typed C++ member.
#include <memory>

#include "automation/class_builder.h"
#include "automation/describe_user_context.h"
#include "automation/record_object.h"
#include "automation/type_library.h"
#include "parser/clsfw_parser.h"

namespace zarvik::automation {
namespace {

using Parser = CLSFW_PARSER;

// Records of rights (tsRvk*) returned by the rights methods: their
// RecordDescription entries and VariantConverter specialisations go here.
void DescribeParserRecords(TypeLibrary& /*library*/) {}

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
void DescribeCheckMembers(ClassBuilder<Parser>& /*b*/) {}

}  // namespace

void DescribeParser(TypeLibrary& library) {
  auto cls = std::make_shared<ClassDescription>();
  ClassBuilder<Parser> b(*cls, "CLSFW_PARSER",
                         "revocation parser: rewritten statements, conditions, checks, rights");
  DescribeUserContext(b);
  DescribeRewriterMembers(b);
  DescribeConditionMembers(b);
  DescribeCheckMembers(b);
  DescribeParserRecords(library);
  library.classes.push_back(std::move(cls));
}

}  // namespace zarvik::automation
