// The `zarvik host` protocol, served in-process and by the built binary.
#include "automation/host_session.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace zarvik::automation {
namespace {

class HostSessionTest : public ::testing::Test {
 protected:
  Json Send(const std::string& line) {
    const std::string answer = session_.Handle(line);
    EXPECT_EQ(answer.find('\n'), std::string::npos);
    return Json::parse(answer);
  }
  Json Send(const Json& request) { return Send(request.dump()); }
  int64_t New(const std::string& cls) {
    const Json a = Send(Json{{"op", "new"}, {"class", cls}});
    EXPECT_TRUE(a["ok"].get<bool>()) << a.dump();
    return a["id"].get<int64_t>();
  }
  Json Get(int64_t id, const std::string& name) {
    return Send(Json{{"op", "get"}, {"id", id}, {"name", name}});
  }
  Json Put(int64_t id, const std::string& name, const Json& value) {
    return Send(Json{{"op", "put"}, {"id", id}, {"name", name}, {"value", value}});
  }
  static Json Ref(int64_t id) { return Json{{"$", "object"}, {"id", id}}; }

  HostSession session_;
};

TEST_F(HostSessionTest, NewThenPutAndGetConvertToTheDeclaredTypes) {
  EXPECT_EQ(session_.Handle(R"({"op":"new","class":"CLSFW_PARSER"})"),
            R"({"ok":true,"id":1,"boxes":[],"sql":[]})");
  const int64_t filter = New("CLSFW_FILTROQUERY");
  EXPECT_EQ(filter, 2);
  const Json date = Json{{"$", "date"}, {"value", "2024-05-01 00:00:00"}};
  const struct {
    const char* name;
    Json put, got;
  } fields[] = {
      {"RevokeDisabilitata", 0, false},
      {"CodiceUtenteCLIFOR", 12, "12"},
      {"DittaCorrente", "0001", "0001"},
      {"IdAgente", nullptr, nullptr},
      {"CodiceAgente", 2.5, 2.5},
      {"DittaCorrente", date, date},
      {"FlgGrpRevoke", 1, 1},
  };
  for (const auto& f : fields) {
    EXPECT_EQ(Put(filter, f.name, f.put), Json::parse(R"({"ok":true,"boxes":[],"sql":[]})"));
    EXPECT_EQ(Get(filter, f.name)["value"], f.got) << f.name;
  }
  // Object properties: Set and read back the same object, or Nothing.
  const int64_t connection = New("Connection");
  EXPECT_EQ(Get(filter, "ConnectionADO")["value"], Json({{"$", "nothing"}}));
  Put(filter, "ConnectionADO", Ref(connection));
  EXPECT_EQ(Get(filter, "ConnectionADO")["value"], Ref(connection));
  const int64_t users = New("CLSFW_RVKUSERS");
  Put(users, "MaxNumTry", 3);
  EXPECT_EQ(Get(users, "MaxNumTry")["value"], 3);
  EXPECT_EQ(Get(users, "IsRevoked")["value"], 0);
}

TEST_F(HostSessionTest, ActiveInterfaceFillsFromAHostObject) {
  const int64_t connection = New("Connection");
  const Json made = Send(
      Json{{"op", "new"},
           {"class", "HostObject"},
           {"members",
            {{"ClsGlobal",
              {{"Gcls_DittaCorrente", {{"CodDitta", 1}}},
               {"Gcls_UtenteCorrente", {{"idutente", 5}, {"codice", "ROSSI"}, {"Gruppo", "VEN"}}}}},
             {"Connection", Ref(connection)}}}});
  ASSERT_TRUE(made["ok"].get<bool>());
  const int64_t app = made["id"].get<int64_t>();
  const int64_t parser = New("CLSFW_PARSER");
  const Json put = Put(parser, "ActiveInterface", Ref(app));
  EXPECT_TRUE(put["ok"].get<bool>());
  EXPECT_EQ(put["boxes"], Json::array());
  EXPECT_EQ(Get(parser, "CodiceUtente")["value"], "ROSSI");
  EXPECT_EQ(Get(parser, "DittaCorrente")["value"], 1);
  EXPECT_EQ(Get(parser, "ConnectionADO")["value"], Ref(connection));
  EXPECT_EQ(Get(parser, "ActiveInterface")["value"], Ref(app));
  // The host object's members are reachable too (nested objects get ids).
  EXPECT_EQ(Get(app, "ClsGlobal")["value"]["$"], "object");
}

TEST_F(HostSessionTest, StatementsAndRecordsetsOfAConnection) {
  const int64_t c = New("Connection");
  Put(c, "ConnectionString", "Provider=SQLite;Data Source=:memory:");
  const Json open =
      Send(Json{{"op", "call"}, {"id", c}, {"name", "Open"}, {"args", Json::array()}});
  EXPECT_EQ(open, Json::parse(R"({"ok":true,"value":null,"args":[],"boxes":[],"sql":[]})"));
  const std::string text = "SELECT 5 AS FW07_ID, 'ROSSI' AS FW07_CODICE";
  const Json rows = Send(Json{{"op", "call"}, {"id", c}, {"name", "Execute"}, {"args", {text}}});
  EXPECT_EQ(rows["value"], Json::parse(R"({"$":"recordset","columns":["FW07_ID","FW07_CODICE"],)"
                                       R"("rows":[[5,"ROSSI"]]})"));
  EXPECT_EQ(rows["args"], Json::array({text}));
  EXPECT_EQ(rows["sql"], Json::array({text}));
  // The next request starts with empty lists again.
  EXPECT_EQ(Get(c, "State")["sql"], Json::array());

  // Dropping a parser that holds the host's connection leaves it open.
  const int64_t parser = New("CLSFW_PARSER");
  Put(parser, "ConnectionADO", Ref(c));
  EXPECT_TRUE(Send(Json{{"op", "drop"}, {"id", parser}})["ok"].get<bool>());
  EXPECT_EQ(Get(c, "State")["value"], 1);
}

TEST_F(HostSessionTest, RequestsTheBoundaryCannotServe) {
  const int64_t parser = New("CLSFW_PARSER");
  struct Case {
    std::string line;
    int number;  // 0: no number in the answer
  };
  const std::vector<Case> cases = {
      {"{not json", 0},
      {"", 0},
      {"[1,2]", 0},
      {R"({"op":"fly"})", 0},
      {R"({"op":"get","id":1})", 0},
      {R"({"op":"get","id":"1","name":"CodiceUtente"})", 0},
      {R"({"op":"new","class":"CLSFW_NONE"})", 429},
      {R"({"op":"get","id":99,"name":"CodiceUtente"})", 424},
      {R"({"op":"drop","id":99})", 424},
      {R"({"op":"get","id":1,"name":"NoSuchMember"})", 438},
      {R"({"op":"put","id":1,"name":"ActiveInterface","value":"x"})", 438},
      {R"({"op":"put","id":1,"name":"RevokeDisabilitata","value":"maybe"})", 13},
      {R"({"op":"put","id":1,"name":"CodiceUtente","value":null})", 13},
      {R"({"op":"put","id":1,"name":"ConnectionADO","value":{"$":"object","id":1}})", 13},
      {R"({"op":"put","id":1,"name":"CodiceUtente","value":{"$":"bogus"}})", 13},
      {R"({"op":"call","id":1,"name":"CodiceUtente","args":[1]})", 450},
      {R"({"op":"call","id":1,"name":"CodiceUtente","args":{}})", 0},
      {R"({"op":"put","id":1,"name":"IdUser","value":3000000000})", 6},
  };
  ASSERT_EQ(parser, 1);
  for (const Case& c : cases) {
    const Json a = Send(c.line);
    EXPECT_EQ(a["ok"], false) << c.line;
    EXPECT_TRUE(a["error"].is_string() && !a["error"].get<std::string>().empty()) << c.line;
    if (c.number != 0) {
      EXPECT_EQ(a["number"], c.number) << c.line;
    } else {
      EXPECT_FALSE(a.contains("number")) << c.line;
    }
  }
  // The session goes on.
  EXPECT_EQ(Get(parser, "CodiceUtente")["value"], "");
}

TEST_F(HostSessionTest, DropReleasesTheId) {
  const int64_t id = New("CLSFW_RVKUSERS");
  EXPECT_EQ(Send(Json{{"op", "drop"}, {"id", id}}),
            Json::parse(R"({"ok":true,"boxes":[],"sql":[]})"));
  EXPECT_EQ(Get(id, "MaxNumTry")["ok"], false);
  EXPECT_NE(New("CLSFW_RVKUSERS"), id);  // ids are not reused
}

// The built binary answers each line of standard input with one line.
TEST(HostBinary, ScriptedSession) {
  const std::string in =
      (std::filesystem::temp_directory_path() / ("zarvik_host_in_" + std::to_string(::getpid())))
          .string();
  std::ofstream(in) << R"({"op":"new","class":"CLSFW_PARSER"})"
                    << "\nthis is not json\r\n"
                    << R"({"op":"put","id":1,"name":"CodiceUtente","value":"GIALLI"})"
                    << "\n"
                    << R"({"op":"get","id":1,"name":"CodiceUtente"})"
                    << "\n";
  FILE* pipe = ::popen((std::string(ZARVIK_BINARY) + " host < " + in).c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string output;
  char buffer[4096];
  for (size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    output.append(buffer, n);
  EXPECT_EQ(::pclose(pipe), 0);
  std::filesystem::remove(in);
  std::istringstream lines(output);
  std::vector<Json> answers;
  for (std::string line; std::getline(lines, line);) answers.push_back(Json::parse(line));
  ASSERT_EQ(answers.size(), 4u) << output;
  EXPECT_EQ(answers[0].dump(), R"({"ok":true,"id":1,"boxes":[],"sql":[]})");
  EXPECT_EQ(answers[1]["ok"], false);  // the session goes on after it
  EXPECT_EQ(answers[3]["value"], "GIALLI");
}

}  // namespace
}  // namespace zarvik::automation
