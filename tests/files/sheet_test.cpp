// Spreadsheets: our own, those of other programs, and hostile ones.

#include "file_kit.h"

#include <gtest/gtest.h>

#include <QFile>

namespace {

QString u(const char* text) { return QString::fromUtf8(text); }
QString data(const char* name) { return QStringLiteral(DATA_DIR "/") + QLatin1String(name); }

constexpr qint64 MEMORY_LIMIT = qint64{300} << 20;

TEST(Spreadsheet, OursComesBackAsItWas) {
  QList<QStringList> rows{{u("资金账号"), u("交易所"), u("证券代码"), u("a"), u("b"), u("c"), u("偿还优先级设置")}};
  const QStringList odd{u("000001"), u(" 空 格 "), u("<&\">'"), u("_x0041_"), u("a\tb\nc\rd\x01"), u("𠮷"), u("1E5")};
  for (int i = 1; i < 10'000; ++i) {
    QStringList row = odd;
    row[i % 7] = QStringLiteral("%1").arg(i, 6, 10, QLatin1Char('0'));
    row[(i + 3) % 7].clear();
    rows += row;
  }
  rows[5].last() = QString(32'767, u("账").at(0));
  const QTemporaryDir folder;
  const QString path = folder.filePath(u("规则.xls"));
  ASSERT_TRUE(GW::CXlsxReader::write(path, rows));
  EXPECT_TRUE(contentOf(path).startsWith("PK"));
  QList<QStringList> read;
  EXPECT_EQ(GW::CXlsxReader::read(path, [&read](const QStringList& row) { read += row; }), GW::ReadWhole);
  EXPECT_EQ(read, rows);
  EXPECT_FALSE(GW::CXlsxReader::write(path, {{QString(32'768, QLatin1Char('x'))}}));
  EXPECT_FALSE(GW::CXlsxReader::write(path, {QVector<QString>(16'385, u("x")).toList()}));
}

TEST(Spreadsheet, ThoseOfOtherProgramsReadAsTyped) {
  // Saved by a spreadsheet program from text, where the zeros and the look of the numbers were lost.
  const QStringList priorities{u("资金账号,交易所,证券代码,开仓日期,委托编号,偿还优先级,偿还优先级设置"),
                               u("80001,SH,600000,20240105,1001,,600"), u("80001,SZ,1,20240105,1002,3,1"),
                               u("80001,SZ,2,2024-01-05,1003,,0"),
                               u("80001,SH,600519,20240108,123456789012,12,999999")};
  struct CCase {
    const char* file;
    QStringList lines;
  };
  const CCase cases[] = {
      {"priorities.xlsx", priorities},
      {"priorities.xls", priorities},
      {"priorities_gb18030.csv", priorities},
      // Hidden first sheet, empty rows, dates, a formula without a result, an error, merged cells, a wider row.
      {"openpyxl.xlsx",
       {u("代码,数,文,日"), u("600,600,  留 空 ,2024-02-29"), u("0.1,0.0000001,A b,2024-02-29 09:30:00"),
        u("123456789012345,TRUE,,#N/A"), u("合并,,,"), u("000001,,,,,wide")}},
      {"xlwt.xls",
       {u("代码,数,文,日"), u("600,0.1,000001,2024-02-29"), u("-0.00000015,123456789012345,  留 空 ,"), u("1,,,"),
        u("合并,,,")}},
  };
  for (const CCase& c : cases) {
    const CReading reading = readLines(data(c.file), VN::FileTypeCsv);
    EXPECT_EQ(reading.result, GW::ReadWhole) << c.file;
    EXPECT_EQ(reading.lines, c.lines) << c.file << "\n" << reading.lines.join(QLatin1Char('\n')).toStdString();
  }
  QStringList tabs = priorities;
  EXPECT_EQ(readLines(data("priorities.xls"), VN::FileTypeXls).lines, tabs.replaceInStrings(u(","), u("\t")));
}

TEST(Spreadsheet, EveryFormOfACellIsRead) {
  const QByteArray texts =
      "<si><t>一</t></si><si><r><t>二</t></r><r><rPr/><t> 三</t></r><rPh sb='0'><t>x</t></rPh></si>";
  const QByteArray sheet =
      "<dimension ref='A1'/><sheetData>"
      "<row><c t='s'><v>0</v></c><c t='s'><v>1</v></c><c><v>1</v></c><c/></row>"
      "<row r='3'><c r='C3' t='inlineStr'><is><t>in</t><rPh><t>x</t></rPh><r><t>side</t></r></is></c></row>"
      "<row r='4'><c r='B4' t='str'><f>A1</f><v>f\tg</v></c><c r='A4' t='e'><v>#REF!</v></c><c r='C4' "
      "t='b'><v>0</v></c></row>"
      "<row r='1048576'><c r='C1048576'><v>6.0000000000000001E2</v></c><c><v>-1.5E+25</v></c></row>"
      "</sheetData><mergeCells><c>no</c></mergeCells>";
  const CReading reading = readBytes(xlsxOf(sheet, texts));
  EXPECT_EQ(reading.result, GW::ReadWhole);
  EXPECT_EQ(reading.lines,
            QStringList({u("一\t二 三\t1"), u("\t\tinside"), u("#REF!\tf g\tFALSE"), u("\t\t600\t-1.5E25")}));
}

/// Rows of one cell each, of `bytes` in all.
QByteArray rowsOf(int bytes) {
  const QByteArray row = "<row><c><v>12345678</v></c></row>";
  return row.repeated(bytes / row.size());
}

TEST(Spreadsheet, HostileOnesEndClearlyInLittleMemory) {
  const QByteArray first = "<sheetData><row><c><v>1</v></c></row>";
  const QByteArray whole = xlsxOf("<sheetData>" + rowsOf(1 << 20) + "</sheetData>");
  QByteArray wrongSum = whole;
  wrongSum.replace(whole.mid(whole.indexOf("PK\x01\x02", whole.lastIndexOf("book/one.xml") - 60) + 16, 4), "\1\2\3\4");
  const QByteArray oneText = "<si><t>" + QByteArray(30'000, 'x') + "</t></si>";
  const QByteArray old = contentOf(data("priorities.xls"));
  struct CCase {
    const char* what;
    QByteArray bytes;
    int result;
    int minLines;
  };
  const CCase cases[] = {
      {"cut off", whole.left(whole.size() / 2), GW::ReadDamaged, 0},
      {"a zip file of something else", zipOf({{"a", "b"}}), GW::ReadDamaged, 0},
      {"garbage after the mark", "PK\3\4" + QByteArray(5000, '\7'), GW::ReadDamaged, 0},
      {"wrong checksum", wrongSum, GW::ReadDamaged, 1000},
      {"XML without end", xlsxOf(first + "<row><c>"), GW::ReadDamaged, 1},
      {"an index beyond the texts", xlsxOf(first + "<row><c t='s'><v>7</v></c></row></sheetData>"), GW::ReadDamaged, 1},
      {"rows that go back", xlsxOf(first + "<row r='1'/></sheetData>"), GW::ReadDamaged, 1},
      {"a column beyond the last", xlsxOf(first + "<row><c r='XFE2'/></row></sheetData>"), GW::ReadDamaged, 1},
      {"entities", xlsxOf("", "<!DOCTYPE sst [<!ENTITY a 'aaaa'>]><si><t>&a;</t></si>"), GW::ReadDamaged, 0},
      {"deep elements", xlsxOf(first + QByteArray("<a>").repeated(1 << 20)), GW::ReadDamaged, 1},
      {"one long text", xlsxOf(first + "<row><c><v>" + QByteArray(64 << 20, '1')), GW::ReadTooLarge, 1},
      {"one text in every cell",
       xlsxOf(first + "<row>" + QByteArray("<c t='s'><v>0</v></c>").repeated(16'384), oneText), GW::ReadTooLarge, 1},
      {"texts without number", xlsxOf("", QByteArray("<si/>").repeated(3'000'000)), GW::ReadTooLarge, 0},
      {"more than unpacks in a second", xlsxOf(first + rowsOf(260 << 20) + "</sheetData>"), GW::ReadTooLarge, 0},
      {"an old file cut off", old.left(2000), GW::ReadDamaged, 0},
      {"an old file of garbage", old.left(8) + QByteArray(5000, '\x55'), GW::ReadDamaged, 0},
  };
  const bool isMemoryTrue = std::string(PC_SANITIZE).empty();
  for (const CCase& c : cases) {
    takePeakMemory();
    const qint64 before = takePeakMemory();
    const CReading reading = readBytes(c.bytes);
    EXPECT_EQ(reading.result, c.result) << c.what;
    EXPECT_GE(reading.lines.size(), c.minLines) << c.what;
    if (isMemoryTrue) {
      EXPECT_LT(takePeakMemory() - before, MEMORY_LIMIT) << c.what;
    }
  }
}

}  // namespace
