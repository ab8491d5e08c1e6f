// The securities that a user finds by typing, and the line edit in which that is done.

#include "gw/CBaseWidget.h"
#include "gw/widget_events.h"
#include "kit/CTestRuntime.h"
#include "rdservice/TraderCenter.h"
#include "vn/CExchangeClient.h"
#include "vn/CStockCodeLineEdit.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTest>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <limits>

namespace {

using VN::CExchangeClient;

rdservice::IDataPtr makeInstrument(const char* exchange, const std::string& code, const char* name,
                                   const char* pinyin) {
  const auto instrument = boost::make_shared<rdservice::CInstrumentInfo>();
  instrument->exchangeId = exchange;
  instrument->code = code;
  instrument->name = name;
  instrument->pinyin = pinyin;
  return instrument;
}

std::vector<rdservice::IDataPtr> someInstruments() {
  std::vector<rdservice::IDataPtr> all{
      makeInstrument("SZ", "000002", "万科Ａ", "WKA"),    makeInstrument("SZ", "000001", "平安银行", "PAYH"),
      makeInstrument("SH", "600000", "浦发银行", "PFYH"), makeInstrument("SH", "000001", "上证指数", "SZZS"),
      makeInstrument("SH", "601600", "中国铝业", "ZGLY"), makeInstrument("SZ", "000100", "TCL科技", "TCLKJ"),
      makeInstrument("SH", "510300", "ETF３００", "")};
  for (int i = 0; i < 30; ++i) all.push_back(makeInstrument("SH", std::to_string(900100 + i), "债", "Z"));
  return all;
}

rdservice::CDataCenter& centre() { return *rdservice::TraderCenter::instance()->getDataCenter(); }

std::string found(const char* typed, int most = 3) {
  std::string keys;
  for (const auto& instrument : CExchangeClient::findInstruments(QString::fromUtf8(typed), most))
    keys += instrument->getKey() + " ";
  return keys;
}

class StockEdit : public testing::Test {
 protected:
  class COwner : public GW::CBaseWidget {
   public:
    COwner() : CBaseWidget(nullptr) {}
    bool handleEvent(int type, int p1, int, QString text, void*) override {
      EXPECT_EQ(type, GW::EventLineEditChanged);
      told += std::to_string(p1) + ":" + text.toStdString() + " ";
      return true;
    }
    std::string told;
  };

  StockEdit() {
    centre().setInstruments(someInstruments());
    owner.show();
    QApplication::setActiveWindow(&owner);
    edit.setFocus();
  }
  void type(const char* keys) {
    const QString all = QString::fromUtf8(keys);
    for (const QChar key : all) {
      QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(key));
      QApplication::sendEvent(receiver(), &press);
    }
  }
  void press(Qt::Key key) { QTest::keyClick(receiver(), key); }
  void empty() {
    edit.setFocus();
    edit.selectAll();
    press(Qt::Key_Delete);
  }
  /// While the list is open it gets the keys.
  QWidget* receiver() { return list()->isVisible() ? static_cast<QWidget*>(list()) : &edit; }
  QAbstractItemView* list() const { return edit.findChild<QCompleter*>()->popup(); }
  QStringList offered() const {
    QStringList lines;
    for (int row = 0; list()->isVisible() && row < list()->model()->rowCount(); ++row)
      lines << list()->model()->index(row, 0).data().toString();
    return lines;
  }
  std::string state() {
    return edit.text().toStdString() + " " + edit.stockCode().toStdString() + " " + std::exchange(owner.told, {});
  }

  kit::CTestRuntime runtime;
  COwner owner;
  VN::CStockCodeLineEdit edit{4, &owner};
};

TEST(Instruments, AreFoundByWhatAUserTypes) {
  kit::CTestRuntime runtime;
  centre().setInstruments(someInstruments());
  const struct {
    const char* typed;
    const char* keys;
  } cases[] = {{"600", "SH600000 SH601600 "},  // begins with, then contains
               {"0001", "SZ000100 SH000001 SZ000001 "},
               {"00000", "SH000001 SZ000001 SZ000002 "},
               {"000001", "SH000001 SZ000001 "},
               {"yh", "SZ000001 SH600000 "},
               {"ZG", "SH601600 "},
               {"银行", "SZ000001 SH600000 "},
               {"tcl", "SZ000100 "},
               {"科a", "SZ000002 "},  // the name's letter is a wide one
               {"ｅｔｆ30", "SH510300 "},
               {"z", "SH601600 SH900100 SH900101 "},
               {" 601600 ", "SH601600 "},
               {"700", ""},
               {"", ""},
               {"  ", ""}};
  for (const auto& c : cases) EXPECT_EQ(found(c.typed), c.keys) << c.typed;
  EXPECT_EQ(CExchangeClient::findInstruments(QStringLiteral("Z"), 20).size(), 20U);
  EXPECT_EQ(found("600", 0) + found("600", -1) + found("600", 1), "SH600000 ");

  const struct {
    const char* code;
    const char* key;  ///< empty for none
  } gets[] = {{"SZ000001", "SZ000001"},
              {"000001", "SH000001"},
              {"600000", "SH600000"},
              {"SZ600000", ""},
              {"60000", ""},
              {"SH", ""},
              {"", ""}};
  for (const auto& g : gets) {
    const auto instrument = CExchangeClient::getInstrument(QString::fromLatin1(g.code));
    EXPECT_EQ(instrument ? instrument->getKey() : std::string(), g.key) << g.code;
  }
}

