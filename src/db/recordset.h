// ADO-like Recordset over rows a backend returned.
#ifndef ZARVIK_DB_RECORDSET_H_
#define ZARVIK_DB_RECORDSET_H_

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "db/backend.h"
#include "platform/object.h"
#include "platform/variant.h"

// ADO names the end-of-rows test EOF, which the C library defines as a
// macro. <cstdio> is included above so that its include guard is set, and the
// macro is removed here for every file that uses a Recordset; such files use
// std::char_traits<char>::eof() for the C library's value.
#undef EOF

namespace zarvik::db {

// Cursor locations (ADO's CursorLocationEnum).
constexpr int kUseServer = 2;  // forward-only: RecordCount is -1
constexpr int kUseClient = 3;  // materialised: RecordCount is the row count

// Filter value that clears the filter (adFilterNone).
constexpr int kFilterNone = 0;

class Recordset : public Object {
 public:
  Recordset(RowSet rows, int cursor_location);
  // A recordset of a foreign ADO library (see Connection's peer): every
  // member below is a late-bound call on `peer`, fields read as
  // Fields.Item(key).Value, and the host gets `peer` itself back.
  explicit Recordset(ObjectRef peer);
  const ObjectRef& Peer() const { return peer_; }

  // adStateOpen (1) until Close, then adStateClosed (0).
  int State() const;
  bool EOF() const;  // NOLINT(readability-identifier-naming): ADO's name
  bool BOF() const;
  // Value of a column of the current row. Unknown name: 3265; no current
  // row: 3021; closed: 3704. Names compare without regard to case.
  Variant Fields(const std::string& name) const;
  Variant Fields(int index) const;
  int FieldCount() const;
  std::string FieldName(int index) const;
  // Next row; at EOF raises 3021.
  void MoveNext();
  // Client-side: the number of rows (after the filter); server-side: -1.
  int32_t RecordCount() const;
  // Criteria "FIELD = value [AND FIELD = value ...]" (value numeric or
  // 'quoted'), or the number 0 to clear. Moves to the first matching row.
  // Bad criteria raise 3001.
  void SetFilter(const Variant& criteria);
  Variant Filter() const;
  void Close();

  // Late-bound members: EOF, BOF, RecordCount, State, Fields(name),
  // MoveNext, Close, Filter.
  std::string TypeName() const override { return "Recordset"; }
  Variant GetProperty(const std::string& name) override;
  void PutProperty(const std::string& name, const Variant& value) override;
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override;

 private:
  void CheckOpen() const;
  int ColumnIndex(const std::string& name) const;
  ObjectRef PeerField(const Variant& key) const;

  RowSet rows_;
  int cursor_location_;
  bool open_ = true;
  std::vector<size_t> visible_;  // indexes of the rows the filter lets through
  size_t position_ = 0;          // index into visible_
  bool moved_before_first_ = false;
  Variant filter_ = Variant(int16_t{0});
  ObjectRef peer_;
};

}  // namespace zarvik::db

#endif  // ZARVIK_DB_RECORDSET_H_
