#include "adapters/rating/ProbeSession.h"

#include <QHostAddress>
#include <QNetworkReply>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <utility>

namespace endpin {
namespace {

// Nothing is kept, neither here nor there, and one request is all: an answer that leads elsewhere
// is not followed.
QNetworkRequest requestFor(const ProbeRequest& probe) {
  QNetworkRequest request(QUrl(QString::fromStdString(probe.url)));
  if (probe.cachePolicy == ProbeRequest::kReloadIgnoringLocalCacheData) {
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
  }
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                       QNetworkRequest::ManualRedirectPolicy);
  request.setTransferTimeout(static_cast<int>(probe.timeoutInterval * 1000));
  return request;
}

// The same request to a host by its address.
QNetworkRequest addressedTo(const QString& address, QNetworkRequest request) {
  QUrl url = request.url();
  request.setPeerVerifyName(url.host());
  request.setRawHeader("Host", url.authority(QUrl::RemoveUserInfo | QUrl::FullyEncoded).toUtf8());
  url.setHost(address);
  request.setUrl(url);
  return request;
}

}  // namespace

void ProbeSession::begin(const ProbeRequest& probe) {
  sinceBegin_.start();
  const QNetworkRequest request = requestFor(probe);
  const QString host = request.url().host();
  if (!QHostAddress(host).isNull()) return send(request);
  lookup_.emplace();
  lookup_->start(host.toStdString(), [this, request](const std::string& address) {
    const auto found = QString::fromStdString(address);
    QMetaObject::invokeMethod(
        this, [=, this] { found.isEmpty() ? end() : send(addressedTo(found, request)); },
        Qt::QueuedConnection);
  });
}

// The beginning of an answer is the end of the probe. The network access outlives the signals of
// its reply.
void ProbeSession::send(QNetworkRequest request) {
  network_ = std::make_unique<QNetworkAccessManager>();
  QNetworkReply* reply = network_->get(request);
  connect(reply, &QNetworkReply::metaDataChanged, reply, &QNetworkReply::abort);
  connect(reply, &QNetworkReply::finished, this, &ProbeSession::end, Qt::QueuedConnection);
}

void ProbeSession::end() {
  network_.reset();
  const std::chrono::milliseconds passed(sinceBegin_.elapsed());
  QTimer::singleShot(std::max(shortest_ - passed, std::chrono::milliseconds(0)), this, ended_);
}

}  // namespace endpin
