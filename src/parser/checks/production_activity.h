// The codes under which activities on production documents are revoked
// (kind 38): the scope of a revocation row is the document's index, its
// code the operation's two-digit code.
#ifndef ZARVIK_PARSER_CHECKS_PRODUCTION_ACTIVITY_H_
#define ZARVIK_PARSER_CHECKS_PRODUCTION_ACTIVITY_H_

#include <cstdint>
#include <optional>
#include <string>

namespace zarvik::checks {

// The index of a production document from its type and subtype, or none for
// a pair the production module does not revoke activities on.
std::optional<int16_t> ProductionDocumentIndex(int16_t tipo_doc, int16_t sottotipo_doc);

// The two-digit code of an external operation code (1..15) on a document of
// that index, or "" for none. Operation 1 depends on the document; 5 and 6
// give "07" and "06" (the host's codes are crossed there, and revocation
// rows are stored that way).
std::string ProductionOperationCode(int16_t cod_oper_ext, int16_t document_index);

}  // namespace zarvik::checks

#endif  // ZARVIK_PARSER_CHECKS_PRODUCTION_ACTIVITY_H_
