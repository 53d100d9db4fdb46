#include "interpreter/generic/objectnameresolver.h"

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/objects/namelookup.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

SharedPtr<Object> ObjectNameResolver::resolveObjectName(QString* name, QString* error) {
    const QString given = *name;
    // 1. A symbolic name may stand without its colon.
    if (!given.startsWith(QLatin1Char(':')) && !isMultiPropertyName(given))
        *name = QLatin1Char(':') + given;
    // 2. The runner is asked. What can't be used can be looked at: it may be expected to be
    // disabled.
    const Outcome<SharedPtr<Object>> found = lookUp(*name, m_function, [&] {
        return outcomeOf(
            m_runner->waitForObjectExists(*name, false, TestSettingsType::s_waitForObjectTimeout));
    });
    if (found)
        return *found;
    // 3. Why there is none is told of the name as it was given.
    *error = QString(found.error().text).replace(*name, given);
    return {};
}

SharedPtr<Object> ShadowObjectResolver::resolveObjectName(QString* name, QString* error) {
    if (m_name.isEmpty())
        m_name = *name;
    if (*name == m_name)
        return m_object;
    *error = QStringLiteral(
        "Unable to perform verification point with object, VP file contains more than 1 object");
    return {};
}

}  // namespace Tamrix
