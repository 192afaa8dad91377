// A small ADO of the tests' own: ADODB.Connection and ADODB.Command with
// ADO's late-bound surface (Recordset, Fields, Field, Parameters, Parameter
// behind them), running on the project's own db::Connection. The Windows
// test server registers it as ADODB.* in the test prefix; the Linux tests
// hand it to the component as its data access. Every property let and
// method call on a connection is noted in `calls` ("CommandTimeout=100",
// "Open(,,,-1)", "Execute(SELECT ...)") so that tests can read what the
// component did, also through the connection's property Calls.
#ifndef ZARVIK_TESTS_COM_ADO_OBJECTS_H_
#define ZARVIK_TESTS_COM_ADO_OBJECTS_H_

#include <memory>
#include <string>
#include <vector>

#include "platform/object.h"

namespace zarvik::testing {

class AdoFactory : public ObjectFactory {
 public:
  // "ADODB.Connection" or "ADODB.Command"; anything else raises 429.
  ObjectRef CreateObject(const std::string& prog_id) override;
  std::shared_ptr<std::vector<std::string>> calls = std::make_shared<std::vector<std::string>>();
};

}  // namespace zarvik::testing

#endif  // ZARVIK_TESTS_COM_ADO_OBJECTS_H_
