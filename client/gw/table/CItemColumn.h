#pragma once

#include "gw/table/CItemState.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace GW {

/// The cells of one column by slot, in arrays that exist only as far as they were set: a byte of flags a row, texts
/// and values when there are any. Slots beyond the arrays are unset. Not thread-safe.
class CItemColumn {
 public:
  CItemState state(int slot) const;
  bool isVisible(int slot) const { return (flags(slot) & Hidden) == 0; }
  bool isEnabled(int slot) const { return (flags(slot) & Disabled) == 0; }
  bool isChecked(int slot) const { return (flags(slot) & Checked) != 0; }
  bool hasValue(int slot) const { return (flags(slot) & HasValue) != 0; }
  /// 0 when it has none.
  qint64 value(int slot) const;
  const QString& text(int slot) const;
  /// Whether anything was ever set, also to what it was before.
  bool isSet(int slot) const { return (flags(slot) & Set) != 0; }

  void setText(int slot, const QString& text);
  void setVisible(int slot, bool on);
  void setEnabled(int slot, bool on);
  void setChecked(int slot, bool on);
  void setValue(int slot, qint64 value);
  void setState(int slot, const CItemState& state);

  /// Copies one cell as it is, also as unset.
  void copyCell(int slot, const CItemColumn& from, int fromSlot);
  /// By old slot: the new one, -1 for dropped.
  void renumber(const std::vector<int>& newSlots, int count);
  /// Unsets every cell.
  void clear();
  bool isEmpty() const { return m_flags.empty(); }
  int size() const { return static_cast<int>(m_flags.size()); }

  /// Number of cells with a non-empty text; of set cells; of checked ones.
  int texts() const { return m_textCount; }
  int cells() const { return m_setCount; }
  int checks() const { return m_checkedCount; }

  /// Bytes held, texts included.
  std::size_t memory() const;

 private:
  enum EFlag : std::uint8_t { Hidden = 1, Disabled = 2, Checked = 4, HasValue = 8, Set = 16 };

  std::uint8_t flags(int slot) const {
    return static_cast<std::size_t>(slot) < m_flags.size() ? m_flags[static_cast<std::size_t>(slot)] : std::uint8_t{0};
  }
  void setFlags(int slot, std::uint8_t flags);
  void setFlag(int slot, EFlag flag, bool on);
  void writeText(int slot, const QString& text);
  void writeValue(int slot, qint64 value);

  std::vector<std::uint8_t> m_flags;
  std::vector<QString> m_texts;  ///< may be shorter than the flags
  std::vector<qint64> m_values;  ///< may be shorter than the flags
  int m_textCount = 0;
  int m_setCount = 0;
  int m_checkedCount = 0;
};

}  // namespace GW
