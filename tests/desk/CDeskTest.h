#pragma once

#include "kit/CTestRuntime.h"

#include <gtest/gtest.h>

#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <vector>

class CMainWindow;
class QDockWidget;
class QWidget;

namespace GW {
class CComboBox;
}
namespace VN {
class CCompactsTable;
class CCountDownButton;
}  // namespace VN

/// A number as it is shown, with commas between thousands.
inline double numberOf(QString text) { return text.remove(QLatin1Char(',')).toDouble(); }

/// The whole desk on the sample book: SQL counter, service threads, strand, window. At first the account without
/// compacts is shown.
class DeskTest : public testing::Test {
 protected:
  static constexpr const char* LARGE = "3.60010001";  ///< 5,000 unclosed compacts
  static constexpr const char* SMALL = "11.60010005";
  static constexpr const char* EMPTY = "3.60010004";
  static constexpr const char* LOGGED_OUT = "3.60010006";

  /// Unpaid yuan by compact key.
  using CAmounts = std::map<std::string, double>;

  DeskTest();
  ~DeskTest() override;
  void SetUp() override;

  /// Opens the desk, with a layout file when named; the one before is closed.
  void open(const QString& layoutFile = QString());
  void close();
  /// Chooses another account and lets the table empty itself, which it announces like an answer.
  void choose(const char* key);
  void refresh(int rows);
  /// The widget of the class and accessible name.
  template <class Widget>
  Widget* control(const char* accessibleName) const {
    return dynamic_cast<Widget*>(findControl(windowWidget(), QString::fromUtf8(accessibleName)));
  }
  template <class Widget>
  static Widget* controlIn(const QWidget& parent, const char* accessibleName) {
    return dynamic_cast<Widget*>(findControl(parent, QString::fromUtf8(accessibleName)));
  }
  /// Null when there is none of that object name.
  QDockWidget* dock(const char* name) const;
  /// Opens a panel by its entry in the menu and returns the panel, null when none was opened.
  QWidget* openPanel(const char* menuText);
  /// Brings the dock of that object name to the front.
  void raise(const char* dockName);
  /// Chooses one account in the broker's pane.
  void chooseAtBroker(const char* key);
  QString stateAtBroker(const char* key) const;

  CAmounts shown() const;
  static CAmounts stored(const char* key);
  /// Keys of the account's compacts of that record type in the data centre.
  static std::vector<std::string> storedKeys(const char* key, int recordType);

  std::atomic<bool> m_giveUp{false};
  QTemporaryDir m_folder;
  std::unique_ptr<CMainWindow> m_window;
  GW::CComboBox* m_combo = nullptr;
  VN::CCountDownButton* m_refresh = nullptr;
  VN::CCompactsTable* m_table = nullptr;

 private:
  const QWidget& windowWidget() const;
  static QWidget* findControl(const QWidget& parent, const QString& accessibleName);
};
