// What the client remembers of the user's choices, and who follows them.

#include "gw/CBaseWidget.h"
#include "vn/CMsgService.h"
#include "vn/CSingleAccountCommandModeComboBox.h"
#include "vn/CUserConfig.h"
#include "vn/user_settings.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

using VN::CUserConfig;

/// A folder with a file of choices, and the configurations of one run after another on it.
class Choices : public testing::Test {
 protected:
  CUserConfig& run() {
    m_config.reset();  // one at a time
    m_config = VN::makeUserConfig({}, {}, path().toStdString());
    return *m_config;
  }
  QString path() const { return m_folder.filePath(QStringLiteral("choices.json")); }
  QByteArray read(const QString& path) const {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
  }

  QTemporaryDir m_folder;
  std::unique_ptr<CUserConfig> m_config;
};

TEST_F(Choices, ComeBackAsTheyWere) {
  CUserConfig& first = run();
  EXPECT_FALSE(first.isCompactMode());
  EXPECT_TRUE(first.isOrderConfirmed("3.1001"));
  EXPECT_EQ(first.fileFolder(), QString());
  int told = 0;
  const auto handle = first.subscribeChoices([&told] { ++told; });
  first.setCompactMode(true);
  first.setOrderConfirmed("3.1001", false);
  first.setOrderConfirmed("3.1002", false);
  first.setOrderConfirmed("3.1002", true);
  first.setFileFolder(QString::fromUtf8("/家/\"合约\"\n"));
  EXPECT_EQ(told, 5);
  first.setCompactMode(true);  // nothing new
  first.setOrderConfirmed("3.1001", false);
  first.setFileFolder(first.fileFolder());
  EXPECT_EQ(told, 5);
  first.saveTableSetting({"5", 16886, QStringLiteral("a:1;\"宽\"")});
  first.saveTableSetting({"6", 16886, QStringLiteral("b")});
  first.saveTableSetting({"6", 16886, QStringLiteral("c")});
  EXPECT_EQ(told, 5) << "a layout is no choice";

  const CUserConfig& second = run();
  EXPECT_EQ(second.startMessages(), QStringList());
  EXPECT_TRUE(second.isCompactMode());
  EXPECT_FALSE(second.isOrderConfirmed("3.1001"));
  EXPECT_TRUE(second.isOrderConfirmed("3.1002"));
  EXPECT_EQ(second.fileFolder(), QString::fromUtf8("/家/\"合约\"\n"));
  for (const auto& [panel, table, layout] :
       {std::tuple("5", 16886, "a:1;\"宽\""), {"6", 16886, "c"}, {"7", 16886, nullptr}, {"5", 1, nullptr}}) {
    VN::CTableConfigInfo info{panel, table, QStringLiteral("as it was")};
    EXPECT_EQ(second.getTableSetting(info), layout != nullptr);
    EXPECT_EQ(info.config, layout != nullptr ? QString::fromUtf8(layout) : QStringLiteral("as it was"));
  }
}

