#include "cli/query_filter_scene.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/text_table.h"
#include "demo/demo_db.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "platform/env.h"
#include "platform/message_sink.h"

namespace zarvik::cli {
namespace {

// Who fills the dialog: a user, and the agent the host gives (id and
// company, Empty for none).
struct DialogUser {
  const char* code;
  const char* group;
  Variant agent;
  Variant agent_company;
  const char* label;
};

// One field of the dialog.
struct DialogField {
  const DialogUser* user;
  const char* data_field;
  std::optional<Variant> report_field;  // nullopt: omitted
  tsEnumTipologie kind;
};

const char* KindName(tsEnumTipologie kind) {
  switch (kind) {
    case tsGenerico:
      return "tsGenerico";
    case tsCliente:
      return "tsCliente";
    case tsFornitore:
      return "tsFornitore";
    case tsDeposito:
      return "tsDeposito";
    case tsCausale:
      return "tsCausale";
  }
  return "?";
}

// Columns side by side, each cell wrapped to its column's width; no line
// carries trailing blanks.
void PrintRow(std::ostream& out, const std::vector<std::string>& cells,
              const std::vector<size_t>& widths) {
  std::vector<std::vector<std::string>> wrapped;
  size_t height = 0;
  for (size_t c = 0; c < cells.size(); ++c) {
    wrapped.push_back(WrapText(cells[c], widths[c]));
    height = std::max(height, wrapped.back().size());
  }
  for (size_t line = 0; line < height; ++line) {
    std::string text = "  ";
    for (size_t c = 0; c < cells.size(); ++c) {
      const std::string part = line < wrapped[c].size() ? wrapped[c][line] : "";
      text += part;
      if (c + 1 < cells.size()) text += std::string(widths[c] + 2 - part.size(), ' ');
    }
    text.erase(text.find_last_not_of(' ') + 1);
    out << text << "\n";
  }
}

std::string Shown(const std::string& condition) { return "\"" + condition + "\""; }

// A box on one line: its error line (shortened; the provider's text repeats
// the whole statement) and the tag line.
std::string BoxLine(const std::string& text) {
  constexpr size_t kErrorWidth = 72;
  const size_t split = text.find("\r\n");
  std::string error = text.substr(0, split);
  const std::string where = split == std::string::npos ? "" : text.substr(split + 2);
  if (error.size() > kErrorWidth) error = error.substr(0, kErrorWidth - 3) + "...";
  return error + " / " + where;
}

}  // namespace

void ShowQueryFilterScene(TourContext& tour) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  const DialogUser rossi{"ROSSI", "VEN", Variant(), Variant(), "ROSSI"};
  const DialogUser agent{"GIALLI", "VEN", Variant(int32_t{12}), Variant(int32_t{1}),
                         "GIALLI, agent 12"};
  const DialogUser foreign_agent{"GIALLI", "VEN", Variant(int32_t{21}), Variant(int32_t{2}),
                                 "GIALLI, agent 21 of company 2"};
  const std::vector<DialogField> fields = {
      {&rossi, "MG07_MACROAREA", Variant("{MG07.MACROAREA}"), tsGenerico},
      {&rossi, "MG08_AREA", Variant("{MG08.AREA}"), tsGenerico},
      {&rossi, "MG09_ZONA", std::nullopt, tsGenerico},
      {&rossi, "MG33_CODRAGGRCF3", Variant("{MG33.CODRAGGRCF3}"), tsGenerico},
      {&rossi, "CG44_CLIFOR", Variant("{CG44.CLIFOR}"), tsCliente},
      {&rossi, "CG44_CLIFOR", Variant("{CG44.CLIFOR}"), tsFornitore},
      {&rossi, "CG44_CLIFOR", Variant("{CG44.CLIFOR}"), tsGenerico},
      {&agent, "DO11_CLIFOR_CG44", Variant("{DO11.CLIFOR}"), tsCliente},
      {&agent, "MG17_AGENTE", Variant("MG17.AGENTE"), tsGenerico},
      {&agent, "DO29_IDAGENTE_MG17", Variant("{DO29.IDAGENTE}"), tsGenerico},
      {&rossi, "PD68_CODPROG", Variant("{PD68.CODPROG}"), tsGenerico},
      {&rossi, "PD68_CODPROG", Variant(""), tsGenerico},
      {&rossi, "PD0C_CODNODO", Variant("{PD0C.CODNODO}"), tsGenerico},
      {&foreign_agent, "CG44_CLIFOR", Variant("{CG44.CLIFOR}"), tsCliente},
  };

  tour.out << "  CLSFW_FILTROQUERY in company 1, one object per user. For each field the\n"
              "  host calls FiltroCondizione(Caption, DataField, DataFieldCrystal, Tipologia)\n"
              "  and reads CondRevoke (SQL) and CondRevokeCrystal (report formula); \"\" means\n"
              "  no restriction. A report field shown as (omitted) is taken from the data\n"
              "  field. Wrapped lines show runs of blanks as one.\n\n";
  const std::vector<size_t> widths = {26, 38, 30};
  PrintRow(tour.out, {"USER / FIELD / REPORT / KIND", "CondRevoke", "CondRevokeCrystal"}, widths);
  PrintRow(tour.out,
           {std::string(widths[0], '-'), std::string(widths[1], '-'), std::string(widths[2], '-')},
           widths);

  std::vector<std::string> boxes;
  for (const DialogField& field : fields) {
    const auto sink = std::make_shared<RecordingMessageSink>();
    CLSFW_FILTROQUERY filter(Env{sink, std::make_shared<SystemClock>()});
    filter.SetConnectionADO(database);
    filter.SetCodiceUtente(field.user->code);
    filter.SetCodiceGruppo(field.user->group);
    filter.SetDittaCorrente(Variant(int32_t{demo::kMainCompany}));
    filter.SetCodiceAgente(field.user->agent);
    filter.SetDittaAgente(field.user->agent_company);
    filter.FiltroCondizione(Variant(field.data_field), field.report_field, field.kind);

    const std::string report =
        field.report_field ? Shown(field.report_field->ConcatText()) : "(omitted)";
    PrintRow(tour.out,
             {std::string(field.user->label) + ": " + field.data_field + " " + report + " " +
                  KindName(field.kind),
              Shown(filter.CondRevoke()), Shown(filter.CondRevokeCrystal())},
             widths);
    for (const Message& box : sink->messages) {
      boxes.push_back(std::string(field.user->label) + ", " + field.data_field + ": " +
                      BoxLine(box.text));
    }
  }
  if (!boxes.empty()) {
    tour.out << "\n  Message boxes shown on the way:\n";
    for (const std::string& box : boxes) {
      PrintLabelled(tour.out, "    ", "-", 1, box, 100);
    }
  }
  database->Close();
}

}  // namespace zarvik::cli
