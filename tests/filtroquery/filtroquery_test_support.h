// A CLSFW_FILTROQUERY as one demo user on its own demo database, boxes and statements recorded.
#ifndef ZARVIK_TESTS_FILTROQUERY_FILTROQUERY_TEST_SUPPORT_H_
#define ZARVIK_TESTS_FILTROQUERY_FILTROQUERY_TEST_SUPPORT_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "filtroquery/clsfw_filtroquery.h"
#include "frame/frame_test_support.h"
#include "platform/variant.h"

namespace zarvik::testing {

class FilterOnDemo {
 public:
  // The filter works as `user` of `group` in company 1; nothing else is set.
  explicit FilterOnDemo(const std::string& user = "ROSSI", const std::string& group = "VEN")
      : db(demo::OpenDemoDatabase(":memory:")),
        log(std::make_shared<db::StatementLog>()),
        filter(std::make_unique<CLSFW_FILTROQUERY>(rec.env)) {
    db->SetStatementLog(log);
    filter->SetConnectionADO(db);
    filter->SetCodiceUtente(user);
    filter->SetCodiceGruppo(group);
    filter->SetDittaCorrente(Variant(int32_t{demo::kMainCompany}));
  }

  // The host acts as agent `id` of `company`.
  void ActAsAgent(const Variant& id, const Variant& company) {
    filter->SetCodiceAgente(id);
    filter->SetDittaAgente(company);
  }

  // A statement of the test's own set-up (not recorded).
  void Setup(const std::string& sql) {
    db->SetStatementLog(nullptr);
    db->Execute(sql, db::kCmdText);
    db->SetStatementLog(log);
  }

  // FiltroCondizione for one field; Sent() then holds what it sent.
  void Filter(const Variant& data_field, const std::optional<Variant>& report_field = std::nullopt,
              int32_t kind = 0) {
    log->statements.clear();
    filter->FiltroCondizione(data_field, report_field, kind);
  }

  std::string Sql() const { return filter->CondRevoke(); }
  std::string Report() const { return filter->CondRevokeCrystal(); }
  const std::vector<std::string>& Sent() const { return log->statements; }
  const std::vector<Message>& Boxes() const { return rec.sink->messages; }
  // "SQL form|report form|" and the tag of each box (what follows the class
  // name), each followed by a blank.
  std::string Outcome() const {
    std::string text = Sql() + "|" + Report() + "|";
    for (const Message& box : Boxes()) text += BoxTag(box, "CLSFW_FILTROQUERY") + " ";
    return text;
  }

  RecordingEnv rec;
  std::shared_ptr<db::Connection> db;
  std::shared_ptr<db::StatementLog> log;
  std::unique_ptr<CLSFW_FILTROQUERY> filter;
};

}  // namespace zarvik::testing

#endif  // ZARVIK_TESTS_FILTROQUERY_FILTROQUERY_TEST_SUPPORT_H_
