// For thread sanitizer builds only. Qt is not instrumented, so the sanitizer does not see how Qt orders threads and
// would call every queued signal a race. The functions here stand in front of Qt's: the dynamic linker finds those of
// the program first. Each tells the sanitizer of the ordering and goes on to Qt's own. What a slot itself does wrong is
// still reported.
//
// Known here are the mutexes, events and invocations posted by the program, signals of the program's own classes, the
// end of an object that events were posted to, and waiting for a thread. Not known are signals that Qt's own code emits
// on another thread, QThreadPool, QSemaphore and QWaitCondition: between threads use std::thread, the engine's strands
// and std::mutex.

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QMetaObject>
#include <QMutex>
#include <QReadWriteLock>
#include <QThread>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);
}

bool tsanNotifyAcquire();
void tsanNotifyRelease();

// Qt copies the arguments of a queued signal inside activate(), after the ordering told below, and destroys the copies
// that were not delivered anywhere between delivery and the end of the receiver. Only Qt calls these functions.
extern "C" const char* __tsan_default_suppressions() { return "race:QtMetaTypePrivate::QMetaTypeFunctionHelper\n"; }

namespace {

/// Its address stands for the event queues of all threads: posting releases it, delivery acquires it.
char s_eventQueues;

/// Qt's own function of that (mangled) name, which the one defined here hides.
template <class F>
F* hidden(const char* symbol) {
  void* address = dlsym(RTLD_NEXT, symbol);
  if (address == nullptr) {
    std::fprintf(stderr, "tsan_qt: this Qt has no %s\n", symbol);
    std::abort();
  }
  return reinterpret_cast<F*>(address);
}

}  // namespace

bool tsanNotifyAcquire() {
  __tsan_acquire(&s_eventQueues);
  return true;
}

void tsanNotifyRelease() { __tsan_release(&s_eventQueues); }

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT {
  static const auto qt = hidden<void(QMutex*)>("_ZN6QMutex4lockEv");
  qt(this);
  __tsan_acquire(this);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT {
  static const auto qt = hidden<bool(QMutex*, int)>("_ZN6QMutex7tryLockEi");
  const bool isLocked = qt(this, timeout);
  if (isLocked) __tsan_acquire(this);
  return isLocked;
}

void QMutex::unlock() noexcept {
  static const auto qt = hidden<void(QMutex*)>("_ZN6QMutex6unlockEv");
  __tsan_release(this);
  qt(this);
}

void QReadWriteLock::lockForRead() {
  static const auto qt = hidden<void(QReadWriteLock*)>("_ZN14QReadWriteLock11lockForReadEv");
  qt(this);
  __tsan_acquire(this);
}

void QReadWriteLock::lockForWrite() {
  static const auto qt = hidden<void(QReadWriteLock*)>("_ZN14QReadWriteLock12lockForWriteEv");
  qt(this);
  __tsan_acquire(this);
}

void QReadWriteLock::unlock() {
  static const auto qt = hidden<void(QReadWriteLock*)>("_ZN14QReadWriteLock6unlockEv");
  __tsan_release(this);
  qt(this);
}

void QCoreApplication::postEvent(QObject* receiver, QEvent* event, int priority) {
  static const auto qt = hidden<void(QObject*, QEvent*, int)>("_ZN16QCoreApplication9postEventEP7QObjectP6QEventi");
  __tsan_release(&s_eventQueues);
  qt(receiver, event, priority);
}

// A signal or an invocation may post an event inside Qt, where no call can be caught any more.
void QMetaObject::activate(QObject* sender, const QMetaObject* type, int signal, void** arguments) {
  static const auto qt =
      hidden<void(QObject*, const QMetaObject*, int, void**)>("_ZN11QMetaObject8activateEP7QObjectPKS_iPPv");
  __tsan_release(&s_eventQueues);
  qt(sender, type, signal, arguments);
}

bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* slot, Qt::ConnectionType type,
                                   void* result) {
  static const auto qt = hidden<bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*)>(
      "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
  __tsan_release(&s_eventQueues);
  return qt(object, slot, type, result);
}

// Events that were posted to an object go with it, on its own thread.
extern "C" void _ZN7QObjectD2Ev(QObject* object) {
  static const auto qt = hidden<void(QObject*)>("_ZN7QObjectD2Ev");
  __tsan_acquire(&s_eventQueues);
  qt(object);
}

bool QThread::wait(QDeadlineTimer deadline) {
  static const auto qt = hidden<bool(QThread*, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
  const bool isFinished = qt(this, deadline);
  __tsan_acquire(&s_eventQueues);
  return isFinished;
}
