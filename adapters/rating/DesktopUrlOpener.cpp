#include "adapters/rating/DesktopUrlOpener.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

namespace endpin {
namespace {

// Without slashes: what stands after two of them would be a host, whose capitals get lost.
QUrl softwareCentrePage() {
  return QUrl(QStringLiteral("appstream:") + QGuiApplication::desktopFileName());
}

}  // namespace

void DesktopUrlOpener::openUrl(const std::string& url) {
  QUrl target(QString::fromStdString(url));
  if (target.scheme() == QLatin1String("itms-apps")) target = softwareCentrePage();
  if (QDesktopServices::openUrl(target)) return;
  log_.line("Nothing opens " + target.toString().toStdString());
}

}  // namespace endpin
