// `zarvik rewrite`: rewrites one SELECT statement for a user, as the host's
// ElaboraStrSQL call would, and prints it; --explain also lists what the
// scanner recognised.
#include <memory>
#include <ostream>
#include <string>

#include "cli/cli.h"
#include "db/connection.h"
#include "demo/demo_db.h"
#include "frame/sql_text.h"
#include "parser/clsfw_parser.h"
#include "parser/rewriter/scan_report.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "platform/vb_error.h"

namespace zarvik::cli {
namespace {

const char kUsage[] =
    "usage: zarvik rewrite --user CODE [--group G] [--company N] [--agent ID]\n"
    "                      [--db PATH | --connect STRING] [--explain] \"SELECT ...\"\n"
    "\n"
    "Prints the statement rewritten for the user so that it returns only the rows\n"
    "the user may see (CLSFW_PARSER.ElaboraStrSQL).\n"
    "\n"
    "  --user CODE      application user code (FW07_CODICE)\n"
    "  --group G        group code; default: the user's group in FW07_APPUSER\n"
    "  --company N      current company (DittaCorrente); default 1\n"
    "  --agent ID       agent id the user acts as (IdAgente and CodiceAgente)\n"
    "  --db PATH        demo database file made by zarvik init-db\n"
    "  --connect STRING any connection string (Provider=SQLite;... or ODBC)\n"
    "  --explain        also list, per recognised table, its prefix, where it was\n"
    "                   found, the alias used and the condition it received\n"
    "\n"
    "Without --db or --connect the embedded demo database is used (in memory).\n"
    "Message boxes (the parser error, failure reports) are written to stderr.\n";

struct Options {
  std::string user;
  std::string group;
  bool group_given = false;
  std::string company = "1";
  std::string agent;
  std::string db_path;
  std::string connect;
  bool explain = false;
  std::string statement;
};

// Parses the arguments; answers false (after writing why) on a usage error.
bool ParseOptions(const Args& args, Options& o, std::ostream& err) {
  bool have_statement = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    auto value = [&](std::string& target) {
      if (i + 1 >= args.size()) {
        err << "zarvik rewrite: " << arg << " needs a value\n";
        return false;
      }
      target = args[++i];
      return true;
    };
    bool ok = true;
    if (arg == "--user") {
      ok = value(o.user);
    } else if (arg == "--group") {
      ok = value(o.group);
      o.group_given = true;
    } else if (arg == "--company") {
      ok = value(o.company);
    } else if (arg == "--agent") {
      ok = value(o.agent);
    } else if (arg == "--db") {
      ok = value(o.db_path);
    } else if (arg == "--connect") {
      ok = value(o.connect);
    } else if (arg == "--explain") {
      o.explain = true;
    } else if (arg.rfind("--", 0) == 0) {
      err << "zarvik rewrite: unknown option '" << arg << "'\n";
      ok = false;
    } else if (have_statement) {
      err << "zarvik rewrite: give the statement as one argument (in quotes)\n";
      ok = false;
    } else {
      o.statement = arg;
      have_statement = true;
    }
    if (!ok) return false;
  }
  if (o.user.empty()) {
    err << "zarvik rewrite: --user is required\n";
    return false;
  }
  if (!have_statement) {
    err << "zarvik rewrite: no statement given\n";
    return false;
  }
  if (!o.db_path.empty() && !o.connect.empty()) {
    err << "zarvik rewrite: give either --db or --connect\n";
    return false;
  }
  return true;
}

std::shared_ptr<db::Connection> OpenDatabase(const Options& o) {
  if (!o.connect.empty()) {
    auto connection = std::make_shared<db::Connection>();
    connection->SetConnectionString(o.connect);
    connection->SetCursorLocation(db::kUseClient);
    connection->Open();
    return connection;
  }
  return demo::OpenDemoDatabase(o.db_path.empty() ? ":memory:" : o.db_path);
}

// The user's group as FW07_APPUSER records it, or "" when the user is not
// there.
std::string GroupOfUser(db::Connection& connection, const std::string& user) {
  const auto rs = connection.Execute(
      "SELECT FW07_CODICE_FW06 FROM FW07_APPUSER WHERE FW07_CODICE = " + sql::QuotedEscaped(user),
      db::kCmdText);
  std::string group;
  if (!rs->EOF()) group = rs->Fields(0).ConcatText();
  rs->Close();
  return group;
}

// A number when the text is one (the host passes codes and ids as numbers).
Variant NumberOrText(const std::string& text) {
  const Variant v(text);
  return v.IsNumeric() ? Variant(v.ToLong()) : v;
}

void PrintExplanation(const rewriter::ScanReport& report, std::ostream& out) {
  out << "\nScanner: " << rewriter::ScanOutcomeName(report.outcome);
  if (report.outcome == rewriter::ScanOutcome::kRunTimeError) {
    out << " (" << report.error_number << " - " << report.error_description << ")";
  }
  out << "\n";
  if (report.segments_without_from > 0) {
    out << "Segments without FROM, copied as they are: " << report.segments_without_from << "\n";
  }
  if (report.tables.empty()) {
    out << "No table recognised.\n";
    return;
  }
  out << "Recognised tables:\n";
  int n = 0;
  for (const rewriter::RecognisedTable& t : report.tables) {
    out << "  " << ++n << ". " << t.prefix << "  " << rewriter::TableSourceName(t.source)
        << "  segment " << t.segment << "  alias \"" << t.alias << "\"\n";
    out << "     condition: \"" << t.condition << "\"\n";
  }
}

}  // namespace

int RunRewrite(const Args& args, Streams io) {
  for (const std::string& arg : args) {
    if (arg == "--help" || arg == "-h") {
      io.out << kUsage;
      return 0;
    }
  }
  Options o;
  if (!ParseOptions(args, o, io.err)) {
    io.err << kUsage;
    return 2;
  }
  try {
    const auto connection = OpenDatabase(o);
    CLSFW_PARSER parser(
        Env{std::make_shared<StreamMessageSink>(io.err), std::make_shared<SystemClock>()});
    parser.SetConnectionADO(connection);
    parser.SetCodiceUtente(o.user);
    parser.SetCodiceGruppo(o.group_given ? o.group : GroupOfUser(*connection, o.user));
    parser.SetDittaCorrente(NumberOrText(o.company));
    if (!o.agent.empty()) {
      parser.SetIdAgente(NumberOrText(o.agent));
      parser.SetCodiceAgente(NumberOrText(o.agent));
    }
    std::string buffer = o.statement;
    rewriter::ScanReport report;
    io.out << parser.ElaboraStrSQLExplained(buffer, report) << "\n";
    if (o.explain) PrintExplanation(report, io.out);
  } catch (const VbError& e) {
    io.err << "zarvik rewrite: " << e.Number() << " - " << e.Description() << "\n";
    return 1;
  }
  return 0;
}

}  // namespace zarvik::cli
