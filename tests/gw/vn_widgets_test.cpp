// The widgets of vn that need none of its services.

#include "gw/CBaseWidget.h"
#include "gw/view/CHpfTableView.h"
#include "rdservice/CStkUnClosedCompacts.h"
#include "rdservice/rdservice_enums.h"
#include "rdservice/struct_registry.h"
#include "vn/CCountDownButton.h"
#include "vn/CHpfDataTable.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTimer>

#include <boost/make_shared.hpp>

#include <gtest/gtest.h>

namespace {

/// Notes what the button's state was when its click was delivered.
class COwner : public GW::CBaseWidget {
 public:
  COwner() : CBaseWidget(nullptr), button(1, QString::fromUtf8("刷新"), this) {}
  bool handleEvent(int, int, int, QString, void*) override {
    ++clicks;
    wasLocked = button.isLocked();
    if (intervalAtClick > 0) button.setTimeInterval(intervalAtClick);
    return true;
  }
  /// A second passes.
  void tick() {
    auto* const timer = button.findChild<QTimer*>();
    ASSERT_EQ(timer->interval(), 1000);
    if (timer->isActive()) QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection);
  }

  VN::CCountDownButton button;
  int clicks = 0;
  int intervalAtClick = 0;
  bool wasLocked = false;
};

}  // namespace

TEST(CountDownButton, countsDownAndDeliversClicksMeanwhile) {
  COwner owner;
  owner.button.click();
  EXPECT_FALSE(owner.button.isLocked());  // no interval yet

  owner.intervalAtClick = 3;  // the owner may give the interval while it handles the click
  owner.button.click();
  EXPECT_FALSE(owner.wasLocked);
  EXPECT_TRUE(owner.button.isLocked());
  EXPECT_TRUE(owner.button.isEnabled());
  EXPECT_TRUE(owner.button.property("locked").toBool());
  for (const char* text : {"刷新(3)", "刷新(2)", "刷新(1)"}) {
    EXPECT_EQ(owner.button.text(), QString::fromUtf8(text));
    owner.button.click();
    EXPECT_TRUE(owner.wasLocked);
    owner.tick();
  }
  EXPECT_EQ(owner.clicks, 5);
  EXPECT_FALSE(owner.button.isLocked());
  EXPECT_FALSE(owner.button.property("locked").toBool());
  EXPECT_EQ(owner.button.text(), QString::fromUtf8("刷新"));

  owner.button.click();
  EXPECT_TRUE(owner.button.isLocked());
  owner.button.unlock();
  EXPECT_FALSE(owner.button.isLocked());
  EXPECT_EQ(owner.button.text(), QString::fromUtf8("刷新"));
  owner.tick();
  EXPECT_EQ(owner.button.text(), QString::fromUtf8("刷新"));
}

TEST(HpfDataTable, hasTheColumnsOfItsRecordType) {
  for (const int type : {rdservice::RecordStkUnClosedCompacts, rdservice::RecordStkClosedCompacts,
                         rdservice::RecordStkUnClosedCompactsStatics, rdservice::RecordStkCompactChange}) {
    VN::CHpfDataTable table(1, type, nullptr, 255);
    const rdservice::CStructDes* des = rdservice::structDesOf(type);
    ASSERT_NE(des, nullptr) << type;
    ASSERT_EQ(table.columnCount(), static_cast<int>(des->size()));
    const int added = table.addColumn({QString::fromUtf8("操作"), 1, 0, 132, 0, 0}, false, true, QString());
    EXPECT_EQ(added, static_cast<int>(des->size()));
    for (const rdservice::CFieldDes& field : *des) {
      const int id = table.getColumnIdByFileId(type * 100 + field.number);
      EXPECT_EQ(table.columnTitle(id), QString::fromUtf8(field.title));
      EXPECT_EQ(table.isColumnHidden(id), field.hidden);
    }
    EXPECT_EQ(table.getColumnIdByFileId(type * 100 + 99), -1);
  }
  EXPECT_EQ(rdservice::structDesOf(rdservice::RequestLogin), nullptr);
  VN::CHpfDataTable open(1, rdservice::RecordStkUnClosedCompacts, nullptr, 255);
  VN::CHpfDataTable closed(2, rdservice::RecordStkClosedCompacts, nullptr, 255);
  EXPECT_FALSE(closed.loadConfigStr(open.saveConfigStr()));
  EXPECT_TRUE(open.loadConfigStr(open.saveConfigStr()));
}

TEST(HpfDataTable, menuCopiesSelectedRowsAsShown) {
  constexpr int COPY_ROWS_ONLY = 2;
  VN::CHpfDataTable table(1, rdservice::RecordStkUnClosedCompacts, nullptr, COPY_ROWS_ONLY);
  for (const char* code : {"600002", "600001", "600000"}) {
    auto record = boost::make_shared<rdservice::CStkUnClosedCompacts>();
    record->code = code;
    record->fieldA = "7";
    table.updateData(record, false);
  }
  table.updateTable();
  const auto idOf = [&table](const char* name) {
    const auto* field = rdservice::CStkUnClosedCompacts::structDes().fieldByName(name);
    return field == nullptr ? -1
                            : table.getColumnIdByFileId(rdservice::RecordStkUnClosedCompacts * 100 + field->number);
  };
  const int code = idOf("code"), number = idOf("compact_no");
  ASSERT_GE(code, 0);
  ASSERT_GE(number, 0);
  for (int id = 0; id < table.columnCount(); ++id) table.setColumnHidden(id, id != code && id != number);
  table.moveColumn(number, 0);
  table.setSortColumn(code, Qt::AscendingOrder);
  table.resize(400, 300);
  table.show();
  auto* const view = table.findChild<GW::CHpfTableView*>();
  view->selectRows(2, 2);
  view->addToSelection(0, true);
  QApplication::clipboard()->clear();
  QTimer::singleShot(0, [] {
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 1);
    menu->actions().front()->trigger();
    menu->close();
  });
  Q_EMIT view->sigMenuRequested(QPoint(5, 5));
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("7\t600000\n7\t600002"));
}
