#include "frame/host_object.h"

#include <algorithm>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik {
namespace {

bool SameName(const std::string& a, const std::string& b) { return vb::UCase(a) == vb::UCase(b); }

}  // namespace

HostObject::HostObject(std::string type_name) : type_name_(std::move(type_name)) {}

std::vector<std::pair<std::string, Variant>>::iterator HostObject::Find(const std::string& name) {
  return std::find_if(members_.begin(), members_.end(),
                      [&](const auto& m) { return SameName(m.first, name); });
}

std::vector<std::pair<std::string, Variant>>::const_iterator HostObject::Find(
    const std::string& name) const {
  return std::find_if(members_.begin(), members_.end(),
                      [&](const auto& m) { return SameName(m.first, name); });
}

HostObject& HostObject::Set(const std::string& name, const Variant& value) {
  auto it = Find(name);
  if (it == members_.end()) {
    members_.emplace_back(name, value);
  } else {
    it->second = value;
  }
  return *this;
}

bool HostObject::Has(const std::string& name) const { return Find(name) != members_.end(); }

void HostObject::Remove(const std::string& name) {
  auto it = Find(name);
  if (it != members_.end()) members_.erase(it);
}

std::vector<std::string> HostObject::MemberNames() const {
  std::vector<std::string> names;
  for (const auto& m : members_) names.push_back(m.first);
  return names;
}

Variant HostObject::GetProperty(const std::string& name) {
  auto it = Find(name);
  if (it == members_.end()) throw VbError(vberr::kNotSupported);
  return it->second;
}

void HostObject::PutProperty(const std::string& name, const Variant& value) { Set(name, value); }

Variant HostObject::CallMethod(const std::string& name, std::vector<Variant>& args) {
  if (!args.empty()) throw VbError(vberr::kNotSupported);
  return GetProperty(name);
}

std::shared_ptr<HostObject> MakeHostObject(std::vector<std::pair<std::string, Variant>> members) {
  auto object = std::make_shared<HostObject>();
  for (auto& m : members) object->Set(m.first, m.second);
  return object;
}

}  // namespace zarvik
