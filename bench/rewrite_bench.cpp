// ElaboraStrSQL and the embedded engine under load, on the demo database as
// the ordinary user ROSSI (id 5), company 1.
//
//   shape/<shape>/<size>/<tables>  the rewriter on one statement shape
//       (statement_shapes.h) at 2, 8 and 30 KB, text-only (unknown tables:
//       the scan alone) or realistic (host tables: conditions built, their
//       queries run). ns_per_B is its CPU cost per byte; anchor_ns_per_B the
//       cost of eight keyword searches over the same bytes, each a memchr on
//       both letter cases plus a compare, timed in the same iterations;
//       x_anchor the ratio of the two.
//   realistic_call/240B          the usual small host statement, us per call.
//   host_round_trip              SQLConditionCliFor served by `zarvik host`
//       (the child's CPU time per request, from two runs of different
//       length) against the direct call in this process; extra_us is what
//       the host adds.
//   cache_after_distinct         1,000 distinct 100 KB statements through
//       one connection: the most memory they hold resident at once, in MB.
//
// Run with repetitions and read the medians:
//   build/rewrite_bench --benchmark_counters_tabular=true
//     --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
// (one command line).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <strings.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include "bench/statement_shapes.h"
#include "db/connection.h"
#include "demo/demo_db.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"
#include "platform/message_sink.h"

extern char** environ;

namespace {

using zarvik::CLSFW_PARSER;
namespace shapes = zarvik::shapes;

// CPU time of this thread, in nanoseconds.
double ThreadNs() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e9 + static_cast<double>(t.tv_nsec);
}

// Message boxes are discarded (none is expected).
class NullSink : public zarvik::MessageSink {
 public:
  void Show(const zarvik::Message&) override {}
};

// A parser for ROSSI on `db`.
std::unique_ptr<CLSFW_PARSER> Rossi(std::shared_ptr<zarvik::db::Connection> db) {
  auto parser = std::make_unique<CLSFW_PARSER>(
      zarvik::Env{std::make_shared<NullSink>(), std::make_shared<zarvik::SystemClock>()});
  parser->SetConnectionADO(std::move(db));
  parser->SetCodiceUtente("ROSSI");
  parser->SetCodiceGruppo("VEN");
  parser->SetDittaCorrente(zarvik::Variant(int32_t{1}));
  return parser;
}

// Eight keyword searches over the text, each a memchr on both letter cases
// of the keyword's first letter plus a compare at every hit.
size_t Anchor(const std::string& text) {
  static const char* const kKeywords[] = {"SELECT", "FROM",  "WHERE", "JOIN",
                                          "UNION",  "GROUP", "ORDER", "INNER"};
  size_t found = 0;
  const char* const end = text.data() + text.size();
  for (const char* keyword : kKeywords) {
    const size_t m = std::strlen(keyword);
    for (const char c : {keyword[0], static_cast<char>(std::tolower(keyword[0]))}) {
      const char* p = text.data();
      while ((p = static_cast<const char*>(std::memchr(p, c, static_cast<size_t>(end - p))))) {
        if (static_cast<size_t>(end - p) >= m && strncasecmp(p, keyword, m) == 0) ++found;
        ++p;
      }
    }
  }
  return found;
}

// One shape: the rewrite and the anchor alternate in every iteration; the
// iteration time is the rewrite's CPU time.
void RunShape(benchmark::State& state, shapes::Shape shape, size_t size, bool realistic) {
  const auto parser = Rossi(zarvik::demo::OpenDemoDatabase(":memory:"));
  const std::string statement = shapes::Statement(shape, size, realistic);
  double rewrite_ns = 0;
  double anchor_ns = 0;
  std::string rewritten;
  for (auto _ : state) {
    std::string buffer = statement;
    const double t0 = ThreadNs();
    rewritten = parser->ElaboraStrSQL(buffer);
    const double t1 = ThreadNs();
    benchmark::DoNotOptimize(Anchor(statement));
    const double t2 = ThreadNs();
    rewrite_ns += t1 - t0;
    anchor_ns += t2 - t1;
    state.SetIterationTime((t1 - t0) / 1e9);
  }
  if (rewritten.size() <= statement.size()) state.SkipWithError("the statement was not rewritten");
  const double bytes = static_cast<double>(statement.size());
  const double iterations = static_cast<double>(state.iterations());
  state.counters["bytes"] = bytes;
  state.counters["us"] = rewrite_ns / iterations / 1e3;
  state.counters["ns_per_B"] = rewrite_ns / iterations / bytes;
  state.counters["anchor_ns_per_B"] = anchor_ns / iterations / bytes;
  state.counters["x_anchor"] = rewrite_ns / anchor_ns;
}

// The demo database as a file, for the runs that open their own connection.
const std::string& DemoFile() {
  static const struct File {
    File()
        : path(std::filesystem::temp_directory_path() /
               ("zarvik_bench_" + std::to_string(::getpid()) + ".db")) {
      zarvik::demo::InitDemoDatabase(path);
    }
    ~File() { std::filesystem::remove(path); }
    std::string path;
  } file;
  return file.path;
}

