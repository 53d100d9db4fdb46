#include "shared/ocr/rest/restimplementation.h"

#include <json/json.h>

#include <QNetworkProxy>
#include <QTimerEvent>

#include "base/blocking.h"
#include "shared/ocr/rest/sharpening.h"

namespace Tamrix::OCR {

namespace {

/// How often a wait looks whether it is to end, in milliseconds.
constexpr int lookInterval = 100;

/// A reply is nested less deeply by far.
constexpr int deepestNesting = 64;

}  // namespace

RESTImplementation::RESTImplementation(const Settings& settings) {
    const QString group = QStringLiteral("Proxy");
    const QString type = settings.readEntry(group, QStringLiteral("Type"), QStringLiteral("None"));
    QNetworkProxy proxy;
    if (type == QLatin1String("None")) {
        m_network.setProxy(QNetworkProxy::NoProxy);
        return;
    }
    if (type == QLatin1String("Socks"))
        proxy.setType(QNetworkProxy::Socks5Proxy);
    else if (type == QLatin1String("Http"))
        proxy.setType(QNetworkProxy::HttpProxy);
    else
        throw SetupError(QStringLiteral("Invalid proxy type: ") + type);
    proxy.setHostName(settings.readEntry(group, QStringLiteral("Host")));
    proxy.setPort(static_cast<quint16>(settings.readNumEntry(group, QStringLiteral("Port"))));
    proxy.setUser(settings.readEntry(group, QStringLiteral("Username")));
    proxy.setPassword(settings.readEntry(group, QStringLiteral("Password")));
    m_network.setProxy(proxy);
}

void RESTImplementation::waitForReply(const QSharedPointer<ProgressReporter>& progress,
                                      QNetworkReply* reply) {
    const auto shallEnd = [&] { return (progress && progress->isCanceled()) || isInterrupted(); };
    connect(reply, &QNetworkReply::finished, &m_loop, &QEventLoop::quit);
    if (progress)
        connect(progress.data(), &ProgressReporter::canceled, &m_loop, &QEventLoop::quit);
    // Between the looks nothing is asked: a reporter may want an end without a signal, and so may
    // Ctrl-C.
    const int timer = startTimer(lookInterval);
    while (!reply->isFinished() && !shallEnd())
        m_loop.exec();
    killTimer(timer);
    disconnect(reply, nullptr, &m_loop, nullptr);
    if (progress)
        disconnect(progress.data(), nullptr, &m_loop, nullptr);
    if (shallEnd()) {
        reply->abort();
        throw OperationCancelled();
    }
}

void RESTImplementation::timerEvent(QTimerEvent* /*event*/) {
    m_loop.quit();
}

QByteArray RESTImplementation::prepareImage(const QImage& image, const Options& options) {
    return sharpenedPng(image, effectiveScale(options));
}

Json::Value parseReply(const QByteArray& reply) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder["stackLimit"] = deepestNesting;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    if (!reader->parse(reply.constData(), reply.constData() + reply.size(), &value, &errors))
        throw InvalidResponse(
            QStringLiteral("Invalid JSON: %1").arg(QString::fromStdString(errors)));
    if (!value.isObject())
        throw InvalidResponse(QStringLiteral("Response is not a JSON object"));
    return value;
}

}  // namespace Tamrix::OCR
