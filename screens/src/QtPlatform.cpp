#include "varnel/screens/QtPlatform.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QUrl>

namespace varnel {
namespace {

constexpr const char* kQtURLSessionErrorDomain = "Varnel.QtURLSession";

class QtDataTask final : public URLSessionDataTask {
 public:
  QtDataTask(QNetworkAccessManager* manager, URLRequest request, URLSession::Completion completion)
      : manager_(manager), request_(std::move(request)), completion_(std::move(completion)) {}

  void resume() override {
    if (reply_ || !manager_ || !completion_) return;
    QNetworkRequest request(QUrl(QString::fromStdString(request_.url), QUrl::TolerantMode));
    for (const auto& [name, value] : request_.allHTTPHeaderFields) {
      request.setRawHeader(QByteArray::fromStdString(name), QByteArray::fromStdString(value));
    }
    const QByteArray method = QByteArray::fromStdString(request_.httpMethod);
    reply_ = request_.httpBody
                 ? manager_->sendCustomRequest(request, method, QByteArray::fromStdString(*request_.httpBody))
                 : manager_->sendCustomRequest(request, method);
    QObject::connect(reply_, &QNetworkReply::finished, reply_,
                     [reply = reply_.data(), completion = std::move(completion_)] {
                       finish(*reply, completion);
                       reply->deleteLater();
                     });
  }

  void cancel() override {
    if (reply_) reply_->abort();
  }

 private:
  static void finish(QNetworkReply& reply, const URLSession::Completion& completion) {
    const QVariant status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid()) {
      completion(std::nullopt, std::nullopt,
                 Error{kQtURLSessionErrorDomain, static_cast<long>(reply.error()),
                       Json{{"message", reply.errorString().toStdString()}}});
      return;
    }
    URLResponse response;
    response.url = reply.url().toString().toStdString();
    response.statusCode = status.toInt();
    for (const auto& [name, value] : reply.rawHeaderPairs()) {
      response.allHeaderFields.insert_or_assign(name.toStdString(), value.toStdString());
    }
    completion(reply.readAll().toStdString(), std::move(response), std::nullopt);
  }

  QPointer<QNetworkAccessManager> manager_;
  URLRequest request_;
  URLSession::Completion completion_;
  QPointer<QNetworkReply> reply_;
};

}  // namespace

void QtMainQueue::post(std::function<void()> task) {
  QCoreApplication* application = QCoreApplication::instance();
  if (!application || !task) return;
  QMetaObject::invokeMethod(application, std::move(task), Qt::QueuedConnection);
}

QtURLSession::QtURLSession() : manager_(std::make_unique<QNetworkAccessManager>()) {}

QtURLSession::~QtURLSession() = default;

std::shared_ptr<URLSessionDataTask> QtURLSession::dataTask(URLRequest request, Completion completion) {
  return std::make_shared<QtDataTask>(manager_.get(), std::move(request), std::move(completion));
}

}  // namespace varnel
