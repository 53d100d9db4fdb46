// The operations of Runner on the objects of the current application, and its input.

#include <exception>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "runner/services/runner.h"

namespace Tamrix {

RemoteModel* Runner::modelOf(const SharedPtr<Object>& object, QString* error) {
    const SharedPtr<Application> application = m_applications.owner(object);
    *error = application ? application->endText() : Inspector::noApplicationText;
    return error->isEmpty() ? &application->model() : nullptr;
}

bool Runner::keyEvent(const QString& key, bool press) {
    QString error;
    RemoteModel* const model = modelOf({}, &error);
    if (model && model->keyEvent(key, press, &error))
        return true;
    Inspector::self()->setLastError(error);
    return false;
}

bool Runner::mouseEvent(SharedPtr<Object> target, int mask, int x, int y, int button, int modifiers,
                        bool buttonChange, bool press) {
    QString error;
    RemoteModel* const model = modelOf(target, &error);
    Wire::MouseEvent event;
    event.mask = mask;
    event.x = x;
    event.y = y;
    event.button = button;
    event.modifiers = modifiers;
    event.buttonChange = buttonChange;
    event.press = press;
    if (model && model->mouseEvent(target, event, &error))
        return true;
    Inspector::self()->setLastError(error);
    return false;
}

QString Runner::highlightObject(SharedPtr<Object> object, int milliseconds) {
    QString error;
    if (RemoteModel* const model = modelOf(object, &error))
        model->highlight(object, milliseconds, &error);
    return error;
}

void Runner::stopHighlight() {
    QString error;
    if (RemoteModel* const model = modelOf({}, &error))
        model->stopHighlight(&error);
    if (!error.isEmpty())
        Inspector::self()->setLastError(error);
}

SharedPtr<Object> Runner::objectGlobalBounds(SharedPtr<Object> object) {
    QString error;
    RemoteModel* const model = modelOf(object, &error);
    SharedPtr<Object> bounds;
    if (model)
        bounds = model->globalBounds(object, &error);
    if (!bounds)
        Inspector::self()->setLastError(error);
    return bounds;
}

FunctionCallResult<QSharedPointer<BackgroundTask>> Runner::startVideoCapture(
    SharedPtr<ApplicationContext>, QIODevice*) {
    return FunctionCallResult<QSharedPointer<BackgroundTask>>::error(
        QStringLiteral("Videos can't be captured"));
}

// Variable views of the debugger.

std::vector<std::pair<QString, SharedPtr<Object>>> Runner::components(int remoteId) {
    QString error;
    RemoteModel* const model = modelOf({}, &error);
    SharedPtr<Object> object;
    if (model)
        object = model->objectById(remoteId, &error);
    if (!object) {
        Inspector::self()->setLastError(error);
        return {};
    }
    return object->readProperties();
}

bool Runner::objectHasComponents(int remoteId) {
    return !components(remoteId).empty();
}

QStringList Runner::fetchObjectComponents(int remoteId) {
    QStringList lines;
    for (const auto& [name, value] : components(remoteId)) {
        if (!value)
            continue;
        const QVariant known = value->toVariant();
        // An object has components in its turn, which the mark says; a value has none.
        const bool isObject = !known.isValid() && !value->isNull();
        lines.append(QStringLiteral("%1#%2%3=%4")
                         .arg(value->className(), QLatin1String(isObject ? "+" : ""), name,
                              known.isValid() ? known.toString() : value->objectName()));
    }
    return lines;
}

void Runner::objectNotFound(const QString& name, const QString&, QString* error) {
    // The script stops only where the test and a front end both want it; else it fails at once.
    Debugger* const debugger = Debugger::self();
    if (debugger && debugger->objectNotFoundDebugging() &&
        TestSettingsType::s_objectNotFoundDebugging)
        debugger->stopWithObjectName(name, *error);
}

// One call of the script at a time holds the object model.

bool Runner::acquireRemoteObjectModel() {
    if (m_callDepth++ > 0)
        return true;
    m_applications.startCall();
    noteCall();
    return true;
}

void Runner::releaseRemoteObjectModel() {
    if (--m_callDepth > 0)
        return;
    // The call that started the first application was not noted before.
    const bool isUnwinding = std::uncaught_exceptions() != 0;
    if (!m_lastCall.isValid() && !isUnwinding)
        noteCall();
    // No handler runs beside an exception that is on its way.
    if (!isUnwinding)
        work();
}

void Runner::noteCall() {
    const ScriptContext* const context = ScriptContext::current();
    if (context && m_applications.programs().isAnyRunning())
        m_lastCall = context->lineInfoForResult();
}

}  // namespace Tamrix
