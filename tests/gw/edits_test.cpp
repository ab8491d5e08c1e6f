// Line edits: what can be typed, what it then says, and what is reported.

#include "gw/CBaseWidget.h"
#include "gw/CUiResource.h"
#include "gw/line_edits.h"
#include "gw/ui_resources.h"
#include "gw/widget_events.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QLocale>
#include <QTableView>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

/// Notes what is reported, each as "id:text ".
class COwner : public GW::CBaseWidget {
 public:
  COwner() : CBaseWidget(nullptr) {}
  bool handleEvent(int type, int p1, int, QString text, void*) override {
    EXPECT_EQ(type, GW::EventLineEditChanged);
    told += std::to_string(p1) + ":" + text.toStdString() + " ";
    return true;
  }
  std::string take() { return std::exchange(told, {}); }

  std::string told;
};

/// # stands for Backspace; a character is a key of its own.
void type(QWidget* edit, const char* keys) {
  const QString all = QString::fromUtf8(keys);
  for (const QChar key : all) {
    if (key == u'#') {
      QTest::keyClick(edit, Qt::Key_Backspace);
      continue;
    }
    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(key));
    QApplication::sendEvent(edit, &press);
  }
}

/// A date field of the year up to 2026-11-21, shown, beside something else that can have the focus.
struct CDateField {
  CDateField() : field(5, &owner), other(&owner) {
    field.setMaximumDate(QDate(2026, 11, 21));
    field.setEditable(true);
    field.setInputMask(QStringLiteral("0000-00-00"));
    field.setAccessibleName(QString::fromUtf8("起始时间"));
    field.setGeometry(0, 0, 130, 26);
    other.setGeometry(0, 40, 130, 26);
    edit = field.findChild<QLineEdit*>();
    owner.show();
    QApplication::setActiveWindow(&owner);
    field.setFocus();
  }
  bool isMarked() const {
    return edit->palette().color(QPalette::Text) == GW::CUiResource::getColor(QStringLiteral("clr_input_wrong_text"));
  }
  void typeDate(const char* keys) {
    field.setDate(QDate());
    field.setFocus();
    edit->setCursorPosition(0);
    type(edit, keys);
  }
  QCalendarWidget* calendar() const {
    QWidget* const popup = QApplication::activePopupWidget();
    return popup == nullptr ? nullptr : popup->findChild<QCalendarWidget*>();
  }
  std::string text() const { return field.text().toStdString(); }

  COwner owner;
  GW::CSoftCalendarLineEdit field;
  QLineEdit other;
  QLineEdit* edit;
};

const QLocale LOCALES[] = {QLocale::c(), QLocale(QLocale::Chinese, QLocale::China), QLocale(QLocale::Arabic),
                           QLocale(QLocale::Thai, QLocale::Thailand), QLocale(QLocale::Persian)};

}  // namespace

TEST(LineEdits, numbersOutsideTheirRangeCannotBeTyped) {
  const struct {
    int minimum;
    const char* keys;
    const char* text;
    bool isAccepted;
    const char* told;
  } cases[] = {{0, "183", "18", true, "7:1 7:18 "},  {0, "182", "182", true, "7:1 7:18 7:182 "},
               {0, "-1 +,.e", "1", true, "7:1 "},    {0, "0070", "007", true, "7:0 7:00 7:007 "},
               {0, "9#", "", false, "7:9 7: "},      {0, "٣３", "", false, ""},
               {20, "1", "1", false, "7:1 "},        {20, "1820", "182", true, "7:1 7:18 7:182 "},
               {20, "019", "01", false, "7:0 7:01 "}};
  for (const QLocale& locale : LOCALES) {
    QLocale::setDefault(locale);
    for (const auto& c : cases) {
      SCOPED_TRACE(locale.name().toStdString() + " " + c.keys);
      COwner owner;
      GW::CLineEdit edit(7, &owner);
      edit.setValidator(new GW::CIntValidator(c.minimum, 182, &edit));
      type(&edit, c.keys);
      EXPECT_EQ(edit.text().toStdString(), c.text);
      EXPECT_EQ(edit.hasAcceptableInput(), c.isAccepted);
      EXPECT_EQ(owner.take(), c.told);
      edit.setText(QStringLiteral("5"));
      EXPECT_EQ(owner.take(), "") << "by program";
    }
  }
  QLocale::setDefault(QLocale::c());
}

TEST(LineEdits, dateSaysOnlyWhatIsADate) {
  const struct {
    const char* keys;
    const char* stands;
    const char* date;
    bool isMarkedAtOnce, isMarkedLater;
  } cases[] = {{"20260301", "2026-03-01", "2026-03-01", false, false},
               {"２０26٠٣01", "2026-03-01", "2026-03-01", false, false},
               {"2026-03-01", "2026-03-01", "2026-03-01", false, false},
               {"20240229", "2024-02-29", "2024-02-29", false, false},
               {"20260229", "2026-02-29", "", true, true},
               {"20261121", "2026-11-21", "2026-11-21", false, false},
               {"20261122", "2026-11-22", "", true, true},
               {"99991231", "9999-12-31", "", true, true},
               {"00000101", "0000-01-01", "", true, true},
               {"2026", "2026--", "", false, true},
               {"2026030", "2026-03-0", "", false, true},
               {"20260301#", "2026-03-0", "", false, true},
               {"abc/", "--", "", false, false},
               {"", "--", "", false, false}};
  for (const QLocale& locale : LOCALES) {
    QLocale::setDefault(locale);
    CDateField f;
    for (const auto& c : cases) {
      SCOPED_TRACE(locale.name().toStdString() + " " + c.keys);
      f.typeDate(c.keys);
      EXPECT_EQ(f.text(), c.date);
      EXPECT_EQ(f.field.date().isValid(), *c.date != 0);
      EXPECT_EQ(f.isMarked(), c.isMarkedAtOnce);
      f.other.setFocus();
      EXPECT_EQ(f.edit->text().toStdString(), c.stands) << "what was typed is lost";
      EXPECT_EQ(f.isMarked(), c.isMarkedLater);
      EXPECT_EQ(f.edit->accessibleDescription().isEmpty(), !c.isMarkedLater);
    }
    f.field.setDate(QDate(2026, 3, 1));
    EXPECT_EQ(f.edit->text().toStdString(), "2026-03-01");
  }
  QLocale::setDefault(QLocale::c());
}

