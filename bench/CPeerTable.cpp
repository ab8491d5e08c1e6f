#include "CPeerTable.h"

#include "gw/CTableColumn.h"
#include "rdservice/CStkUnClosedCompacts.h"

#include <QAbstractTableModel>
#include <QCollator>
#include <QHeaderView>
#include <QSortFilterProxyModel>

#include <iterator>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>

using rdservice::CFieldDes;
using rdservice::CInternedText;
using rdservice::CStkUnClosedCompacts;
using rdservice::EFieldType;

namespace {

constexpr int ROW_MARGIN = 8;  ///< pixels above and below a text together

class CPeerModel : public QAbstractTableModel {
 public:
  explicit CPeerModel(const rdservice::CStructDes& des) : m_des(des) {}

  const CFieldDes& field(int column) const { return *(m_des.begin() + column); }
  const CStkUnClosedCompacts& record(int row) const { return m_records[std::size_t(row)]; }

  void prepare(const std::vector<rdservice::IDataPtr>& records) {
    m_next.clear();
    m_next.reserve(records.size());
    for (const auto& record : records) m_next.push_back(static_cast<const CStkUnClosedCompacts&>(*record));
  }

  void load() {
    beginResetModel();
    m_records.swap(m_next);
    m_rows.clear();
    m_rows.reserve(m_records.size());
    for (std::size_t row = 0; row < m_records.size(); ++row) m_rows.emplace(m_records[row].getKey(), int(row));
    endResetModel();
  }

  void replace(const std::vector<rdservice::IDataPtr>& records, CPeerTable::EPushSignals signalling) {
    std::map<int, rdservice::IDataPtr> changed;
    for (const auto& record : records) {
      const auto known = m_rows.find(record->getKey());
      if (known != m_rows.end()) changed[known->second] = record;
    }
    // The proxy searches among the other rows for each run's new place: they must not have changed meanwhile.
    for (auto first = changed.begin(); first != changed.end();) {
      auto last = first;
      for (auto next = first; next != changed.end(); last = next++) {
        if (signalling == CPeerTable::EPushSignals::Runs && next->first > last->first + 1) break;
        m_records[std::size_t(next->first)] = static_cast<const CStkUnClosedCompacts&>(*next->second);
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
    return parent.isValid() ? 0 : int(m_records.size());
  }
  int columnCount(const QModelIndex& parent = QModelIndex()) const override {
    return parent.isValid() ? 0 : int(m_des.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    const CFieldDes& des = field(index.column());
    if (role == Qt::DisplayRole) return QString::fromStdString(rdservice::fieldText(des, record(index.row())));
    if (role == Qt::TextAlignmentRole) return int(GW::alignmentOf(des));
    return {};
  }
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return QString::fromUtf8(field(section).title);
  }

 private:
  const rdservice::CStructDes& m_des;
  std::vector<CStkUnClosedCompacts> m_records;
  std::vector<CStkUnClosedCompacts> m_next;     ///< for the next load
  std::unordered_map<std::string, int> m_rows;  ///< by key
};

class CPeerProxy : public QSortFilterProxyModel {
 public:
  explicit CPeerProxy(CPeerModel& model) : m_model(model), m_collator(QLocale(QLocale::Chinese, QLocale::China)) {
    setSourceModel(&model);
  }

  void setAccepted(int column, const QStringList& texts, CPeerTable::EFilterWay way) {
    m_column = column;
    m_accepted.clear();
    for (const QString& text : texts) m_accepted.insert(text.toStdString());
    if (way == CPeerTable::EFilterWay::Invalidate)
      invalidateFilter();
    else
      m_model.reset();
  }

 protected:
  bool filterAcceptsRow(int row, const QModelIndex&) const override {
    return m_accepted.empty() ||
           m_accepted.count(rdservice::fieldText(m_model.field(m_column), m_model.record(row))) > 0;
  }

  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override {
    const CFieldDes& field = m_model.field(left.column());
    const rdservice::IData& a = m_model.record(left.row());
    const rdservice::IData& b = m_model.record(right.row());
    switch (field.type) {
      case EFieldType::Double: return field.get<double>(a) < field.get<double>(b);
      case EFieldType::Int64: return field.get<std::int64_t>(a) < field.get<std::int64_t>(b);
      case EFieldType::Int32: return field.get<std::int32_t>(a) < field.get<std::int32_t>(b);
      case EFieldType::Char: return field.get<char>(a) < field.get<char>(b);
      case EFieldType::Interned:
        if (field.get<CInternedText>(a) == field.get<CInternedText>(b)) return false;
        return isBefore(field.get<CInternedText>(a).str(), field.get<CInternedText>(b).str());
      case EFieldType::Text: return isBefore(field.get<std::string>(a), field.get<std::string>(b));
      case EFieldType::Account: break;
    }
    return isBefore(rdservice::fieldText(field, a), rdservice::fieldText(field, b));
  }

 private:
  bool isBefore(const std::string& a, const std::string& b) const {
    return m_collator.compare(QString::fromStdString(a), QString::fromStdString(b)) < 0;
  }

  CPeerModel& m_model;
  QCollator m_collator;
  int m_column = 0;
  std::unordered_set<std::string> m_accepted;
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
