#pragma once

#include "gw/view/CSlicedTask.h"
#include "gw/view/IFilterSource.h"

#include <QAbstractListModel>
#include <QString>

#include <memory>
#include <unordered_map>
#include <vector>

namespace GW {

/// The distinct values of a column as they were when they were read, each with a tick; shown are those that a text is
/// found in. Only what is asked for is formatted. GUI thread.
class CFilterValues : public QAbstractListModel {
  Q_OBJECT

 public:
  CFilterValues(std::unique_ptr<IFilterSource> source, QObject* parent);
  ~CFilterValues() override;

  /// Reads the values anew. Ticks stay on their values; new values are ticked if every one was, and at first as the
  /// column's filter is. A search begins anew.
  void load();
  /// Shows the values that contain the text, upper and lower case alike; looks for them in slices.
  void search(const QString& text);
  bool isSearching() const { return m_task.isRunning(); }
  int searchSlices() const { return m_task.slices(); }

  void tickShown(bool ticked);
  /// Of the shown values; none shown: unchecked.
  Qt::CheckState shownState() const;
  /// Sets the column's filter to the shown values that are ticked; no filter when these are all there are.
  void apply();

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 Q_SIGNALS:
  /// Ticks or shown values are others, or a search has ended.
  void sigChanged();

 private:
  QString label(std::uint32_t code) const;
  bool findNext();
  void show(std::vector<int> shown);

  const std::unique_ptr<IFilterSource> m_source;
  bool m_isLoaded = false;
  std::unordered_map<std::uint32_t, bool> m_ticks;  ///< by code, of values read before
  bool m_isNewTicked = true;
  std::vector<CShownRows::CValue> m_values;  ///< accepted: ticked
  std::vector<int> m_shown;                  ///< places in `m_values`, rising
  int m_ticked = 0;                          ///< of the shown ones

  QString m_text;
  int m_next = 0;            ///< place in `m_values` where the search goes on
  std::vector<int> m_found;  ///< so far
  CSlicedTask m_task;
};

}  // namespace GW