// CPU seconds `zarvik host` spends on `calls` requests (and its set-up).
double HostCpuSeconds(int calls) {
  const std::string in = DemoFile() + ".in";
  {
    std::ofstream out(in);
    // A connection of the host's, handed to the parser.
    out << R"({"op":"new","class":"Connection"})" << '\n'
        << R"({"op":"put","id":1,"name":"ConnectionString","value":")"
        << zarvik::demo::DemoConnectionString(DemoFile()) << "\"}\n"
        << R"({"op":"call","id":1,"name":"Open","args":[]})" << '\n'
        << R"({"op":"new","class":"CLSFW_PARSER"})" << '\n'
        << R"({"op":"put","id":2,"name":"ConnectionADO","value":{"$":"object","id":1}})" << '\n'
        << R"({"op":"put","id":2,"name":"CodiceUtente","value":"ROSSI"})" << '\n'
        << R"({"op":"put","id":2,"name":"CodiceGruppo","value":"VEN"})" << '\n'
        << R"({"op":"put","id":2,"name":"DittaCorrente","value":1})" << '\n';
    for (int i = 0; i < calls; ++i) {
      out << R"({"op":"call","id":2,"name":"SQLConditionCliFor",)"
          << R"("args":["CG44",false,"","","",false]})"
          << "\n";
    }
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  char binary[] = ZARVIK_BINARY;
  char host[] = "host";
  char* argv[] = {binary, host, nullptr};
  pid_t pid = 0;
  double seconds = -1;
  if (posix_spawn(&pid, binary, &actions, nullptr, argv, environ) == 0) {
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
      seconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    }
  }
  posix_spawn_file_actions_destroy(&actions);
  std::filesystem::remove(in);
  return seconds;
}

void BM_HostRoundTrip(benchmark::State& state) {
  constexpr int kShort = 1000;
  constexpr int kLong = 11000;
  const auto db = std::make_shared<zarvik::db::Connection>();
  db->SetConnectionString(zarvik::demo::DemoConnectionString(DemoFile()));
  db->Open();
  const auto parser = Rossi(db);
  double host_us = 0;
  double direct_us = 0;
  for (auto _ : state) {
    const double short_run = HostCpuSeconds(kShort);
    const double long_run = HostCpuSeconds(kLong);
    if (short_run < 0 || long_run < 0) {
      state.SkipWithError("zarvik host failed");
      return;
    }
    host_us = (long_run - short_run) / (kLong - kShort) * 1e6;
    const double t0 = ThreadNs();
    for (int i = 0; i < kLong - kShort; ++i) {
      benchmark::DoNotOptimize(parser->SQLConditionCliFor("CG44", false, "", "", "", false));
    }
    direct_us = (ThreadNs() - t0) / (kLong - kShort) / 1e3;
  }
  state.counters["host_us"] = host_us;
  state.counters["direct_us"] = direct_us;
  state.counters["extra_us"] = host_us - direct_us;
}

// Resident bytes of the process, after the allocator has handed free
// memory back (the benchmark may run on a thread of its own, so the heap
// figures of the main arena would miss it).
double ResidentBytes() {
  malloc_trim(0);
  long pages = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

void BM_CacheAfterDistinctStatements(benchmark::State& state) {
  constexpr int kStatements = 1000;
  const std::string pad(100 * 1024, 'x');
  double peak_mb = 0;
  double us_per_statement = 0;
  for (auto _ : state) {
    zarvik::db::Connection db;
    db.SetConnectionString("Provider=SQLite;Data Source=:memory:");
    db.Open();
    const double before = ResidentBytes();
    double t0 = ThreadNs();
    double statements_ns = 0;
    for (int i = 1; i <= kStatements; ++i) {
      db.Execute("SELECT TOP 1 '" + pad + "' AS PAD WHERE " + std::to_string(i) + " > 0");
      if (i % 100 == 0) {  // the resident size, sampled outside the timing
        statements_ns += ThreadNs() - t0;
        peak_mb = std::max(peak_mb, (ResidentBytes() - before) / (1024.0 * 1024.0));
        t0 = ThreadNs();
      }
    }
    us_per_statement = statements_ns / kStatements / 1e3;
  }
  state.counters["peak_MB"] = peak_mb;
  state.counters["us_per_statement"] = us_per_statement;
}

const bool kRegistered = [] {
  for (shapes::Shape shape : shapes::kAllShapes) {
    for (size_t size : {2048, 8192, 30720}) {
      for (bool realistic : {false, true}) {
        const std::string name = std::string("shape/") + shapes::ShapeName(shape) + "/" +
                                 std::to_string(size / 1024) + "KB/" +
                                 (realistic ? "realistic" : "text");
        benchmark::RegisterBenchmark(name.c_str(), RunShape, shape, size, realistic)
            ->UseManualTime();
      }
    }
  }
  benchmark::RegisterBenchmark("realistic_call/240B", RunShape, shapes::Shape::kNormal, size_t{240},
                               true)
      ->UseManualTime();
  benchmark::RegisterBenchmark("host_round_trip", BM_HostRoundTrip)->Iterations(1);
  benchmark::RegisterBenchmark("cache_after_distinct", BM_CacheAfterDistinctStatements)
      ->Iterations(1);
  return true;
}();

}  // namespace
