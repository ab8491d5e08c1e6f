#include "gw/table/CItemColumn.h"

#include "gw/table/vector_growth.h"

#include <utility>

namespace GW {

namespace {

std::size_t at(int slot) { return static_cast<std::size_t>(slot); }

}  // namespace

CItemState CItemColumn::state(int slot) const {
  CItemState state;
  const std::uint8_t bits = flags(slot);
  state.text = text(slot);
  state.visible = (bits & Hidden) == 0;
  state.enabled = (bits & Disabled) == 0;
  state.checked = (bits & Checked) != 0;
  if ((bits & HasValue) != 0) state.value = value(slot);
  return state;
}

qint64 CItemColumn::value(int slot) const { return at(slot) < m_values.size() ? m_values[at(slot)] : 0; }

const QString& CItemColumn::text(int slot) const {
  static const QString none;
  return at(slot) < m_texts.size() ? m_texts[at(slot)] : none;
}

void CItemColumn::setText(int slot, const QString& text) {
  setFlags(slot, flags(slot) | Set);
  writeText(slot, text);
}

void CItemColumn::setVisible(int slot, bool on) { setFlag(slot, Hidden, !on); }
void CItemColumn::setEnabled(int slot, bool on) { setFlag(slot, Disabled, !on); }
void CItemColumn::setChecked(int slot, bool on) { setFlag(slot, Checked, on); }

void CItemColumn::setValue(int slot, qint64 value) {
  setFlags(slot, flags(slot) | Set | HasValue);
  writeValue(slot, value);
}

void CItemColumn::setState(int slot, const CItemState& state) {
  unsigned bits = Set;
  if (!state.visible) bits |= Hidden;
  if (!state.enabled) bits |= Disabled;
  if (state.checked) bits |= Checked;
  if (state.value) bits |= HasValue;
  setFlags(slot, static_cast<std::uint8_t>(bits));
  writeText(slot, state.text);
  writeValue(slot, state.value.value_or(0));
}

void CItemColumn::copyCell(int slot, const CItemColumn& from, int fromSlot) {
  const std::uint8_t bits = from.flags(fromSlot);
  if (bits == 0 && at(slot) >= m_flags.size()) return;
  setFlags(slot, bits);
  writeText(slot, from.text(fromSlot));
  writeValue(slot, from.value(fromSlot));
}

void CItemColumn::renumber(const std::vector<int>& newSlots, int count) {
  CItemColumn moved;
  for (int slot = 0; slot < size(); ++slot) {
    if (newSlots[at(slot)] >= 0 && newSlots[at(slot)] < count) moved.copyCell(newSlots[at(slot)], *this, slot);
  }
  *this = std::move(moved);
}

void CItemColumn::clear() { *this = CItemColumn(); }

std::size_t CItemColumn::memory() const {
  std::size_t bytes = heldBytes(m_flags) + heldBytes(m_texts) + heldBytes(m_values);
  for (const QString& text : m_texts) {
    if (!text.isEmpty()) bytes += sizeof(QArrayData) + static_cast<std::size_t>(text.capacity() + 1) * sizeof(QChar);
  }
  return bytes;
}

void CItemColumn::setFlags(int slot, std::uint8_t flags) {
  if (at(slot) >= m_flags.size()) m_flags.resize(at(slot) + 1);
  std::uint8_t& held = m_flags[at(slot)];
  m_setCount += static_cast<int>((flags & Set) != 0) - static_cast<int>((held & Set) != 0);
  m_checkedCount += static_cast<int>((flags & Checked) != 0) - static_cast<int>((held & Checked) != 0);
  held = flags;
}

void CItemColumn::setFlag(int slot, EFlag flag, bool on) {
  const unsigned others = flags(slot) & ~static_cast<unsigned>(flag);
  setFlags(slot, static_cast<std::uint8_t>(others | Set | (on ? static_cast<unsigned>(flag) : 0U)));
}

void CItemColumn::writeText(int slot, const QString& text) {
  if (at(slot) >= m_texts.size()) {
    if (text.isEmpty()) return;
    m_texts.resize(at(slot) + 1);
  }
  QString& held = m_texts[at(slot)];
  m_textCount += static_cast<int>(!text.isEmpty()) - static_cast<int>(!held.isEmpty());
  held = text;
}

void CItemColumn::writeValue(int slot, qint64 value) {
  if (at(slot) >= m_values.size()) {
    if (value == 0) return;
    m_values.resize(at(slot) + 1);
  }
  m_values[at(slot)] = value;
}

}  // namespace GW