TEST(LineEdits, dateReportsAnotherDateOrNoneWhenTheUserMadeIt) {
  CDateField f;
  EXPECT_EQ(f.edit->accessibleName(), f.field.accessibleName());
  f.field.setDate(QDate(2026, 3, 1));
  f.edit->setCursorPosition(10);
  type(f.edit, "#");
  type(f.edit, "#5");
  EXPECT_EQ(f.owner.take(), "5: ") << "one half date after another is no news";
  type(f.edit, "1");
  EXPECT_EQ(f.text(), "");
  f.edit->setCursorPosition(8);
  type(f.edit, "1");
  EXPECT_EQ(f.owner.take(), "5:2026-03-11 ");
  f.field.setMaximumDate(QDate(2026, 3, 10));
  EXPECT_EQ(f.text(), "");
  EXPECT_TRUE(f.isMarked());
  GW::setUiTheme(GW::EUiTheme::Dark);
  EXPECT_TRUE(f.isMarked()) << "in the colour of the other theme";
  GW::setUiTheme(GW::EUiTheme::Light);
  f.field.setDate(QDate(2026, 3, 9));
  EXPECT_FALSE(f.isMarked());
  EXPECT_EQ(f.owner.take(), "") << "by program";
  f.field.setEditable(false);
  type(f.edit, "#");
  EXPECT_EQ(f.text(), "2026-03-09");
}

TEST(LineEdits, calendarFillsTheDate) {
  QLocale::setDefault(QLocale(QLocale::Arabic));
  CDateField f;
  f.field.setDate(QDate(2026, 11, 18));
  QTest::keyClick(f.edit, Qt::Key_Down);
  EXPECT_EQ(f.calendar(), nullptr);
  const auto open = [&f] {
    QTest::keyClick(f.edit, Qt::Key_Down, Qt::AltModifier);
    return f.calendar();
  };
  ASSERT_NE(open(), nullptr);
  EXPECT_EQ(f.calendar()->selectedDate(), QDate(2026, 11, 18));
  EXPECT_EQ(f.calendar()->maximumDate(), QDate(2026, 11, 21));
  auto* days = f.calendar()->findChild<QTableView*>();
  EXPECT_EQ(days->model()->index(0, 0).data().toString(), QString::fromUtf8("周一"));
  EXPECT_EQ(days->currentIndex().data().toInt(), 18);
  QTest::keyClick(days, Qt::Key_Escape);
  EXPECT_EQ(f.calendar(), nullptr);
  EXPECT_EQ(f.owner.take(), "");

  days = open()->findChild<QTableView*>();
  for (int i = 0; i < 5; ++i) QTest::keyClick(days, Qt::Key_Right);  // two too many
  QTest::keyClick(days, Qt::Key_Return);
  EXPECT_EQ(f.calendar(), nullptr);
  EXPECT_EQ(f.owner.take(), "5:2026-11-21 ");

  // The button, also of a field that is not for typing; half dates and late ones begin at the last day.
  f.field.setEditable(false);
  f.field.setDate(QDate(2027, 1, 1));
  QTest::mouseClick(f.edit->findChild<QToolButton*>(), Qt::LeftButton);
  ASSERT_NE(f.calendar(), nullptr);
  EXPECT_LE(f.calendar()->selectedDate(), QDate(2026, 11, 21));
  days = f.calendar()->findChild<QTableView*>();
  const QModelIndex day = days->currentIndex().sibling(days->currentIndex().row() - 1, 3);
  QTest::mouseClick(days->viewport(), Qt::LeftButton, {}, days->visualRect(day).center());
  EXPECT_EQ(f.calendar(), nullptr);
  EXPECT_TRUE(f.field.date().isValid());
  EXPECT_EQ(f.field.date().day(), day.data().toInt());
  EXPECT_EQ(f.owner.take(), "5:" + f.text() + " ");

  f.field.setEnabled(false);
  EXPECT_EQ(open(), nullptr);
  f.field.setEnabled(true);
  // A field that goes takes its calendar with it.
  auto* const late = new GW::CSoftCalendarLineEdit(6, &f.owner);
  late->show();
  QTest::keyClick(late->findChild<QLineEdit*>(), Qt::Key_Down, Qt::AltModifier);
  ASSERT_NE(f.calendar(), nullptr);
  delete late;
  EXPECT_EQ(f.calendar(), nullptr);
  QLocale::setDefault(QLocale::c());
}
