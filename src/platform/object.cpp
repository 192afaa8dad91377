#include "platform/object.h"

#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik {

// An object knows none of the members by default; concrete classes override
// the ones they expose and leave the rest to these, as late binding in VB
// reports a member the object lacks.
Variant Object::GetProperty(const std::string& /*name*/) { throw VbError(vberr::kNotSupported); }

void Object::PutProperty(const std::string& /*name*/, const Variant& /*value*/) {
  throw VbError(vberr::kNotSupported);
}

Variant Object::CallMethod(const std::string& /*name*/, std::vector<Variant>& /*args*/) {
  throw VbError(vberr::kNotSupported);
}

}  // namespace zarvik
