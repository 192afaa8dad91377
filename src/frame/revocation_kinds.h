// The kind codes of VFW31_RVKPARAMETRI.FW31_INDTIPO: which entity a
// revocation row withdraws. The condition builders write the code into their
// SQL as plain decimal text (sql::Number); the names here say which code a
// builder means. Codes 2, 3, 5 and 21 to 25 are never emitted.
#ifndef ZARVIK_FRAME_REVOCATION_KINDS_H_
#define ZARVIK_FRAME_REVOCATION_KINDS_H_

#include <cstdint>

namespace zarvik::kind {

constexpr int32_t kAccountingReason = 0;         // CG33_CODICE; scope read with each row
constexpr int32_t kMovementType = 1;             // CGT0_CODICE; scope -1
constexpr int32_t kSite = 4;                     // CS05_SEDE_CG31 / CG31_CODICE; company
constexpr int32_t kWarehouse = 6;                // MG97_CODDEP_MG58; company
constexpr int32_t kDocumentType = 7;             // MG36_CODDOCUM; scope MG36_INDSTAPER
constexpr int32_t kProject = 8;                  // PD68_CODPROG; company
constexpr int32_t kDocumentTransfer = 9;         // MG3N_CODTRASFDOC; scope MG3N_INDSTAPER
constexpr int32_t kOrderLineState = 10;          // no scope
constexpr int32_t kJournalTransfer = 11;         // no scope
constexpr int32_t kFreeReport = 12;              // FW57_CODICE; no scope
constexpr int32_t kExportOrOffice = 13;          // FW34_CODICEDS (0) / FW36_CODICEMATR (1)
constexpr int32_t kArticleState = 14;            // MG6W_INDSTATO; scope -1
constexpr int32_t kSimulation = 15;              // PD90_SIMULAZIONE; company
constexpr int32_t kWizardModel3 = 16;            // registry wizard kind 3; caller's column
constexpr int32_t kWizardModel4 = 17;            // registry wizard kind 4
constexpr int32_t kWizardModel5 = 18;            // registry wizard kind 5
constexpr int32_t kBillOfMaterialsType = 19;     // scope -1
constexpr int32_t kContext = 20;                 // scope -1
constexpr int32_t kAccount = 26;                 // chart-of-accounts account; caller's column
constexpr int32_t kImportLayout = 27;            // caller's column
constexpr int32_t kExportLayout = 28;            // caller's column
constexpr int32_t kSet = 29;                     // scope -1
constexpr int32_t kGoodsBlockingModel = 30;      // MG0F_CODPARAM; company (MG0F_DITTA_CG18)
constexpr int32_t kCervedOperation = 31;         // scope -1
constexpr int32_t kPriceListType = 32;           // no scope
constexpr int32_t kWorkCycleType = 33;           // scope -1
constexpr int32_t kBomRevisionState = 34;        // no scope
constexpr int32_t kWorkCycleRevisionState = 35;  // no scope
constexpr int32_t kRevisedBomDocument = 36;      // scope: the document's MG36_INDSTAPER
constexpr int32_t kManualBomDocument = 37;       // scope: the document's MG36_INDSTAPER
constexpr int32_t kProductionActivity = 38;      // given scope

}  // namespace zarvik::kind

#endif  // ZARVIK_FRAME_REVOCATION_KINDS_H_
