#pragma once

#include <QMetaType>
#include <QString>

#include "base/export.h"

QT_BEGIN_NAMESPACE
class QDataStream;
QT_END_NAMESPACE

namespace Tamrix::UIAbstraction {

/// Something that can happen to an element ("clicked"), known by its name. The first value that is
/// made registers the type with Qt.
class TAMRIX_EXPORT UIEvent {
public:
    UIEvent();
    explicit UIEvent(const QString& name);

    QString name() const { return m_name; }

    bool operator==(const UIEvent& other) const { return m_name == other.m_name; }
    bool operator!=(const UIEvent& other) const { return m_name != other.m_name; }
    bool operator<(const UIEvent& other) const { return m_name < other.m_name; }

    void serialize(QDataStream* stream) const;
    /// A stream with too few bytes leaves a null name.
    void deserialize(QDataStream* stream);

private:
    QString m_name;
};

}  // namespace Tamrix::UIAbstraction

Q_DECLARE_METATYPE(Tamrix::UIAbstraction::UIEvent)
