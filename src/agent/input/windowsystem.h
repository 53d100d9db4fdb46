#pragma once

#include <QEvent>
#include <QPoint>
#include <QString>
#include <functional>

class QWindow;

namespace Tamrix::Agent {

/// The entry points through which window systems report to Qt. They are private to Qt, so nothing
/// links them: each is looked up by name in the Qt of the process. A Qt that has one no more costs
/// what goes through it, and obstacle() names it. Events are queued and delivered by the event
/// loop. Positions are on the screen, in the application's pixels; Qt gets native ones. One for
/// each process, GUI thread only.
class WindowSystem {
public:
    /// What the entry points are for.
    enum class Use { None, Mouse, Keys, Closing };
    /// Gives the address behind a symbol's name, null for an unknown one.
    using Finder = std::function<void*(const char* symbol)>;

    static const WindowSystem& self();
    explicit WindowSystem(const Finder& find);

    /// Why it can't be done in this process, as a sentence; empty when it can.
    QString obstacle(Use use) const;

    // What is missing is passed over: obstacle() is asked first.
    void enter(QWindow* window, const QPoint& position) const;
    void leave(QWindow* window) const;
    struct Mouse {
        QEvent::Type type;
        /// Those that are down after the event.
        Qt::MouseButtons buttons;
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
    };
    void mouse(QWindow* window, const QPoint& position, const Mouse& event) const;
    /// To the window that has the focus.
    void key(QEvent::Type type, int code, Qt::KeyboardModifiers modifiers,
             const QString& text) const;
    void close(QWindow* window) const;
    void activate(QWindow* window) const;
    /// How many events wait to be delivered; 0 also where that can't be told.
    int queuedEvents() const;

private:
    QPointF nativeLocal(const QWindow* window, const QPoint& position) const;
    QPointF nativeGlobal(const QWindow* window, const QPoint& position) const;

    enum Entry { Enter, Leave, MouseInput, Key, Close, Activate, Queued, Scale, EntryCount };
    struct Description;
    static const Description s_descriptions[EntryCount];

    template <typename Function, typename... Arguments>
    void call(Entry entry, Arguments... arguments) const;

    void* m_entries[EntryCount] = {};
    /// Whether it is called as in Qt 5; else as in Qt 6.
    bool m_isScaleOfQt5 = false;
};

}  // namespace Tamrix::Agent
