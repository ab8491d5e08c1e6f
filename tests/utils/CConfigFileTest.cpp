#include "utils/CConfigFile.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>

using utils::CConfigError;
using utils::CConfigFile;

namespace {

/// What the tests ask of a file, as one line of values.
std::string readAll(const CConfigFile& file) {
  std::string text = file.getBool("flag", false) ? "on" : "off";
  text += " " + std::to_string(file.getInt("count", 1, 10, 5));
  text += " " + std::to_string(file.getChoice("mode", {1, 2, 4}, 1));
  text += " " + std::to_string(file.getDouble("ratio", 0, 1, 0.5)).substr(0, 4);
  text += " " + file.getText("name", "none");
  for (const auto& item : file.getTexts("list")) text += " " + item;
  text += " " + std::to_string(file.getInt("log.level", 0, 9, 3));
  for (const auto& rule : file.getSections("rule")) text += " rule" + std::to_string(rule.getInt("id", 0, 99, -1));
  file.reportUnknownKeys();
  return text;
}

}  // namespace

TEST(CConfigFile, GivesValuesOrFallbacksAndSaysWhatIsWrong) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath(QStringLiteral("设置.toml")).toStdString();
  const std::string defaults = "off 5 1 0.50 none 3";
  const struct {
    const char* content;
    std::string values;
    std::vector<std::string> errors;  ///< behind the path
  } cases[] = {
      {"", defaults, {}},
      {"flag = true\ncount = 10\nmode = 4\nratio = 1\nname = '融'\nlist = ['a', 'b']\n[log]\nlevel = 0\n"
       "[[rule]]\nid = 7\n[[rule]]\nid = 8\n",
       "on 10 4 1.00 融 a b 0 rule7 rule8",
       {}},
      {"count = 11\n", defaults, {":1: count: must be a whole number from 1 to 10, not 11"}},
      {"count = 4294967297\n", defaults, {":1: count: must be a whole number from 1 to 10, not 4294967297"}},
      {"\ncount = 2.0\n", defaults, {":2: count: must be a whole number from 1 to 10, not 2.0"}},
      {"flag = 1\nmode = 3",
       defaults,
       {":1: flag: must be true or false, not 1", ":2: mode: must be one of 1, 2, 4, not 3"}},
      {"ratio = nan\nname = 5",
       defaults,
       {":1: ratio: must be a number from 0 to 1, not nan", ":2: name: must be a text in quotes, not 5"}},
      {"list = 'a'", defaults, {":1: list: must be a list of texts, not \"a\""}},
      {"list = [\n 'a',\n 5 ]", defaults, {":3: list: must be a list of texts; 5 is not one"}},
      {"log = 4", defaults, {":1: log: unknown key; known here: count, flag, list, log, mode, name, ratio, rule"}},
      {"[log]\nlevel = 'x'\nlevle = 1",
       defaults,
       {":2: log.level: must be a whole number from 0 to 9, not \"x\"",
        ":3: log.levle: unknown key; known here: level"}},
      {"[rule]\nid = 1", defaults, {":1: rule: must be a list of tables, each begun with [[rule]]"}},
      {"[[rule]]\nid = 1\n[[rule]]\nid = 100\nidd = 1",
       defaults + " rule1 rule-1",
       {":4: rule.id: must be a whole number from 0 to 99, not 100", ":5: rule.idd: unknown key; known here: id"}},
  };
  for (const auto& c : cases) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << c.content;
    std::vector<CConfigError> errors;
    const CConfigFile file(path, errors);
    EXPECT_TRUE(file.isRead()) << c.content;
    EXPECT_EQ(readAll(file), c.values) << c.content;
    EXPECT_EQ(readAll(file), c.values) << "asked again: " << c.content;
    std::vector<std::string> texts;
    for (const auto& error : errors) texts.push_back(error.text().substr(path.size()));
    EXPECT_EQ(texts, c.errors) << c.content;
  }
}

TEST(CConfigFile, FileThatCannotBeReadGivesOneError) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath(QStringLiteral("broken.toml")).toStdString();
  std::ofstream(path) << "count = 1\n\nname = 'open\n";
  const struct {
    std::string path;
    int line;
  } cases[] = {{path, 3}, {path + ".absent", 0}, {folder.path().toStdString(), 0}};
  for (const auto& c : cases) {
    std::vector<CConfigError> errors;
    const CConfigFile file(c.path, errors);
    EXPECT_FALSE(file.isRead());
    EXPECT_EQ(readAll(file), "off 5 1 0.50 none 3");
    ASSERT_EQ(errors.size(), 1U) << c.path;
    EXPECT_EQ(errors[0].line, c.line) << errors[0].text();
    EXPECT_FALSE(errors[0].message.empty());
  }
}