TEST_F(Choices, ADamagedFileIsKeptAsideAndReported) {
  run().setCompactMode(true);
  const QByteArray whole = read(path());
  const auto replaced = [&whole](const char* before, const char* after) {
    QByteArray text = whole;
    EXPECT_TRUE(text.contains(before)) << before;
    return text.replace(before, after);
  };
  const QByteArray texts[] = {"",
                              "[]",
                              whole.left(whole.size() / 2),
                              replaced("\"version\": 1", "\"version\": 2"),
                              replaced("\"compact_mode\": true", "\"compact_mode\": 1"),
                              replaced("[\n    ]", "[7]"),
                              replaced("\"file_folder\"", "\"folder\""),
                              replaced("\"table_layouts\": [", "\"table_layouts\": [1")};
  for (const QByteArray& text : texts) {
    SCOPED_TRACE(text.toStdString());
    {
      QFile file(path());
      ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    CUserConfig& config = run();
    ASSERT_EQ(config.startMessages().size(), 1);
    const QString aside = path() + QStringLiteral(".damaged");
    EXPECT_TRUE(config.startMessages()[0].endsWith(QStringLiteral("choices.json.damaged")));
    EXPECT_EQ(read(aside), text);
    EXPECT_FALSE(config.isCompactMode()) << "nothing of it is taken";
    config.setFileFolder(QStringLiteral("/a"));
    EXPECT_EQ(run().fileFolder(), QStringLiteral("/a"));
    EXPECT_TRUE(QFile::remove(aside));
  }
}

TEST_F(Choices, CommandModeBoxesFollowOneAnother) {
  class COwner : public GW::CBaseWidget {
   public:
    COwner() : CBaseWidget(nullptr) {}
    bool handleEvent(int type, int p1, int p2, QString, void*) override {
      told += QStringLiteral("%1 %2 %3;").arg(type).arg(p1).arg(p2);
      return true;
    }
    QString told;
  };
  CUserConfig& config = run();
  config.setOrderConfirmed("B", false);
  {
    COwner owner;
    VN::CSingleAccountCommandModeComboBox one(1, &owner), two(2, &owner), other(3, &owner);
    const auto shown = [&] {
      QString all;
      for (const auto* box : {&one, &two, &other})
        all += box->currentText() + QLatin1Char(box->isEnabled() ? ' ' : '-') +
               QLatin1Char(box->isConfirmed() ? 'y' : 'n');
      return all.toStdString();
    };
    EXPECT_EQ(shown(), "下单前确认-y下单前确认-y下单前确认-y");
    one.setAccount("A");
    two.setAccount("A");
    other.setAccount("B");
    EXPECT_EQ(shown(), "下单前确认 y下单前确认 y直接下单 n");
    owner.told.clear();
    one.setCurrentIndex(1);
    EXPECT_EQ(shown(), "直接下单 n直接下单 n直接下单 n");
    EXPECT_FALSE(config.isOrderConfirmed("A"));
    EXPECT_EQ(owner.told.count(QStringLiteral("72 1 1;")), 1) << owner.told.toStdString();
    EXPECT_EQ(owner.told.count(QStringLiteral("72 2 1;")), 1);
    config.setOrderConfirmed("A", true);
    EXPECT_EQ(shown(), "下单前确认 y下单前确认 y直接下单 n");
    other.setAccount(std::string());
    EXPECT_EQ(shown(), "下单前确认 y下单前确认 y下单前确认-y");
    EXPECT_FALSE(config.isOrderConfirmed("B")) << "that was no choice of the user's";
  }
  EXPECT_FALSE(run().isOrderConfirmed("B"));
}

TEST(MessageSettings, ComeFromTheUsersFile) {
  QTemporaryDir folder;
  QFile file(folder.filePath(QStringLiteral("user.toml")));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("priority_message_popup = true\nrenewal_message_sound = true\n");
  file.close();
  std::vector<utils::CConfigError> errors;
  const auto config = VN::makeUserConfig(VN::readUserSettings(file.fileName().toStdString(), errors));
  EXPECT_TRUE(errors.empty());
  for (const int kind : {-1, 0, 1, 2}) {
    EXPECT_EQ(config->getMsgSetting(kind).isPopup, kind == 0) << kind;
    EXPECT_EQ(config->getMsgSetting(kind).hasSound, kind == 1) << kind;
  }
}

TEST(MsgService, HandsMessagesToItsSubscribers) {
  using VN::CMsgService;
  QStringList told;
  auto handle = CMsgService::subscribe([&told](const CMsgService::CMessage& m) {
    told.append(QStringLiteral("%1 %2 %3 %4%5 %6 %7")
                    .arg(m.text)
                    .arg(m.kind)
                    .arg(m.level)
                    .arg(m.isPopup)
                    .arg(m.hasSound)
                    .arg(m.title)
                    .arg(m.times));
  });
  CMsgService::showMsg(QStringLiteral("a"), 1, CMsgService::LevelError, true, false, QStringLiteral("t"), 3);
  handle.reset();
  CMsgService::showMsg(QStringLiteral("b"), 1, 1, false, false, QString(), 1);
  EXPECT_EQ(told, QStringList{QStringLiteral("a 1 2 10 t 3")});
}

}  // namespace
