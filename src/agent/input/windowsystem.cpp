#include "agent/input/windowsystem.h"

#include <dlfcn.h>

#include <QWindow>

#include "agent/input/eventtime.h"

namespace Tamrix::Agent {

namespace {

/// As Qt declares it inside the class of its entry points.
struct ScaleAndOrigin {
    qreal factor;
    QPoint origin;
};

/// Qt 6 asks with a position of a kind; 0 is none.
struct NoPosition {
    int kind = 0;
    QPoint point;
};

using EnterFunction = void (*)(QWindow*, const QPointF& local, const QPointF& global);
using WindowFunction = void (*)(QWindow*);
using CloseFunction = bool (*)(QWindow*);
using ActivateFunction = void (*)(QWindow*, Qt::FocusReason);
using QueuedFunction = int (*)();
using MouseFunction = bool (*)(QWindow*, ulong time, const QPointF& local, const QPointF& global,
                               Qt::MouseButtons, Qt::MouseButton, QEvent::Type,
                               Qt::KeyboardModifiers, Qt::MouseEventSource);
using KeyFunction = bool (*)(QWindow*, ulong time, QEvent::Type, int code, Qt::KeyboardModifiers,
                             const QString& text, bool isRepeated, ushort count);
using ScaleFunctionOfQt5 = ScaleAndOrigin (*)(const QWindow*, QPoint*);
using ScaleFunctionOfQt6 = ScaleAndOrigin (*)(const QWindow*, NoPosition);

constexpr char scaleOfQt5[] = "_ZN15QHighDpiScaling14scaleAndOriginEPK7QWindowP6QPoint";

}  // namespace

/// The names tell the types of arguments and results, so what is found can be called. Of several
/// the first that is there is taken.
struct WindowSystem::Description {
    Use use;
    /// For people.
    const char* name;
    const char* symbols[2];
};

#define TAMRIX_QUEUED(name) "_ZN22QWindowSystemInterface" name "INS_20AsynchronousDeliveryEEE"
const WindowSystem::Description WindowSystem::s_descriptions[EntryCount] = {
    {Use::Mouse,
     "QWindowSystemInterface::handleEnterEvent",
     {TAMRIX_QUEUED("16handleEnterEvent") "vP7QWindowRK7QPointFS6_"}},
    {Use::Mouse,
     "QWindowSystemInterface::handleLeaveEvent",
     {TAMRIX_QUEUED("16handleLeaveEvent") "vP7QWindow"}},
    {Use::Mouse,
     "QWindowSystemInterface::handleMouseEvent",
     {TAMRIX_QUEUED("16handleMouseEvent") "bP7QWindowmRK7QPointFS6_6QFlagsIN2Qt11MouseButtonEES9_"
                                          "N6QEvent4TypeES7_INS8_16KeyboardModifierEE"
                                          "NS8_16MouseEventSourceE"}},
    {Use::Keys,
     "QWindowSystemInterface::handleKeyEvent",
     {TAMRIX_QUEUED("14handleKeyEvent") "bP7QWindowmN6QEvent4TypeEi"
                                        "6QFlagsIN2Qt16KeyboardModifierEERK7QStringbt"}},
    {Use::Closing,
     "QWindowSystemInterface::handleCloseEvent",
     {TAMRIX_QUEUED("16handleCloseEvent") "bP7QWindow"}},
    // Only for windows that no window manager activates. Later versions call it by the first name.
    {Use::None,
     "QWindowSystemInterface::handleFocusWindowChanged",
     {TAMRIX_QUEUED("24handleFocusWindowChanged") "vP7QWindowN2Qt11FocusReasonE",
      TAMRIX_QUEUED("21handleWindowActivated") "vP7QWindowN2Qt11FocusReasonE"}},
    {Use::None,
     "QWindowSystemInterface::windowSystemEventsQueued",
     {"_ZN22QWindowSystemInterface24windowSystemEventsQueuedEv"}},
    {Use::Mouse,
     "QHighDpiScaling::scaleAndOrigin",
     {scaleOfQt5, "_ZN15QHighDpiScaling14scaleAndOriginEPK7QWindowNS_5PointE"}},
};
#undef TAMRIX_QUEUED

WindowSystem::WindowSystem(const Finder& find) {
    for (int entry = 0; entry < EntryCount; ++entry) {
        for (const char* symbol : s_descriptions[entry].symbols) {
            if (m_entries[entry] || !symbol)
                continue;
            m_entries[entry] = find(symbol);
            if (entry == Scale)
                m_isScaleOfQt5 = symbol == scaleOfQt5;
        }
    }
}

const WindowSystem& WindowSystem::self() {
    static const WindowSystem s_self(
        [](const char* symbol) { return ::dlsym(RTLD_DEFAULT, symbol); });
    return s_self;
}

QString WindowSystem::obstacle(Use use) const {
    for (int entry = 0; entry < EntryCount; ++entry) {
        const Description& description = s_descriptions[entry];
        if (use != Use::None && description.use == use && !m_entries[entry])
            return QStringLiteral("the program's Qt %1 has no function %2, which this needs")
                .arg(QLatin1String(qVersion()), QLatin1String(description.name));
    }
    return {};
}

template <typename Function, typename... Arguments>
void WindowSystem::call(Entry entry, Arguments... arguments) const {
    if (m_entries[entry])
        reinterpret_cast<Function>(m_entries[entry])(arguments...);
}

namespace {

ScaleAndOrigin scaleOf(void* function, bool isOfQt5, const QWindow* window) {
    if (!function)
        return {1, QPoint()};
    return isOfQt5 ? reinterpret_cast<ScaleFunctionOfQt5>(function)(window, nullptr)
                   : reinterpret_cast<ScaleFunctionOfQt6>(function)(window, NoPosition());
}

}  // namespace

QPointF WindowSystem::nativeLocal(const QWindow* window, const QPoint& position) const {
    return QPointF(window->mapFromGlobal(position)) *
           scaleOf(m_entries[Scale], m_isScaleOfQt5, window).factor;
}

QPointF WindowSystem::nativeGlobal(const QWindow* window, const QPoint& position) const {
    const ScaleAndOrigin scale = scaleOf(m_entries[Scale], m_isScaleOfQt5, window);
    return QPointF(position - scale.origin) * scale.factor + scale.origin;
}

void WindowSystem::enter(QWindow* window, const QPoint& position) const {
    call<EnterFunction>(Enter, window, nativeLocal(window, position),
                        nativeGlobal(window, position));
}

void WindowSystem::leave(QWindow* window) const {
    call<WindowFunction>(Leave, window);
}

void WindowSystem::mouse(QWindow* window, const QPoint& position, const Mouse& event) const {
    call<MouseFunction>(MouseInput, window, eventTime(), nativeLocal(window, position),
                        nativeGlobal(window, position), event.buttons, event.button, event.type,
                        event.modifiers, Qt::MouseEventNotSynthesized);
}

void WindowSystem::key(QEvent::Type type, int code, Qt::KeyboardModifiers modifiers,
                       const QString& text) const {
    call<KeyFunction>(Key, nullptr, eventTime(), type, code, modifiers, text, false, ushort{1});
}

void WindowSystem::close(QWindow* window) const {
    call<CloseFunction>(Close, window);
}

void WindowSystem::activate(QWindow* window) const {
    call<ActivateFunction>(Activate, window, Qt::OtherFocusReason);
}

int WindowSystem::queuedEvents() const {
    return m_entries[Queued] ? reinterpret_cast<QueuedFunction>(m_entries[Queued])() : 0;
}

}  // namespace Tamrix::Agent
