#include "cli/text_table.h"

#include <algorithm>
#include <ostream>

namespace zarvik::cli {
namespace {

std::string RightTrimmed(std::string line) {
  const size_t end = line.find_last_not_of(' ');
  line.erase(end == std::string::npos ? 0 : end + 1);
  return line;
}

}  // namespace

TextTable::TextTable(std::vector<std::string> headers)
    : headers_(std::move(headers)), right_(headers_.size(), false) {}

void TextTable::AlignRight(size_t column) {
  if (column < right_.size()) right_[column] = true;
}

void TextTable::AddRow(std::vector<std::string> cells) {
  cells.resize(headers_.size());
  rows_.push_back(std::move(cells));
}

void TextTable::Print(std::ostream& out, const std::string& indent) const {
  std::vector<size_t> widths;
  for (const std::string& h : headers_) widths.push_back(h.size());
  for (const auto& row : rows_) {
    for (size_t c = 0; c < row.size(); ++c) widths[c] = std::max(widths[c], row[c].size());
  }
  auto print_line = [&](const std::vector<std::string>& cells) {
    std::string line = indent;
    for (size_t c = 0; c < cells.size(); ++c) {
      if (c > 0) line += "  ";
      const std::string pad(widths[c] - cells[c].size(), ' ');
      line += right_[c] ? pad + cells[c] : cells[c] + pad;
    }
    out << RightTrimmed(line) << "\n";
  };
  print_line(headers_);
  std::vector<std::string> rule;
  for (size_t w : widths) rule.emplace_back(w, '-');
  print_line(rule);
  for (const auto& row : rows_) print_line(row);
}

std::vector<std::string> WrapText(const std::string& text, size_t width) {
  std::vector<std::string> lines;
  std::string line;
  size_t i = 0;
  while (i < text.size()) {
    if (text[i] == ' ') {
      ++i;
      continue;
    }
    const size_t end = std::min(text.find(' ', i), text.size());
    const std::string word = text.substr(i, end - i);
    i = end;
    if (!line.empty() && line.size() + 1 + word.size() > width) {
      lines.push_back(line);
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
  }
  if (!line.empty() || lines.empty()) lines.push_back(line);
  return lines;
}

void PrintLabelled(std::ostream& out, const std::string& indent, const std::string& label,
                   size_t label_width, const std::string& text, size_t line_width) {
  const size_t lead = indent.size() + std::max(label_width, label.size()) + 2;
  const size_t room = line_width > lead + 20 ? line_width - lead : 20;
  const std::vector<std::string> lines = WrapText(text, room);
  std::string first = indent + label + std::string(lead - indent.size() - label.size(), ' ');
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string line = (i == 0 ? first : std::string(lead, ' ')) + lines[i];
    out << RightTrimmed(line) << "\n";
  }
}

}  // namespace zarvik::cli
