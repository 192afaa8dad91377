#include "parser/clsfw_parser.h"

namespace zarvik {

CLSFW_PARSER::CLSFW_PARSER(Env env)
    : UserContextProperties(ParserFrameSettings(), std::move(env)) {}

CLSFW_PARSER::~CLSFW_PARSER() { frame_.Terminate(); }

}  // namespace zarvik
