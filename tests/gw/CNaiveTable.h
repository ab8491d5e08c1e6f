#pragma once

#include "CTestRecord.h"

#include "gw/table/CItemState.h"
#include "gw/table/CSharedRows.h"

#include <QCollator>

#include <map>
#include <optional>
#include <set>
#include <vector>

/// One batch, as data, so that it can be given to a table and to the naive model.
struct CBatchPlan {
  GW::ERowRule rule = GW::ERowRule::Ordinary;
  bool clearFirst = false;
  std::optional<char> dropGroup;
  std::vector<CTestRecordPtr> records;
  std::vector<GW::CItemChange> items;
};

/// What a table must hold and show, said in the plainest way.
class CNaiveTable {
 public:
  struct CRow {
    int serial;  ///< of arrival; a row that went and came again is another row
    CTestRecordPtr record;
    std::map<int, GW::CItemState> items;  ///< as shown
  };

  CNaiveTable();

  void apply(const CBatchPlan& plan);
  void clear();
  /// What is held becomes what is displayed.
  void drain();
  void setSort(std::vector<std::pair<int, Qt::SortOrder>> columns);
  /// None: no filter.
  void setFilter(int column, std::optional<std::set<QString>> texts);

  QString text(const CRow& row, int column) const;
  QString sumText(int column) const;
  GW::CItemState item(int column, const std::string& key) const;
  const CRow* held(const std::string& key) const;

  std::vector<CRow> heldRows;       ///< by arrival; without items
  std::vector<CRow> displayedRows;  ///< sorted and filtered
  std::set<int> selected;           ///< serials
  int current = -1;                 ///< serial

 private:
  void drop(const std::set<std::string>& keys);
  void put(const CTestRecordPtr& record, GW::ERowRule rule, std::map<std::string, bool>& accepted);
  void changeItem(const GW::CItemChange& change);
  void arrange();
  int compare(const CRow& a, const CRow& b, int column) const;
  int compareTexts(const std::string& a, const std::string& b) const;

  QCollator m_collator;
  std::map<int, std::map<std::string, GW::CItemState>> m_items;
  int m_nextSerial = 0;
  std::vector<CRow> m_drained;  ///< by arrival
  std::vector<std::pair<int, Qt::SortOrder>> m_sort;
  std::map<int, std::set<QString>> m_filters;
};
