#include "automation/json_values.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

#include "automation/dispatcher.h"
#include "automation/record_object.h"
#include "db/connection.h"
#include "db/recordset.h"
#include "frame/host_object.h"
#include "platform/env.h"
#include "platform/vb_error.h"

namespace zarvik::automation {

namespace {

// Lets go of `pending` without recursing through what the objects hold: an
// object held by nothing else gives up its own references first, so a
// chain of objects each holding the next is taken apart link by link.
void LetGo(std::vector<ObjectRef> pending) {
  while (!pending.empty()) {
    ObjectRef object = std::move(pending.back());
    pending.pop_back();
    if (object && object.use_count() == 1) {
      object->ForEachReference([&](const ObjectRef& held) { pending.push_back(held); });
      object->ReleaseReferences();
    }
  }
}

// Breaks every reference the objects hold, then lets go of them and of what
// they held.
void BreakAndLetGo(std::vector<ObjectRef> objects) {
  std::vector<ObjectRef> held;
  for (const ObjectRef& object : objects) {
    object->ForEachReference([&](const ObjectRef& h) { held.push_back(h); });
    object->ReleaseReferences();
  }
  objects.insert(objects.end(), held.begin(), held.end());
  LetGo(std::move(objects));
}

}  // namespace

ObjectTable::~ObjectTable() {
  std::vector<ObjectRef> all;
  for (auto& entry : objects_) all.push_back(std::move(entry.second));
  for (const auto& weak : dropped_) {
    if (ObjectRef object = weak.lock()) all.push_back(std::move(object));
  }
  objects_.clear();
  BreakAndLetGo(std::move(all));
}

int64_t ObjectTable::Register(const ObjectRef& object) {
  auto known = ids_.find(object.get());
  if (known != ids_.end()) return known->second;
  const int64_t id = next_id_++;
  objects_[id] = object;
  ids_[object.get()] = id;
  return id;
}

ObjectRef ObjectTable::Get(int64_t id) const {
  auto it = objects_.find(id);
  if (it == objects_.end()) {
    throw VbError(kObjectRequired, "Object required: no object with id " + std::to_string(id));
  }
  return it->second;
}

bool ObjectTable::Drop(int64_t id) {
  auto it = objects_.find(id);
  if (it == objects_.end()) return false;
  ObjectRef object = std::move(it->second);
  ids_.erase(object.get());
  objects_.erase(it);
  if (object.use_count() > 1) dropped_.push_back(object);
  std::vector<ObjectRef> last;
  last.push_back(std::move(object));
  LetGo(std::move(last));
  // A sweep costs about as much as the objects it watches: one every
  // eighth of them keeps the cost of a drop constant.
  if (++drops_since_sweep_ * 8 >= objects_.size() + dropped_.size()) Sweep();
  return true;
}

void ObjectTable::Sweep() {
  drops_since_sweep_ = 0;
  auto gone = [](const std::weak_ptr<Object>& weak) { return weak.expired(); };
  dropped_.erase(std::remove_if(dropped_.begin(), dropped_.end(), gone), dropped_.end());
  if (dropped_.empty()) return;
  // Everything the registered objects reach, without recursion.
  std::unordered_set<const Object*> reached;
  std::vector<ObjectRef> pending;
  for (const auto& entry : objects_) pending.push_back(entry.second);
  while (!pending.empty()) {
    const ObjectRef object = std::move(pending.back());
    pending.pop_back();
    if (!object || !reached.insert(object.get()).second) continue;
    object->ForEachReference([&](const ObjectRef& held) { pending.push_back(held); });
  }
  std::vector<ObjectRef> unreachable;
  for (const auto& weak : dropped_) {
    ObjectRef object = weak.lock();
    if (object && reached.count(object.get()) == 0) unreachable.push_back(std::move(object));
  }
  BreakAndLetGo(std::move(unreachable));
  dropped_.erase(std::remove_if(dropped_.begin(), dropped_.end(), gone), dropped_.end());
}

namespace {

[[noreturn]] void NotAValue(const std::string& what) {
  throw VbError(vberr::kTypeMismatch, "Type mismatch: " + what);
}

Variant HostObjectFromJson(const RequestJson& members, ObjectTable& objects) {
  auto host = std::make_shared<HostObject>();
  for (auto it = members.begin(); it != members.end(); ++it) {
    host->Set(it.key(), VariantFromJson(it.value(), objects));
  }
  return Variant(ObjectRef(host));
}

Json RecordsetJson(db::Recordset& rows, ObjectTable& objects) {
  Json out = {{"$", "recordset"}, {"columns", Json::array()}, {"rows", Json::array()}};
  if (rows.State() == db::kStateClosed) return out;
  for (int i = 0; i < rows.FieldCount(); ++i) out["columns"].push_back(rows.FieldName(i));
  while (!rows.EOF()) {
    Json row = Json::array();
    for (int i = 0; i < rows.FieldCount(); ++i)
      row.push_back(JsonFromVariant(rows.Fields(i), objects));
    out["rows"].push_back(std::move(row));
    rows.MoveNext();
  }
  return out;
}

Json ArrayJson(const VariantArray& array, ObjectTable& objects) {
  Json out = {{"$", "array"},
              {"lbounds", Json::array({array.LBound(1), array.LBound(2)})},
              {"items", Json::array()}};
  for (int32_t i = array.LBound(1); i <= array.UBound(1); ++i) {
    Json row = Json::array();
    for (int32_t j = array.LBound(2); j <= array.UBound(2); ++j) {
      row.push_back(JsonFromVariant(array.At(i, j), objects));
    }
    out["items"].push_back(std::move(row));
  }
  return out;
}

}  // namespace

Argument ArgumentFromJson(const RequestJson& json, ObjectTable& objects) {
  if (json.is_object() && json.contains("$") && json["$"] == "missing") return Argument::Missing();
  return Argument{VariantFromJson(json, objects), false};
}

Variant VariantFromJson(const RequestJson& json, ObjectTable& objects) {
  switch (json.type()) {
    case RequestJson::value_t::string:
      return Variant(json.get<std::string>());
    case RequestJson::value_t::boolean:
      return Variant::Boolean(json.get<bool>());
    case RequestJson::value_t::null:
      return Variant::Null();
    case RequestJson::value_t::number_integer: {
      const int64_t n = json.get<int64_t>();
      if (n >= std::numeric_limits<int32_t>::min() && n <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<int32_t>(n));
      }
      return Variant(static_cast<double>(n));
    }
    case RequestJson::value_t::number_unsigned: {
      const uint64_t n = json.get<uint64_t>();
      if (n <= static_cast<uint64_t>(std::numeric_limits<int32_t>::max())) {
        return Variant(static_cast<int32_t>(n));
      }
      return Variant(static_cast<double>(n));
    }
    case RequestJson::value_t::number_float:
      return Variant(json.get<double>());
    case RequestJson::value_t::object:
      break;
    default:
      NotAValue("a JSON array is not a value");
  }
  if (!json.contains("$")) return HostObjectFromJson(json, objects);
  const RequestJson& tag = json["$"];
  if (!tag.is_string()) NotAValue("\"$\" must be a string");
  const std::string kind = tag.get<std::string>();
  if (kind == "empty") return Variant();
  if (kind == "nothing") return Variant::Nothing();
  if (kind == "object") {
    if (!json.contains("id") || !json["id"].is_number_integer()) NotAValue("object without an id");
    return Variant(objects.Get(json["id"].get<int64_t>()));
  }
  if (kind == "date") {
    if (!json.contains("value") || !json["value"].is_string()) NotAValue("date without a value");
    return Variant::Date(DateFromText(json["value"].get<std::string>()));
  }
  if (kind == "missing") NotAValue("an omitted argument is not a value here");
  NotAValue("unknown value kind \"" + kind + "\"");
}

