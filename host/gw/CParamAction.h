#pragma once

#include "host_api.h"

#include <QAction>
#include <QString>

namespace GW {

/// A menu entry that carries a number and a text to whoever is connected. GUI thread.
class HOST_API CParamAction : public QAction {
  Q_OBJECT
 public:
  CParamAction(const QString& text, int value, const QString& param, QObject* parent);
  ~CParamAction() override;

 Q_SIGNALS:
  /// The user chose the entry, with what it was made with.
  void triggered(bool checked, int value, QString param);

 private:
  const int m_value;
  const QString m_param;
};

}  // namespace GW
