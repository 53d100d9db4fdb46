#pragma once

#include "platform/objectmodel/object.h"

namespace Tamrix::Test {

/// An object that has nothing but its real name.
class NamedObject : public Object {
public:
    explicit NamedObject(const QString& realName) : Object(1), m_realName(realName) {}
    QString realName() const override { return m_realName; }

private:
    QString m_realName;
};

}  // namespace Tamrix::Test
