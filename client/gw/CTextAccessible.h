#pragma once

#include <QAccessibleWidget>
#include <QWidget>

namespace GW {

/// Tells assistive programs what a line of text says and, for a link, that it can be followed.
class CTextAccessible : public QAccessibleWidget {
 public:
  explicit CTextAccessible(QWidget* widget);

  QAccessible::Role role() const override;
  QStringList actionNames() const override;
  void doAction(const QString& name) override;

 private:
  bool isLink() const { return widget()->focusPolicy() != Qt::NoFocus; }
};

/// Lines of text made from now on are known to assistive programs; again: nothing.
void installTextAccessibility();

}  // namespace GW
