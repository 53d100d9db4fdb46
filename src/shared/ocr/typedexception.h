#pragma once

#include <json/forwards.h>

#include <QByteArray>
#include <QString>
#include <stdexcept>

#include "base/export.h"

namespace Tamrix {

/// What text recognition throws: a failure that names its type, so that tools outside the process
/// can tell one from another. The text is in UTF-8.
class TAMRIX_EXPORT TypedException : public std::runtime_error {
public:
    /// `type` is the name of the derived class.
    TypedException(const QString& type, const QString& message);

    QString type() const { return m_type; }
    /// An object with the member "message".
    virtual Json::Value toJson() const;

private:
    QString m_type;
};

/// The progress reporter said cancel.
class TAMRIX_EXPORT OperationCancelled : public TypedException {
public:
    OperationCancelled();
};

/// The engine can't be used as it is configured.
class TAMRIX_EXPORT SetupError : public TypedException {
public:
    explicit SetupError(const QString& message);
};

/// The engine's data can't be loaded.
class TAMRIX_EXPORT InitializationError : public TypedException {
public:
    explicit InitializationError(const QString& message);
};

/// An option or an argument is wrong.
class TAMRIX_EXPORT InvalidInputs : public TypedException {
public:
    explicit InvalidInputs(const QString& message);
};

/// A request to a service failed on its way.
class TAMRIX_EXPORT ConnectionError : public TypedException {
public:
    explicit ConnectionError(const QString& message);
};

/// The engine reported a failure.
class TAMRIX_EXPORT EngineError : public TypedException {
public:
    explicit EngineError(const QString& message);
};

/// A service replied with something unusable, which is kept for a look at it.
class TAMRIX_EXPORT InvalidResponse : public TypedException {
public:
    explicit InvalidResponse(const QString& message, const QByteArray& reply = QByteArray(),
                             const QString& format = QString());

    /// The reply as it was received.
    QByteArray responseBytes;
    /// The suffix of a file that holds it: "json".
    QString responseFormat;

    /// Beside "message" there are "responseBytes", in Base64, and "responseFormat".
    Json::Value toJson() const override;
};

}  // namespace Tamrix
