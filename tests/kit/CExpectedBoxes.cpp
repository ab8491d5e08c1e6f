#include "kit/CExpectedBoxes.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QTimer>

namespace kit {

CExpectedBoxes::CExpectedBoxes() { qApp->installEventFilter(this); }

CExpectedBoxes::~CExpectedBoxes() {
  for (const CBox& box : m_boxes) ADD_FAILURE() << "no box came that says: " << box.text.toStdString();
}

void CExpectedBoxes::expect(const QString& title, const QString& text, QMessageBox::StandardButton answer) {
  m_boxes.push_back({title, text, answer});
}

bool CExpectedBoxes::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show)
    if (auto* box = qobject_cast<QMessageBox*>(watched))
      QTimer::singleShot(0, box, [this, box] { answer(*box); });  // once its own event loop runs
  return false;
}

void CExpectedBoxes::answer(QMessageBox& box) {
  if (m_boxes.empty()) {
    ADD_FAILURE() << "unexpected box: " << box.text().toStdString();
    box.reject();
    return;
  }
  const CBox expected = m_boxes.front();
  m_boxes.pop_front();
  EXPECT_EQ(box.windowTitle(), expected.title);
  EXPECT_EQ(box.text(), expected.text);
  if (QAbstractButton* button = box.button(expected.answer)) {
    button->click();
    return;
  }
  ADD_FAILURE() << "the box has no such button: " << box.text().toStdString();
  box.reject();
}

}  // namespace kit
