#include "platform/verification/pointnotation.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace Tamrix {

QString compactJson(const QJsonValue& value) {
    // A document is a list or an object.
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

QString colorCode(const CellColor& color) {
    return QString::asprintf("#%02X%02X%02X%02X", unsigned(color.alpha), unsigned(color.red),
                             unsigned(color.green), unsigned(color.blue));
}

}  // namespace Tamrix