Json JsonFromVariant(const Variant& value, ObjectTable& objects) {
  switch (value.Type()) {
    case VarType::kEmpty:
      return Json{{"$", "empty"}};
    case VarType::kNull:
      return Json(nullptr);
    case VarType::kBoolean:
      return Json(value.ToBool());
    case VarType::kInteger:
    case VarType::kLong:
      return Json(value.ToLong());
    case VarType::kDouble:
      return Json(value.RawNumber());
    case VarType::kDate:
      return Json{{"$", "date"}, {"value", DateText(value.RawNumber())}};
    case VarType::kString:
      return Json(value.RawString());
    case VarType::kArray:
      return ArrayJson(*value.ToArray(), objects);
    case VarType::kObject:
      break;
  }
  ObjectRef object = value.ToObject();
  if (!object) return Json{{"$", "nothing"}};
  if (auto record = std::dynamic_pointer_cast<RecordObject>(object)) {
    Json fields = Json::object();
    for (const auto& field : record->Fields())
      fields[field.first] = JsonFromVariant(field.second, objects);
    return Json{{"$", "record"}, {"type", record->TypeName()}, {"fields", std::move(fields)}};
  }
  if (auto rows = std::dynamic_pointer_cast<db::Recordset>(object))
    return RecordsetJson(*rows, objects);
  return Json{{"$", "object"}, {"id", objects.Register(object)}};
}

