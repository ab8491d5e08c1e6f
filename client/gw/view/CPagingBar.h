#pragma once

#include "gw/containers.h"

#include <QStringList>

#include <memory>

namespace GW {

/// The bar under the rows of a paged table: its buttons, page number, number of records and page size. The buttons
/// first, previous and next are always there. GUI thread.
class CPagingBar : public CAutoExpandToolBar {
  Q_OBJECT

 public:
  explicit CPagingBar(QWidget* parent);
  ~CPagingBar() override;

  /// Sum of `EPagingPart`; none at first.
  void setParts(int parts);
  /// Records per page to choose from, whole numbers above 0; the first is chosen. A single one is shown as a text.
  void setPageSizes(const QStringList& sizes);
  /// 0 without page sizes.
  int pageSize() const;
  /// At least 1. Reports nothing.
  void setPage(int page);
  int page() const;
  /// Number of records; -1 when unknown.
  void setTotal(int total);
  int total() const;
  /// A text behind everything else; empty for none.
  void setNote(const QString& text);
  /// `button` is an `EPagingButton`; others are ignored. Last is never enabled while total or page size is unknown.
  void setButtonEnabled(int button, bool enabled);
  bool isButtonEnabled(int button) const;

  bool handleEvent(int type, int p1, int p2, QString text, void* data) override;
  void onUiResourceChanged() override;

 Q_SIGNALS:
  /// The user clicked on a button (`EPagingButton`); the page number has changed already.
  void sigButton(int button);
  /// The user chose another page size.
  void sigPageSizeChanged(int pageSize);

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
