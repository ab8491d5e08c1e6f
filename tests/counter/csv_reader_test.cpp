#include "counter/CCsvReader.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <string>

namespace counter {
namespace {

/// What the reader makes of a text: rows as "[cell|cell]" or, with places, "[line:column cell|...]", errors as
/// "!line:column what".
std::string read(const std::string& text, bool places = false, std::size_t maxRowBytes = 1000) {
  QByteArray bytes = QByteArray::fromStdString(text);
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  CCsvReader reader(buffer, maxRowBytes);
  std::string result;
  for (;;) {
    const auto row = reader.next();
    if (row == CCsvReader::ERow::End) return result;
    if (row == CCsvReader::ERow::Error) {
      const auto& error = reader.error();
      result += "!" + std::to_string(error.line) + ":" + std::to_string(error.column) + " " +
                error.message.substr(0, error.message.find(';'));
      continue;
    }
    std::string cells;
    for (const auto& cell : reader.cells()) {
      if (&cell != &reader.cells().front()) cells += "|";
      if (places) cells += std::to_string(cell.line) + ":" + std::to_string(cell.column) + " ";
      cells += cell.text;
    }
    result += "[" + cells + "]";
  }
}

TEST(CCsvReader, readsRows) {
  const struct {
    std::string text;
    const char* rows;
  } CASES[] = {
      {"", ""},
      {"\xEF\xBB\xBF", ""},
      {"\xEF\xBB\xBF"
       "a,b\n",
       "[a|b]"},
      {"a,b", "[a|b]"},
      {"a,b\r\nc,d\r\n", "[a|b][c|d]"},
      {"\n\r\na\n\n\nb\n", "[a][b]"},
      {",\n", "[|]"},
      {"a,\n", "[a|]"},
      {R"("a,b","say ""x""","")"
       "\n",
       R"([a,b|say "x"|])"},
      {"\"two\nlines\",\"\r\n\"\n", "[two\nlines|\r\n]"},
      {"\"\"\"\"\n", "[\"]"},
      {"合约,\"融资,融券\"\n", "[合约|融资,融券]"},
      {"\xF0\x9F\x98\x80,\xC2\x80\n", "[\xF0\x9F\x98\x80|\xC2\x80]"},
      {" a , b \n", "[ a | b ]"},
  };
  for (const auto& c : CASES) EXPECT_EQ(read(c.text), c.rows) << c.text;
}

TEST(CCsvReader, tellsPlacesInCharacters) {
  EXPECT_EQ(read("\xEF\xBB\xBF"
                 "合约,\"x\ny\",z\n\nlast",
                 true),
            "[1:1 合约|1:4 x\ny|2:4 z][4:1 last]");
  EXPECT_EQ(read("合约,a\"\nb\n", true), "!1:5 a quote inside an unquoted cell[2:1 b]");
}

TEST(CCsvReader, refusesDamagedTextAndGoesOn) {
  const struct {
    std::string text;
    const char* rows;
  } CASES[] = {
      {"a,\"b\nc,d\n", "!1:3 a quote without end"},
      {"\"a\"b,c\nd\n", "!1:4 text after a closing quote[d]"},
      {"a\rb\nc\n", "!1:2 a carriage return without line feed[c]"},
      {"a\r", "!1:2 a carriage return without line feed"},
      {std::string("a\0b\nc\n", 6), "!1:2 a NUL byte[c]"},
      {std::string("\"a\n\0\"\nc\n", 8), "!2:1 a NUL byte[c]"},
      {"a\x80\nb\n", "!1:2 bytes that are not UTF-8[b]"},             // continuation without a lead
      {"\xC0\xAF\nb\n", "!1:1 bytes that are not UTF-8[b]"},          // overlong
      {"\xE0\x9F\x80\nb\n", "!1:1 bytes that are not UTF-8[b]"},      // overlong
      {"\xED\xA0\x80\nb\n", "!1:1 bytes that are not UTF-8[b]"},      // surrogate
      {"\xF4\x90\x80\x80\nb\n", "!1:1 bytes that are not UTF-8[b]"},  // beyond Unicode
      {"\xE5\x90\n", "!1:1 bytes that are not UTF-8"},                // cut short
      {"a,\xE5\x90", "!1:3 bytes that are not UTF-8"},
      {"\xFF\xFE"
       "a\n",
       "!1:1 bytes that are not UTF-8"},
      {std::string(1001, 'x') + "\nb\n", "!1:1001 a line that is too long[b]"},
      {std::string(2000, ',') + "\nb\n", "!1:1001 a line that is too long[b]"},
      {"\"" + std::string(2000, 'x') + "\"\nb\n", "!1:1 a quote without end"},
  };
  for (const auto& c : CASES) EXPECT_EQ(read(c.text), c.rows) << c.text.substr(0, 20);
}

TEST(CCsvReader, readsAcrossItsBufferAtEveryOffset) {
  // A row that ends near the buffer's end, so that each kind of boundary falls on it once.
  const std::string row = "合约,\"a\"\"b\r\n\",x\r\n";
  for (std::size_t shift = 0; shift < row.size(); ++shift) {
    std::string text = std::string(shift, 'p') + "\n";
    std::string expected = shift == 0 ? "" : "[" + std::string(shift, 'p') + "]";
    while (text.size() < 256 * 1024 + 100) {
      text += row;
      expected += "[合约|a\"b\r\n|x]";
    }
    ASSERT_TRUE(read(text) == expected) << shift;
  }
}

}  // namespace
}  // namespace counter
