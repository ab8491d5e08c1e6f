#include "gw/controls.h"

#include "gw/widget_events.h"

#include "utils/threads.h"

#include <cassert>
#include <utility>

namespace GW {

struct CComboBox::Private {
  int id;
  QString reportedKey;
  int refills = 0;
};

CComboBox::CComboBox(int id, QWidget* parent)
    : QComboBox(parent), CEventDeliverer(this), m_d(new Private{id, QString()}) {
  utils::assertGui();
  setSizeAdjustPolicy(AdjustToContents);
  connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] { reportIfChanged(); });
  // The key of the current item can also be exchanged in place.
  connect(model(), &QAbstractItemModel::dataChanged, this, [this] { reportIfChanged(); });
}

CComboBox::~CComboBox() = default;

int CComboBox::id() const { return m_d->id; }

QString CComboBox::currentKey() const { return currentData(Qt::UserRole).toString(); }

void CComboBox::beginRefill() { ++m_d->refills; }

void CComboBox::endRefill() {
  assert(m_d->refills > 0 && "a refill ends that never began");
  if (--m_d->refills == 0) reportIfChanged();
}

void CComboBox::reportIfChanged() {
  if (m_d->refills > 0) return;
  const QString key = currentKey();
  if (key == m_d->reportedKey) return;
  m_d->reportedKey = key;
  deliverEvent(EventComboChanged, m_d->id, currentIndex(), key, nullptr);
}

}  // namespace GW
