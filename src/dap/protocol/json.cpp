#include "dap/protocol/json.h"

#include <cmath>
#include <limits>

namespace Tamrix::Dap {

QString FieldReader::placeOf(const char* name) const {
    return m_place.isEmpty() ? QString::fromLatin1(name)
                             : QStringLiteral("%1.%2").arg(m_place, QLatin1String(name));
}

void FieldReader::complain(const QString& place, const char* problem) {
    if (m_error.isEmpty())
        m_error = QStringLiteral("'%1' %2").arg(place, QLatin1String(problem));
}

void FieldReader::read(const QJsonValue& json, const QString& place, bool& value) {
    if (json.isBool())
        value = json.toBool();
    else
        complain(place, "is to be true or false");
}

void FieldReader::read(const QJsonValue& json, const QString& place, int& value) {
    const double number = json.toDouble();
    if (json.isDouble() && std::trunc(number) == number &&
        std::abs(number) <= std::numeric_limits<int>::max())
        value = static_cast<int>(number);
    else
        complain(place, "is to be a whole number");
}

void FieldReader::read(const QJsonValue& json, const QString& place, QString& value) {
    if (json.isString())
        value = json.toString();
    else
        complain(place, "is to be a text");
}

void FieldReader::read(const QJsonValue& json, const QString& place, QJsonObject& value) {
    if (json.isObject())
        value = json.toObject();
    else
        complain(place, "is to be an object");
}

void FieldReader::read(const QJsonValue& json, const QString& place, TextMap& value) {
    if (!json.isObject()) {
        complain(place, "is to be an object");
        return;
    }
    const QJsonObject object = json.toObject();
    for (auto entry = object.constBegin(); entry != object.constEnd(); ++entry) {
        if (entry->isString())
            value[entry.key()] = entry->toString();
        else if (entry->isNull())
            value[entry.key()] = std::nullopt;
        else if (m_error.isEmpty())
            m_error = QStringLiteral("'%1.%2' is to be a text or null").arg(place, entry.key());
    }
}

}  // namespace Tamrix::Dap
