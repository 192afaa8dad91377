#include "com/ado_objects.h"

#include <regex>

#include "db/command.h"
#include "db/connection.h"
#include "platform/variant.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::testing {
namespace {

using Calls = std::shared_ptr<std::vector<std::string>>;

Variant Arg(const std::vector<Variant>& args, size_t i) {
  return i < args.size() ? args[i] : Variant();
}

// A field reads the recordset's current row when asked, as ADO's does.
class AdoField : public Object {
 public:
  AdoField(std::shared_ptr<db::Recordset> rs, int index) : rs_(std::move(rs)), index_(index) {}
  std::string TypeName() const override { return "Field"; }
  Variant GetProperty(const std::string& name) override {
    const std::string member = vb::UCase(name);
    if (member == "NAME") return Variant(rs_->FieldName(index_));
    if (member == "VALUE" || member.empty()) return rs_->Fields(index_);
    return Object::GetProperty(name);
  }

 private:
  std::shared_ptr<db::Recordset> rs_;
  int index_;
};

class AdoFields : public Object {
 public:
  explicit AdoFields(std::shared_ptr<db::Recordset> rs) : rs_(std::move(rs)) {}
  std::string TypeName() const override { return "Fields"; }
  Variant GetProperty(const std::string& name) override {
    if (vb::UCase(name) == "COUNT") return Variant(static_cast<int32_t>(rs_->FieldCount()));
    return Object::GetProperty(name);
  }
  // Item(index or name), also as the default member.
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    if (!name.empty() && vb::UCase(name) != "ITEM") return Object::CallMethod(name, args);
    if (args.size() != 1) throw VbError(vberr::kWrongArgCount);
    int index = -1;
    if (args[0].Type() == VarType::kString) {
      for (int i = 0; i < rs_->FieldCount() && index < 0; ++i) {
        if (vb::UCase(rs_->FieldName(i)) == vb::UCase(args[0].RawString())) index = i;
      }
    } else {
      index = args[0].ToLong();
    }
    if (index < 0 || index >= rs_->FieldCount()) throw VbError(vberr::kAdoItemNotFound);
    return Variant(ObjectRef(std::make_shared<AdoField>(rs_, index)));
  }

 private:
  std::shared_ptr<db::Recordset> rs_;
};

// Recordset: the db::Recordset's own members, plus Fields and the default
// member rs(key) = rs.Fields(key).
class AdoRecordset : public Object {
 public:
  explicit AdoRecordset(std::shared_ptr<db::Recordset> rs) : rs_(std::move(rs)) {}
  std::string TypeName() const override { return "Recordset"; }
  Variant GetProperty(const std::string& name) override {
    if (vb::UCase(name) == "FIELDS") return Variant(ObjectRef(std::make_shared<AdoFields>(rs_)));
    return rs_->GetProperty(name);
  }
  void PutProperty(const std::string& name, const Variant& value) override {
    rs_->PutProperty(name, value);
  }
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    if (name.empty() || vb::UCase(name) == "FIELDS") return AdoFields(rs_).CallMethod("", args);
    return rs_->CallMethod(name, args);
  }

 private:
  std::shared_ptr<db::Recordset> rs_;
};

// SQLite behind ODBC cannot call the database's routines as functions, so
// the calls of argument-less ones (KVL_GETDATE) become their bodies as
// scalar subqueries.
std::string InlineRoutines(db::Connection& db, std::string sql) {
  const std::regex call(R"((\[dbo\]\.|dbo\.)?\[?(\w+)\]?\(\s*\))", std::regex::icase);
  std::smatch m;
  for (size_t from = 0; std::regex_search(sql.cbegin() + from, sql.cend(), m, call);) {
    std::string body;
    try {
      auto rs =
          db.Execute("SELECT ROUTINE_BODY FROM ZARVIK_ROUTINES WHERE UPPER(ROUTINE_NAME) = '" +
                     vb::UCase(m[2].str()) + "'");
      if (!rs->EOF()) body = rs->Fields(0).ToString();
    } catch (const VbError&) {
      // no routine table: nothing to inline
    }
    const size_t at = from + m.position(0);
    if (body.empty() || body.find("?1") != std::string::npos) {
      from = at + m.length(0);
      continue;
    }
    sql.replace(at, m.length(0), "(" + body + ")");
    from = at + body.size() + 2;
  }
  return sql;
}

Variant RecordsetOf(std::shared_ptr<db::Recordset> rs) {
  return Variant(ObjectRef(std::make_shared<AdoRecordset>(std::move(rs))));
}

class AdoConnection : public Object {
 public:
  explicit AdoConnection(Calls calls) : calls_(std::move(calls)) {}
  std::string TypeName() const override { return "Connection"; }
  // Calls: the calls noted so far, separated by "|".
  Variant GetProperty(const std::string& name) override {
    if (vb::UCase(name) != "CALLS") return db_->GetProperty(name);
    std::string text;
    for (const std::string& call : *calls_) text += (text.empty() ? "" : "|") + call;
    return Variant(text);
  }
  void PutProperty(const std::string& name, const Variant& value) override {
    calls_->push_back(name + "=" + value.ConcatText());
    db_->PutProperty(name, value);
  }
  // Open, Close and Execute(text, [RecordsAffected], [Options]).
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    std::string noted;
    for (size_t i = 0; i < args.size(); ++i) noted += (i ? "," : "") + args[i].ConcatText();
    calls_->push_back(name + "(" + noted + ")");
    if (vb::UCase(name) != "EXECUTE") return db_->CallMethod(name, args);
    const Variant options = Arg(args, 2);
    return RecordsetOf(db_->Execute(InlineRoutines(*db_, Arg(args, 0).ToString()),
                                    options.IsEmpty() ? db::kCmdUnspecified : options.ToLong()));
  }
  const std::shared_ptr<db::Connection> db_ = std::make_shared<db::Connection>();

 private:
  Calls calls_;
};

