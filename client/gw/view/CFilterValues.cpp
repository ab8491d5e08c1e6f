#include "gw/view/CFilterValues.h"

#include <QLocale>

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace GW {

namespace {

constexpr const char* TEXT_BLANK = "(空白)";

std::size_t at(int index) { return static_cast<std::size_t>(index); }

QString counted(int rows) {
  static const QLocale locale(QLocale::Chinese, QLocale::China);
  return locale.toString(rows);
}

}  // namespace

CFilterValues::CFilterValues(std::unique_ptr<IFilterSource> source, QObject* parent)
    : QAbstractListModel(parent), m_source(std::move(source)), m_task(nullptr) {}

CFilterValues::~CFilterValues() = default;

void CFilterValues::load() {
  std::vector<CShownRows::CValue> values = m_source->values();
  const auto isTicked = [](const CShownRows::CValue& value) { return value.isAccepted; };
  if (!m_values.empty()) m_isNewTicked = std::all_of(m_values.begin(), m_values.end(), isTicked);
  for (const CShownRows::CValue& value : m_values) m_ticks[value.code] = value.isAccepted;
  for (CShownRows::CValue& value : values) {
    const auto known = m_ticks.find(value.code);
    if (known != m_ticks.end())
      value.isAccepted = known->second;
    else if (m_isLoaded)
      value.isAccepted = m_isNewTicked;
  }
  m_isLoaded = true;
  show({});  // the old places mean nothing any more
  m_values = std::move(values);
  search(m_text);
}

QString CFilterValues::label(std::uint32_t code) const {
  const QString text = m_source->text(code);
  return text.isEmpty() ? QString::fromUtf8(TEXT_BLANK) : text;
}

void CFilterValues::search(const QString& text) {
  m_text = text;
  m_next = 0;
  m_found.clear();
  if (!text.isEmpty()) {
    m_task.start([this] { return findNext(); },
                 [this] {
                   if (m_task.slices() == 1) show(m_found);  // they mostly fill the screen
                 });
    return;
  }
  m_task.stop();
  std::vector<int> all(m_values.size());
  std::iota(all.begin(), all.end(), 0);
  show(std::move(all));
}

bool CFilterValues::findNext() {
  if (m_next == static_cast<int>(m_values.size())) {
    m_task.stop();
    show(std::exchange(m_found, {}));
    return false;
  }
  if (label(m_values[at(m_next)].code).contains(m_text, Qt::CaseInsensitive)) m_found.push_back(m_next);
  ++m_next;
  return true;
}

void CFilterValues::show(std::vector<int> shown) {
  beginResetModel();
  m_shown = std::move(shown);
  m_ticked = static_cast<int>(
      std::count_if(m_shown.begin(), m_shown.end(), [this](int place) { return m_values[at(place)].isAccepted; }));
  endResetModel();
  Q_EMIT sigChanged();
}

void CFilterValues::tickShown(bool ticked) {
  if (m_shown.empty()) return;
  for (const int place : m_shown) m_values[at(place)].isAccepted = ticked;
  m_ticked = ticked ? rowCount() : 0;
  Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::CheckStateRole});
  Q_EMIT sigChanged();
}

Qt::CheckState CFilterValues::shownState() const {
  if (m_ticked == 0) return Qt::Unchecked;
  return m_ticked == rowCount() ? Qt::Checked : Qt::PartiallyChecked;
}

void CFilterValues::apply() {
  if (at(m_ticked) == m_values.size()) {
    m_source->setFilter(std::nullopt);
    return;
  }
  std::vector<std::uint32_t> codes;
  codes.reserve(at(m_ticked));
  for (const int place : m_shown) {
    if (m_values[at(place)].isAccepted) codes.push_back(m_values[at(place)].code);
  }
  m_source->setFilter(codes);
}

int CFilterValues::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_shown.size());
}

QVariant CFilterValues::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const CShownRows::CValue& value = m_values[at(m_shown[at(index.row())])];
  switch (role) {
    case Qt::DisplayRole: return QStringLiteral("%1  (%2)").arg(label(value.code), counted(value.rows));
    case Qt::CheckStateRole: return value.isAccepted ? Qt::Checked : Qt::Unchecked;
    default: return {};
  }
}

bool CFilterValues::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
  bool& ticked = m_values[at(m_shown[at(index.row())])].isAccepted;
  const bool isOn = value.toInt() == Qt::Checked;
  if (ticked != isOn) {
    ticked = isOn;
    m_ticked += isOn ? 1 : -1;
    Q_EMIT dataChanged(index, index, {Qt::CheckStateRole});
    Q_EMIT sigChanged();
  }
  return true;
}

Qt::ItemFlags CFilterValues::flags(const QModelIndex& index) const {
  return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable : Qt::NoItemFlags;
}

}  // namespace GW
