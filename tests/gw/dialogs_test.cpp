// Dialogs: who receives their events, how they are moved, sized and closed, and the one that asks for a text.

#include "gw/CCommonDialog.h"
#include "gw/CSimpleInputDialog.h"
#include "gw/containers.h"
#include "gw/controls.h"

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

using FAct = std::function<void(GW::CCommonDialog&)>;

/// Acts on the dialog once its event loop runs; an act that leaves it open fails and rejects it.
void actLater(GW::CCommonDialog& dialog, const FAct& act) {
  QTimer::singleShot(0, &dialog, [&dialog, act] {
    const QPointer<GW::CCommonDialog> open(&dialog);
    QApplication::setActiveWindow(&dialog);
    act(dialog);
    if (!open || !open->isVisible()) return;
    ADD_FAILURE() << "the dialog stays open";
    open->reject();
  });
}

QAbstractButton* closeButton(const GW::CCommonDialog& dialog) {
  for (auto* button : dialog.findChildren<QAbstractButton*>())
    if (button->accessibleName() == QString::fromUtf8("关闭")) return button;
  return nullptr;
}

void clickButton(GW::CCommonDialog& dialog, int id) {
  for (auto* button : dialog.findChildren<GW::CMediumNormalButton*>())
    if (button->id() == id) QTest::mouseClick(button, Qt::LeftButton);
}

void drag(QWidget& widget, const QPoint& from, const QPoint& by) {
  const QPoint pressed = widget.mapToGlobal(from);
  const auto send = [&widget](QEvent::Type type, const QPoint& global, Qt::MouseButtons buttons) {
    QMouseEvent event(type, widget.mapFromGlobal(global), global, Qt::LeftButton, buttons, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
  };
  send(QEvent::MouseButtonPress, pressed, Qt::LeftButton);
  send(QEvent::MouseMove, pressed + by / 2, Qt::LeftButton);
  send(QEvent::MouseMove, pressed + by, Qt::LeftButton);
  send(QEvent::MouseButtonRelease, pressed + by, Qt::NoButton);
  send(QEvent::MouseMove, pressed - by, Qt::NoButton);
}

class COwner : public GW::CBaseWidget {
 public:
  COwner() : CBaseWidget(nullptr) {}
  bool handleEvent(int, int, int, QString, void*) override {
    ++events;
    return true;
  }
  int events = 0;
};

class CNotingDialog : public GW::CCommonDialog {
 public:
  using CCommonDialog::CCommonDialog;
  bool handleEvent(int type, int p1, int p2, QString text, void* data) override {
    events += QStringLiteral("%1 %2;").arg(type).arg(p1);
    return CCommonDialog::handleEvent(type, p1, p2, text, data);
  }
  QString events;
};

}  // namespace

TEST(Dialogs, eventsGoToTheDialogAndNoFurther) {
  COwner owner;
  CNotingDialog dialog(&owner);
  auto* const list = new GW::CWidgetList(Qt::Vertical, &dialog);
  auto* const button = new GW::CMediumNormalButton(4, QString::fromUtf8("确定"), list);
  list->addFixedWidget(button);
  dialog.setInnerWidget(list);
  button->click();
  EXPECT_EQ(dialog.events, QStringLiteral("5 4;"));
  EXPECT_FALSE(button->deliverEvent(9, 1, 0, QString(), nullptr));
  EXPECT_EQ(owner.events, 0);
  GW::CSmallNoNormalButton outside(7, QString(), &owner);
  outside.setEventReceiver(&dialog);
  outside.click();
  EXPECT_EQ(dialog.events, QStringLiteral("5 4;9 1;5 7;"));

  const QPointer<QWidget> first(list);
  dialog.setInnerWidget(new QWidget);
  EXPECT_TRUE(first.isNull());
}

TEST(Dialogs, areMovedByTheTitleAndSizedByTheFrame) {
  // The dialog stands at 100, 100 with a size of 400 x 300 and may shrink to 350 x 250.
  const struct {
    const char* what;
    QPoint pressed;
    QPoint by;
    QRect expected;
  } cases[] = {
      {"title", {200, 20}, {30, -40}, {130, 60, 400, 300}},
      {"left", {1, 150}, {-20, 50}, {80, 100, 420, 300}},
      {"left, inwards as far as it goes", {1, 150}, {200, 0}, {150, 100, 350, 300}},
      {"right", {398, 150}, {20, 50}, {100, 100, 420, 300}},
      {"top", {200, 1}, {50, 80}, {100, 150, 400, 250}},
      {"bottom", {200, 298}, {50, -80}, {100, 100, 400, 250}},
      {"lower right corner", {398, 298}, {10, 10}, {100, 100, 410, 310}},
      {"upper left corner", {1, 8}, {-10, -10}, {90, 90, 410, 310}},
  };
  for (const auto& one : cases) {
    GW::CCommonDialog dialog(nullptr);
    dialog.setInnerWidget(new QWidget);
    dialog.setMinimumSize(350, 250);
    dialog.setGeometry(100, 100, 400, 300);
    dialog.show();
    QWidget* const child = dialog.childAt(one.pressed);
    QWidget& target = child == nullptr ? dialog : *child;
    drag(target, target.mapFrom(&dialog, one.pressed), one.by);
    EXPECT_EQ(dialog.geometry(), one.expected) << one.what;
  }
}

