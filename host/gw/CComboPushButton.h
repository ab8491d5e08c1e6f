#pragma once

#include "gw/CEventDeliverer.h"
#include "host_api.h"

#include <QPushButton>
#include <QStringList>

#include <memory>

namespace GW {

/// A push button that stands for one of several items: it shows the current one. GUI thread.
///
/// A click on it reports the current item, its arrow (or Down, Alt+Down) opens the list; an item chosen there becomes
/// the current one and is reported, also when it was before. Reported as EventItemClicked: p1 the item's index from 0,
/// p2 the button's id.
class HOST_API CComboPushButton : public QPushButton, public CEventDeliverer {
  Q_OBJECT
 public:
  CComboPushButton(int id, QWidget* parent);
  ~CComboPushButton() override;

  int id() const;
  void addItem(const QString& text);
  int count() const;
  /// -1 while there is no item.
  int currentItem() const;
  /// Reports nothing. Ignored for an index without item.
  void setCurrentItem(int index);

  /// Resource key of the nine-grid image behind the text: its corners keep their size, its edges are stretched.
  void setNineGridImage(const QString& key);
  /// Resource keys of the text's colours.
  void setTextColors(const QString& normal, const QString& hover, const QString& pressed, const QString& disabled);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct Private;
  std::unique_ptr<Private> m_d;
};

}  // namespace GW
