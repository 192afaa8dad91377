#include "parser/checks/production_activity.h"

#include <cstdio>

namespace zarvik::checks {
namespace {

struct DocumentIndex {
  int16_t tipo;
  int16_t sottotipo;
  int16_t index;
};

constexpr DocumentIndex kDocumentIndexes[] = {
    {1, 1, 15},  {5, 1, 16},  {10, 3, 3},  {14, 2, 2},  {24, 1, 0},  {24, 3, 10},
    {24, 4, 9},  {24, 20, 0}, {24, 23, 4}, {25, 1, 1},  {25, 5, 7},  {25, 7, 6},
    {25, 13, 5}, {25, 14, 8}, {26, 2, 11}, {26, 5, 12}, {26, 6, 13}, {26, 7, 14},
};

std::string TwoDigits(int value) {
  char text[8];
  std::snprintf(text, sizeof text, "%02d", value);
  return text;
}

}  // namespace

std::optional<int16_t> ProductionDocumentIndex(int16_t tipo_doc, int16_t sottotipo_doc) {
  for (const DocumentIndex& entry : kDocumentIndexes) {
    if (entry.tipo == tipo_doc && entry.sottotipo == sottotipo_doc) return entry.index;
  }
  return std::nullopt;
}

std::string ProductionOperationCode(int16_t cod_oper_ext, int16_t document_index) {
  switch (cod_oper_ext) {
    case 1:
      // The first operation is "01" or "02" depending on the document.
      switch (document_index) {
        case 0:
        case 1:
        case 5:
        case 6:
        case 7:
        case 11:
        case 12:
        case 15:
        case 16:
          return "01";
        case 3:
        case 4:
        case 9:
        case 10:
        case 13:
        case 14:
          return "02";
        default:
          return "";
      }
    case 5:
      return "07";
    case 6:
      return "06";
    default:
      // 2 -> "03", 3 -> "04", 4 -> "05", 7 -> "08", ..., 15 -> "16".
      if (cod_oper_ext >= 2 && cod_oper_ext <= 15) return TwoDigits(cod_oper_ext + 1);
      return "";
  }
}

}  // namespace zarvik::checks
