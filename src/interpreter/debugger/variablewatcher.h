#pragma once

#include <QString>
#include <QStringList>
#include <map>
#include <utility>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/debugger.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

/// Lists variables for a front end of the debugger. A language plug-in derives from it and answers
/// for the script's own variables; objects of applications are answered for here, through the
/// runner. What was listed is kept, so that a front end can ask for what is below it.
///
/// A path names something that was listed. One that starts with "+" can be expanded, and what is
/// listed below it can be asked for as it stands.
///
/// Owned by the language's debugger. Script thread, inside the command loop.
class TAMRIX_EXPORT VariableWatcher {
public:
    using VariableBindings = Debugger::VariableBindings;

    virtual ~VariableWatcher() = default;

    // For the language to define. It registers the objects of applications that it lists.
    /// What is listed for the empty path.
    virtual VariableBindings topLevelBindings() = 0;
    /// Whether the path, which is not empty, leads to a value of the language.
    virtual bool handlesPath(const QString& path) = 0;
    /// What is listed below a path that handlesPath().
    virtual VariableBindings languageBindings(const QString& path) = 0;

    /// What is listed below the path. Lets connections to applications work first. A path that
    /// nobody knows is a Qt warning and lists nothing.
    VariableBindings variableBindings(const QString& path);

    /// Keeps an object of an application that stands at the path, if it has something below it.
    /// Whether it has.
    bool registerTamrixObject(const QString& path, SharedPtr<Object> object);
    /// Whether the runner has components of the object. One that is of no application is told on
    /// standard error and has none.
    static bool objectHasComponents(SharedPtr<Object> object);
    /// The object's components as type#name=value, the name with a "+" in front where it can be
    /// expanded; empty for an object that is of no application and without a runner.
    static QStringList fetchObjectComponents(SharedPtr<Object> object);
    /// What is listed for an object of an application that stands at the path, which is not empty.
    VariableBindings tamrixObjectBindings(SharedPtr<Object> object, const QString& path);

private:
    std::map<QString, SharedPtr<Object>> m_objects;
    std::map<QString, std::pair<SharedPtr<Object>, Property>> m_properties;
};

}  // namespace Tamrix