// A parameter of a command's collection, or one CreateParameter made that
// is not appended yet.
class AdoParameter : public Object {
 public:
  AdoParameter(std::shared_ptr<db::Command> command, db::ParameterInfo info)
      : command_(std::move(command)), info_(std::move(info)) {}
  std::string TypeName() const override { return "Parameter"; }
  Variant GetProperty(const std::string& name) override {
    if (vb::UCase(name) == "NAME") return Variant(info_.name);
    if (vb::UCase(name) != "VALUE" && !name.empty()) return Object::GetProperty(name);
    return command_ ? command_->Parameters(info_.name).Value() : info_.value;
  }
  void PutProperty(const std::string& name, const Variant& value) override {
    if (vb::UCase(name) != "VALUE" && !name.empty()) return Object::PutProperty(name, value);
    if (command_) return command_->Parameters(info_.name).SetValue(value);
    info_.value = value;
  }
  void AppendTo(std::shared_ptr<db::Command> command) {
    command_ = std::move(command);
    command_->AppendParameter(info_);
  }

 private:
  std::shared_ptr<db::Command> command_;
  db::ParameterInfo info_;
};

// Count, Item(name) and Append(parameter).
class AdoParameters : public Object {
 public:
  explicit AdoParameters(std::shared_ptr<db::Command> command) : command_(std::move(command)) {}
  std::string TypeName() const override { return "Parameters"; }
  Variant GetProperty(const std::string& name) override {
    if (vb::UCase(name) != "COUNT") return Object::GetProperty(name);
    return Variant(static_cast<int32_t>(command_->ParameterCount()));
  }
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    const std::string member = vb::UCase(name);
    if (args.size() != 1 || (member != "ITEM" && member != "APPEND" && !name.empty())) {
      return Object::CallMethod(name, args);
    }
    if (member == "APPEND") {
      auto parameter = std::dynamic_pointer_cast<AdoParameter>(args[0].ToObject());
      if (!parameter) throw VbError(vberr::kAdoArgumentsWrong);
      parameter->AppendTo(command_);
      return Variant();
    }
    db::ParameterInfo info;
    info.name = command_->Parameters(args[0].ToString()).Name();  // unknown: 3265
    return Variant(ObjectRef(std::make_shared<AdoParameter>(command_, info)));
  }

 private:
  std::shared_ptr<db::Command> command_;
};

class AdoCommand : public Object {
 public:
  std::string TypeName() const override { return "Command"; }
  Variant GetProperty(const std::string& name) override {
    const std::string member = vb::UCase(name);
    if (member == "COMMANDTYPE") return Variant(static_cast<int32_t>(command_->CommandType()));
    if (member == "COMMANDTEXT") return Variant(command_->CommandText());
    if (member == "ACTIVECONNECTION") return Variant(connection_);
    if (member == "PARAMETERS")
      return Variant(ObjectRef(std::make_shared<AdoParameters>(command_)));
    return Object::GetProperty(name);
  }
  void PutProperty(const std::string& name, const Variant& value) override {
    const std::string member = vb::UCase(name);
    if (member == "COMMANDTYPE") {
      command_->SetCommandType(value.ToLong());
    } else if (member == "COMMANDTEXT") {
      command_->SetCommandText(value.ToString());
    } else if (member == "ACTIVECONNECTION") {
      auto connection = std::dynamic_pointer_cast<AdoConnection>(value.ToObject());
      if (!connection) throw VbError(vberr::kAdoArgumentsWrong);
      connection_ = connection;
      command_->SetActiveConnection(connection->db_);
    } else {
      Object::PutProperty(name, value);
    }
  }
  // Execute() and CreateParameter(Name, Type, Direction[, Size[, Value]]).
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    if (vb::UCase(name) == "EXECUTE") return RecordsetOf(command_->Execute());
    if (vb::UCase(name) != "CREATEPARAMETER") return Object::CallMethod(name, args);
    const db::ParameterInfo info{Arg(args, 0).ToString(), Arg(args, 1).ToLong(),
                                 static_cast<db::ParameterDirection>(Arg(args, 2).ToLong()),
                                 Arg(args, 4)};
    return Variant(ObjectRef(std::make_shared<AdoParameter>(nullptr, info)));
  }

 private:
  std::shared_ptr<db::Command> command_ = std::make_shared<db::Command>();
  ObjectRef connection_;
};

}  // namespace

ObjectRef AdoFactory::CreateObject(const std::string& prog_id) {
  if (vb::UCase(prog_id) == "ADODB.CONNECTION") return std::make_shared<AdoConnection>(calls);
  if (vb::UCase(prog_id) == "ADODB.COMMAND") return std::make_shared<AdoCommand>();
  throw VbError(429, "ActiveX component can't create object");
}

}  // namespace zarvik::testing