TEST(Dialogs, areClosedInSeveralWays) {
  const struct {
    const char* what;
    bool hasCloseButton;
    FAct act;
    int result;
  } cases[] = {
      {"accepted", true, [](auto& dialog) { dialog.accept(); }, QDialog::Accepted},
      {"Escape", true, [](auto& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, QDialog::Rejected},
      {"close button", true, [](auto& dialog) { QTest::mouseClick(closeButton(dialog), Qt::LeftButton); },
       QDialog::Rejected},
      {"window system", false, [](auto& dialog) { dialog.close(); }, QDialog::Rejected},
  };
  for (const auto& one : cases) {
    GW::CCommonDialog dialog(nullptr);
    dialog.setTitle(QString::fromUtf8("批量还券确认"));
    if (!one.hasCloseButton) dialog.setWindowFlags(dialog.windowFlags() & ~Qt::WindowCloseButtonHint);
    actLater(dialog, [&one](GW::CCommonDialog& open) {
      EXPECT_EQ(closeButton(open)->isVisible(), one.hasCloseButton);
      one.act(open);
    });
    EXPECT_EQ(dialog.exec(), one.result) << one.what;
  }
}

TEST(Dialogs, inputIsHandedOverOnConfirmationOnly) {
  const FAct ok = [](auto& dialog) { clickButton(dialog, 0); };
  const FAct enter = [](auto&) { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return); };
  const auto closed = [](const FAct& act) {
    return [act](GW::CCommonDialog& dialog) {
      act(dialog);
      EXPECT_TRUE(dialog.isVisible()) << "a blank text cannot be confirmed";
      QTest::keyClick(&dialog, Qt::Key_Escape);
    };
  };
  const struct {
    const char* what;
    const char* preset;
    const char* typed;  ///< instead of the preset text, which is selected; null for nothing
    FAct act;
    const char* received;  ///< null: nothing is called
  } cases[] = {
      {"preset text", "融资负债篮子", nullptr, ok, "融资负债篮子"},
      {"typed over", "融资负债篮子", "b 1 ", ok, "b 1 "},
      {"Enter", "", "x", enter, "x"},
      {"cancelled", "a", "b", [](auto& dialog) { clickButton(dialog, 1); }, nullptr},
      {"Escape", "a", "b", [](auto& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, nullptr},
      {"close button", "a", "b", [](auto& dialog) { QTest::mouseClick(closeButton(dialog), Qt::LeftButton); }, nullptr},
      {"nothing", "", nullptr, closed(ok), nullptr},
      {"nothing, Enter", "", nullptr, closed(enter), nullptr},
      {"blanks", "a", "  ", closed(ok), nullptr},
      {"blanks, Enter", "a", "  ", closed(enter), nullptr},
      {"its parent goes", "a", nullptr, [](auto& dialog) { delete dialog.parentWidget(); }, nullptr},
  };
  for (const bool isDeletedOnClose : {true, false}) {
    for (const auto& one : cases) {
      SCOPED_TRACE(one.what);
      QPointer<QWidget> parent = new COwner;
      auto* const dialog = new GW::CSimpleInputDialog(QString::fromUtf8("保存篮子"), QString(), parent);
      const QPointer<QWidget> open(dialog);
      dialog->setAttribute(Qt::WA_DeleteOnClose, isDeletedOnClose);
      dialog->setText(QString::fromUtf8(one.preset));
      bool isCalled = false;
      QString received;
      actLater(*dialog, [&one](GW::CCommonDialog& running) {
        if (one.typed != nullptr) QTest::keyClicks(QApplication::focusWidget(), QString::fromUtf8(one.typed));
        one.act(running);
      });
      dialog->getInput([&](const QString& text) {
        isCalled = true;
        received = text;
      });
      EXPECT_EQ(isCalled, one.received != nullptr);
      EXPECT_EQ(received, QString::fromUtf8(one.received));
      EXPECT_EQ(open.isNull(), isDeletedOnClose || parent.isNull());
      if (open) {
        dialog->setText(QStringLiteral("again"));
        actLater(*dialog, ok);
        dialog->getInput([&](const QString& text) { received = text; });
        EXPECT_EQ(received, QStringLiteral("again"));
      }
      delete parent;
    }
  }
}
