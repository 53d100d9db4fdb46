#include "shared/ocr/typedexception.h"

#include <json/json.h>

namespace Tamrix {

TypedException::TypedException(const QString& type, const QString& message)
    : std::runtime_error(message.toStdString()), m_type(type) {}

Json::Value TypedException::toJson() const {
    Json::Value value(Json::objectValue);
    value["message"] = what();
    return value;
}

OperationCancelled::OperationCancelled()
    : TypedException(QStringLiteral("OperationCancelled"), QStringLiteral("Operation cancelled")) {}

SetupError::SetupError(const QString& message)
    : TypedException(QStringLiteral("SetupError"), message) {}

InitializationError::InitializationError(const QString& message)
    : TypedException(QStringLiteral("InitializationError"), message) {}

InvalidInputs::InvalidInputs(const QString& message)
    : TypedException(QStringLiteral("InvalidInputs"), message) {}

ConnectionError::ConnectionError(const QString& message)
    : TypedException(QStringLiteral("ConnectionError"), message) {}

EngineError::EngineError(const QString& message)
    : TypedException(QStringLiteral("EngineError"), message) {}

InvalidResponse::InvalidResponse(const QString& message, const QByteArray& reply,
                                 const QString& format)
    : TypedException(QStringLiteral("InvalidResponse"), message),
      responseBytes(reply),
      responseFormat(format) {}

Json::Value InvalidResponse::toJson() const {
    Json::Value value = TypedException::toJson();
    value["responseBytes"] = responseBytes.toBase64().toStdString();
    value["responseFormat"] = responseFormat.toStdString();
    return value;
}

}  // namespace Tamrix
