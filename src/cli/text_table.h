// Plain-text tables and wrapped label/text lines for the tour.
#ifndef ZARVIK_CLI_TEXT_TABLE_H_
#define ZARVIK_CLI_TEXT_TABLE_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace zarvik::cli {

// Columns separated by two blanks, each as wide as its widest cell; the
// header is underlined with dashes. Cells are left-aligned unless their
// column is marked right-aligned. No line carries trailing blanks.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string> headers);
  void AlignRight(size_t column);
  void AddRow(std::vector<std::string> cells);  // missing cells are blank
  size_t RowCount() const { return rows_.size(); }
  void Print(std::ostream& out, const std::string& indent) const;

 private:
  std::vector<std::string> headers_;
  std::vector<bool> right_;
  std::vector<std::vector<std::string>> rows_;
};

// Breaks text at blanks into lines of at most `width` characters (a word
// longer than that gets a line of its own).
std::vector<std::string> WrapText(const std::string& text, size_t width);

// Prints `label` padded to `label_width`, then `text` wrapped so that no
// line exceeds `line_width`; continuation lines are indented under the
// text.
void PrintLabelled(std::ostream& out, const std::string& indent, const std::string& label,
                   size_t label_width, const std::string& text, size_t line_width);

}  // namespace zarvik::cli

#endif  // ZARVIK_CLI_TEXT_TABLE_H_
