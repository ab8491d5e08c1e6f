#include "vn/CChoiceBook.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace VN {

namespace {

constexpr int VERSION = 1;

const QString KEY_VERSION = QStringLiteral("version");
const QString KEY_COMPACT_MODE = QStringLiteral("compact_mode");
const QString KEY_UNCONFIRMED = QStringLiteral("unconfirmed_accounts");
const QString KEY_FILE_FOLDER = QStringLiteral("file_folder");
const QString KEY_LAYOUTS = QStringLiteral("table_layouts");
const QString KEY_PANEL = QStringLiteral("panel");
const QString KEY_TABLE = QStringLiteral("table");
const QString KEY_LAYOUT = QStringLiteral("layout");

}  // namespace

CChoiceBook::CChoiceBook(const QString& path) : m_file(path, QStringLiteral("选择")) {
  QByteArray text;
  if (!m_file.read(text)) return;
  const QString problem = read(text, m_choices);
  if (!problem.isEmpty()) m_file.keepAside(problem);
}

void CChoiceBook::setCompactMode(bool compact) {
  if (compact == m_choices.isCompactMode) return;
  m_choices.isCompactMode = compact;
  change();
}

void CChoiceBook::setOrderConfirmed(const std::string& accountKey, bool confirmed) {
  const bool isChanged =
      confirmed ? m_choices.unconfirmed.erase(accountKey) > 0 : m_choices.unconfirmed.insert(accountKey).second;
  if (isChanged) change();
}

void CChoiceBook::setFileFolder(const QString& folder) {
  if (folder == m_choices.fileFolder) return;
  m_choices.fileFolder = folder;
  change();
}

bool CChoiceBook::getTableSetting(CTableConfigInfo& info) const {
  const auto found = m_choices.layouts.find({info.panelId, info.tableId});
  if (found == m_choices.layouts.end()) return false;
  info.config = found->second;
  return true;
}

void CChoiceBook::saveTableSetting(const CTableConfigInfo& info) {
  const auto [entry, isNew] = m_choices.layouts.try_emplace({info.panelId, info.tableId}, info.config);
  if (!isNew && entry->second == info.config) return;
  entry->second = info.config;
  m_file.write(textOf(m_choices));
}

void CChoiceBook::change() {
  m_file.write(textOf(m_choices));  // the choice holds for this run at least; the failure is logged
  m_changed.call();
}

QByteArray CChoiceBook::textOf(const CChoices& choices) {
  QJsonArray unconfirmed;
  for (const std::string& key : choices.unconfirmed) unconfirmed.append(QString::fromStdString(key));
  QJsonArray layouts;
  for (const auto& [place, layout] : choices.layouts)
    layouts.append(
        QJsonObject{{KEY_PANEL, QString::fromStdString(place.first)}, {KEY_TABLE, place.second}, {KEY_LAYOUT, layout}});
  return QJsonDocument(QJsonObject{{KEY_VERSION, VERSION},
                                   {KEY_COMPACT_MODE, choices.isCompactMode},
                                   {KEY_UNCONFIRMED, unconfirmed},
                                   {KEY_FILE_FOLDER, choices.fileFolder},
                                   {KEY_LAYOUTS, layouts}})
      .toJson();
}

QString CChoiceBook::read(const QByteArray& text, CChoices& choices) {
  QJsonParseError error;
  const QJsonObject object = QJsonDocument::fromJson(text, &error).object();
  if (error.error != QJsonParseError::NoError) return error.errorString();
  if (object.value(KEY_VERSION) != QJsonValue(VERSION)) return KEY_VERSION;
  if (!object.value(KEY_COMPACT_MODE).isBool()) return KEY_COMPACT_MODE;
  if (!object.value(KEY_UNCONFIRMED).isArray()) return KEY_UNCONFIRMED;
  if (!object.value(KEY_FILE_FOLDER).isString()) return KEY_FILE_FOLDER;
  if (!object.value(KEY_LAYOUTS).isArray()) return KEY_LAYOUTS;
  CChoices read;
  read.isCompactMode = object.value(KEY_COMPACT_MODE).toBool();
  read.fileFolder = object.value(KEY_FILE_FOLDER).toString();
  const QJsonArray unconfirmed = object.value(KEY_UNCONFIRMED).toArray();
  for (const QJsonValue& key : unconfirmed) {
    if (!key.isString()) return KEY_UNCONFIRMED;
    read.unconfirmed.insert(key.toString().toStdString());
  }
  const QJsonArray layouts = object.value(KEY_LAYOUTS).toArray();
  for (const QJsonValue& value : layouts) {
    const QJsonObject layout = value.toObject();
    if (!layout.value(KEY_PANEL).isString() || !layout.value(KEY_TABLE).isDouble() ||
        !layout.value(KEY_LAYOUT).isString())
      return KEY_LAYOUTS;
    read.layouts[{layout.value(KEY_PANEL).toString().toStdString(), layout.value(KEY_TABLE).toInt()}] =
        layout.value(KEY_LAYOUT).toString();
  }
  choices = read;
  return QString();
}

}  // namespace VN
