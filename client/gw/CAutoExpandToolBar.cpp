#include "gw/containers.h"

#include "gw/CUiResource.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QList>
#include <QPainter>

namespace GW {

struct CAutoExpandToolBar::Private {
  QHBoxLayout* layout;
  QString backgroundKey;
  QList<QFrame*> separators;

  void insert(QWidget* widget) { layout->insertWidget(layout->count() - 1, widget, 0, Qt::AlignVCenter); }
};

CAutoExpandToolBar::CAutoExpandToolBar(QWidget* parent)
    : CBaseWidget(parent), m_d(new Private{new QHBoxLayout(this), QString(), {}}) {
  m_d->layout->setContentsMargins(8, 4, 8, 5);
  m_d->layout->setSpacing(8);
  m_d->layout->addStretch(1);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

CAutoExpandToolBar::~CAutoExpandToolBar() = default;

void CAutoExpandToolBar::setBackgroundImage(const QString& key) {
  m_d->backgroundKey = key;
  update();
}

void CAutoExpandToolBar::addWidget(QWidget* widget) { m_d->insert(widget); }

void CAutoExpandToolBar::addSeparator() {
  auto* const line = new QFrame(this);
  line->setFixedSize(1, fontMetrics().height());
  line->setAutoFillBackground(true);
  m_d->separators.push_back(line);
  m_d->insert(line);
  onUiResourceChanged();
}

void CAutoExpandToolBar::onUiResourceChanged() {
  for (QFrame* line : m_d->separators) {
    QPalette colors = line->palette();
    colors.setColor(QPalette::Window, CUiResource::getColor(QStringLiteral("clr_bar_line")));
    line->setPalette(colors);
  }
  update();
}

void CAutoExpandToolBar::updateItemLength() {
  for (int i = 0; i < m_d->layout->count(); ++i) {
    if (QWidget* widget = m_d->layout->itemAt(i)->widget()) widget->updateGeometry();
  }
  m_d->layout->invalidate();
  m_d->layout->activate();
}

void CAutoExpandToolBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QPixmap image = CUiResource::getImage(m_d->backgroundKey);
  // An image as high as the bar: tiles below one another would show a seam.
  if (!image.isNull())
    painter.drawTiledPixmap(rect(), image.scaled(image.width(), height()));
  else
    painter.fillRect(rect(), CUiResource::getColor(QStringLiteral("clr_bar_top")));
  painter.fillRect(0, height() - 1, width(), 1, CUiResource::getColor(QStringLiteral("clr_bar_line")));
}

}  // namespace GW
