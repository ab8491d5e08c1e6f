// Main function of every test program: an application without a display, and the event ordering that the thread
// sanitizer must be told of.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>

#ifdef PC_TSAN
bool tsanNotifyAcquire();
void tsanNotifyRelease();
#else
static bool tsanNotifyAcquire() { return true; }
static void tsanNotifyRelease() {}
#endif

namespace {

class CTestApplication : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    tsanNotifyAcquire();
    const bool done = QApplication::notify(receiver, event);
    tsanNotifyRelease();
    return done;
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleMock(&argc, argv);
  CTestApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
