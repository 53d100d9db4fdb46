#pragma once

#include <QString>

#include "base/export.h"
#include "platform/verification/objectnameresolverinterface.h"

namespace Tamrix {

class RunnerInterface;

/// Asks the runner for objects by real or symbolic name, waiting until they exist, ready for input
/// or not; an object that is not found may be looked for again (see namelookup.h). A name that is
/// neither
/// ":Name" nor {...} is a symbolic one without its ":". Script thread only.
class TAMRIX_EXPORT ObjectNameResolver : public ObjectNameResolverInterface {
public:
    /// `runner` is not null and outlives the resolver. `function` is the script's, for messages.
    ObjectNameResolver(RunnerInterface* runner, const QString& function)
        : m_runner(runner), m_function(function) {}

    SharedPtr<Object> resolveObjectName(QString* name, QString* error) override;
    bool canResolveMultipleObjects() const override { return true; }

private:
    RunnerInterface* m_runner;
    QString m_function;
};

/// Holds one object, which is that of the first name that is asked for; any other name is an error.
/// Script thread only.
class TAMRIX_EXPORT ShadowObjectResolver : public ObjectNameResolverInterface {
public:
    /// `name` is what the object is asked for by; empty for the first name that comes.
    explicit ShadowObjectResolver(SharedPtr<Object> object, const QString& name = QString())
        : m_object(std::move(object)), m_name(name) {}

    SharedPtr<Object> resolveObjectName(QString* name, QString* error) override;
    bool canResolveMultipleObjects() const override { return false; }

private:
    SharedPtr<Object> m_object;
    QString m_name;
};

}  // namespace Tamrix
