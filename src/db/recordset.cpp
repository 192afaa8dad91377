// Recordset navigation, field access and filtering over rows already read.
#include "db/recordset.h"

#include <cctype>
#include <cstdlib>
#include <utility>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::db {
namespace {

// One "FIELD op value" term of a filter.
struct FilterTerm {
  int column = -1;
  std::string op;
  Variant value;
  bool null_value = false;  // FIELD = NULL / FIELD <> NULL
};

class FilterParser {
 public:
  explicit FilterParser(const std::string& text) : s_(text) {}

  // The terms of the criteria, with field names not yet resolved.
  std::vector<std::pair<std::string, FilterTerm>> Parse() {
    std::vector<std::pair<std::string, FilterTerm>> terms;
    for (;;) {
      std::string field = Field();
      FilterTerm term;
      term.op = Operator();
      Value(&term);
      terms.emplace_back(std::move(field), std::move(term));
      SkipBlanks();
      if (pos_ == s_.size()) break;
      if (vb::UCase(Word()) != "AND") throw Bad();
    }
    return terms;
  }

 private:
  static VbError Bad() { return VbError(vberr::kAdoArgumentsWrong); }

  void SkipBlanks() {
    while (pos_ < s_.size() && std::isspace(static_cast<unsigned char>(s_[pos_])) != 0) ++pos_;
  }

  std::string Word() {
    SkipBlanks();
    const size_t start = pos_;
    while (pos_ < s_.size() &&
           (std::isalnum(static_cast<unsigned char>(s_[pos_])) != 0 || s_[pos_] == '_')) {
      ++pos_;
    }
    return s_.substr(start, pos_ - start);
  }

  std::string Field() {
    SkipBlanks();
    if (pos_ < s_.size() && s_[pos_] == '[') {
      const size_t close = s_.find(']', pos_);
      if (close == std::string::npos) throw Bad();
      std::string name = s_.substr(pos_ + 1, close - pos_ - 1);
      pos_ = close + 1;
      return name;
    }
    std::string name = Word();
    if (name.empty()) throw Bad();
    return name;
  }

  std::string Operator() {
    SkipBlanks();
    for (const char* op : {"<>", "<=", ">=", "=", "<", ">"}) {
      const std::string text(op);
      if (s_.compare(pos_, text.size(), text) == 0) {
        pos_ += text.size();
        return text;
      }
    }
    throw Bad();
  }

  void Value(FilterTerm* term) {
    SkipBlanks();
    if (pos_ < s_.size() && s_[pos_] == '\'') {
      std::string text;
      ++pos_;
      for (;;) {
        if (pos_ >= s_.size()) throw Bad();
        if (s_[pos_] == '\'') {
          if (pos_ + 1 < s_.size() && s_[pos_ + 1] == '\'') {
            text += '\'';
            pos_ += 2;
            continue;
          }
          ++pos_;
          break;
        }
        text += s_[pos_++];
      }
      term->value = Variant(text);
      return;
    }
    const size_t start = pos_;
    if (pos_ < s_.size() && (s_[pos_] == '-' || s_[pos_] == '+')) ++pos_;
    while (pos_ < s_.size() &&
           (std::isalnum(static_cast<unsigned char>(s_[pos_])) != 0 || s_[pos_] == '.')) {
      ++pos_;
    }
    const std::string text = s_.substr(start, pos_ - start);
    if (vb::UCase(text) == "NULL") {
      if (term->op != "=" && term->op != "<>") throw Bad();
      term->null_value = true;
      return;
    }
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (text.empty() || end != text.c_str() + text.size()) throw Bad();
    term->value = Variant(number);
  }

  const std::string& s_;
  size_t pos_ = 0;
};

bool Matches(const FilterTerm& term, const Variant& field) {
  if (term.null_value) return (term.op == "=") == field.IsNull();
  std::optional<int> order;
  try {
    order = VbCompare(field, term.value);
  } catch (const VbError&) {
    return false;  // text that is not a number never equals a number
  }
  if (!order) return false;
  if (term.op == "=") return *order == 0;
  if (term.op == "<>") return *order != 0;
  if (term.op == "<") return *order < 0;
  if (term.op == ">") return *order > 0;
  if (term.op == "<=") return *order <= 0;
  return *order >= 0;
}

}  // namespace

Recordset::Recordset(RowSet rows, int cursor_location)
    : rows_(std::move(rows)), cursor_location_(cursor_location) {
  for (size_t i = 0; i < rows_.rows.size(); ++i) visible_.push_back(i);
}

Recordset::Recordset(ObjectRef peer) : cursor_location_(kUseClient), peer_(std::move(peer)) {}

ObjectRef Recordset::PeerField(const Variant& key) const {
  std::vector<Variant> args{key};
  return peer_->GetProperty("Fields").ToObject()->CallMethod("Item", args).ToObject();
}

int Recordset::State() const {
  if (peer_) return peer_->GetProperty("State").ToLong();
  return open_ ? 1 : 0;
}

void Recordset::CheckOpen() const {
  if (!open_) throw VbError(vberr::kAdoObjectClosed);
}

bool Recordset::EOF() const {
  if (peer_) return peer_->GetProperty("EOF").ToBool();
  CheckOpen();
  return position_ >= visible_.size();
}

bool Recordset::BOF() const {
  if (peer_) return peer_->GetProperty("BOF").ToBool();
  CheckOpen();
  return visible_.empty() || moved_before_first_;
}

