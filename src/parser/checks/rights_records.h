// The records of rights CLSFW_PARSER returns to the host.
//
// Each field is an automation Boolean, 16 bits wide, True = -1 and
// False = 0, in the order the type library declares them (the host reads
// the records by layout). The methods that fill them are declared with the
// class (clsfw_parser.h) and live in src/parser/checks/.
#ifndef ZARVIK_PARSER_CHECKS_RIGHTS_RECORDS_H_
#define ZARVIK_PARSER_CHECKS_RIGHTS_RECORDS_H_

#include <cstdint>

namespace zarvik {

// Automation Boolean values of the record fields.
inline constexpr int16_t kVbTrue = -1;
inline constexpr int16_t kVbFalse = 0;

inline constexpr int16_t VbBool(bool value) { return value ? kVbTrue : kVbFalse; }

// The names below are the type library's.
// NOLINTBEGIN(readability-identifier-naming)

// Classes of accounting movements revoked for the user (True = revoked):
// consuntivo, da consuntivare, preventivo, preventivo simulato.
struct tsRvkTipiMov {
  int16_t Cons = kVbFalse;
  int16_t DaCons = kVbFalse;
  int16_t Prev = kVbFalse;
  int16_t PrevSim = kVbFalse;
};

// Rights on one article family (True = allowed); rvkExists: the user has a
// row for the family.
struct tsRvkFamiglia {
  int16_t rvkExists = kVbFalse;
  int16_t CanDelete = kVbTrue;
  int16_t CanUpdate = kVbTrue;
  int16_t CanInsert = kVbTrue;
};

// Journal transfers revoked for the user (True = revoked): da consuntivare
// into consuntivo, preventivo into consuntivo.
struct tsRvkConsMov {
  int16_t DaCons_Cons = kVbFalse;
  int16_t Prev_Cons = kVbFalse;
};

// Rights on one document type (True = allowed); rvkExists: a revocation row
// exists for it (and, deliberately, always for the privileged user).
struct tsRvkDocumenti {
  int16_t rvkExists = kVbFalse;
  int16_t CanDelete = kVbTrue;
  int16_t CanUpdate = kVbTrue;
  int16_t CanInsert = kVbTrue;
};

// Rights on one bill-of-materials or work-cycle type (True = allowed).
struct tsRvkConfig {
  int16_t Abilitato = kVbTrue;
  int16_t CanDelete = kVbTrue;
  int16_t CanUpdate = kVbTrue;
  int16_t CanInsert = kVbTrue;
};

// NOLINTEND(readability-identifier-naming)

}  // namespace zarvik

#endif  // ZARVIK_PARSER_CHECKS_RIGHTS_RECORDS_H_
