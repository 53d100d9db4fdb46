#pragma once

#include <QByteArray>
#include <QEventLoop>
#include <QImage>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QSharedPointer>
#include <memory>

#include "base/export.h"
#include "shared/ocr/implementation.h"
#include "shared/ocr/typedexception.h"

namespace Tamrix::OCR {

/// An engine that is a service in the network. It is asked on the thread that made it, which needs
/// no event loop: the object has one of its own while it waits. One call at a time.
class TAMRIX_EXPORT RESTImplementation : public QObject, public Implementation {
    Q_OBJECT

public:
    /// Takes the proxy from the group "Proxy" of the settings. Throws SetupError for an unknown
    /// type of it.
    explicit RESTImplementation(const Settings& settings);

protected:
    /// Waits until the reply is there, whatever it says. Throws OperationCancelled, with the
    /// request aborted, when the reporter or the user (Ctrl-C) wants an end.
    void waitForReply(const QSharedPointer<ProgressReporter>& progress, QNetworkReply* reply);

    /// The picture that is sent: gray, magnified and sharpened, as PNG. Throws std::runtime_error
    /// when it can't be made.
    static QByteArray prepareImage(const QImage& image, const Options& options);

    QNetworkAccessManager& network() { return m_network; }

    /// Ends the event loop.
    void timerEvent(QTimerEvent* event) override;

private:
    QNetworkAccessManager m_network;
    QEventLoop m_loop;
};

using ReplyHandle = std::unique_ptr<QNetworkReply>;

/// Calls `read` and returns what it makes of a service's reply in JSON. What it throws because of
/// the reply comes out as InvalidResponse with the reply in it.
template <typename Read>
auto readReply(const QByteArray& reply, Read read) {
    try {
        return read();
    } catch (const EngineError&) {
        throw;
    } catch (const std::exception& error) {
        throw InvalidResponse(QString::fromUtf8(error.what()), reply, QStringLiteral("json"));
    }
}

/// The value of a reply, read strictly. Throws InvalidResponse, without the reply in it.
TAMRIX_EXPORT Json::Value parseReply(const QByteArray& reply);

}  // namespace Tamrix::OCR
