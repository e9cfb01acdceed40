#include "adapters/qt/IdleInhibitor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace endpin {
namespace {

QDBusMessage screenSaverCall(const char* method) {
  QDBusMessage message =
      QDBusMessage::createMethodCall("org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
                                     "org.freedesktop.ScreenSaver", method);
  message.setAutoStartService(true);
  return message;
}

}  // namespace

void IdleInhibitor::setInhibited(bool inhibited) {
  wanted_ = inhibited;
  if (asked_) return;
  if (wanted_ && !held_) request();
  if (!wanted_ && held_) release();
}

void IdleInhibitor::request() {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) {
    log_.line("The screen may blank while the tuner runs: there is no session bus.");
    return;
  }
  asked_ = true;
  QDBusMessage call = screenSaverCall("Inhibit");
  call << QStringLiteral("Endpin") << QStringLiteral("The tuner is listening");
  auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), &replies_);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &replies_, [this, watcher] {
    const QDBusPendingReply<unsigned> reply = *watcher;
    watcher->deleteLater();
    asked_ = false;
    if (reply.isError()) {
      log_.line("The screen may blank while the tuner runs: " +
                reply.error().message().toStdString());
      return;
    }
    held_ = reply.value();
    setInhibited(wanted_);
  });
}

void IdleInhibitor::release() {
  QDBusMessage call = screenSaverCall("UnInhibit");
  call << *held_;
  QDBusConnection::sessionBus().send(call);
  held_.reset();
}

}  // namespace endpin
