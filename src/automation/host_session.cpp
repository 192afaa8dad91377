#include "automation/host_session.h"

#include <istream>
#include <ostream>

#include "automation/automation_object.h"
#include "automation/dispatcher.h"
#include "db/connection.h"
#include "frame/host_object.h"
#include "platform/vb_error.h"

namespace zarvik::automation {
namespace {

// A request the boundary cannot serve, with its automation error number
// (0 when the request itself is not understood).
struct RequestError {
  int32_t number;
  std::string description;
};

[[noreturn]] void BadRequest(const std::string& description) { throw RequestError{0, description}; }

const RequestJson& Field(const RequestJson& request, const char* name) {
  if (!request.contains(name)) BadRequest(std::string("missing \"") + name + "\"");
  return request[name];
}

std::string StringField(const RequestJson& request, const char* name) {
  const RequestJson& value = Field(request, name);
  if (!value.is_string()) BadRequest(std::string("\"") + name + "\" must be a string");
  return value.get<std::string>();
}

int64_t IdField(const RequestJson& request) {
  const RequestJson& value = Field(request, "id");
  if (!value.is_number_integer()) BadRequest("\"id\" must be an integer");
  return value.get<int64_t>();
}

// True when the arrays and objects of `line` nest deeper than `limit`.
// Brackets inside strings do not count; the text need not be valid JSON.
bool NestsDeeperThan(const std::string& line, int limit) {
  int depth = 0;
  bool in_string = false;
  for (size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (in_string) {
      if (c == '\\') {
        ++i;
      } else if (c == '"') {
        in_string = false;
      }
    } else if (c == '"') {
      in_string = true;
    } else if (c == '[' || c == '{') {
      if (++depth > limit) return true;
    } else if (c == ']' || c == '}') {
      --depth;
    }
  }
  return false;
}

Json ErrorAnswer(int32_t number, const std::string& description) {
  Json answer = {{"ok", false}, {"error", description}};
  if (number != 0) answer["number"] = number;
  return answer;
}

}  // namespace

HostSession::HostSession(std::shared_ptr<Clock> clock)
    : library_(BuildTypeLibrary()),
      boxes_(std::make_shared<RecordingMessageSink>()),
      statements_(std::make_shared<db::StatementLog>()) {
  context_.env.sink = boxes_;
  context_.env.clock = clock ? std::move(clock) : DefaultEnv().clock;
  context_.statement_log = statements_;
}

HostSession::~HostSession() = default;

std::string HostSession::Handle(const std::string& line) {
  boxes_->messages.clear();
  statements_->statements.clear();
  Json answer;
  try {
    // Copies of the request's JSON and its conversions into values recurse
    // once per level: the depth is bounded before anything is built.
    if (NestsDeeperThan(line, kMaxJsonNesting)) {
      BadRequest("nested deeper than " + std::to_string(kMaxJsonNesting) + " levels");
    }
    const RequestJson request = RequestJson::parse(line);
    if (!request.is_object()) BadRequest("a request is a JSON object");
    answer = Serve(request);
    Json& boxes = answer["boxes"] = Json::array();
    for (const Message& box : boxes_->messages) {
      boxes.push_back({{"text", box.text}, {"title", box.title}, {"style", box.style}});
    }
    answer["sql"] = statements_->statements;
  } catch (const RequestJson::parse_error& e) {
    answer = ErrorAnswer(0, std::string("malformed JSON: ") + e.what());
  } catch (const RequestError& e) {
    answer = ErrorAnswer(e.number, e.description);
  } catch (const VbError& e) {
    answer = ErrorAnswer(e.Number(),
                         e.Description().empty() ? VbErrorText(e.Number()) : e.Description());
  } catch (const std::exception& e) {
    answer = ErrorAnswer(0, e.what());
  }
  boxes_->messages.clear();
  statements_->statements.clear();
  return AnswerText(answer);
}

Json HostSession::Serve(const RequestJson& request) {
  const std::string op = StringField(request, "op");
  Json answer = {{"ok", true}};
  // "ok", "id" or "value" and "args", then "boxes" and "sql": room for all
  // from the start, as each member added to a full object moves the others.
  answer.get_ref<Json::object_t&>().reserve(6);

  if (op == "new") {
    const std::string class_name = StringField(request, "class");
    ObjectRef object;
    if (class_name == "HostObject") {
      const RequestJson none = RequestJson::object();
      const RequestJson& members = request.contains("members") ? request["members"] : none;
      if (!members.is_object()) BadRequest("\"members\" must be a JSON object");
      auto host = std::make_shared<HostObject>();
      for (auto it = members.begin(); it != members.end(); ++it) {
        host->Set(it.key(), VariantFromJson(it.value(), objects_));
      }
      object = host;
    } else if (class_name == "Connection") {
      auto connection = std::make_shared<db::Connection>();
      connection->SetStatementLog(statements_);
      object = connection;
    } else {
      if (!library_.FindClass(class_name)) {
        throw RequestError{kCannotCreateObject, "unknown class \"" + class_name + "\""};
      }
      object = CreateObject(library_, class_name, context_);
    }
    answer["id"] = objects_.Register(object);
    return answer;
  }

  if (op == "drop") {
    const int64_t id = IdField(request);
    if (!objects_.Drop(id)) {
      throw RequestError{kObjectRequired, "no object with id " + std::to_string(id)};
    }
    return answer;
  }

  if (op != "put" && op != "get" && op != "call") BadRequest("unknown op \"" + op + "\"");
  const int64_t id = IdField(request);
  if (!objects_.Has(id))
    throw RequestError{kObjectRequired, "no object with id " + std::to_string(id)};
  ObjectRef object = objects_.Get(id);
  const std::string name = StringField(request, "name");
  auto component = std::dynamic_pointer_cast<AutomationObject>(object);

  if (op == "put") {
    const Variant value = VariantFromJson(Field(request, "value"), objects_);
    if (component) {
      component->Put(name, value);
    } else {
      object->PutProperty(name, value);
    }
    return answer;
  }

  if (op == "get") {
    Variant value;
    if (component) {
      std::vector<Argument> none;
      value = component->Get(name, none);
    } else {
      value = object->GetProperty(name);
    }
    answer["value"] = JsonFromVariant(value, objects_);
    return answer;
  }

  // call
  std::vector<Argument> args;
  if (request.contains("args")) {
    const RequestJson& list = request["args"];
    if (!list.is_array()) BadRequest("\"args\" must be a JSON array");
    for (const RequestJson& item : list) args.push_back(ArgumentFromJson(item, objects_));
  }
  Variant result;
  if (component) {
    result = component->Call(name, args);
  } else {
    std::vector<Variant> values;
    for (const Argument& a : args) {
      if (a.missing) {
        throw RequestError{vberr::kTypeMismatch,
                           "an omitted argument is accepted only by the component's classes"};
      }
      values.push_back(a.value);
    }
    result = object->CallMethod(name, values);
    for (size_t i = 0; i < args.size(); ++i) args[i].value = values[i];
  }
  // A Sub (declared without a result) answers null; a Variant result that
  // is Empty answers {"$":"empty"}.
  bool returns_nothing = result.IsEmpty();
  if (component) {
    const MemberDescription* member = component->Description().Find(name, MemberKind::kMethod);
    if (!member) member = component->Description().Find(name, MemberKind::kPropertyGet);
    returns_nothing = member != nullptr && member->result.base == BaseType::kVoid;
  }
  answer["value"] = returns_nothing ? Json(nullptr) : JsonFromVariant(result, objects_);
  Json& echoed = answer["args"] = Json::array();
  echoed.get_ref<Json::array_t&>().reserve(args.size());
  for (const Argument& a : args) echoed.push_back(JsonFromArgument(a, objects_));
  return answer;
}

int RunHostSession(std::istream& in, std::ostream& out) {
  HostSession session;
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    out << session.Handle(line) << '\n';
    // The answers go out as soon as no further request waits to be read: a
    // host that waits for each answer gets it at once, and requests sent
    // ahead are answered in one write.
    if (in.rdbuf()->in_avail() <= 0) out.flush();
  }
  out.flush();
  return 0;
}

}  // namespace zarvik::automation
