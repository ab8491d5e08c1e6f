#include "vn/CUserConfig.h"

#include "vn/user_settings.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <limits>

namespace {

using VN::CBasketStockData;
using VN::CUserConfig;

/// A folder with a basket file, and the configurations of one run after another on it.
class Baskets : public testing::Test {
 protected:
  CUserConfig& run() {
    m_config.reset();  // one at a time
    m_config = VN::makeUserConfig({}, path().toStdString());
    return *m_config;
  }
  QString path() const { return m_folder.filePath(QStringLiteral("baskets.json")); }
  QStringList files() const { return QDir(m_folder.path()).entryList(QDir::Files, QDir::Name); }
  QByteArray read(const QString& name = QStringLiteral("baskets.json")) const {
    QFile file(m_folder.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
  }
  void write(const QString& name, const QByteArray& text) {
    QFile file(m_folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
  }
  static QStringList names(CUserConfig& config) {
    QStringList all;
    for (const auto& basket : config.getBasketSettings()) all.append(basket->name());
    return all;
  }
  static QStringList list(std::initializer_list<const char*> texts) {
    QStringList all;
    for (const char* text : texts) all.append(QString::fromUtf8(text));
    return all;
  }
  static void save(CUserConfig& config, const char* name, const QList<CBasketStockData>& stocks) {
    const auto basket = config.getBasketSettingNoCreate(QString::fromUtf8(name));
    basket->stocks.clear();
    basket->setName(QString::fromUtf8(name));
    basket->stocks = stocks;
    EXPECT_EQ(config.saveBaskets(), QString());
  }

  QTemporaryDir m_folder;
  std::unique_ptr<CUserConfig> m_config;
};

const CBasketStockData LINE{
    QStringLiteral("SH"), QStringLiteral("600000"), QString::fromUtf8("浦发\"银行\n"), 18, 9007199254740991, 0.1};
const CBasketStockData OTHER_LINE{QStringLiteral("SZ"), QStringLiteral("000001"), QString(), 19, -300, 1234567.89};

TEST_F(Baskets, ComeBackAsTheyWere) {
  CUserConfig& first = run();
  EXPECT_EQ(names(first), QStringList());
  save(first, "融资负债篮子", {LINE, OTHER_LINE});
  save(first, "空", {});
  save(first, "融资负债篮子", {OTHER_LINE, LINE});  // replaces the lines
  CUserConfig& second = run();
  EXPECT_EQ(second.startMessages(), QStringList());
  ASSERT_EQ(names(second), list({"融资负债篮子", "空"}));
  EXPECT_TRUE((second.getBasketSettings()[0]->stocks == QList<CBasketStockData>{OTHER_LINE, LINE}));
  EXPECT_TRUE(second.getBasketSettings()[1]->stocks.isEmpty());

  auto extreme = LINE;
  extreme.amount = std::numeric_limits<double>::infinity();
  extreme.volume = std::numeric_limits<std::int64_t>::max();
  save(second, "空", {extreme});  // which JSON cannot say
  CUserConfig& third = run();
  ASSERT_EQ(third.startMessages(), QStringList());
  EXPECT_EQ(third.getBasketSettings()[1]->stocks[0].amount, 0);
  EXPECT_EQ(third.getBasketSettings()[1]->stocks[0].volume, std::int64_t{1} << 53);
}

TEST_F(Baskets, AreKeptAsSoonAsTheyHaveAName) {
  CUserConfig& config = run();
  const auto asked = config.getBasketSettingNoCreate(QStringLiteral("A"));
  EXPECT_EQ(names(config), QStringList()) << "looking for a name makes no basket";
  asked->setName(QStringLiteral("A"));
  EXPECT_EQ(names(config), list({"A"}));
  EXPECT_EQ(config.getBasketSettingNoCreate(QStringLiteral("A")), asked) << "the live one";
  config.getBasketSettingNoCreate(QString())->setName(QString());
  EXPECT_EQ(names(config), list({"A", ""})) << "a name may be empty";

  // Of two with one name the one named last stays, wherever it came from.
  const auto second = config.getBasketSettingNoCreate(QStringLiteral("B"));
  second->setName(QStringLiteral("A"));
  second->stocks = {LINE};
  EXPECT_EQ(names(config), list({"", "A"}));
  EXPECT_EQ(config.getBasketSettingNoCreate(QStringLiteral("A")), second);
}

TEST_F(Baskets, RemovalAndRenamingAreSavedAndTold) {
  CUserConfig& config = run();
  save(config, "A", {LINE});
  save(config, "B", {});
  save(config, "C", {});
  int told = 0;
  auto handle = config.subscribeBaskets([&told] { ++told; });
  const struct {
    const char* from;
    const char* to;  ///< null to remove
    bool isDone;
  } steps[] = {{"A", "B", false}, {"X", "Y", false},    {"A", "D", true},
               {"D", "D", true},  {"B", nullptr, true}, {"B", nullptr, false}};
  int done = 0;
  for (const auto& step : steps) {
    const QString from = QString::fromUtf8(step.from);
    const auto problem =
        step.to ? config.renameBasketSetting(from, QString::fromUtf8(step.to)) : config.removeBasketSetting(from);
    EXPECT_EQ(problem, step.isDone ? std::make_optional(QString()) : std::nullopt) << step.from;
    if (step.isDone) ++done;
    EXPECT_EQ(told, done);
  }
  handle.reset();
  config.saveBaskets();
  EXPECT_EQ(told, done);
  EXPECT_EQ(names(run()), list({"D", "C"}));
}

TEST_F(Baskets, AKillBetweenLeavesTheFormerOnes) {
  save(run(), "A", {LINE});
  const QByteArray whole = read();
  // What a writer that was killed leaves beside the file, at every length.
  for (int length = 0; length <= whole.size(); length += 7)
    write(QStringLiteral("baskets.json.Xy12Zq"), whole.left(length));
  CUserConfig& config = run();
  EXPECT_EQ(config.startMessages(), QStringList());
  EXPECT_EQ(names(config), list({"A"}));
  save(config, "B", {});
  EXPECT_EQ(names(run()), list({"A", "B"}));
}

TEST_F(Baskets, ADamagedFileIsKeptAsideAndReported) {
  save(run(), "A", {LINE});
  const QByteArray whole = read();
  const auto replaced = [&whole](const char* before, const char* after) {
    QByteArray text = whole;
    EXPECT_TRUE(text.contains(before)) << before;
    return text.replace(before, after);
  };
  const struct {
    QByteArray text;
    const char* why;
  } cases[] = {
      {"", "第 1 行第 1 字节: "},
      {"[]", "不是对象"},
      {whole.left(whole.size() / 2), "第 "},
      {replaced("\"version\": 1", "\"version\": 2"), "version 不是 1"},
      {replaced("\"operation\": 18", "\"operation\": 1.5"), "baskets[0].stocks[0]: operation 不是整数或超出范围"},
      {replaced("\"operation\": 18", "\"operation\": 1e10"), "baskets[0].stocks[0]: operation 不是整数或超出范围"},
      {replaced("\"market\": \"SH\"", "\"market\": 7"), "baskets[0].stocks[0]: market 不是文本"},
      {replaced("\"amount\"", "\"amounts\""), "baskets[0].stocks[0]: amount 不是数字"},
      {"{\"version\": 1, \"baskets\": [{\"name\": \"A\", \"stocks\": []}, {\"name\": \"A\", \"stocks\": []}]}",
       "baskets[1]: 名称重复 A"},
  };
  int aside = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    write(QStringLiteral("baskets.json"), c.text);
    CUserConfig& config = run();
    ASSERT_EQ(config.startMessages().size(), 1);
    const QString name =
        QStringLiteral("baskets.json.damaged") + (++aside == 1 ? QString() : QStringLiteral("-%1").arg(aside));
    EXPECT_TRUE(config.startMessages()[0].contains(QString::fromUtf8(c.why))) << qPrintable(config.startMessages()[0]);
    EXPECT_TRUE(config.startMessages()[0].contains(path())) << qPrintable(config.startMessages()[0]);
    EXPECT_TRUE(config.startMessages()[0].endsWith(name)) << qPrintable(config.startMessages()[0]);
    EXPECT_EQ(read(name), c.text);
    EXPECT_EQ(names(config), QStringList()) << "nothing of it is taken";
    save(config, "new", {});
    EXPECT_EQ(read(name), c.text);
  }
  EXPECT_EQ(files().size(), aside + 1);
}

TEST_F(Baskets, AFileThatCannotBeReadIsLeftAlone) {
  ASSERT_TRUE(QFile::link(QStringLiteral("/proc/self/mem"), path()));  // opens, but nothing can be read from its begin
  CUserConfig& config = run();
  ASSERT_EQ(config.startMessages().size(), 1);
  EXPECT_TRUE(config.startMessages()[0].contains(QStringLiteral("不能读取"))) << qPrintable(config.startMessages()[0]);
  EXPECT_TRUE(config.saveBaskets().contains(QStringLiteral("未改动")));
  EXPECT_EQ(files(), list({"baskets.json"}));
}

TEST_F(Baskets, AFileThatCannotBeWrittenIsTold) {
  CUserConfig& config = run();
  config.getBasketSettingNoCreate(QStringLiteral("A"))->setName(QStringLiteral("A"));
  ASSERT_TRUE(QDir().mkdir(path()));  // a folder where the file belongs
  EXPECT_TRUE(config.saveBaskets().contains(path())) << qPrintable(config.saveBaskets());
  EXPECT_EQ(config.renameBasketSetting(QStringLiteral("A"), QStringLiteral("B")), config.saveBaskets());
  EXPECT_EQ(config.removeBasketSetting(QStringLiteral("B")), config.saveBaskets());
  config.getBasketSettingNoCreate(QStringLiteral("A"))->setName(QStringLiteral("A"));
  ASSERT_TRUE(QDir().rmdir(path()));
  EXPECT_EQ(config.saveBaskets(), QString());
  // More than can be read again.
  const auto large = config.getBasketSettingNoCreate(QStringLiteral("large"));
  large->setName(QStringLiteral("large"));
  auto line = LINE;
  line.name = QString(64 << 20, QLatin1Char('x'));
  large->stocks = {line};
  EXPECT_TRUE(config.saveBaskets().endsWith(QStringLiteral("超过 67108864 字节")));
  EXPECT_EQ(names(run()), list({"A"}));
}

}  // namespace
