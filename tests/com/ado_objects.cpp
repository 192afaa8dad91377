#include "com/ado_objects.h"

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

Variant RecordsetOf(std::shared_ptr<db::Recordset> rs) {
  return Variant(ObjectRef(std::make_shared<AdoRecordset>(std::move(rs))));
}

class AdoConnection : public Object {
 public:
  explicit AdoConnection(Calls calls) : calls_(std::move(calls)) {}
  std::string TypeName() const override { return "Connection"; }
  Variant GetProperty(const std::string& name) override { return db_->GetProperty(name); }
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
    return RecordsetOf(db_->Execute(Arg(args, 0).ToString(),
                                    options.IsEmpty() ? db::kCmdUnspecified : options.ToLong()));
  }
  const std::shared_ptr<db::Connection> db_ = std::make_shared<db::Connection>();

 private:
  Calls calls_;
};

class AdoParameter : public Object {
 public:
  AdoParameter(std::shared_ptr<db::Command> command, std::string name)
      : command_(std::move(command)), name_(std::move(name)) {}
  std::string TypeName() const override { return "Parameter"; }
  Variant GetProperty(const std::string& name) override {
    if (vb::UCase(name) == "NAME") return Variant(command_->Parameters(name_).Name());
    if (vb::UCase(name) == "VALUE" || name.empty()) return command_->Parameters(name_).Value();
    return Object::GetProperty(name);
  }
  void PutProperty(const std::string& name, const Variant& value) override {
    if (vb::UCase(name) != "VALUE" && !name.empty()) return Object::PutProperty(name, value);
    command_->Parameters(name_).SetValue(value);
  }

 private:
  std::shared_ptr<db::Command> command_;
  std::string name_;
};

class AdoParameters : public Object {
 public:
  explicit AdoParameters(std::shared_ptr<db::Command> command) : command_(std::move(command)) {}
  std::string TypeName() const override { return "Parameters"; }
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    if (!name.empty() && vb::UCase(name) != "ITEM") return Object::CallMethod(name, args);
    if (args.size() != 1) throw VbError(vberr::kWrongArgCount);
    const std::string key = args[0].ToString();
    command_->Parameters(key);  // an unknown name raises 3265 here
    return Variant(ObjectRef(std::make_shared<AdoParameter>(command_, key)));
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
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    if (vb::UCase(name) != "EXECUTE") return Object::CallMethod(name, args);
    return RecordsetOf(command_->Execute());
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
