#pragma once

#include <QMetaType>
#include <QString>

#include "base/export.h"

QT_BEGIN_NAMESPACE
class QDataStream;
QT_END_NAMESPACE

namespace Tamrix::UIAbstraction {

/// The kind of an element in terms that hold for every toolkit ("button"). A null name means that
/// the kind isn't known. The first value that is made registers the type with Qt.
class TAMRIX_EXPORT StandardType {
public:
    StandardType();
    explicit StandardType(const QString& name);

    bool isKnown() const { return !m_name.isNull(); }
    /// The name, "unknown" when the kind isn't known.
    QString toString() const;

    bool operator==(const StandardType& other) const { return m_name == other.m_name; }
    bool operator!=(const StandardType& other) const { return m_name != other.m_name; }

    void serialize(QDataStream* stream) const;
    /// A stream with too few bytes leaves an unknown type.
    void deserialize(QDataStream* stream);

private:
    QString m_name;
};

}  // namespace Tamrix::UIAbstraction

Q_DECLARE_METATYPE(Tamrix::UIAbstraction::StandardType)
