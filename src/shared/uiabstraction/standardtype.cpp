#include "shared/uiabstraction/standardtype.h"

#include <QDataStream>

namespace Tamrix::UIAbstraction {

StandardType::StandardType() : StandardType(QString()) {}

StandardType::StandardType(const QString& name) : m_name(name) {
    static const int s_typeId =
        qRegisterMetaType<StandardType>("Tamrix::UIAbstraction::StandardType");
    Q_UNUSED(s_typeId)
}

QString StandardType::toString() const {
    return isKnown() ? m_name : QStringLiteral("unknown");
}

void StandardType::serialize(QDataStream* stream) const {
    *stream << m_name;
}

void StandardType::deserialize(QDataStream* stream) {
    *stream >> m_name;
}

}  // namespace Tamrix::UIAbstraction
