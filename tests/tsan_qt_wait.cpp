// Part of the tests of Qt code where the thread sanitizer runs. QThread::wait puts the end of a thread before what its
// caller does next, by way of a QMutex that works on a futex, so that the sanitizer sees no order. Here it is shown
// one: a thread that ends wakes its waiters by a condition variable, in time for whoever finds it ended already.

#include <dlfcn.h>
#include <pthread.h>
#include <sanitizer/tsan_interface.h>

#include <QDeadlineTimer>
#include <QThread>

namespace {

char ended_threads;

template <typename Function>
Function next(const char* symbol) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int pthread_cond_broadcast(pthread_cond_t* condition) {
  __tsan_release(&ended_threads);
  return next<int (*)(pthread_cond_t*)>("pthread_cond_broadcast")(condition);
}

bool QThread::wait(QDeadlineTimer deadline) {
  const bool ended = next<bool (*)(QThread*, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer")(this, deadline);
  __tsan_acquire(&ended_threads);
  return ended;
}
