#include "CDeskLayout.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int VERSION = 1;

QString formatName() { return QStringLiteral("compacts-desk layout"); }

struct CBytesField {
  const char* key;
  QByteArray CDeskLayout::*bytes;
};

constexpr CBytesField WINDOW_FIELDS[] = {{"geometry", &CDeskLayout::geometry}, {"state", &CDeskLayout::state}};

QString key(const char* name) { return QString::fromLatin1(name); }

QString readWindow(const QJsonObject& window, CDeskLayout& layout) {
  for (const CBytesField& field : WINDOW_FIELDS) {
    const QJsonValue value = window.value(key(field.key));
    const auto decoded =
        QByteArray::fromBase64Encoding(value.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!value.isString() || !decoded) return QStringLiteral("window.%1 不是 Base64 文本").arg(key(field.key));
    layout.*field.bytes = *decoded;
  }
  return {};
}

QString readPanels(const QJsonArray& panels, CDeskLayout& layout) {
  for (int i = 0; i < panels.size(); ++i) {
    const QJsonObject panel = panels.at(i).toObject();
    for (const char* name : {"type", "id", "param"})
      if (!panel.value(key(name)).isString()) return QStringLiteral("panels[%1].%2 不是文本").arg(i).arg(key(name));
    const CDeskLayout::CPanelKey panelKey{panel.value(key("type")).toString(), panel.value(key("id")).toString()};
    if (!layout.params.emplace(panelKey, panel.value(key("param")).toString()).second)
      return QStringLiteral("panels[%1] 与前面的面板重复").arg(i);
    if (!panel.value(key("open")).toBool(true)) layout.closed.insert(panelKey);
  }
  return {};
}

}  // namespace

QByteArray layoutText(const CDeskLayout& layout) {
  QJsonObject window;
  for (const CBytesField& field : WINDOW_FIELDS)
    window.insert(key(field.key), QString::fromLatin1((layout.*field.bytes).toBase64()));
  QJsonArray panels;
  for (const auto& [panel, param] : layout.params) {
    QJsonObject entry{{key("type"), panel.first}, {key("id"), panel.second}, {key("param"), param}};
    if (layout.closed.count(panel) > 0) entry.insert(key("open"), false);
    panels.append(entry);
  }
  const QJsonObject all{
      {key("format"), formatName()}, {key("version"), VERSION}, {key("window"), window}, {key("panels"), panels}};
  return QJsonDocument(all).toJson();
}

QString readLayoutText(const QByteArray& text, CDeskLayout& layout) {
  QJsonParseError error;
  const QJsonObject all = QJsonDocument::fromJson(text, &error).object();
  if (error.error != QJsonParseError::NoError)
    return QStringLiteral("第 %1 字节: %2").arg(error.offset).arg(error.errorString());
  if (all.value(key("format")).toString() != formatName())
    return QStringLiteral("format 不是 \"%1\"").arg(formatName());
  if (all.value(key("version")).toInt() != VERSION) return QStringLiteral("version 不是 %1").arg(VERSION);
  if (!all.value(key("window")).isObject()) return QStringLiteral("缺少 window");
  if (!all.value(key("panels")).isArray()) return QStringLiteral("缺少 panels");
  CDeskLayout read;
  QString problem = readWindow(all.value(key("window")).toObject(), read);
  if (problem.isEmpty()) problem = readPanels(all.value(key("panels")).toArray(), read);
  if (problem.isEmpty()) layout = std::move(read);
  return problem;
}
