#include "gw/CUiResource.h"

#include "gw/ui_resources.h"

#include "utils/threads.h"

#include <QApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPalette>
#include <QPushButton>

#include <algorithm>
#include <vector>

namespace GW {

namespace {

struct CColorRow {
  const char* key;
  QRgb light;
  QRgb dark;
};

// Blue greys and a single blue accent.
constexpr CColorRow COLORS[] = {
    {"clr_clickable_simple_text", 0xff1a66c8, 0xff5aa2f5},
    {"clr_btn_s_normal_0", 0xff26323f, 0xffd5dbe2},  // normal, hover, pressed, disabled
    {"clr_btn_s_normal_1", 0xff1a66c8, 0xff7db8fa},
    {"clr_btn_s_normal_2", 0xff0d4795, 0xffa8d0ff},
    {"clr_btn_s_normal_3", 0xff9aa5b1, 0xff6c7885},
    {"clr_btn_border", 0xffc3ccd8, 0xff46515d},
    {"clr_btn_top", 0xfffdfdfe, 0xff36404a},
    {"clr_btn_bottom", 0xffedf1f6, 0xff2d353e},
    {"clr_btn_pressed", 0xffdbe5f1, 0xff27303a},
    {"clr_btn_disabled", 0xfff2f4f7, 0xff2a3138},
    {"clr_bar_top", 0xfffafbfd, 0xff2b333b},
    {"clr_bar_bottom", 0xffe8edf4, 0xff242b32},
    {"clr_bar_line", 0xffced6e1, 0xff3a444e},
    {"clr_table_background", 0xffffffff, 0xff1a1f24},
    {"clr_table_alternate", 0xfff5f8fc, 0xff1f252b},
    {"clr_table_grid", 0xffe1e7ef, 0xff2c343c},
    {"clr_table_text", 0xff1f2a36, 0xffd5dbe2},
    {"clr_table_disabled_text", 0xff9aa5b1, 0xff6c7885},
    {"clr_table_selected", 0xffcfe2fa, 0xff27496d},
    {"clr_table_current", 0xff1a66c8, 0xff5aa2f5},  // frames of the current cell and row
    {"clr_table_current_row", 0xff9fc0ea, 0xff3f6a98},
    {"clr_table_header", 0xffeef2f7, 0xff2a3138},
    {"clr_table_header_hover", 0xffe0e8f2, 0xff343d46},
    {"clr_table_header_line", 0xffc9d2de, 0xff3f4954},
    {"clr_table_header_text", 0xff33414f, 0xffc3ccd6},
    {"clr_table_mark", 0xff1a66c8, 0xff5aa2f5},  // sort and filter marks
    {"clr_table_idle_mark", 0xff9aa5b1, 0xff6c7885},
    {"clr_table_sums", 0xfff3f1e6, 0xff2b2a22},
    {"clr_table_sums_text", 0xff1f2a36, 0xffe3dcc0},
    {"clr_control_rim", 0xffdfe5ec, 0xff8d9aa8},
    {"clr_table_control_border", 0xffb4bfcc, 0xff5c6874},  // check boxes, radio buttons, cells that one types into
    {"clr_table_control_background", 0xffffffff, 0xff14181c},
    {"clr_table_control_accent", 0xff1a66c8, 0xff3d86dc},
    {"clr_table_control_mark", 0xffffffff, 0xffffffff},
    {"clr_table_control_disabled_border", 0xffd3dae3, 0xff3a444e},
    {"clr_table_control_disabled_background", 0xfff2f4f7, 0xff20262c},
    {"clr_window", 0xfff4f6f9, 0xff20262c},  // the application's own palette
    {"clr_window_text", 0xff1f2a36, 0xffd5dbe2},
    {"clr_input", 0xffffffff, 0xff14181c},
    {"clr_input_wrong", 0xfffdecea, 0xff472625},
    {"clr_input_wrong_text", 0xffb3261e, 0xffff9d94},
    {"clr_highlight", 0xff1a66c8, 0xff3d86dc},
    {"clr_highlight_text", 0xffffffff, 0xffffffff},
    {"clr_tip_text", 0xff2a2418, 0xffefe7d8},
    {"clr_tip_warning", 0xfffff6dc, 0xff42381c},
    {"clr_tip_warning_border", 0xffe0a92e, 0xffa98433},
    {"clr_tip_error", 0xfffdecea, 0xff472625},
    {"clr_tip_error_border", 0xffd9534a, 0xffb4544d},
};

EUiTheme theme = EUiTheme::Light;
bool isThemeApplied = false;  ///< to the application's palette

struct CPaletteRow {
  QPalette::ColorRole role;
  const char* key;
};

constexpr CPaletteRow PALETTE[] = {
    {QPalette::Window, "clr_window"},
    {QPalette::WindowText, "clr_window_text"},
    {QPalette::Base, "clr_input"},
    {QPalette::AlternateBase, "clr_table_alternate"},
    {QPalette::Text, "clr_window_text"},
    {QPalette::Button, "clr_btn_bottom"},
    {QPalette::ButtonText, "clr_btn_s_normal_0"},
    {QPalette::Highlight, "clr_highlight"},
    {QPalette::HighlightedText, "clr_highlight_text"},
    {QPalette::ToolTipBase, "clr_window"},
    {QPalette::ToolTipText, "clr_window_text"},
    {QPalette::PlaceholderText, "clr_table_disabled_text"},
};

struct CSizeRow {
  const char* key;
  int pixels;
};

constexpr CSizeRow SIZES[] = {
    {"vn_siz_setting_accounts_item_width", 130},
    {"vn_siz_querypanel_toolbar_item_height", 26},
    {"vn_siz_setting_inner_bottom_btn_height", 30},
};

constexpr const char* NORMAL_FONTS[] = {"fnt_default_normal_fix"};

QPixmap paintBar() {
  QPixmap image(8, 64);
  QPainter painter(&image);
  QLinearGradient gradient(0, 0, 0, image.height());
  gradient.setColorAt(0, CUiResource::getColor(QStringLiteral("clr_bar_top")));
  gradient.setColorAt(1, CUiResource::getColor(QStringLiteral("clr_bar_bottom")));
  painter.fillRect(image.rect(), gradient);
  return image;
}

/// Thirds of it are the corners and edges of a button.
QPixmap paintComboButton() {
  constexpr int SIDE = 12;  // at 100 %
  const qreal scale = qApp->devicePixelRatio();
  QPixmap image(QSizeF(SIDE * scale, SIDE * scale).toSize());
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient gradient(0, 0, 0, SIDE);
  gradient.setColorAt(0, CUiResource::getColor(QStringLiteral("clr_btn_top")));
  gradient.setColorAt(1, CUiResource::getColor(QStringLiteral("clr_btn_bottom")));
  painter.setBrush(gradient);
  painter.setPen(CUiResource::getColor(QStringLiteral("clr_btn_border")));
  painter.drawRoundedRect(QRectF(0.5, 0.5, SIDE - 1, SIDE - 1), 3, 3);
  return image;
}

QPixmap paintCalendar() {
  constexpr int SIDE = 16;  // at 100 %
  const qreal scale = qApp->devicePixelRatio();
  QPixmap image(QSizeF(SIDE * scale, SIDE * scale).toSize());
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  const QColor color = CUiResource::getColor(QStringLiteral("clr_btn_s_normal_0"));
  QPainter painter(&image);
  painter.setPen(color);
  painter.drawRect(QRectF(2.5, 3.5, 11, 10));
  painter.fillRect(QRectF(2, 3, 12, 3), color);
  for (const int x : {4, 10}) painter.fillRect(QRectF(x, 1, 2, 3), color);  // rings
  for (const int y : {8, 11})
    for (const int x : {4, 7, 10}) painter.fillRect(QRectF(x, y, 2, 1), color);
  return image;
}

struct CImageRow {
  const char* key;
  QPixmap (*paint)();
};

constexpr CImageRow IMAGES[] = {
    {"vn_img_op_hedge_type_bg", paintBar},
    {"img_combobtn_small_normal_1", paintComboButton},
    {"img_calendar", paintCalendar},
};

template <class Row, std::size_t N>
const Row* findRow(const Row (&rows)[N], const QString& key) {
  utils::assertGui();
  const auto* it = std::find_if(rows, rows + N, [&key](const Row& row) { return key == QLatin1String(row.key); });
  return it == rows + N ? nullptr : it;
}

std::vector<CUiResourceChangeHandler*>& handlers() {
  static std::vector<CUiResourceChangeHandler*> all;
  return all;
}

}  // namespace

CUiResourceChangeHandler::CUiResourceChangeHandler() { handlers().push_back(this); }

CUiResourceChangeHandler::~CUiResourceChangeHandler() {
  auto& all = handlers();
  all.erase(std::find(all.begin(), all.end(), this));
}

void CUiResourceChangeHandler::onUiResourceChanged() {}

void notifyUiResourceChanged() {
  utils::assertGui();
  const auto all = handlers();
  for (CUiResourceChangeHandler* handler : all) {
    // A handler may delete widgets that stand later in the list.
    if (std::count(handlers().begin(), handlers().end(), handler) > 0) handler->onUiResourceChanged();
  }
}

void setUiTheme(EUiTheme wanted) {
  utils::assertGui();
  if (wanted == theme && isThemeApplied) return;
  theme = wanted;
  isThemeApplied = true;
  QPalette palette(CUiResource::getColor(QStringLiteral("clr_btn_bottom")),
                   CUiResource::getColor(QStringLiteral("clr_window")));
  for (const CPaletteRow& row : PALETTE)
    palette.setColor(row.role, CUiResource::getColor(QString::fromLatin1(row.key)));
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, CUiResource::getColor(QStringLiteral("clr_table_disabled_text")));
  QApplication::setPalette(palette);
  // The style draws the rims of these in a darker shade of the window, which a dark one hides.
  QPalette rims = palette;
  rims.setColor(QPalette::Window, CUiResource::getColor(QStringLiteral("clr_control_rim")));
  for (const char* control : {"QRadioButton", "QCheckBox"}) QApplication::setPalette(rims, control);
  notifyUiResourceChanged();
}

