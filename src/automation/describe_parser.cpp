// Automation description of CLSFW_PARSER. Each subsystem adds its public
// members in its own function below, bound to the typed C++ member.
#include <memory>

#include "automation/class_builder.h"
#include "automation/describe_user_context.h"
#include "automation/record_object.h"
#include "automation/type_library.h"
#include "parser/clsfw_parser.h"

namespace zarvik::automation {
namespace {

using Parser = CLSFW_PARSER;

// Records of rights (tsRvk*) returned by the rights methods: their
// RecordDescription entries and VariantConverter specialisations go here.
void DescribeParserRecords(TypeLibrary& /*library*/) {}

// ElaboraStrSQL (src/parser/rewriter/).
void DescribeRewriterMembers(ClassBuilder<Parser>& /*b*/) {}

// The SQLCondition* family and CliForRevocati (src/parser/conditions/).
void DescribeConditionMembers(ClassBuilder<Parser>& /*b*/) {}

// The block checks, the rights records and StatiArticoloMaga
// (src/parser/checks/).
void DescribeCheckMembers(ClassBuilder<Parser>& /*b*/) {}

}  // namespace

void DescribeParser(TypeLibrary& library) {
  auto cls = std::make_shared<ClassDescription>();
  ClassBuilder<Parser> b(*cls, "CLSFW_PARSER",
                         "revocation parser: rewritten statements, conditions, checks, rights");
  DescribeUserContext(b);
  DescribeRewriterMembers(b);
  DescribeConditionMembers(b);
  DescribeCheckMembers(b);
  DescribeParserRecords(library);
  library.classes.push_back(std::move(cls));
}

}  // namespace zarvik::automation
