#include "cli/revocation_kinds.h"

namespace zarvik::cli {

const std::vector<RevocationKind>& RevocationKinds() {
  static const std::vector<RevocationKind> kinds = {
      {0, "accounting reasons", nullptr},
      {1, "movement types", nullptr},
      {4, "offices", "company"},
      {6, "warehouses", "company"},
      {7, "document types", "print status"},
      {8, "projects", "company"},
      {9, "document transfer types", "print status"},
      {10, "order-line states", nullptr},
      {11, "journal transfer types", nullptr},
      {12, "free reports", nullptr},
      {13, "export sources, office configs", "class"},
      {14, "article states", nullptr},
      {15, "simulation codes", "company"},
      {16, "customer wizard models", "print status"},
      {17, "supplier wizard models", "print status"},
      {18, "article wizard models", "print status"},
      {19, "bill-of-materials types", nullptr},
      {20, "contexts", nullptr},
      {26, "accounts", "account group"},
      {27, "import layouts", "structure"},
      {28, "export layouts", "structure"},
      {29, "sets", nullptr},
      {30, "goods-blocking models", "company"},
      {31, "CERVED operations", nullptr},
      {32, "price-list types", nullptr},
      {33, "work-cycle types", nullptr},
      {34, "bill revision states", nullptr},
      {35, "work-cycle revision states", nullptr},
      {36, "revised-bill choice", "print status"},
      {37, "manual-bill choice", "print status"},
      {38, "production activities", "document index"},
  };
  return kinds;
}

const RevocationKind* FindRevocationKind(int code) {
  for (const RevocationKind& k : RevocationKinds()) {
    if (k.code == code) return &k;
  }
  return nullptr;
}

}  // namespace zarvik::cli