int Recordset::ColumnIndex(const std::string& name) const {
  const std::string wanted = vb::UCase(name);
  for (size_t i = 0; i < rows_.columns.size(); ++i) {
    if (vb::UCase(rows_.columns[i]) == wanted) return static_cast<int>(i);
  }
  return -1;
}

Variant Recordset::Fields(const std::string& name) const {
  if (peer_) return PeerField(Variant(name))->GetProperty("Value");
  CheckOpen();
  const int index = ColumnIndex(name);
  if (index < 0) throw VbError(vberr::kAdoItemNotFound);
  return Fields(index);
}

Variant Recordset::Fields(int index) const {
  if (peer_) return PeerField(Variant(static_cast<int32_t>(index)))->GetProperty("Value");
  CheckOpen();
  if (index < 0 || index >= FieldCount()) throw VbError(vberr::kAdoItemNotFound);
  if (position_ >= visible_.size() || moved_before_first_) {
    throw VbError(vberr::kAdoNoCurrentRecord);
  }
  return rows_.rows[visible_[position_]][static_cast<size_t>(index)];
}

int Recordset::FieldCount() const {
  if (peer_) return peer_->GetProperty("Fields").ToObject()->GetProperty("Count").ToLong();
  CheckOpen();
  return static_cast<int>(rows_.columns.size());
}

std::string Recordset::FieldName(int index) const {
  if (peer_) return PeerField(Variant(static_cast<int32_t>(index)))->GetProperty("Name").ToString();
  CheckOpen();
  if (index < 0 || index >= FieldCount()) throw VbError(vberr::kAdoItemNotFound);
  return rows_.columns[static_cast<size_t>(index)];
}

void Recordset::MoveNext() {
  if (peer_) {
    std::vector<Variant> none;
    peer_->CallMethod("MoveNext", none);
    return;
  }
  CheckOpen();
  if (position_ >= visible_.size()) throw VbError(vberr::kAdoNoCurrentRecord);
  ++position_;
}

int32_t Recordset::RecordCount() const {
  if (peer_) return peer_->GetProperty("RecordCount").ToLong();
  CheckOpen();
  if (cursor_location_ != kUseClient) return -1;
  return static_cast<int32_t>(visible_.size());
}

void Recordset::SetFilter(const Variant& criteria) {
  if (peer_) {
    peer_->PutProperty("Filter", criteria);
    return;
  }
  CheckOpen();
  std::vector<size_t> visible;
  const bool clear = criteria.Type() == VarType::kString
                         ? vb::Trim(criteria.RawString()).empty()
                         : criteria.IsNumeric() && criteria.ToDouble() == kFilterNone;
  if (clear) {
    for (size_t i = 0; i < rows_.rows.size(); ++i) visible.push_back(i);
    filter_ = Variant(int16_t{kFilterNone});
  } else {
    if (criteria.Type() != VarType::kString) throw VbError(vberr::kAdoArgumentsWrong);
    const std::string text = criteria.RawString();
    std::vector<FilterTerm> terms;
    for (auto& [field, term] : FilterParser(text).Parse()) {
      term.column = ColumnIndex(field);
      if (term.column < 0) throw VbError(vberr::kAdoArgumentsWrong);
      terms.push_back(std::move(term));
    }
    for (size_t i = 0; i < rows_.rows.size(); ++i) {
      bool all = true;
      for (const FilterTerm& term : terms) {
        all = all && Matches(term, rows_.rows[i][static_cast<size_t>(term.column)]);
      }
      if (all) visible.push_back(i);
    }
    filter_ = criteria;
  }
  visible_ = std::move(visible);
  position_ = 0;
  moved_before_first_ = false;
}

Variant Recordset::Filter() const {
  if (peer_) return peer_->GetProperty("Filter");
  CheckOpen();
  return filter_;
}

void Recordset::Close() {
  if (peer_) {
    std::vector<Variant> none;
    peer_->CallMethod("Close", none);
    return;
  }
  CheckOpen();
  open_ = false;
  rows_ = RowSet{};
  visible_.clear();
  position_ = 0;
}

Variant Recordset::GetProperty(const std::string& name) {
  if (peer_) return peer_->GetProperty(name);
  const std::string member = vb::UCase(name);
  if (member == "EOF") return Variant::Boolean(EOF());
  if (member == "BOF") return Variant::Boolean(BOF());
  if (member == "RECORDCOUNT") return Variant(RecordCount());
  if (member == "STATE") return Variant(static_cast<int32_t>(State()));
  if (member == "FILTER") return Filter();
  return Object::GetProperty(name);
}

void Recordset::PutProperty(const std::string& name, const Variant& value) {
  if (peer_) {
    peer_->PutProperty(name, value);
    return;
  }
  if (vb::UCase(name) == "FILTER") {
    SetFilter(value);
    return;
  }
  Object::PutProperty(name, value);
}

Variant Recordset::CallMethod(const std::string& name, std::vector<Variant>& args) {
  if (peer_) return peer_->CallMethod(name, args);
  const std::string member = vb::UCase(name);
  if (member == "FIELDS" || member == "COLLECT") {
    if (args.size() != 1) throw VbError(vberr::kWrongArgCount);
    if (args[0].Type() == VarType::kString) return Fields(args[0].RawString());
    return Fields(static_cast<int>(args[0].ToLong()));
  }
  if (member == "MOVENEXT" || member == "CLOSE") {
    if (!args.empty()) throw VbError(vberr::kWrongArgCount);
    if (member == "MOVENEXT") {
      MoveNext();
    } else {
      Close();
    }
    return Variant();
  }
  return Object::CallMethod(name, args);
}

}  // namespace zarvik::db
