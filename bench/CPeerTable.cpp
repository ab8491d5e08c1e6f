#include "CPeerTable.h"

#include "gw/CTableColumn.h"
#include "rdservice/CStructDes.h"

#include <QAbstractTableModel>
#include <QCollator>
#include <QHeaderView>
#include <QSet>
#include <QSortFilterProxyModel>

#include <array>
#include <iterator>
#include <map>
#include <string>
#include <unordered_map>

using rdservice::CFieldDes;
using rdservice::EFieldType;

namespace {

constexpr int ROW_MARGIN = 8;  ///< pixels above and below a text together

bool isTextField(const CFieldDes& field) {
  return field.type == EFieldType::Account || field.type == EFieldType::Text || field.type == EFieldType::Interned;
}

double numberOf(const CFieldDes& field, const rdservice::IData& record) {
  switch (field.type) {
    case EFieldType::Double: return field.get<double>(record);
    case EFieldType::Int64: return static_cast<double>(field.get<std::int64_t>(record));
    case EFieldType::Int32: return field.get<std::int32_t>(record);
    case EFieldType::Char: return field.get<char>(record);
    default: return 0;
  }
}

/// A row as one writes it by hand: what is compared stands in it, ready to be compared.
struct CPeerRow {
  std::array<double, 16> numbers;
  std::array<QString, 8> texts;
  rdservice::IDataPtr record;  ///< what cells are formatted from
};

class CPeerModel : public QAbstractTableModel {
 public:
  explicit CPeerModel(const rdservice::CStructDes& des) : m_des(des) {
    std::size_t numbers = 0;
    std::size_t texts = 0;
    for (const CFieldDes& one : des) m_places.push_back(isTextField(one) ? texts++ : numbers++);
  }

  const CFieldDes& field(int column) const { return *(m_des.begin() + column); }
  bool isText(int column) const { return isTextField(field(column)); }
  double number(int row, int column) const { return m_rows[std::size_t(row)].numbers[m_places[std::size_t(column)]]; }
  const QString& text(int row, int column) const {
    return m_rows[std::size_t(row)].texts[m_places[std::size_t(column)]];
  }

  void prepare(const std::vector<rdservice::IDataPtr>& records) {
    m_next.clear();
    m_next.reserve(records.size());
    for (const auto& record : records) m_next.push_back(rowOf(record));
  }

  void load() {
    beginResetModel();
    m_rows.swap(m_next);
    m_byKey.clear();
    m_byKey.reserve(m_rows.size());
    for (std::size_t row = 0; row < m_rows.size(); ++row) m_byKey.emplace(m_rows[row].record->getKey(), int(row));
    endResetModel();
  }

  void replace(const std::vector<rdservice::IDataPtr>& records, CPeerTable::EPushSignals signalling) {
    std::map<int, rdservice::IDataPtr> changed;
    for (const auto& record : records) {
      const auto known = m_byKey.find(record->getKey());
      if (known != m_byKey.end()) changed[known->second] = record;
    }
    // The proxy searches among the other rows for each run's new place: they must not have changed meanwhile.
    for (auto first = changed.begin(); first != changed.end();) {
      auto last = first;
      for (auto next = first; next != changed.end(); last = next++) {
        if (signalling == CPeerTable::EPushSignals::Runs && next->first > last->first + 1) break;
        m_rows[std::size_t(next->first)] = rowOf(next->second);
      }
      Q_EMIT dataChanged(index(first->first, 0), index(last->first, columnCount() - 1));
      first = std::next(last);
    }
  }

  /// Makes the proxy begin anew, with one sort.
  void reset() {
    beginResetModel();
    endResetModel();
  }

  int rowCount(const QModelIndex& parent = QModelIndex()) const override {
    return parent.isValid() ? 0 : int(m_rows.size());
  }
  int columnCount(const QModelIndex& parent = QModelIndex()) const override {
    return parent.isValid() ? 0 : int(m_des.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    const CFieldDes& des = field(index.column());
    if (role == Qt::TextAlignmentRole) return int(GW::alignmentOf(des));
    if (role != Qt::DisplayRole) return {};
    if (isText(index.column())) return text(index.row(), index.column());
    return QString::fromStdString(rdservice::fieldText(des, *m_rows[std::size_t(index.row())].record));
  }
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return QString::fromUtf8(field(section).title);
  }

