// Texts composed from single glyphs are as wide as Qt's, cut where they must be, and look the same.

#include "gw/view/CTextPainter.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

const char* const TEXTS[] = {
    "1,234,567.89", "600000",    "浦发银行",      "ST 皇台A股",    "2024-02-29",
    "（已冻结）",   "“展期”—1…", "Überweisung €", "合约·编号／％", "e\u0301te\u0301 \u0e01\u0e33",
    "𠀀𠀁 字",      ""};

QFont plainFont() {
  QFont font = QApplication::font();
  font.setKerning(false);
  return font;
}

}  // namespace

TEST(TextPainter, measuresAndCutsLikeQt) {
  GW::CTextPainter painter;
  painter.setFont(QApplication::font(), 1);
  const QFontMetricsF metrics(plainFont());
  for (const char* utf8 : TEXTS) {
    const QString text = QString::fromUtf8(utf8);
    const qreal width = metrics.horizontalAdvance(text);
    EXPECT_NEAR(painter.width(text), width, 0.01) << utf8;
    EXPECT_EQ(painter.elided(text, width + 0.01), text);
    for (qreal room = 0; room < width - 0.5; room += 3) {
      const QString cut = painter.elided(text, room);
      EXPECT_LE(painter.width(cut), room + 0.01) << utf8 << " in " << room;
      EXPECT_TRUE(cut.isEmpty() || (cut.endsWith(QChar(0x2026)) && text.startsWith(cut.chopped(1)))) << utf8;
      EXPECT_TRUE(room < width / 2 || painter.width(cut) > room - 2 * metrics.height()) << "cut too much of " << utf8;
    }
  }
}

TEST(TextPainter, drawsLikeQt) {
  QFont larger = QApplication::font();
  larger.setPointSizeF(larger.pointSizeF() * 1.5);
  GW::CTextPainter painter;
  for (const QFont& given : {QApplication::font(), larger}) {
    painter.setFont(given, 1);
    QFont font = given;
    font.setKerning(false);
    const QFontMetrics metrics(font);
    const int height = metrics.height() + 6;
    QImage composed(400, height * static_cast<int>(std::size(TEXTS)), QImage::Format_RGB32);
    composed.fill(Qt::white);
    QImage drawn = composed;
    QPainter to(&composed);
    QPainter reference(&drawn);
    reference.setFont(font);
    int y = 0;
    for (const char* utf8 : TEXTS) {
      const QRect place(7, y, 380, height);
      const auto side = y / height % 2 == 0 ? Qt::AlignLeft : Qt::AlignRight;
      painter.add(place, side, QString::fromUtf8(utf8), Qt::black);
      reference.setPen(Qt::black);
      reference.drawText(place, static_cast<int>(side) | Qt::AlignVCenter | Qt::TextSingleLine,
                         QString::fromUtf8(utf8));
      y += height;
    }
    painter.draw(to);
    EXPECT_EQ(composed, drawn) << given.pointSizeF();
  }
}
