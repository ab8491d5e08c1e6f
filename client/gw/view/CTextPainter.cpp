#include "gw/view/CTextPainter.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>
#include <limits>

namespace GW {

namespace {

constexpr QChar ELLIPSIS(0x2026);

struct CRange {
  ushort first;
  ushort last;
};

/// Characters that look the same beside any other: no combining marks, joiners or changes of direction.
constexpr CRange SIMPLE[] = {
    {0x0020, 0x007e}, {0x00a0, 0x00ac}, {0x00ae, 0x017f},  // Latin
    {0x2010, 0x2027}, {0x2030, 0x205e}, {0x20a0, 0x20bf},  // punctuation, currencies
    {0x2100, 0x22ff}, {0x2460, 0x24ff}, {0x2500, 0x25ff},  // letterlike, arrows, operators, circled, boxes
    {0x3000, 0x3029}, {0x3030, 0x303f},                    // CJK punctuation
    {0x3400, 0x4dbf}, {0x4e00, 0x9fff}, {0xf900, 0xfaff},  // ideographs
    {0xff01, 0xff60}, {0xffe0, 0xffe6},                    // full width forms
};

bool isSimple(QChar character) {
  return std::any_of(std::begin(SIMPLE), std::end(SIMPLE), [code = character.unicode()](const CRange& range) {
    return code >= range.first && code <= range.last;
  });
}

}  // namespace

CTextPainter::CTextPainter() = default;
CTextPainter::~CTextPainter() = default;

void CTextPainter::setFont(const QFont& font, qreal pixelRatio) {
  // Glyphs are found singly, so that pairs must not move closer in shaped texts and measures either.
  QFont plain = font;
  plain.setKerning(false);
  if (plain == m_font && qFuzzyCompare(pixelRatio, m_pixelRatio)) return;
  m_font = plain;
  m_pixelRatio = pixelRatio;
  for (auto& page : m_pages) page.reset();
  m_rawFonts.clear();
  m_batches.clear();
  m_shaped.clear();
  const QFontMetricsF metrics(m_font);
  m_ascent = metrics.ascent();
  m_height = metrics.ascent() + metrics.descent();
}

const CTextPainter::CGlyph& CTextPainter::findGlyph(QChar character) {
  std::unique_ptr<CGlyphPage>& page = m_pages[character.row()];
  if (!page) page = std::make_unique<CGlyphPage>();
  CGlyph& found = (*page)[character.cell()];
  found.kind = CGlyph::Shaped;
  if (!isSimple(character)) return found;

  QTextLayout layout(character, m_font);
  layout.beginLayout();
  const QTextLine line = layout.createLine();
  layout.endLayout();
  found.advance = static_cast<float>(QFontMetricsF(m_font).horizontalAdvance(QString(character)));
  const QList<QGlyphRun> runs = line.glyphRuns();
  if (character.isSpace() || runs.isEmpty()) {
    found.kind = CGlyph::Blank;
    return found;
  }
  const QRawFont rawFont = runs.front().rawFont();
  if (runs.size() != 1 || runs.front().glyphIndexes().size() != 1) return found;
  auto font = std::find(m_rawFonts.begin(), m_rawFonts.end(), rawFont);
  if (font == m_rawFonts.end()) {
    if (m_rawFonts.size() == std::numeric_limits<std::uint8_t>::max()) return found;
    font = m_rawFonts.insert(m_rawFonts.end(), rawFont);
  }
  found.font = static_cast<std::uint8_t>(font - m_rawFonts.begin());
  found.index = runs.front().glyphIndexes().front();
  found.kind = CGlyph::Simple;
  return found;
}

bool CTextPainter::compose(const QString& text) {
  m_line.clear();
  m_lineWidth = 0;
  for (const QChar character : text) {
    const CGlyph& one = glyph(character);
    if (one.kind == CGlyph::Shaped) return false;
    m_line.push_back(&one);
    m_lineWidth += static_cast<qreal>(one.advance);
  }
  return true;
}

void CTextPainter::cut(qreal width) {
  const CGlyph& ellipsis = glyph(ELLIPSIS);
  const qreal room = width - static_cast<qreal>(ellipsis.advance);
  while (!m_line.empty() && m_lineWidth > room) {
    m_lineWidth -= static_cast<qreal>(m_line.back()->advance);
    m_line.pop_back();
  }
  if (room < 0 || ellipsis.kind == CGlyph::Shaped) return;
  m_line.push_back(&ellipsis);
  m_lineWidth += static_cast<qreal>(ellipsis.advance);
}

qreal CTextPainter::width(const QString& text) {
  return compose(text) ? m_lineWidth : QFontMetricsF(m_font).horizontalAdvance(text);
}

QString CTextPainter::elided(const QString& text, qreal width) {
  if (!compose(text)) return QFontMetricsF(m_font).elidedText(text, Qt::ElideRight, width);
  if (m_lineWidth <= width) return text;
  cut(width);
  return m_line.empty() ? QString() : text.left(static_cast<int>(m_line.size()) - 1) + ELLIPSIS;
}

void CTextPainter::add(const QRect& place, Qt::Alignment alignment, const QString& text, const QColor& color) {
  if (text.isEmpty() || place.width() <= 0) return;
  if (!compose(text)) {
    m_shaped.push_back({place, alignment, text, color.rgba()});
    return;
  }
  if (m_lineWidth > place.width()) cut(place.width());
  qreal x = place.x();
  if ((alignment & Qt::AlignRight) != 0)
    x += place.width() - m_lineWidth;
  else if ((alignment & Qt::AlignHCenter) != 0)
    x += static_cast<int>((place.width() - m_lineWidth) / 2);
  const qreal y = place.y() + std::round((place.height() - m_height) / 2 + m_ascent);
  CBatch* to = nullptr;
  for (const CGlyph* one : m_line) {
    if (one->kind == CGlyph::Simple) {
      if (to == nullptr || to->font != one->font) to = &batch(one->font, color.rgba());
      to->glyphs.push_back(one->index);
      to->places.emplace_back(x, y);
    }
    x += static_cast<qreal>(one->advance);
  }
}

CTextPainter::CBatch& CTextPainter::batch(std::uint8_t font, QRgb color) {
  for (CBatch& known : m_batches) {
    if (known.font == font && known.color == color) return known;
  }
  m_batches.push_back({font, color, {}, {}});
  return m_batches.back();
}

void CTextPainter::draw(QPainter& painter) {
  QGlyphRun run;
  for (CBatch& batch : m_batches) {
    if (batch.glyphs.empty()) continue;
    run.setRawFont(m_rawFonts[batch.font]);
    run.setRawData(batch.glyphs.data(), batch.places.data(), static_cast<int>(batch.glyphs.size()));
    painter.setPen(QColor::fromRgba(batch.color));
    painter.drawGlyphRun(QPointF(), run);
    batch.glyphs.clear();
    batch.places.clear();
  }
  if (m_batches.size() > 64) m_batches.clear();  // colours of themes gone by
  if (m_shaped.empty()) return;
  painter.setFont(m_font);
  const QFontMetricsF metrics(m_font);
  for (const CShapedText& one : m_shaped) {
    painter.setPen(QColor::fromRgba(one.color));
    painter.drawText(
        one.place, static_cast<int>((one.alignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter) | Qt::TextSingleLine,
        metrics.elidedText(one.text, Qt::ElideRight, one.place.width()));
  }
  m_shaped.clear();
}

}  // namespace GW
