#pragma once

#include <QMessageBox>
#include <QObject>
#include <QString>

#include <deque>

namespace kit {

/// Answers the message boxes that a test expects, in their order. The case fails on a box that was not expected or says
/// something else, and on an expected one that did not come; an unexpected box is closed, so that the test goes on.
class CExpectedBoxes : public QObject {
 public:
  CExpectedBoxes();
  ~CExpectedBoxes() override;

  void expect(const QString& title, const QString& text, QMessageBox::StandardButton answer);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct CBox {
    QString title;
    QString text;
    QMessageBox::StandardButton answer;
  };

  void answer(QMessageBox& box);

  std::deque<CBox> m_boxes;
};

}  // namespace kit
