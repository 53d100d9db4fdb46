#pragma once

#include <QEvent>
#include <QHash>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <optional>

#include "agent/core/element.h"
#include "agent/recorder/closerequests.h"
#include "agent/recorder/foreseennames.h"
#include "wire/observations.h"

class QDropEvent;
class QInputMethodEvent;
class QKeyEvent;
class QMouseEvent;
class QWheelEvent;
class QWindow;

namespace Tamrix::Agent {

/// Tells the runner what a person does. Only reads events, as they come to native windows, each
/// real one once; while clicks verify, it takes those that would act. Names and states are told as
/// they are before the application handles an event, and what became of them by a timer of zero,
/// which runs in the loops of modal dialogs as well. One for each session, whose child it is; GUI
/// thread only.
class Recorder : public QObject {
public:
    explicit Recorder(QObject* parent);

    /// Starts or ends a recording, or changes how clicks are meant in one that goes on.
    void follow(const Wire::Record& record);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    /// What was used last, whose state is told when it has changed.
    struct Watched {
        quint64 handle = 0;
        Wire::ObservedState told;
    };
    /// A press that is not released yet.
    struct Press {
        QPoint position;
        /// Whether the release may choose what it is over.
        bool isInMenu = false;
    };
    /// An object that appeared while the mouse moved, and what it was over then.
    struct Revealed {
        QPointer<QObject> object;
        Wire::ObservedObject hovered;
    };
    /// A menu that has popped up by itself.
    struct OpenMenu {
        Wire::ObservedObject menu;
        bool hasChosen = false;
    };
    /// A key from its announcement to the application until it is clear what takes it.
    struct Key {
        ulong timestamp = 0;
        int code = 0;
        Wire::ObservedKey observed;
        /// It is no key of what is recorded.
        bool isOfMenu = false;
    };

    bool filter(QObject* object, QEvent* event);
    bool filterWindowEvent(QWindow* window, QEvent* event);
    bool filterVerifying(QWindow* window, QEvent* event);
    /// Whether the key switches the meaning of clicks.
    bool isSwitch(const QKeyEvent& event) const;

    void takePress(QWindow* window, const QMouseEvent& event);
    void takeRelease(const QMouseEvent& event);
    void takeDrop(QWindow* window, const QDropEvent& event);
    void takeWheel(QWindow* window, const QWheelEvent& event);
    void takeClose(QWindow* window);
    void announceKey(const QKeyEvent& event);
    void takeKey(const QKeyEvent& event);
    void takeShortcut(QObject* receiver);
    void takeCommit(const QInputMethodEvent& event);
    void takeShown(QObject* object);
    void takeVerdict(QWindow* window, const QPoint& position);
    /// Tells that the entry under the mouse, or that a key means, is chosen.
    void choose(const Element& entry);
    void endPress(const QPoint& distance, bool isDrag);

    /// What is used at a point of the window; null when a popup takes the input, or nothing is
    /// there.
    Element usedAt(QWindow* window, const QPoint& position, Qt::MouseButton button) const;
    Element popup() const;
    /// The popup with a window of its own.
    Element popupWindow() const;
    /// The outermost open menu that no bar has opened, but a button or a place; null for none.
    Element openMenu() const;
    Element focus() const;
    /// Whose names are likely to be asked for next.
    QVector<Element> expected() const;
    Wire::ObservedObject observed(const Element& element);
    /// The same for what has the focus, whose name stays the same while it is typed into.
    Wire::ObservedObject observedFocus(const Element& element);
    Wire::ObservedObject hoveredFor(const Element& element) const;

    void send(const Wire::Observation& observation) const;
    /// Tells the state, if it is not known, and watches the object.
    void tellState(const Element& element);
    void tellChanges();
    /// Tells of a menu that it was closed without a choice.
    void followMenu();
    void scheduleRest();

    bool m_isOn = false;
    bool m_isVerifying = false;
    /// Whether the release belongs to a press that asked for a verdict.
    bool m_takesRelease = false;
    QString m_verifyKeys;
    QTimer m_rest;
    ForeseenNames m_names;
    CloseRequests m_closeRequests;
    QVector<Watched> m_watched;
    std::optional<Press> m_press;
    std::optional<OpenMenu> m_openMenu;
    bool m_isHovering = false;
    QPoint m_mouse;
    QPointer<QWindow> m_mouseWindow;
    QVector<Revealed> m_revealed;
    std::optional<Key> m_key;
    /// Keys of a combination of several that is not complete.
    QStringList m_chord;
    Wire::ObservedObject m_focus;
};

}  // namespace Tamrix::Agent
