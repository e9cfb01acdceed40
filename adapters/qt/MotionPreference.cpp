#include "adapters/qt/MotionPreference.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

namespace endpin {
namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");

// The switch of the desktops that have one under this name; on is the usual state.
const QString kGroup = QStringLiteral("org.gnome.desktop.interface");
const QString kKey = QStringLiteral("enable-animations");

// The portal wraps its answers, some of them twice.
bool unwrapped(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = qvariant_cast<QDBusVariant>(value).variant();
  }
  return value.toBool();
}

}  // namespace

MotionPreference::MotionPreference(std::function<void(bool reduced)> changed)
    : changed_(std::move(changed)) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
              SLOT(onSettingChanged(QString, QString, QDBusVariant)));
  ask();
}

void MotionPreference::ask() {
  QDBusMessage read =
      QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
  read << kGroup << kKey;
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(read), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    watcher->deleteLater();
    if (!reply.isError()) changed_(!unwrapped(reply.value().variant()));
  });
}

void MotionPreference::onSettingChanged(const QString& group, const QString& key,
                                        const QDBusVariant& value) {
  if (group == kGroup && key == kKey) changed_(!unwrapped(value.variant()));
}

}  // namespace endpin
