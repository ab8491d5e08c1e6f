// Texts: encodings, line ends, and files that are no text.

#include "file_kit.h"

#include <gtest/gtest.h>

#include <QDir>

#include <sys/stat.h>

namespace {

QString u(const char* text) { return QString::fromUtf8(text); }

TEST(Text, ComesLineByLineInEveryEncoding) {
  struct CCase {
    const char* codec;
    QByteArray mark;
  };
  const CCase cases[] = {
      {"UTF-8", ""}, {"UTF-8", "\xEF\xBB\xBF"}, {"UTF-16LE", "\xFF\xFE"}, {"UTF-16BE", "\xFE\xFF"}, {"GB18030", ""}};
  // 联通 in GB18030 looks like overlong UTF-8; ਊ and ഊ have the bytes of line ends in UTF-16.
  QStringList lines{u("联通"), u(""), u("资金账号,\"a,b\",\t ,ਊഊ"), u("𠮷\rx"), u("end")};
  for (int i = 0; i < 20'000; ++i) lines += QString(i % 7, QLatin1Char('a')) + u("证") + QString::number(i);
  for (const CCase& c : cases) {
    for (const char* end : {"\n", "\r\n"}) {
      for (const bool isLastEnded : {true, false}) {
        const QString text = lines.join(u(end)) + (isLastEnded ? u(end) : QString());
        const CReading reading = readBytes(c.mark + encoded(c.codec, text));
        EXPECT_EQ(reading.result, GW::ReadWhole) << c.codec;
        EXPECT_TRUE(reading.lines == lines) << c.codec << c.mark.size() << QByteArray(end).toHex().constData();
      }
    }
  }
  EXPECT_EQ(readBytes("").result, GW::ReadWhole);
}

TEST(Text, EndsClearlyWhereItIsNone) {
  struct CCase {
    const char* what;
    QByteArray bytes;
    int result;
    int lines;
  };
  const QByteArray good = u("资金账号\n").toUtf8();
  const CCase cases[] = {
      {"cut inside a character", good + good + "\xE8\xB5", GW::ReadDamaged, 2},
      {"not even GB18030", "a\n\xD5\xCB\n\xFF\xFF\n", GW::ReadDamaged, 2},
      {"half a character before a line end", "a\n\xD5\xCB\n\xD5\n", GW::ReadDamaged, 2},
      {"half a character at the end", "a\n\xD5\xCB\n\xD5", GW::ReadDamaged, 2},
      {"zero bytes", good + QByteArray("a\0b\n", 4) + good, GW::ReadDamaged, 1},
      {"half a unit", "\xFF\xFE" + encoded("UTF-16LE", u("a\nb")) + "c", GW::ReadDamaged, 1},
      {"half a pair", "\xFF\xFE" + encoded("UTF-16LE", u("a\n")) + QByteArray("\x42\xD8\n\0", 4), GW::ReadDamaged, 1},
      {"a line as long as allowed", good + QByteArray(1 << 20, 'x') + "\ny", GW::ReadWhole, 3},
      {"a longer line", good + QByteArray((1 << 20) + 1, 'x') + "\ny", GW::ReadTooLarge, 1},
      {"a line without end", good + QByteArray(30 << 20, 'x'), GW::ReadTooLarge, 1},
      {"a great empty file", QByteArray(30 << 20, '\0'), GW::ReadTooLarge, 0},
  };
  for (const CCase& c : cases) {
    const CReading reading = readBytes(c.bytes);
    EXPECT_EQ(reading.result, c.result) << c.what;
    EXPECT_EQ(reading.lines.size(), c.lines) << c.what;
  }
}

TEST(Text, OnlyPlainFilesAreRead) {
  const QTemporaryDir folder;
  const QString pipe = folder.filePath(u("pipe"));
  ASSERT_EQ(mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
  for (const QString& path : {pipe, folder.path(), folder.filePath(u("none")), u("/dev/zero"), QString()})
    EXPECT_EQ(readLines(path).result, GW::ReadNotReadable) << path.toStdString();
}

}  // namespace
