// Whether the user asked the desktop for less motion, as the desktop's settings portal tells and
// whenever it changes. A desktop without the portal gets motion. Thread: main; never waits.
#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QString>
#include <functional>

namespace endpin {

class MotionPreference final : public QObject {
  Q_OBJECT

 public:
  // `changed` is called with true for less motion, at the first answer and at every change.
  explicit MotionPreference(std::function<void(bool reduced)> changed);

 private Q_SLOTS:
  void onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask();

  std::function<void(bool)> changed_;
};

}  // namespace endpin
