#include "adapters/qt/ForegroundWatch.h"

#include <QGuiApplication>
#include <QWindow>
#include <utility>

namespace endpin {

ForegroundWatch::ForegroundWatch(QWindow& window, std::function<void()> entered)
    : window_(window), entered_(std::move(entered)) {
  QObject::connect(&window_, &QWindow::visibilityChanged, &connections_, [this] { look(); });
  QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &connections_,
                   [this] { look(); });
}

void ForegroundWatch::look() {
  const auto state = QGuiApplication::applicationState();
  const bool away = window_.visibility() == QWindow::Hidden ||
                    window_.visibility() == QWindow::Minimized || state == Qt::ApplicationHidden ||
                    state == Qt::ApplicationSuspended;
  if (!away && !inFront_) entered_();
  inFront_ = !away;
}

}  // namespace endpin
