#pragma once

#include <memory>
#include <string>
#include <vector>

namespace utils {

/// One thing that is wrong in a configuration file.
struct CConfigError {
  std::string file;
  int line = 0;  ///< of the offending value, from 1; 0 when the whole file is meant
  std::string key;
  std::string message;  ///< says what is allowed

  /// "file:line: key: message"; without the parts that are absent.
  std::string text() const;
};

/// One table of a configuration file. A getter gives `fallback` when the key is absent, and also when its value is
/// wrong, which it records as an error. Keys of nested tables are written with dots: "log.level". One thread at a time;
/// a section may outlive its file, but not the list of errors.
class CConfigSection {
 public:
  struct CNode;

  explicit CConfigSection(std::shared_ptr<CNode> node);
  ~CConfigSection();
  CConfigSection(const CConfigSection&);
  CConfigSection& operator=(const CConfigSection&);

  /// Whether the key stands in the file, with whatever value.
  bool has(const std::string& key) const;
  /// Where the value of `key` stands, or the section itself when the key is absent; 0 without a file.
  int lineOf(const std::string& key) const;

  bool getBool(const std::string& key, bool fallback) const;
  int getInt(const std::string& key, int min, int max, int fallback) const;
  int getChoice(const std::string& key, const std::vector<int>& allowed, int fallback) const;
  double getDouble(const std::string& key, double min, double max, double fallback) const;
  std::string getText(const std::string& key, const std::string& fallback) const;
  /// Empty when absent or wrong.
  std::vector<std::string> getTexts(const std::string& key) const;
  /// The tables of an array of tables ([[key]]), in the file's order.
  std::vector<CConfigSection> getSections(const std::string& key) const;

  /// Records a fault that only the caller can see, at the place of the key.
  void addError(const std::string& key, const std::string& message) const;

  /// Records an error for every key that no getter asked for, here and in the sections handed out; names the known
  /// ones. Call it last.
  void reportUnknownKeys() const;

 protected:
  std::shared_ptr<CNode> m_node;
};

/// A configuration file in TOML. A file that cannot be read or parsed gives one error, and every getter then gives its
/// fallback.
class CConfigFile : public CConfigSection {
 public:
  /// `path` is UTF-8. Errors are added to `errors`, which must live as long as the file and its sections are used.
  CConfigFile(const std::string& path, std::vector<CConfigError>& errors);
  ~CConfigFile();

  /// Whether the file was there and could be parsed.
  bool isRead() const;
};

}  // namespace utils