EUiTheme uiTheme() { return theme; }

QColor CUiResource::getColor(const QString& key) {
  const CColorRow* row = findRow(COLORS, key);
  return row == nullptr ? QApplication::palette().color(QPalette::WindowText)
                        : QColor::fromRgba(theme == EUiTheme::Dark ? row->dark : row->light);
}

QFont CUiResource::getFont(const QString& key) {
  utils::assertGui();
  QFont font = QApplication::font();
  for (const char* known : NORMAL_FONTS) {
    if (key == QLatin1String(known)) font.setWeight(QFont::Normal);
  }
  return font;
}

int CUiResource::getSize(const QString& key) {
  const CSizeRow* row = findRow(SIZES, key);
  return row == nullptr ? 0 : row->pixels;
}

QPixmap CUiResource::getImage(const QString& key) {
  const CImageRow* row = findRow(IMAGES, key);
  return row == nullptr ? QPixmap() : row->paint();
}

namespace {

QString smallButtonStyle() {
  const auto color = [](const char* key) { return CUiResource::getColor(QString::fromLatin1(key)).name(); };
  return QStringLiteral(
             "QPushButton { border: 1px solid %1; border-radius: 3px; padding: 2px 8px; color: %5;"
             " background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 %2, stop:1 %3); }"
             "QPushButton:default, QPushButton:focus, QPushButton:hover { border-color: %6; }"
             "QPushButton:hover { color: %6; }"
             "QPushButton:pressed { color: %7; background: %4; }"
             "QPushButton:disabled, QPushButton[locked=\"true\"] { color: %8; background: %9; border-color: %1; }")
      .arg(color("clr_btn_border"), color("clr_btn_top"), color("clr_btn_bottom"), color("clr_btn_pressed"),
           color("clr_btn_s_normal_0"), color("clr_btn_s_normal_1"), color("clr_btn_s_normal_2"),
           color("clr_btn_s_normal_3"), color("clr_btn_disabled"));
}

/// Child of the button that it keeps in the theme's colours.
class CSmallButtonLook : public QObject, public CUiResourceChangeHandler {
 public:
  explicit CSmallButtonLook(QPushButton* button) : QObject(button), m_button(button) { onUiResourceChanged(); }
  void onUiResourceChanged() override { m_button->setStyleSheet(smallButtonStyle()); }

 private:
  QPushButton* m_button;
};

}  // namespace

void giveSmallButtonLook(QPushButton* button) { new CSmallButtonLook(button); }

}  // namespace GW
