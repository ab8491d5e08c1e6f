#include "gw/files/workbook_parts.h"

#include "gw/files/CXmlPart.h"
#include "gw/files/sheet_text.h"

#include <QDir>
#include <QMap>

namespace GW {

namespace {

/// Relationships of a part: what it needs, by name.
struct CRelation {
  QString kind;  ///< last word of the type, the same in both variants of the standard
  QString target;
};

using CRelations = QMap<QString, CRelation>;

constexpr int MAX_RELATIONS = 10'000;
constexpr std::size_t MAX_STYLES = 100'000;

QString folderOf(const QString& part) { return part.left(part.lastIndexOf(QLatin1Char('/')) + 1); }

/// The name, in the zip file, of a target that the part points to.
QString resolve(const QString& part, const QString& target) {
  const QString path = target.startsWith(QLatin1Char('/')) ? target : QLatin1Char('/') + folderOf(part) + target;
  return QDir::cleanPath(path).mid(1);
}

EReadResult readRelations(CZipFile& file, const QString& part, CRelations& relations, const CCancelFlag& isCancelled) {
  const QString folder = folderOf(part);
  const QString name = folder + QStringLiteral("_rels/") + part.mid(folder.size()) + QStringLiteral(".rels");
  CXmlPart xml(file, name, isCancelled);
  xml.nextChild(CXmlPart::NO_ELEMENT);
  while (xml.nextChild(CXmlPart::ROOT)) {
    if (xml.attribute("TargetMode") == QLatin1String("External")) continue;
    const QString type = xml.attribute("Type").toString();
    const CRelation relation{type.mid(type.lastIndexOf(QLatin1Char('/')) + 1),
                             resolve(part, xml.attribute("Target").toString())};
    relations.insert(xml.attribute("Id").toString(), relation);
    if (relations.size() > MAX_RELATIONS) xml.fail(ReadTooLarge);
  }
  return xml.finish();
}

QString targetOf(const CRelations& relations, const char* kind) {
  for (const CRelation& relation : relations)
    if (relation.kind == QLatin1String(kind)) return relation.target;
  return {};
}

bool isTrue(const QStringRef& value) { return value == QLatin1String("1") || value == QLatin1String("true"); }

/// Identifiers of the sheets' relationships: those that show before those that are hidden.
EReadResult readWorkbook(CZipFile& file, const QString& name, QStringList& sheets, bool& is1904,
                         const CCancelFlag& isCancelled) {
  CXmlPart xml(file, name, isCancelled);
  QStringList hidden;
  xml.nextChild(CXmlPart::NO_ELEMENT);
  while (xml.nextChild(CXmlPart::ROOT)) {
    if (xml.is("workbookPr")) is1904 = isTrue(xml.attribute("date1904"));
    if (!xml.is("sheets")) continue;
    const int list = xml.depth();
    while (xml.nextChild(list)) {
      const QStringRef state = xml.attribute("state");
      const bool isHidden = !state.isEmpty() && state != QLatin1String("visible");
      (isHidden ? hidden : sheets) += xml.attribute("id").toString();
      if (sheets.size() + hidden.size() > MAX_RELATIONS) xml.fail(ReadTooLarge);
    }
  }
  sheets += hidden;
  return xml.finish();
}

}  // namespace

EReadResult findWorkbookParts(CZipFile& file, CWorkbookParts& parts, const CCancelFlag& isCancelled) {
  CRelations relations;
  if (const auto result = readRelations(file, QString(), relations, isCancelled); result != ReadWhole) return result;
  const QString workbook = targetOf(relations, "officeDocument");
  relations.clear();
  if (const auto result = readRelations(file, workbook, relations, isCancelled); result != ReadWhole) return result;
  QStringList sheets;
  if (const auto result = readWorkbook(file, workbook, sheets, parts.is1904, isCancelled); result != ReadWhole)
    return result;
  for (const QString& id : sheets) {
    const CRelation relation = relations.value(id);
    if (relation.kind != QLatin1String("worksheet")) continue;  // a sheet that is one chart
    parts.sheet = relation.target;
    break;
  }
  parts.sharedStrings = targetOf(relations, "sharedStrings");
  parts.styles = targetOf(relations, "styles");
  return parts.sheet.isEmpty() ? ReadDamaged : ReadWhole;
}

EReadResult readDateStyles(CZipFile& file, const QString& name, std::vector<bool>& areDates,
                           const CCancelFlag& isCancelled) {
  CXmlPart xml(file, name, isCancelled);
  QMap<int, bool> formats;
  xml.nextChild(CXmlPart::NO_ELEMENT);
  while (xml.nextChild(CXmlPart::ROOT)) {
    const bool isFormats = xml.is("numFmts");
    if (!isFormats && !xml.is("cellXfs")) continue;
    const int list = xml.depth();
    while (xml.nextChild(list)) {
      const int id = xml.attribute("numFmtId").toInt();
      if (isFormats)
        formats.insert(id, isDateFormat(id, xml.attribute("formatCode").toString()));
      else
        areDates.push_back(formats.contains(id) ? formats.value(id) : isDateFormat(id, QString()));
      if (areDates.size() > MAX_STYLES || formats.size() > MAX_RELATIONS) xml.fail(ReadTooLarge);
    }
  }
  return xml.finish();
}

}  // namespace GW
