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

InvalidInputs::InvalidInputs(const QString& message)
    : TypedException(QStringLiteral("InvalidInputs"), message) {}

}  // namespace Tamrix
