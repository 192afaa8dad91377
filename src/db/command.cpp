// Command: a stored procedure call with named parameters, or statement text.
#include "db/command.h"

#include <exception>
#include <utility>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

// Parameter names match without regard to case and to the leading '@'.
std::string ParameterKey(const std::string& name) {
  return vb::UCase(!name.empty() && name[0] == '@' ? name.substr(1) : name);
}

}  // namespace

Parameter::Parameter(std::string name, ObjectRef peer) : peer_(std::move(peer)) {
  info_.name = std::move(name);
}

Variant Parameter::Value() const { return peer_ ? peer_->GetProperty("Value") : info_.value; }

void Parameter::SetValue(const Variant& value) {
  if (peer_) return peer_->PutProperty("Value", value);
  info_.value = value;
}

void Command::SetCommandType(int value) {
  if (peer_) peer_->PutProperty("CommandType", Variant(static_cast<int32_t>(value)));
  command_type_ = value;
}

void Command::SetCommandText(const std::string& value) {
  if (peer_) peer_->PutProperty("CommandText", Variant(value));
  if (value != command_text_) {
    parameters_.clear();
    described_ = false;
  }
  command_text_ = value;
}

void Command::SetActiveConnection(std::shared_ptr<Connection> connection) {
  connection_ = std::move(connection);
  if (!connection_ || !connection_->Peer()) return;
  if (!peer_) {
    peer_ = connection_->PeerFactory()->CreateObject("ADODB.Command");
    peer_->PutProperty("CommandType", Variant(static_cast<int32_t>(command_type_)));
    peer_->PutProperty("CommandText", Variant(command_text_));
  }
  peer_->PutProperty("ActiveConnection", Variant(connection_->Peer()));
}

void Command::Describe() {
  if (!connection_) throw VbError(vberr::kAdoConnectionUnusable);
  Backend& backend = connection_->OpenBackendOrThrow();
  std::vector<ParameterInfo> infos;
  try {
    infos = backend.DescribeProcedure(command_text_);
  } catch (const VbError&) {
    throw;
  } catch (const std::exception& e) {
    throw VbError(vberr::kProviderError, e.what());
  }
  parameters_.clear();
  for (ParameterInfo& info : infos) parameters_.emplace_back(std::move(info));
  described_ = true;
}

Parameter& Command::Parameters(const std::string& name) {
  if (peer_) {
    for (Parameter& p : parameters_) {
      if (ParameterKey(p.Name()) == ParameterKey(name)) return p;
    }
    std::vector<Variant> key{Variant(name)};
    ObjectRef item =
        peer_->GetProperty("Parameters").ToObject()->CallMethod("Item", key).ToObject();
    return parameters_.emplace_back(name, std::move(item));
  }
  if (!described_ && IsStoredProc(command_type_)) Describe();
  const std::string key = ParameterKey(name);
  for (Parameter& p : parameters_) {
    if (ParameterKey(p.Name()) == key) return p;
  }
  throw VbError(vberr::kAdoItemNotFound);
}

int Command::ParameterCount() {
  if (peer_) return peer_->GetProperty("Parameters").ToObject()->GetProperty("Count").ToLong();
  if (!described_ && IsStoredProc(command_type_)) Describe();
  return static_cast<int>(parameters_.size());
}

void Command::AppendParameter(ParameterInfo info) {
  if (peer_) {
    // cmd.Parameters.Append cmd.CreateParameter(Name, Type, Direction, Size):
    // a text parameter needs a size, and 8000 is SQL Server's longest varchar.
    const int32_t size = info.type == adtype::kVarChar ? 8000 : 0;
    std::vector<Variant> args{Variant(info.name), Variant(static_cast<int32_t>(info.type)),
                              Variant(static_cast<int32_t>(info.direction)), Variant(size)};
    ObjectRef parameter = peer_->CallMethod("CreateParameter", args).ToObject();
    args = {Variant(parameter)};
    peer_->GetProperty("Parameters").ToObject()->CallMethod("Append", args);
    parameters_.emplace_back(info.name, std::move(parameter));
    return;
  }
  parameters_.emplace_back(std::move(info));
  described_ = true;  // an explicit collection is not described again
}

std::shared_ptr<Recordset> Command::Execute(long /*options*/) {
  if (peer_) {
    if (connection_) connection_->LogPeerStatement(command_text_, command_type_);
    std::vector<Variant> none;
    return std::make_shared<Recordset>(peer_->CallMethod("Execute", none).ToObject());
  }
  if (!connection_) throw VbError(vberr::kAdoConnectionUnusable);
  Backend& backend = connection_->OpenBackendOrThrow();
  if (!IsStoredProc(command_type_)) return connection_->Execute(command_text_, command_type_);
  if (!described_) Describe();
  std::vector<ParameterInfo> infos;
  infos.reserve(parameters_.size());
  for (Parameter& p : parameters_) infos.push_back(p.Info());
  RowSet rows;
  try {
    rows = backend.CallProcedure(command_text_, infos);
  } catch (const VbError&) {
    throw;
  } catch (const std::exception& e) {
    throw VbError(vberr::kProviderError, e.what());
  }
  for (size_t i = 0; i < parameters_.size() && i < infos.size(); ++i) {
    if (infos[i].direction != ParameterDirection::kInput) {
      parameters_[i].SetValue(infos[i].value);
    }
  }
  const bool has_rows = !rows.columns.empty();
  auto recordset = std::make_shared<Recordset>(std::move(rows), connection_->CursorLocation());
  if (!has_rows) recordset->Close();
  return recordset;
}

}  // namespace zarvik::db
