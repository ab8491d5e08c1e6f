// Repay priorities in files.

#include "compacts/CCompactsPanel.h"
#include "compacts/tables/CCompactsBaseTable.h"
#include "gw/CMessageBox.h"
#include "gw/column_delegates.h"
#include "gw/files.h"
#include "panel_texts.h"
#include "vn/CFileClient.h"
#include "vn/CUserConfig.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QIODevice>
#include <QPointer>

namespace VN {

namespace {

/// Columns of a priority file.
enum EFileColumn : int { FileAccount, FileExchange, FileCode, FileOpenDate, FileOrderNo, FilePriority, FileSetting };

constexpr const char* HEADERS[] = {"资金账号", "交易所",     "证券代码",      "开仓日期",
                                   "委托编号", "偿还优先级", "偿还优先级设置"};
constexpr int COLUMNS = 7;
constexpr int COLUMNS_WITH_REMARKS = 9;  ///< files with two more columns, which nobody reads
constexpr int CODE_LENGTH = 6;
constexpr int TURN_MS = 8;  ///< longest time without a turn of the event loop

struct CContainer {
  const char* suffix;
  EFileType type;
  const char* separator;
};

// The last one stands for every other suffix.
constexpr CContainer CONTAINERS[] = {
    {"csv", FileTypeCsv, ","}, {"xlsx", FileTypeXlsx, "\t"}, {"xls", FileTypeXls, "\t"}};

const CContainer& containerOf(const QString& suffix) {
  for (const CContainer& container : CONTAINERS)
    if (suffix == QLatin1String(container.suffix)) return container;
  return CONTAINERS[2];
}

/// The file that the user chooses; empty for none. The dialog goes with its parent.
QString askForFile(QWidget* parent, QFileDialog::AcceptMode mode, const QString& caption) {
  const QPointer<QFileDialog> dialog = new QFileDialog(
      parent, caption, getOpenFileDir(), QStringLiteral("Excel Files(*.csv);;Excel Files(*.xls);;Excel Files(*.xlsx)"));
  dialog->setAcceptMode(mode);
  dialog->setFileMode(mode == QFileDialog::AcceptSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  const bool isChosen = dialog->exec() == QDialog::Accepted;
  const QStringList files = isChosen && dialog ? dialog->selectedFiles() : QStringList();
  delete dialog.data();
  return files.value(0);
}

/// What stands behind the last separator. A file may carry a character that only looks like one.
QString fileNameOf(const QString& path) {
  int separator = path.lastIndexOf(QChar(0x2F2F));
  if (separator < 0) separator = path.lastIndexOf(u'/');
  return path.mid(separator + 1);
}

QStringList headerRow() {
  QStringList row;
  for (const char* header : HEADERS) row << QString::fromUtf8(header);
  return row;
}

QStringList fileRow(const rdservice::CStkUnClosedCompacts& compact, const QString& setting) {
  return {compact.accountInfo ? QString::fromStdString(compact.accountInfo->accountId) : QString(),
          QString::fromStdString(compact.exchangeId.str()),
          QString::fromStdString(compact.code.str()),
          QString::fromStdString(compact.fieldA),
          QString::number(compact.fieldB),
          QString::number(compact.repayPriority),
          setting};
}

QString csvText(const QList<QStringList>& rows) {
  QString text;
  for (const QStringList& row : rows) text += row.join(u',') + u'\n';
  return text;
}

std::string accountKeyOf(const QString& accountId) {
  std::string key;
  const std::string id = accountId.toStdString();
  const QList<CAccountPtr> accounts = getUserConfig()->getAccountDatas();
  for (const CAccountPtr& account : accounts)
    if (account && account->accountId == id) key = account->getKey();
  return key;
}

/// The key of the compact that a file's line means, as `CStkUnClosedCompacts::genKey` makes it. Spreadsheet programs
/// drop the zeros that a code begins with.
QString compactKeyOf(const QStringList& cells) {
  const QString code = (QStringLiteral("000000") + cells.at(FileCode)).right(CODE_LENGTH);
  return QStringLiteral("%1____%2____%3____%4____%5")
      .arg(QString::fromStdString(accountKeyOf(cells.at(FileAccount))), cells.at(FileExchange), code,
           cells.at(FileOrderNo), cells.at(FileOpenDate));
}

void tell(QWidget* parent, const QString& text) {
  GW::CMessageBox::question(parent, hintTitle(), text, QMessageBox::Ok);
}

}  // namespace

void CCompactsPanel::tryExportRepayPriority() {
  if (m_unclosedTable == nullptr) return;
  if (m_unclosedTable->rowCount() == 0) {
    tell(this, QStringLiteral("没有可导出的规则!"));
    return;
  }
  const QPointer<CCompactsPanel> panel = this;
  const QString path = askForFile(this, QFileDialog::AcceptSave, QStringLiteral("导出规则"));
  if (!panel || path.isEmpty()) return;
  setOpenFileDir(path);
  const bool isWritten = doExport(path);
  if (!panel) return;
  if (isWritten)
    GW::CMessageBox::information(this, hintTitle(), QStringLiteral("导出成功!"));
  else
    tell(this, QStringLiteral("导出失败,部分数据缺失关键字段"));
}

bool CCompactsPanel::doExport(const QString& path) {
  if (priorityEdits() == nullptr) return false;
  std::vector<rdservice::IDataPtr> records;
  for (int row = 0, count = m_unclosedTable->rowCount(); row < count; ++row)
    records.push_back(m_unclosedTable->getData(row));

  const QPointer<CCompactsPanel> panel = this;
  QList<QStringList> rows = {headerRow()};
  QElapsedTimer turn;
  turn.start();
  for (const rdservice::IDataPtr& record : records) {
    if (const auto* compact = dynamic_cast<const rdservice::CStkUnClosedCompacts*>(record.get()))
      rows << fileRow(*compact, priorityEdits()->itemText(QString::fromStdString(compact->getKey())));
    if (turn.elapsed() < TURN_MS) continue;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);  // windows are painted, the user waits
    if (!panel) return false;
    turn.restart();
  }
  const QString name = fileNameOf(path);
  if (name.endsWith(QLatin1String(".csv")))
    return GW::writeFile(QIODevice::WriteOnly | QIODevice::Text, path, csvText(rows), true);
  if (name.endsWith(QLatin1String(".xls")) || name.endsWith(QLatin1String(".xlsx")))
    return GW::CXlsxReader::write(path, rows);
  return false;
}

void CCompactsPanel::tryImportRepayPriority() {
  if (m_unclosedTable == nullptr) return;
  if (m_unclosedTable->rowCount() == 0) {
    tell(this, QStringLiteral("当前不可导入!"));
    return;
  }
  const QPointer<CCompactsPanel> panel = this;
  const QString path = askForFile(this, QFileDialog::AcceptOpen, QStringLiteral("导入规则"));
  if (!panel || path.isEmpty()) return;
  setOpenFileDir(path);
  const CContainer& container = containerOf(QFileInfo(path).suffix());
  const QString separator = QLatin1String(container.separator);
  int result = 0;
  CFileClient::readFileByLine(result, container.type, path, [panel, separator](const QString& line) {
    if (panel) panel->doImport(line, separator);
  });
  if (!panel) return;
  m_unclosedTable->updateTable();
  const GW::CBaseTableColumnLineeditDelegate* edits = priorityEdits();
  if (edits == nullptr || edits->isEmpty())
    tell(this, QStringLiteral("导入数据有误!"));
  else
    GW::CMessageBox::information(this, hintTitle(), QStringLiteral("导入数据成功!"));
}

int CCompactsPanel::doImport(const QString& line, const QString& separator) {
  enum EOutcome : int { Rejected = 0, Skipped = 1, Applied = 2 };
  // Counted before the line is cut: one of a million separators is not worth a million texts.
  const int columns = line.count(separator) + 1;
  if (columns != COLUMNS && columns != COLUMNS_WITH_REMARKS) return Rejected;
  const QStringList cells = line.split(separator, Qt::KeepEmptyParts, Qt::CaseSensitive);
  const QString& account = cells.at(FileAccount);
  if (account.isEmpty() || !account.at(0).isNumber()) return Skipped;
  GW::CBaseTableColumnLineeditDelegate* edits = priorityEdits();
  if (edits == nullptr) return Rejected;
  const QString& setting = cells.at(FileSetting);
  if (!isNumLegal(setting)) return Rejected;
  const QString key = compactKeyOf(cells);
  edits->setItemVisible(key, true);
  edits->setItemText(key, setting);
  return Applied;
}

}  // namespace VN
