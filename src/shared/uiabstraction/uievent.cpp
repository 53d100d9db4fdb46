#include "shared/uiabstraction/uievent.h"

#include <QDataStream>

namespace Tamrix::UIAbstraction {

UIEvent::UIEvent() : UIEvent(QString()) {}

UIEvent::UIEvent(const QString& name) : m_name(name) {
    static const int s_typeId = qRegisterMetaType<UIEvent>("Tamrix::UIAbstraction::UIEvent");
    Q_UNUSED(s_typeId)
}

void UIEvent::serialize(QDataStream* stream) const {
    *stream << m_name;
}

void UIEvent::deserialize(QDataStream* stream) {
    *stream >> m_name;
}

}  // namespace Tamrix::UIAbstraction
