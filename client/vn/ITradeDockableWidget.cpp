#include "vn/ITradeDockableWidget.h"

#include "utils/threads.h"
#include "vn/CTradeClient.h"

namespace VN {

namespace {

struct CDockType {
  const char* typeKey;
  const char* title;
  int width;
  int height;
};

constexpr CDockType DOCK_TYPES[] = {
    {"cpt", "融资融券合约", 1100, 420},
    {"crdaq", "预约展期查询", 900, 360},
};

}  // namespace

IAccountDemand::IAccountDemand() = default;
IAccountDemand::~IAccountDemand() = default;

struct ITradeDockableWidget::Private {
  QString typeKey;
  std::string panelId;
  CDockWidgetInfo info;
};

ITradeDockableWidget::ITradeDockableWidget(const QString& typeKey, int panelId, const CDockWidgetInfo& info,
                                           QWidget* parent)
    : IDockableWidget(parent), m_d(new Private{typeKey, std::to_string(panelId), info}) {
  setWindowTitle(info.title);
}

ITradeDockableWidget::~ITradeDockableWidget() = default;

CDockWidgetInfo ITradeDockableWidget::getDockWidgetInfo(const QString& typeKey) {
  for (const CDockType& type : DOCK_TYPES)
    if (typeKey == QLatin1String(type.typeKey))
      return {typeKey, QString::fromUtf8(type.title), QSize(type.width, type.height)};
  return {typeKey, QString(), QSize()};
}

const QString& ITradeDockableWidget::typeKey() const { return m_d->typeKey; }
const std::string& ITradeDockableWidget::panelId() const { return m_d->panelId; }
const CDockWidgetInfo& ITradeDockableWidget::dockInfo() const { return m_d->info; }

bool ITradeDockableWidget::needRequestAccount(const std::string& accountKey) const {
  utils::assertGui();
  const CTradeClient* client = CTradeClient::instance();
  if (client == nullptr || !rdservice::isLoginStatusReady(client->getLoginStatus(accountKey))) return false;
  for (const QWidget* widget = parentWidget(); widget != nullptr; widget = widget->parentWidget())
    if (const auto* const host = dynamic_cast<const IAccountDemand*>(widget)) return host->needsAccount(accountKey);
  return true;
}

void ITradeDockableWidget::requestAccount(const rdservice::CAccountInfo&) {}
void ITradeDockableWidget::refreshAccounts() {}
void ITradeDockableWidget::clear() {}
void ITradeDockableWidget::adjustTableWidth() {}

}  // namespace VN
