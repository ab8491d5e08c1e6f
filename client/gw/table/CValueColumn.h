#pragma once

#include "gw/CTableColumn.h"
#include "gw/table/CCell.h"

#include <QSet>
#include <QStringList>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace GW {

/// The distinct values of one column, numbered by codes, and the column's filter: which of them are accepted. A filter
/// then costs one look-up a row. Two values that show the same text are one. GUI thread.
class CValueColumn {
 public:
  /// The column lives longer and keeps its delegate.
  explicit CValueColumn(const CTableColumn& column);

  /// The cell becomes one more that has the returned code's value. `record` is the cell's own.
  std::uint32_t take(const CCell& cell, const rdservice::IDataPtr& record);
  /// Takes so many more of the rows, those after the ones in `codes`; true when every row is in. `items` are the
  /// column's cells by slot, null for none.
  bool fill(const std::vector<rdservice::IDataPtr>& records, const CItemColumn* items, std::size_t rows);
  /// One cell fewer has it.
  void release(std::uint32_t code);

  QString text(std::uint32_t code) const;
  bool isKnown(std::uint32_t code) const { return code < m_values.size() && m_values[code].isUsed; }
  /// Codes are below it.
  std::size_t codeCount() const { return m_values.size(); }
  /// Codes of values that some cell has, in the column's order.
  std::vector<std::uint32_t> ordered() const;

  bool isFiltering() const { return m_isFiltering; }
  bool accepts(std::uint32_t code) const { return !m_isFiltering || m_values[code].isAccepted; }
  /// By code: whether the filter accepts it.
  std::vector<char> acceptedCodes() const;
  void acceptAll();
  void accept(const QStringList& texts);
  void acceptCodes(const std::vector<std::uint32_t>& codes);
  /// The accepted texts.
  QStringList accepted() const;

  /// Whether it holds nothing but what the cells say.
  bool isPlain() const { return !m_isFiltering && m_holders == 0; }
  /// While somebody holds, values that no cell has any more keep their codes.
  void hold(bool on);

  std::vector<std::uint32_t> codes;  ///< by slot
  std::size_t memory() const;

 private:
  struct CValue {
    std::uint64_t raw = 0;  ///< of a field: a number in the order of its values, or the address of a pooled text
    const std::string* text = nullptr;  ///< of anything else, in the index
    rdservice::IDataPtr sample;         ///< of a field: a record that shows it
    int cells = 0;
    bool isUsed = false;
    bool isAccepted = false;
  };

  struct CTies;

  bool hasRaw() const { return m_column.field != nullptr && m_column.delegate == nullptr && !m_isText; }
  std::uint64_t rawOf(const rdservice::IData& record) const;
  const std::string& textOf(const CCell& cell, std::string& buffer) const;
  const std::string& orderText(const CValue& value) const;
  std::uint32_t add(CValue value);
  std::uint32_t find(const CCell& cell, const rdservice::IDataPtr& record);
  std::uint32_t findRaw(std::uint64_t raw, const rdservice::IDataPtr& record);
  void fillRaw(const std::vector<rdservice::IDataPtr>& records, std::size_t end);
  void dropIfUnused(std::uint32_t code);

  const CTableColumn& m_column;
  const bool m_isText;  ///< field of account or free text
  std::vector<CValue> m_values;
  std::vector<std::uint32_t> m_free;
  std::unordered_map<std::uint64_t, std::uint32_t> m_byRaw;
  /// The last raw values, each at a place that it tells itself.
  struct CRecent {
    std::uint64_t raw = 0;
    std::uint32_t code = 0;
    bool isUsed = false;
  };
  std::array<CRecent, 256> m_recent{};
  std::unordered_map<std::string, std::uint32_t> m_byText;
  bool m_isFiltering = false;
  int m_holders = 0;
  QSet<QString> m_acceptedTexts;  ///< those asked for by text, also of values that no cell has yet
};

}  // namespace GW
