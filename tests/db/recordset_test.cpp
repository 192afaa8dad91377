#include "db/recordset.h"

#include "db/db_test_support.h"

namespace zarvik::db {
namespace {

// CODE (Long, text or Double), NAME (text), QTY (Long or Null).
RowSet SampleRows() {
  RowSet rows;
  rows.columns = {"CODE", "Name", "QTY"};
  rows.rows = {{Variant(int32_t{1}), Variant("alpha"), Variant(int32_t{10})},
               {Variant("1"), Variant("beta"), Variant::Null()},
               {Variant(2.0), Variant("O'Brien"), Variant(int32_t{10})},
               {Variant("abc"), Variant("gamma"), Variant(int32_t{30})}};
  return rows;
}

std::vector<std::string> Names(Recordset& rs) {
  std::vector<std::string> names;
  for (; !rs.EOF(); rs.MoveNext()) names.push_back(rs.Fields("NAME").ToString());
  return names;
}

TEST(RecordsetTest, WalksRowsInOrderStopsAtEofAndCloses) {
  Recordset rs(SampleRows(), kUseClient);
  EXPECT_FALSE(rs.BOF());
  EXPECT_EQ(rs.Fields("code").ConcatText() + rs.Fields(1).ToString() + rs.FieldName(1),
            "1alphaName");
  // An unknown field is reported before a missing row.
  EXPECT_EQ(ErrorsOf({[&] { rs.Fields(3); }, [&] { rs.Fields(-1); }, [&] { rs.FieldName(7); }}),
            std::vector<int32_t>(3, vberr::kAdoItemNotFound));
  EXPECT_EQ(Names(rs), (std::vector<std::string>{"alpha", "beta", "O'Brien", "gamma"}));
  EXPECT_EQ(
      ErrorsOf({[&] { rs.Fields("NOPE"); }, [&] { rs.MoveNext(); }, [&] { rs.Fields("CODE"); }}),
      (std::vector<int32_t>{vberr::kAdoItemNotFound, vberr::kAdoNoCurrentRecord,
                            vberr::kAdoNoCurrentRecord}));
  Recordset empty(RowSet{{"A"}, {}}, kUseClient);
  EXPECT_TRUE(empty.EOF() && empty.BOF() && empty.RecordCount() == 0);
  rs.Close();  // then every member raises 3704
  EXPECT_EQ(rs.State(), 0);
  EXPECT_EQ(ErrorsOf({[&] { rs.EOF(); }, [&] { rs.BOF(); }, [&] { rs.Fields("CODE"); },
                      [&] { rs.MoveNext(); }, [&] { rs.RecordCount(); },
                      [&] { rs.SetFilter(Variant("A = 1")); }, [&] { rs.Filter(); },
                      [&] { rs.FieldCount(); }, [&] { rs.Close(); }}),
            std::vector<int32_t>(9, vberr::kAdoObjectClosed));
}

// A number matches a Long, numeric text and a Double alike; text that is no number never does.
TEST(RecordsetTest, FilterKeepsMatchingRowsClearsAndRefusesBadCriteria) {
  const std::vector<std::pair<const char*, std::vector<std::string>>> cases = {
      {"code = '1'", {"alpha", "beta"}},
      {"CODE = 2", {"O'Brien"}},
      {"QTY = 10 and NAME = 'O''Brien'", {"O'Brien"}},
      {"[QTY] = 30", {"gamma"}},
      {"QTY = NULL", {"beta"}},
      {"QTY <> NULL", {"alpha", "O'Brien", "gamma"}},
      {"QTY > 10", {"gamma"}},
      {"NAME = 'ALPHA'", {}}};
  for (const auto& [criteria, names] : cases) {
    SCOPED_TRACE(criteria);
    Recordset rs(SampleRows(), kUseClient);
    rs.MoveNext();
    rs.SetFilter(Variant(criteria));
    EXPECT_EQ(rs.RecordCount(), static_cast<int32_t>(names.size()));
    EXPECT_EQ(rs.BOF(), names.empty());
    EXPECT_EQ(rs.Filter().ToString(), criteria);
    EXPECT_EQ(Names(rs), names);
  }
  // Cleared by adFilterNone or ""; bad criteria are refused.
  Recordset rs(SampleRows(), kUseServer);
  rs.SetFilter(Variant("QTY = 30"));
  EXPECT_EQ(rs.RecordCount(), -1);
  rs.SetFilter(Variant(int16_t{kFilterNone}));
  EXPECT_EQ(std::to_string(Names(rs).size()) + " rows, Filter " + rs.Filter().ConcatText(),
            "4 rows, Filter 0");
  rs.SetFilter(Variant("QTY = 30"));
  rs.SetFilter(Variant(""));
  EXPECT_EQ(Names(rs).size(), 4u);
  for (const char* bad : {"NOSUCH = 1", "CODE == 1", "CODE = 'open", "CODE = 1 OR QTY = 2",
                          "CODE =", "= 1", "CODE = 1 AND", "CODE = 1x", "QTY > NULL"}) {
    EXPECT_EQ(ErrorOf([&] { rs.SetFilter(Variant(bad)); }), vberr::kAdoArgumentsWrong) << bad;
  }
  EXPECT_EQ(ErrorOf([&] { rs.SetFilter(Variant(int16_t{2})); }), vberr::kAdoArgumentsWrong);
}

TEST(RecordsetTest, LateBoundMembers) {
  auto rs = std::make_shared<Recordset>(SampleRows(), kUseClient);
  Object& object = *rs;
  std::vector<Variant> by_name{Variant("name")}, by_index{Variant(int32_t{2})}, none;
  EXPECT_EQ(object.GetProperty("RecordCount").ConcatText() + " " +
                object.CallMethod("Fields", by_name).ToString() + " " +
                object.CallMethod("Fields", by_index).ConcatText(),
            "4 alpha 10");
  object.PutProperty("Filter", Variant("QTY = 30"));
  object.CallMethod("MoveNext", none);
  const Variant eof = object.GetProperty("eof");
  EXPECT_TRUE(eof.Type() == VarType::kBoolean && eof.ToBool());
  object.CallMethod("Close", none);
  EXPECT_EQ(object.GetProperty("State").ToLong(), 0);
  EXPECT_EQ(
      ErrorsOf({[&] { object.GetProperty("Nope"); }, [&] { object.CallMethod("Fields", none); }}),
      (std::vector<int32_t>{vberr::kNotSupported, vberr::kWrongArgCount}));
}

}  // namespace
}  // namespace zarvik::db
