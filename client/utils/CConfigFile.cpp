#include "utils/CConfigFile.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <utility>

namespace utils {

struct CConfigSection::CNode {
  std::string file;
  std::vector<CConfigError>* errors = nullptr;
  std::shared_ptr<const toml::table> root;  ///< owns what `table` points into
  const toml::table* table = nullptr;       ///< null: no file
  std::string prefix;                       ///< of the keys in messages
  std::set<std::string> asked;
  std::map<std::string, std::vector<std::shared_ptr<CNode>>> sections;

  /// The value of a dotted key; null when absent.
  const toml::node* find(const std::string& key) const {
    const toml::table* current = table;
    for (std::size_t begin = 0; current != nullptr;) {
      const std::size_t dot = key.find('.', begin);
      const toml::node* value = current->get(std::string_view(key).substr(begin, dot - begin));
      if (dot == std::string::npos || value == nullptr) return value;
      current = value->as_table();
      begin = dot + 1;
    }
    return nullptr;
  }

  const toml::node* ask(const std::string& key) {
    asked.insert(key);
    return find(key);
  }

  void add(int line, const std::string& key, const std::string& message) {
    const auto isSame = [&](const CConfigError& e) {
      return e.line == line && e.key == prefix + key && e.message == message && e.file == file;
    };
    if (std::none_of(errors->begin(), errors->end(), isSame)) errors->push_back({file, line, prefix + key, message});
  }
};

namespace {

int lineAt(const toml::source_region& region) { return static_cast<int>(region.begin.line); }

/// The value as a message names it.
std::string describe(const toml::node& value) {
  if (value.is_table()) return "a table";
  if (value.is_array()) return "a list";
  if (const auto text = value.value_exact<std::string>()) return fmt::format("\"{}\"", *text);
  std::ostringstream stream;
  value.visit([&stream](const auto& v) {
    if constexpr (toml::is_value<decltype(v)>) stream << v;
  });
  return stream.str();
}

/// The names that getters asked for directly below `path` ("" or "log.").
std::set<std::string> namesBelow(const std::set<std::string>& asked, const std::string& path) {
  std::set<std::string> names;
  for (const auto& key : asked) {
    if (key.compare(0, path.size(), path) != 0) continue;
    names.insert(key.substr(path.size(), key.find('.', path.size()) - path.size()));
  }
  return names;
}

void reportUnknown(CConfigSection::CNode& node, const toml::table& table, const std::string& path) {
  const auto known = namesBelow(node.asked, path);
  for (const auto& [name, value] : table) {
    const std::string key = path + std::string(name.str());
    if (node.asked.count(key) != 0) continue;
    if (value.is_table() && known.count(std::string(name.str())) != 0) {
      reportUnknown(node, *value.as_table(), key + ".");
    } else {
      node.add(lineAt(name.source()), key, fmt::format("unknown key; known here: {}", fmt::join(known, ", ")));
    }
  }
}

}  // namespace

std::string CConfigError::text() const {
  std::string result = file;
  if (line > 0) result += fmt::format(":{}", line);
  if (!key.empty()) result += ": " + key;
  return result + ": " + message;
}

CConfigSection::CConfigSection(std::shared_ptr<CNode> node) : m_node(std::move(node)) {}
CConfigSection::~CConfigSection() = default;
CConfigSection::CConfigSection(const CConfigSection&) = default;
CConfigSection& CConfigSection::operator=(const CConfigSection&) = default;

bool CConfigSection::has(const std::string& key) const { return m_node->ask(key) != nullptr; }

int CConfigSection::lineOf(const std::string& key) const {
  if (const toml::node* value = m_node->find(key)) return lineAt(value->source());
  return m_node->table != nullptr ? lineAt(m_node->table->source()) : 0;
}

bool CConfigSection::getBool(const std::string& key, bool fallback) const {
  const toml::node* value = m_node->ask(key);
  if (value == nullptr) return fallback;
  if (const auto flag = value->value_exact<bool>()) return *flag;
  addError(key, fmt::format("must be true or false, not {}", describe(*value)));
  return fallback;
}

int CConfigSection::getInt(const std::string& key, int min, int max, int fallback) const {
  const toml::node* value = m_node->ask(key);
  if (value == nullptr) return fallback;
  if (const auto number = value->value_exact<std::int64_t>(); number && *number >= min && *number <= max)
    return static_cast<int>(*number);
  addError(key, fmt::format("must be a whole number from {} to {}, not {}", min, max, describe(*value)));
  return fallback;
}

int CConfigSection::getChoice(const std::string& key, const std::vector<int>& allowed, int fallback) const {
  const toml::node* value = m_node->ask(key);
  if (value == nullptr) return fallback;
  const auto number = value->value_exact<std::int64_t>();
  const auto isValue = [&number](int choice) { return choice == *number; };
  if (number && std::any_of(allowed.begin(), allowed.end(), isValue)) return static_cast<int>(*number);
  addError(key, fmt::format("must be one of {}, not {}", fmt::join(allowed, ", "), describe(*value)));
  return fallback;
}

double CConfigSection::getDouble(const std::string& key, double min, double max, double fallback) const {
  const toml::node* value = m_node->ask(key);
  if (value == nullptr) return fallback;
  if (value->is_number()) {
    const auto number = value->value<double>();
    if (number && *number >= min && *number <= max) return *number;
  }
  addError(key, fmt::format("must be a number from {} to {}, not {}", min, max, describe(*value)));
  return fallback;
}

std::string CConfigSection::getText(const std::string& key, const std::string& fallback) const {
  const toml::node* value = m_node->ask(key);
  if (value == nullptr) return fallback;
  if (const auto text = value->value_exact<std::string>()) return *text;
  addError(key, fmt::format("must be a text in quotes, not {}", describe(*value)));
  return fallback;
}

std::vector<std::string> CConfigSection::getTexts(const std::string& key) const {
  const toml::node* value = m_node->ask(key);
  if (value == nullptr) return {};
  const toml::array* list = value->as_array();
  if (list == nullptr) {
    addError(key, fmt::format("must be a list of texts, not {}", describe(*value)));
    return {};
  }
  std::vector<std::string> texts;
  for (const toml::node& item : *list) {
    const auto text = item.value_exact<std::string>();
    if (!text) {
      m_node->add(lineAt(item.source()), key, fmt::format("must be a list of texts; {} is not one", describe(item)));
      return {};
    }
    texts.push_back(*text);
  }
  return texts;
}

std::vector<CConfigSection> CConfigSection::getSections(const std::string& key) const {
  const toml::node* value = m_node->ask(key);
  if (value == nullptr) return {};
  const toml::array* list = value->as_array();
  const auto isTable = [](const toml::node& item) { return item.is_table(); };
  if (list == nullptr || !std::all_of(list->begin(), list->end(), isTable)) {
    addError(key, fmt::format("must be a list of tables, each begun with [[{}]]", key));
    return {};
  }
  // Kept, so that a second call hands out the sections that remember what was asked of them.
  const auto [known, isNew] = m_node->sections.try_emplace(key);
  auto& nodes = known->second;
  for (auto item = list->begin(); isNew && item != list->end(); ++item) {
    CNode node;
    node.file = m_node->file;
    node.errors = m_node->errors;
    node.root = m_node->root;
    node.table = item->as_table();
    node.prefix = m_node->prefix + key + ".";
    nodes.push_back(std::make_shared<CNode>(std::move(node)));
  }
  return std::vector<CConfigSection>(nodes.begin(), nodes.end());
}

void CConfigSection::addError(const std::string& key, const std::string& message) const {
  m_node->add(lineOf(key), key, message);
}

void CConfigSection::reportUnknownKeys() const {
  if (m_node->table == nullptr) return;
  reportUnknown(*m_node, *m_node->table, std::string());
  for (const auto& [key, nodes] : m_node->sections)
    for (const auto& node : nodes) CConfigSection(node).reportUnknownKeys();
}

CConfigFile::CConfigFile(const std::string& path, std::vector<CConfigError>& errors)
    : CConfigSection(std::make_shared<CNode>()) {
  m_node->file = path;
  m_node->errors = &errors;
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  // Looking at the first byte tells an empty file from a folder, which can be opened but not read.
  if (stream.peek() != std::ifstream::traits_type::eof()) content << stream.rdbuf();
  if (!stream.is_open() || stream.bad() || content.fail()) {
    m_node->add(0, std::string(), "the file cannot be read");
    return;
  }
  try {
    m_node->root = std::make_shared<toml::table>(toml::parse(content.str(), path));
    m_node->table = m_node->root.get();
  } catch (const toml::parse_error& e) {
    m_node->add(lineAt(e.source()), std::string(), std::string(e.description()));
  }
}

CConfigFile::~CConfigFile() = default;

bool CConfigFile::isRead() const { return m_node->table != nullptr; }

}  // namespace utils
