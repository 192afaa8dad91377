#include "automation/invocation.h"

#include "platform/vb_error.h"

namespace zarvik::automation {

const Variant& Invocation::Value(size_t i) const {
  if (i >= values_.size()) throw VbError(vberr::kWrongArgCount);
  return values_[i];
}

bool Invocation::IsMissing(size_t i) const { return i >= missing_.size() || missing_[i]; }

void Invocation::Set(size_t i, Variant value) {
  if (i >= values_.size()) throw VbError(vberr::kWrongArgCount);
  values_[i] = std::move(value);
  missing_[i] = false;
}

}  // namespace zarvik::automation
