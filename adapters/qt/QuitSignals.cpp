#include "adapters/qt/QuitSignals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <csignal>

namespace endpin {
namespace {

sigset_t quitSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  return signals;
}

}  // namespace

void holdQuitSignals() {
  const sigset_t signals = quitSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

QuitSignals::QuitSignals() {
  const sigset_t signals = quitSignals();
  descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  if (descriptor_ < 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
    signalfd_siginfo info;
    if (read(descriptor_, &info, sizeof info) == sizeof info) QCoreApplication::quit();
  });
}

QuitSignals::~QuitSignals() {
  notifier_.reset();
  if (descriptor_ >= 0) close(descriptor_);
  // An end that takes too long can be cut short with a second signal.
  const sigset_t signals = quitSignals();
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

}  // namespace endpin
