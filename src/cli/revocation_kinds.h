// Names of the revocation kinds (FW31_INDTIPO) and of what their scope
// column FW31_DITTARAGG holds, for people reading the demo database.
#ifndef ZARVIK_CLI_REVOCATION_KINDS_H_
#define ZARVIK_CLI_REVOCATION_KINDS_H_

#include <vector>

namespace zarvik::cli {

struct RevocationKind {
  int code;           // FW31_INDTIPO
  const char* name;   // what is revoked, plural: "warehouses"
  const char* scope;  // what FW31_DITTARAGG holds, or nullptr when the
                      // kind does not look at it (or holds -1 only)
};

// Every kind the component reads, by code.
const std::vector<RevocationKind>& RevocationKinds();

// The kind with that code, or nullptr.
const RevocationKind* FindRevocationKind(int code);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_REVOCATION_KINDS_H_
