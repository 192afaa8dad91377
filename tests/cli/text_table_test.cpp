// Text layout of the tour.
#include "cli/text_table.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace zarvik::cli {
namespace {

TEST(TextTable, ColumnsAreAsWideAsTheirWidestCellAndRightAlignedOnRequest) {
  TextTable table({"ID", "CODE", "NOTE"});
  table.AlignRight(0);
  table.AddRow({"5", "ROSSI", "many"});
  table.AddRow({"40000", "Z", ""});
  table.AddRow({"7"});  // missing cells are blank
  std::ostringstream out;
  table.Print(out, "  ");
  EXPECT_EQ(out.str(),
            "     ID  CODE   NOTE\n"
            "  -----  -----  ----\n"
            "      5  ROSSI  many\n"
            "  40000  Z\n"
            "      7\n");
  EXPECT_EQ(table.RowCount(), 3u);
}

struct WrapCase {
  std::string text;
  size_t width;
  std::vector<std::string> lines;
};

void PrintTo(const WrapCase& c, std::ostream* out) { *out << c.width << " columns: " << c.text; }

class WrapTextTest : public ::testing::TestWithParam<WrapCase> {};

TEST_P(WrapTextTest, Wraps) {
  EXPECT_EQ(WrapText(GetParam().text, GetParam().width), GetParam().lines) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WrapTextTest,
    ::testing::Values(WrapCase{"", 10, {""}}, WrapCase{"one two three", 7, {"one two", "three"}},
                      WrapCase{"exactly ten", 11, {"exactly ten"}},
                      WrapCase{"a verylongwordhere b", 5, {"a", "verylongwordhere", "b"}},
                      WrapCase{"  extra   blanks  ", 20, {"extra blanks"}}));

TEST(PrintLabelled, ContinuationLinesStartUnderTheText) {
  std::ostringstream out;
  PrintLabelled(out, "  ", "label", 8, "alpha beta gamma delta epsilon zeta eta theta", 34);
  EXPECT_EQ(out.str(),
            "  label     alpha beta gamma delta\n"
            "            epsilon zeta eta theta\n");
}

TEST(PrintLabelled, LabelLongerThanItsWidthStillGetsTwoBlanks) {
  std::ostringstream out;
  PrintLabelled(out, "", "a long label", 4, "x", 80);
  EXPECT_EQ(out.str(), "a long label  x\n");
}

}  // namespace
}  // namespace zarvik::cli
