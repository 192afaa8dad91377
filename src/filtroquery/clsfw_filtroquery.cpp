#include "filtroquery/clsfw_filtroquery.h"

namespace zarvik {

CLSFW_FILTROQUERY::CLSFW_FILTROQUERY(Env env)
    : UserContextProperties(FiltroQueryFrameSettings(), std::move(env)) {}

CLSFW_FILTROQUERY::~CLSFW_FILTROQUERY() { frame_.Terminate(); }

}  // namespace zarvik
