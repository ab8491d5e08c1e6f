#pragma once

#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsTable.h"
#include "gw/controls.h"
#include "kit/CTestRuntime.h"
#include "kit/records.h"
#include "rdservice/TraderCenter.h"
#include "vn/CCountDownButton.h"

#include <QTest>

/// An independent panel on the screen, and its controls as a user finds them.
struct CPanelUnderTest {
  explicit CPanelUnderTest(kit::CTestRuntime& r) : runtime(r), panel(new VN::CCompactsPanel(3, nullptr, 0)) {
    panel->resize(2000, 400);
    panel->show();
    combo = panel->findChild<GW::CComboBox*>();
    refresh = panel->findChild<VN::CCountDownButton*>();
    table = panel->findChild<VN::CCompactsTable*>();
    runtime.settle();
  }

  QStringList accounts() const {
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i) texts << combo->itemText(i);
    return texts;
  }
  void choose(const char* key) {
    combo->setCurrentIndex(combo->findData(QString::fromLatin1(key)));
    runtime.settle();
  }
  void clickRefresh() {
    QTest::mouseClick(refresh, Qt::LeftButton);
    runtime.settle();
  }
  rdservice::CStkUnClosedCompactsPtr compact(const char* key, const std::string& number) const {
    return kit::compact(rdservice::TraderCenter::instance()->getDataCenter()->getAccountData(key)->getAccountInfo(),
                        number);
  }
  std::size_t requests() const { return runtime.counter().held().size(); }

  kit::CTestRuntime& runtime;
  std::unique_ptr<VN::CCompactsPanel> panel;
  GW::CComboBox* combo = nullptr;
  VN::CCountDownButton* refresh = nullptr;
  VN::CCompactsTable* table = nullptr;
};
