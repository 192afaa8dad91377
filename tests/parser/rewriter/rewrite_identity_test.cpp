// ElaboraStrSQL for ROSSI on the fuzz corpus, long statements and benchmark shapes: answer,
// argument left, statements sent and boxes, digested. ZARVIK_REWRITE_RECORD=FILE writes every
// case to FILE (diff two builds' files to find the first case that differs).
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "bench/statement_shapes.h"
#include "rewrite_corpus.h"

namespace zarvik {
namespace {

// The digest of the reference rewriter over Inputs().
constexpr uint64_t kReferenceDigest = 0x8efc994969decfe6ULL;

std::vector<std::string> Inputs() {
  std::vector<std::string> inputs = testing::FuzzStatements();
  for (const std::string& s : testing::LongStatements()) inputs.push_back(s);
  for (shapes::Shape shape : shapes::kAllShapes) {
    for (size_t size : {240, 2048, 8192, 30720, 40000}) {
      for (bool realistic : {true, false})
        inputs.push_back(shapes::Statement(shape, size, realistic));
    }
  }
  return inputs;
}

// Appends `text` so that no two sequences of fields give the same bytes.
void AddField(std::string& out, const std::string& text) {
  out += std::to_string(text.size()) + ':' + text;
}

// Everything the host sees of one call.
std::string Observe(testing::ParserSession& session, const std::string& statement) {
  session.log->statements.clear();
  session.sink->messages.clear();
  std::string buffer = statement;
  std::string seen;
  AddField(seen, session.parser.ElaboraStrSQL(buffer));
  AddField(seen, buffer);
  for (const std::string& sql : session.Statements()) AddField(seen, "sql " + sql);
  for (const Message& box : session.Boxes()) AddField(seen, "box " + box.title + "|" + box.text);
  return seen;
}

// 64-bit FNV-1a.
void Digest(uint64_t& hash, const std::string& bytes) {
  for (unsigned char c : bytes) hash = (hash ^ c) * 0x100000001b3ULL;
}

TEST(RewriteIdentity, EveryAnswerAndStatementSentMatchesTheReference) {
  testing::ParserSession rossi("ROSSI");
  std::ofstream record;
  if (const char* path = std::getenv("ZARVIK_REWRITE_RECORD")) record.open(path, std::ios::binary);
  uint64_t hash = 0xcbf29ce484222325ULL;
  const std::vector<std::string> inputs = Inputs();
  for (size_t i = 0; i < inputs.size(); ++i) {
    const std::string seen = Observe(rossi, inputs[i]);
    Digest(hash, inputs[i]);
    Digest(hash, seen);
    if (record.is_open()) record << "case " << i << "\n" << inputs[i] << "\n" << seen << "\n";
  }
  EXPECT_EQ(hash, kReferenceDigest) << std::hex << "digest 0x" << hash;
}

}  // namespace
}  // namespace zarvik
