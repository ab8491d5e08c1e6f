#pragma once

#include <QColor>
#include <QFont>
#include <QRawFont>
#include <QRect>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

class QPainter;

namespace GW {

/// Draws many short texts of one font. The glyph of a character is looked up once; texts are gathered and then drawn
/// with one call for each font file and colour. Texts with characters that need shaping are drawn by Qt instead. GUI
/// thread.
class CTextPainter {
 public:
  CTextPainter();
  ~CTextPainter();

  /// `pixelRatio` is that of the device painted on: hinted advances depend on it.
  void setFont(const QFont& font, qreal pixelRatio);
  const QFont& font() const { return m_font; }

  /// Logical pixels.
  qreal width(const QString& text);
  /// The text, cut with "…" at its end when it is wider.
  QString elided(const QString& text, qreal width);

  /// One line in the middle of `place`'s height, elided when it is wider.
  void add(const QRect& place, Qt::Alignment alignment, const QString& text, const QColor& color);
  /// Draws what was added, and forgets it.
  void draw(QPainter& painter);

 private:
  struct CGlyph {
    enum EKind : std::uint8_t { Unknown, Simple, Blank, Shaped };

    quint32 index = 0;
    float advance = 0;
    std::uint8_t kind = Unknown;
    std::uint8_t font = 0;  ///< in m_rawFonts
  };
  using CGlyphPage = std::array<CGlyph, 256>;

  /// Glyphs of one font file and colour.
  struct CBatch {
    std::uint8_t font;
    QRgb color;
    std::vector<quint32> glyphs;
    std::vector<QPointF> places;
  };
  struct CShapedText {
    QRect place;
    Qt::Alignment alignment;
    QString text;
    QRgb color;
  };

  const CGlyph& glyph(QChar character) {
    const std::unique_ptr<CGlyphPage>& page = m_pages[character.row()];
    if (page) {
      const CGlyph& known = (*page)[character.cell()];
      if (known.kind != CGlyph::Unknown) return known;
    }
    return findGlyph(character);
  }
  const CGlyph& findGlyph(QChar character);
  /// False when the text needs shaping.
  bool compose(const QString& text);
  /// Cuts m_line to a width.
  void cut(qreal width);
  CBatch& batch(std::uint8_t font, QRgb color);

  QFont m_font;
  qreal m_pixelRatio = 0;
  qreal m_ascent = 0;
  qreal m_height = 0;
  std::array<std::unique_ptr<CGlyphPage>, 256> m_pages;
  std::vector<QRawFont> m_rawFonts;

  std::vector<const CGlyph*> m_line;  ///< glyphs of the text composed last
  qreal m_lineWidth = 0;
  std::vector<CBatch> m_batches;
  std::vector<CShapedText> m_shaped;
};

}  // namespace GW
