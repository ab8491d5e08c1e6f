#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <functional>
#include <vector>

class CMainWindow;
class QWidget;

/// Walks through the desk's views by itself, as a user would, and saves a picture of each: the run without a display.
/// Ends the application; its exit code is 1 when a step did not come about in time.
class CShotWalk : public QObject {
 public:
  CShotWalk(CMainWindow& window, const QString& folder, QObject* parent);

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  /// Act once, then wait until `done`, then save a picture (unless the step has no name).
  struct CStep {
    QString picture;
    std::function<void()> act;
    std::function<bool()> done;
  };

  void addAccountSteps();
  void addChoice(int account);
  void addRefresh(const QString& picture);
  void addPushSteps(const QString& picture);
  void addViewSteps();
  void addDockSteps();
  void addOrderPanelSteps();
  void addAppointmentStep();
  /// Whether the widget's visible tables show everything that has arrived.
  static bool isUpToDate(const QWidget& widget);
  QString nextPicture(const char* name);
  bool save(const QString& picture);
  void finish(int exitCode);

  CMainWindow& m_window;
  const QString m_folder;
  std::vector<CStep> m_steps;
  std::size_t m_next = 0;
  int m_pictures = 0;  ///< named so far
  bool m_acted = false;
  QElapsedTimer m_waited;
  double m_longestGap = 0;
};
