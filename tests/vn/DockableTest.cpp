// Which accounts a panel asks for.

#include "vn/ITradeDockableWidget.h"

#include "kit/CTestRuntime.h"

#include <gtest/gtest.h>

namespace {

class CHost : public QWidget, public VN::IAccountDemand {
 public:
  explicit CHost(const char* wanted, QWidget* parent = nullptr) : QWidget(parent), m_wanted(wanted) {}
  bool needsAccount(const std::string& accountKey) const override { return accountKey == m_wanted; }

 private:
  const std::string m_wanted;
};

class CPanel : public VN::ITradeDockableWidget {
 public:
  explicit CPanel(QWidget* parent)
      : ITradeDockableWidget(QStringLiteral("crdaq"), 1, getDockWidgetInfo(QStringLiteral("crdaq")), parent) {}
};

TEST(Dockable, APanelAsksForAccountsThatCanAnswerAndThatItsHostWants) {
  kit::CTestRuntime run;
  run.counter().setLogin("3.1002", rdservice::LoginStatusLoggedOut);
  run.settle();
  CPanel alone(nullptr);
  EXPECT_EQ(alone.windowTitle(), QString::fromUtf8("预约展期查询"));
  CHost outer("3.1001"), inner("3.1002", &outer);
  QWidget between(&inner);
  CPanel inside(&between);
  CPanel inOuter(&outer);
  const struct {
    const char* account;
    bool alone, inside, inOuter;
  } cases[] = {
      {"3.1001", true, false, true}, {"11.1003", true, false, false}, {"3.1002", false, false, false},
      {"9.9", false, false, false},  {"", false, false, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(alone.needRequestAccount(c.account), c.alone) << c.account;
    EXPECT_EQ(inside.needRequestAccount(c.account), c.inside) << c.account;
    EXPECT_EQ(inOuter.needRequestAccount(c.account), c.inOuter) << c.account;
  }
  run.counter().setLogin("3.1002", rdservice::LoginStatusReady);
  run.settle();
  EXPECT_TRUE(inside.needRequestAccount("3.1002"));
}

}  // namespace
