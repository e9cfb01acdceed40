#include "adapters/qt/QtDevice.h"

#include <QSysInfo>

namespace endpin {

std::string QtDevice::systemVersion() const {
  return QSysInfo::productVersion().toStdString();
}

}  // namespace endpin
