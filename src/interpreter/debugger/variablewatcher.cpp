#include "interpreter/debugger/variablewatcher.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>
#include <cstdio>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix {

namespace {

/// A component as the runner writes it: the first "#" ends the type, the first "=" behind it the
/// name. A component without "=" has no value.
Debugger::VariableBinding parseComponent(const QString& component) {
    const int typeEnd = component.indexOf(QLatin1Char('#'));
    const int nameEnd = component.indexOf(QLatin1Char('='), typeEnd + 1);
    Debugger::VariableBinding binding;
    if (typeEnd >= 0)
        binding.type = component.left(typeEnd);
    binding.name = component.mid(typeEnd + 1, nameEnd < 0 ? -1 : nameEnd - typeEnd - 1);
    if (nameEnd >= 0)
        binding.value = component.mid(nameEnd + 1);
    return binding;
}

}  // namespace

VariableWatcher::VariableBindings VariableWatcher::variableBindings(const QString& path) {
    // 1. What has arrived from applications is taken in first.
    QEventLoop loop;
    QTimer::singleShot(0, &loop, &QEventLoop::quit);
    loop.exec();

    // 2. The empty path means everything at the top; a feature file has no variables.
    if (path.isEmpty()) {
        const bool isFeature =
            QFileInfo(Debugger::currentFile()).completeSuffix() == QLatin1String("feature");
        return isFeature ? VariableBindings() : topLevelBindings();
    }

    // 3. The language knows its own values.
    if (handlesPath(path))
        return languageBindings(path);

    // 4. A property of an object is read now.
    const auto property = m_properties.find(path);
    if (property != m_properties.end()) {
        // Copies: what is listed below it is entered in the same map.
        const auto [object, description] = property->second;
        return tamrixObjectBindings(description.get(object), path);
    }

    // 5. An object that the language has listed.
    const auto object = m_objects.find(path);
    if (object != m_objects.end())
        return tamrixObjectBindings(object->second, path);

    // 6. Nobody has listed anything of this path.
    qWarning("VariableWatcher::variableBindings: Cannot handle object '%s'.\n",
             path.toLocal8Bit().constData());
    return {};
}

bool VariableWatcher::registerTamrixObject(const QString& path, SharedPtr<Object> object) {
    if (!objectHasComponents(object))
        return false;
    m_objects[path] = object;
    return true;
}

bool VariableWatcher::objectHasComponents(SharedPtr<Object> object) {
    const auto remote = dynamicPointerCast<RemoteObjectBase>(object);
    if (!remote) {
        std::fputs("VariableWatcher: Skipping non-remote-object\n", stderr);
        return false;
    }
    RunnerInterface* const runner = Interpreter::currentRunner();
    return runner && runner->objectHasComponents(remote->remoteId());
}

QStringList VariableWatcher::fetchObjectComponents(SharedPtr<Object> object) {
    const auto remote = dynamicPointerCast<RemoteObjectBase>(object);
    RunnerInterface* const runner = Interpreter::currentRunner();
    return remote && runner ? runner->fetchObjectComponents(remote->remoteId()) : QStringList();
}

VariableWatcher::VariableBindings VariableWatcher::tamrixObjectBindings(SharedPtr<Object> object,
                                                                        const QString& path) {
    // 1. Without an application there are no objects.
    RunnerInterface* const runner = Interpreter::currentRunner();
    if (!object || !runner || runner->applicationContexts().isEmpty())
        return {};

    // 2. to 4. Each component is a binding. Its name stands below the path, with the path's mark
    // where the component can be expanded and without it where it can't.
    VariableBindings bindings;
    for (const QString& component : fetchObjectComponents(object)) {
        Debugger::VariableBinding binding = parseComponent(component);
        const bool isExpandable = binding.name.startsWith(QLatin1Char('+'));
        binding.name = (isExpandable ? path : path.mid(1)) + QLatin1Char('.') +
                       (isExpandable ? binding.name.mid(1) : binding.name);
        bindings.push_back(binding);
    }

    // 5. Each property is found again at the path at which it is listed when it can be expanded.
    const Class* const objectClass = object->objectClass();
    for (int index = 0; objectClass && index < objectClass->numProperties(); ++index) {
        const Property* const property = objectClass->property(index);
        m_properties.insert_or_assign(path + QLatin1Char('.') + property->name(),
                                      std::pair(object, *property));
    }
    return bindings;
}

}  // namespace Tamrix