 private:
  CPeerRow rowOf(const rdservice::IDataPtr& record) {
    CPeerRow row;
    row.record = record;
    std::size_t column = 0;
    for (const CFieldDes& one : m_des) {
      const std::size_t place = m_places[column++];
      if (isTextField(one))
        row.texts[place] = shared(rdservice::fieldText(one, *record), one.type == EFieldType::Text);
      else
        row.numbers[place] = numberOf(one, *record);
    }
    return row;
  }
  /// Texts that repeat are held once.
  QString shared(const std::string& text, bool isAlone) {
    if (isAlone) return QString::fromStdString(text);
    const auto [known, isNew] = m_texts.try_emplace(text);
    if (isNew) known->second = QString::fromStdString(text);
    return known->second;
  }

  const rdservice::CStructDes& m_des;
  std::vector<std::size_t> m_places;  ///< by column: among the row's numbers or texts
  std::vector<CPeerRow> m_rows;
  std::vector<CPeerRow> m_next;  ///< for the next load
  std::unordered_map<std::string, int> m_byKey;
  std::unordered_map<std::string, QString> m_texts;
};

class CPeerProxy : public QSortFilterProxyModel {
 public:
  explicit CPeerProxy(CPeerModel& model) : m_model(model), m_collator(QLocale(QLocale::Chinese, QLocale::China)) {
    setSourceModel(&model);
  }

  void setAccepted(int column, const QStringList& texts, CPeerTable::EFilterWay way) {
    m_column = column;
    m_accepted = QSet<QString>(texts.begin(), texts.end());
    if (way == CPeerTable::EFilterWay::Invalidate)
      invalidateFilter();
    else
      m_model.reset();
  }

 protected:
  bool filterAcceptsRow(int row, const QModelIndex&) const override {
    return m_accepted.isEmpty() || m_accepted.contains(m_model.text(row, m_column));
  }

  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override {
    const int column = left.column();
    if (!m_model.isText(column)) return m_model.number(left.row(), column) < m_model.number(right.row(), column);
    const QString& a = m_model.text(left.row(), column);
    const QString& b = m_model.text(right.row(), column);
    return !a.isSharedWith(b) && m_collator.compare(a, b) < 0;
  }

 private:
  CPeerModel& m_model;
  QCollator m_collator;
  int m_column = 0;
  QSet<QString> m_accepted;
};

}  // namespace

struct CPeerTable::Private {
  explicit Private(const rdservice::CStructDes& des) : model(des), proxy(model) {}

  CPeerModel model;
  CPeerProxy proxy;
};

CPeerTable::CPeerTable(const rdservice::CStructDes& des) : m_d(std::make_unique<Private>(des)) {
  setModel(&m_d->proxy);
  setSelectionBehavior(SelectRows);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  setCornerButtonEnabled(false);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + ROW_MARGIN);
}

CPeerTable::~CPeerTable() { setModel(nullptr); }

void CPeerTable::prepare(const std::vector<rdservice::IDataPtr>& records) { m_d->model.prepare(records); }

void CPeerTable::load() { m_d->model.load(); }

void CPeerTable::push(const std::vector<rdservice::IDataPtr>& records, EPushSignals signalling) {
  m_d->model.replace(records, signalling);
}

void CPeerTable::sort(int column, Qt::SortOrder order) { m_d->proxy.sort(column, order); }

void CPeerTable::setFilter(int column, const QStringList& texts, EFilterWay way) {
  m_d->proxy.setAccepted(column, texts, way);
}

int CPeerTable::rowCount() const { return m_d->proxy.rowCount(); }

QString CPeerTable::cellText(int row, int column) const { return m_d->proxy.index(row, column).data().toString(); }
