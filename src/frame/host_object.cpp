#include "frame/host_object.h"

#include <cstddef>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik {

HostObject::HostObject(std::string type_name) : type_name_(std::move(type_name)) {}

const size_t* HostObject::Find(const std::string& name) const {
  auto it = index_.find(vb::UCase(name));
  return it == index_.end() ? nullptr : &it->second;
}

HostObject& HostObject::Set(const std::string& name, const Variant& value) {
  auto inserted = index_.emplace(vb::UCase(name), members_.size());
  if (inserted.second) {
    members_.emplace_back(name, value);
  } else {
    members_[inserted.first->second].second = value;
  }
  return *this;
}

bool HostObject::Has(const std::string& name) const { return Find(name) != nullptr; }

void HostObject::Remove(const std::string& name) {
  auto it = index_.find(vb::UCase(name));
  if (it == index_.end()) return;
  const size_t at = it->second;
  index_.erase(it);
  members_.erase(members_.begin() + static_cast<std::ptrdiff_t>(at));
  for (auto& entry : index_) {
    if (entry.second > at) --entry.second;
  }
}

std::vector<std::string> HostObject::MemberNames() const {
  std::vector<std::string> names;
  for (const auto& m : members_) names.push_back(m.first);
  return names;
}

Variant HostObject::GetProperty(const std::string& name) {
  const size_t* at = Find(name);
  if (at == nullptr) throw VbError(vberr::kNotSupported);
  return members_[*at].second;
}

void HostObject::PutProperty(const std::string& name, const Variant& value) { Set(name, value); }

Variant HostObject::CallMethod(const std::string& name, std::vector<Variant>& args) {
  if (!args.empty()) throw VbError(vberr::kNotSupported);
  return GetProperty(name);
}

void HostObject::ForEachReference(const std::function<void(const ObjectRef&)>& visit) const {
  for (const auto& m : members_) ForEachObjectIn(m.second, visit);
}

void HostObject::ReleaseReferences() {
  members_.clear();
  index_.clear();
}

std::shared_ptr<HostObject> MakeHostObject(std::vector<std::pair<std::string, Variant>> members) {
  auto object = std::make_shared<HostObject>();
  for (auto& m : members) object->Set(m.first, m.second);
  return object;
}

}  // namespace zarvik