Json JsonFromArgument(const Argument& argument, ObjectTable& objects) {
  if (argument.missing) return Json{{"$", "missing"}};
  return JsonFromVariant(argument.value, objects);
}

std::string DateText(double oa_date) {
  double whole = std::trunc(oa_date);
  long long seconds = std::llround(std::fabs(oa_date - whole) * 86400.0);
  if (seconds >= 86400) {
    whole += oa_date < 0 ? -1 : 1;
    seconds = 0;
  }
  int year = 0, month = 0, day = 0;
  YmdFromOleDate(whole, &year, &month, &day);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02lld:%02lld:%02lld", year, month, day,
                seconds / 3600, (seconds / 60) % 60, seconds % 60);
  return text;
}

double DateFromText(const std::string& text) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  char tail = 0;
  const int n = std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d%c", &year, &month, &day, &hour,
                            &minute, &second, &tail);
  const bool date_only = n == 3 && text.size() == 10;
  if (!(n == 6 || date_only) || month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 ||
      minute > 59 || second > 59 || hour < 0 || minute < 0 || second < 0) {
    NotAValue("a date is written YYYY-MM-DD HH:MM:SS");
  }
  const double base = OleDateFromYmd(year, month, day);
  const double time = (hour * 3600 + minute * 60 + second) / 86400.0;
  return base >= 0 ? base + time : base - time;
}

namespace {

// True when the text is printable ASCII without a quote or a backslash: it
// is written between quotes as it stands.
bool PlainAscii(const std::string& text) {
  for (const char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (u < 0x20 || u >= 0x7F || c == '"' || c == '\\') return false;
  }
  return true;
}

void AppendString(const std::string& text, std::string& out) {
  if (PlainAscii(text)) {
    out += '"';
    out += text;
    out += '"';
  } else {
    out += Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
  }
}

// Iterative on purpose: an answer can nest as deep as a recordset of
// arrays, and the writer must not add recursion of its own.
void AppendAnswer(const Json& value, std::string& out) {
  struct Frame {
    const Json* container;
    Json::const_iterator next;
  };
  std::vector<Frame> stack;
  const Json* current = &value;
  for (;;) {
    if (current != nullptr) {
      if (current->is_object() || current->is_array()) {
        out += current->is_object() ? '{' : '[';
        stack.push_back({current, current->begin()});
      } else if (current->is_string()) {
        AppendString(current->get_ref<const std::string&>(), out);
      } else if (current->is_boolean()) {
        out += current->get<bool>() ? "true" : "false";
      } else if (current->is_null()) {
        out += "null";
      } else if (current->is_number_integer()) {
        out += current->is_number_unsigned() ? std::to_string(current->get<uint64_t>())
                                             : std::to_string(current->get<int64_t>());
      } else {
        out += current->dump(-1, ' ', false, Json::error_handler_t::replace);
      }
      current = nullptr;
    }
    if (stack.empty()) return;
    Frame& top = stack.back();
    if (top.next == top.container->end()) {
      out += top.container->is_object() ? '}' : ']';
      stack.pop_back();
      continue;
    }
    if (top.next != top.container->begin()) out += ',';
    if (top.container->is_object()) {
      AppendString(top.next.key(), out);
      out += ':';
    }
    current = &*top.next;
    ++top.next;
  }
}

}  // namespace

std::string AnswerText(const Json& answer) {
  std::string out;
  out.reserve(256);
  AppendAnswer(answer, out);
  return out;
}

}  // namespace zarvik::automation
