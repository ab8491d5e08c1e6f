#include "gw/CMessageBox.h"

#include "utils/threads.h"

#include <QAbstractButton>
#include <QPointer>

namespace GW {

namespace {

struct CButtonText {
  QMessageBox::StandardButton button;
  const char* text;
};

constexpr CButtonText BUTTON_TEXTS[] = {
    {QMessageBox::Ok, "确定"},      {QMessageBox::Cancel, "取消"}, {QMessageBox::Yes, "是"},
    {QMessageBox::No, "否"},        {QMessageBox::Close, "关闭"},  {QMessageBox::Save, "保存"},
    {QMessageBox::Retry, "重试"},   {QMessageBox::Ignore, "忽略"}, {QMessageBox::Abort, "中止"},
    {QMessageBox::Discard, "放弃"}, {QMessageBox::Apply, "应用"},  {QMessageBox::Open, "打开"},
};

int show(QMessageBox::Icon icon, QWidget* parent, const QString& title, const QString& text,
         QMessageBox::StandardButtons buttons) {
  utils::assertGui();
  const QPointer<QMessageBox> box = new QMessageBox(icon, title, text, buttons, parent);  // may go with its parent
  box->setTextFormat(Qt::PlainText);  // texts quote answers of the counter
  for (const CButtonText& row : BUTTON_TEXTS) {
    if (QAbstractButton* button = box->button(row.button)) button->setText(QString::fromUtf8(row.text));
  }
  const int answer = box->exec();
  delete box.data();
  return answer;
}

}  // namespace

int CMessageBox::information(QWidget* parent, const QString& title, const QString& text,
                             QMessageBox::StandardButtons buttons) {
  return show(QMessageBox::Information, parent, title, text, buttons);
}

int CMessageBox::warning(QWidget* parent, const QString& title, const QString& text,
                         QMessageBox::StandardButtons buttons) {
  return show(QMessageBox::Warning, parent, title, text, buttons);
}

int CMessageBox::question(QWidget* parent, const QString& title, const QString& text,
                          QMessageBox::StandardButtons buttons) {
  return show(QMessageBox::Question, parent, title, text, buttons);
}

}  // namespace GW
