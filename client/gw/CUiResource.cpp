#include "gw/CUiResource.h"

#include "gw/ui_resources.h"

#include "utils/threads.h"

#include <QApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <vector>

namespace GW {

namespace {

struct CColorRow {
  const char* key;
  QRgb color;
};

// One light palette: blue greys, a single blue accent.
constexpr CColorRow COLORS[] = {
    {"clr_clickable_simple_text", 0xff1a66c8},
    {"clr_btn_s_normal_0", 0xff26323f},  // normal, hover, pressed, disabled
    {"clr_btn_s_normal_1", 0xff1a66c8},
    {"clr_btn_s_normal_2", 0xff0d4795},
    {"clr_btn_s_normal_3", 0xff9aa5b1},
    {"clr_btn_border", 0xffc3ccd8},
    {"clr_btn_top", 0xfffdfdfe},
    {"clr_btn_bottom", 0xffedf1f6},
    {"clr_btn_pressed", 0xffdbe5f1},
    {"clr_btn_disabled", 0xfff2f4f7},
    {"clr_bar_top", 0xfffafbfd},
    {"clr_bar_bottom", 0xffe8edf4},
    {"clr_bar_line", 0xffced6e1},
    {"clr_table_background", 0xffffffff},
    {"clr_table_alternate", 0xfff5f8fc},
    {"clr_table_grid", 0xffe1e7ef},
    {"clr_table_text", 0xff1f2a36},
    {"clr_table_disabled_text", 0xff9aa5b1},
    {"clr_table_selected", 0xffcfe2fa},
    {"clr_table_current", 0xff1a66c8},  // frames of the current cell and row
    {"clr_table_current_row", 0xff9fc0ea},
    {"clr_table_header", 0xffeef2f7},
    {"clr_table_header_hover", 0xffe0e8f2},
    {"clr_table_header_line", 0xffc9d2de},
    {"clr_table_header_text", 0xff33414f},
    {"clr_table_mark", 0xff1a66c8},  // sort and filter marks
    {"clr_table_idle_mark", 0xff9aa5b1},
    {"clr_table_sums", 0xfff3f1e6},
    {"clr_table_sums_text", 0xff1f2a36},
    {"clr_table_control_border", 0xffb4bfcc},  // check boxes, radio buttons, cells that one types into
    {"clr_table_control_background", 0xffffffff},
    {"clr_table_control_accent", 0xff1a66c8},
    {"clr_table_control_mark", 0xffffffff},
    {"clr_table_control_disabled_border", 0xffd3dae3},
    {"clr_table_control_disabled_background", 0xfff2f4f7},
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

struct CImageRow {
  const char* key;
  QPixmap (*paint)();
};

constexpr CImageRow IMAGES[] = {{"vn_img_op_hedge_type_bg", paintBar}};

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

QColor CUiResource::getColor(const QString& key) {
  const CColorRow* row = findRow(COLORS, key);
  return row == nullptr ? QApplication::palette().color(QPalette::WindowText) : QColor::fromRgba(row->color);
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

QString smallButtonStyle() {
  const auto color = [](const char* key) { return CUiResource::getColor(QString::fromLatin1(key)).name(); };
  return QStringLiteral(
             "QPushButton { border: 1px solid %1; border-radius: 3px; padding: 2px 10px; color: %5;"
             " background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 %2, stop:1 %3); }"
             "QPushButton:focus, QPushButton:hover { border-color: %6; }"
             "QPushButton:hover { color: %6; }"
             "QPushButton:pressed { color: %7; background: %4; }"
             "QPushButton:disabled, QPushButton[locked=\"true\"] { color: %8; background: %9; border-color: %1; }")
      .arg(color("clr_btn_border"), color("clr_btn_top"), color("clr_btn_bottom"), color("clr_btn_pressed"),
           color("clr_btn_s_normal_0"), color("clr_btn_s_normal_1"), color("clr_btn_s_normal_2"),
           color("clr_btn_s_normal_3"), color("clr_btn_disabled"));
}

}  // namespace GW