TEST(Instruments, AreFoundQuicklyAmongTenThousand) {
  kit::CTestRuntime runtime;
  std::vector<rdservice::IDataPtr> all;
  for (int i = 0; i < 10000; ++i)
    all.push_back(makeInstrument(i % 2 == 0 ? "SH" : "SZ", std::to_string(600000 + i), "浦发银行", "PFYH"));
  centre().setInstruments(all);
  for (const char* typed : {"6", "行", "pf", "999"}) {
    qint64 best = std::numeric_limits<qint64>::max();
    for (int round = 0; round < 20; ++round) {
      QElapsedTimer timer;
      timer.start();
      EXPECT_FALSE(found(typed, 20).empty());
      best = std::min(best, timer.nsecsElapsed());
    }
    RecordProperty(typed, static_cast<int>(best / 1000));
    EXPECT_LT(best, 25 * 1000 * 1000) << typed << ": for unoptimised builds with sanitizers";
  }
}

TEST_F(StockEdit, TypedAndChosenSecurities) {
  edit.setAccessibleName(QString::fromUtf8("证券代码"));
  type("60");
  EXPECT_EQ(offered(),
            QStringList({QString::fromUtf8("600000  浦发银行  SH"), QString::fromUtf8("601600  中国铝业  SH")}));
  EXPECT_EQ(state(), "60 60 4:6 4:60 ");
  press(Qt::Key_Down);
  EXPECT_EQ(state(), "60 60 ") << "passing by is no choice";
  press(Qt::Key_Return);
  EXPECT_TRUE(offered().isEmpty());
  EXPECT_EQ(state(), "601600 SH601600 4:601600 ");
  EXPECT_TRUE(edit.toolTip().contains(QString::fromUtf8("中国铝业")));

  // A whole code by itself counts when one exchange lists it; the other kind is chosen in the list.
  empty();
  EXPECT_EQ(state(), "  4: ");
  EXPECT_TRUE(offered().isEmpty());
  type("600000");
  press(Qt::Key_Escape);
  EXPECT_TRUE(offered().isEmpty());
  EXPECT_EQ(state(), "600000 SH600000 4:6 4:60 4:600 4:6000 4:60000 4:600000 ");
  empty();
  type("000001");
  state();
  EXPECT_EQ(edit.stockCode(), QStringLiteral("000001"));
  EXPECT_EQ(offered().size(), 2);
  const QModelIndex second = list()->model()->index(1, 0);
  QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualRect(second).center());
  EXPECT_EQ(state(), "000001 SZ000001 4:000001 ");
  press(Qt::Key_Backspace);
  type("1");
  press(Qt::Key_Escape);
  EXPECT_EQ(edit.stockCode(), QStringLiteral("000001")) << "typed anew, it may be either";

  empty();
  type("xyz");
  EXPECT_TRUE(offered().isEmpty());
  EXPECT_EQ(edit.stockCode(), QStringLiteral("xyz"));
  empty();
  type("z");
  EXPECT_EQ(offered().size(), 20);
  press(Qt::Key_Escape);
}

TEST_F(StockEdit, ProgramSetsKeysCodesAndAnythingElse) {
  const struct {
    const char* set;
    const char* state;
  } cases[] = {{"SZ000001", "000001 SZ000001 "},
               {"000001", "000001 000001 "},
               {"600000", "600000 SH600000 "},
               {"SZ600000", "SZ600000 SZ600000 "},
               {"", "  "},
               {"SH000001", "000001 SH000001 "}};
  for (const auto& c : cases) {
    edit.setStockCode(QString::fromLatin1(c.set), 0);
    EXPECT_EQ(state(), c.state);
    EXPECT_TRUE(offered().isEmpty());
  }
  // What a layout names before the counter has told its instruments is good later.
  centre().setInstruments({});
  edit.setStockCode(QStringLiteral("SZ000001"), 0);
  centre().setInstruments(someInstruments());
  EXPECT_EQ(edit.stockCode(), QStringLiteral("SZ000001"));
}

}  // namespace
