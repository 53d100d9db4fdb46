#include "agent/recorder/recorder.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QShortcutEvent>
#include <QStyleHints>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>

#include "agent/core/agentsession.h"
#include "agent/core/qtversion.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"
#include "agent/recorder/namechoice.h"
#include "agent/recorder/verdictproperties.h"
#include "wire/keynames.h"

namespace Tamrix::Agent {

namespace {

using Wire::ObservedRole;

/// How many objects are watched for changes: what was used last.
constexpr int mostWatched = 6;
/// How many objects that the mouse showed are remembered.
constexpr int mostRevealed = 8;
/// An object that is no larger than this, in pixels, is hit wherever it is clicked.
constexpr int smallSize = 64;

bool isSame(const Wire::ObservedState& a, const Wire::ObservedState& b) {
    return a.text == b.text && a.text.isNull() == b.text.isNull() && a.check == b.check &&
           a.value == b.value && a.isOpen == b.isOpen;
}

bool isModifier(int key) {
    return Wire::modifierOfKey(key) != Qt::NoModifier || key == Qt::Key_CapsLock ||
           key == Qt::Key_NumLock || key == Qt::Key_Mode_switch || key == Qt::Key_Multi_key;
}

/// Those that end what is typed; they tell nothing of it.
bool isEndKey(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab ||
           key == Qt::Key_Backtab || key == Qt::Key_Escape;
}

bool isPrintable(const QString& text) {
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), [](QChar character) {
        return character.isPrint() || character.isSurrogate();
    });
}

bool isTyping(const QKeyEvent& event) {
    constexpr Qt::KeyboardModifiers commands =
        Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return isPrintable(event.text()) && (event.modifiers() & commands) == 0;
}

QString keysOf(const QKeyEvent& event) {
    // The keypad's keys are those of the board.
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Backtab)
        return QStringLiteral("Shift+Tab");
    return Wire::keysText(event.key() == Qt::Key_Enter ? Qt::Key_Return : event.key(), modifiers);
}

/// When nobody listens any more, the application is to be as without a recording.
bool hasListener() {
    const auto* const session = dynamic_cast<const AgentSession*>(Session::self());
    return session && session->isOpen();
}

/// Whether what holds entries is a bar: those of all toolkits are called so.
bool isBar(const Element& holder) {
    const QStringList types = holder.toolkit->superTypes(holder)
                              << holder.toolkit->typeName(holder);
    return std::any_of(types.cbegin(), types.cend(),
                       [](const QString& type) { return type.endsWith(QLatin1String("MenuBar")); });
}

bool isWithin(const QObject* object, const QObject* around) {
    for (; object; object = object->parent()) {
        if (object == around)
            return true;
    }
    return false;
}

}  // namespace

Recorder::Recorder(QObject* parent) : QObject(parent), m_names([this] { return expected(); }) {
    m_rest.setParent(this);
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, [this] {
        tellChanges();
        followMenu();
        send(Wire::ObservedRest{});
    });
}

void Recorder::follow(const Wire::Record& record) {
    if (record.isOn != m_isOn) {
        if (record.isOn) {
            QCoreApplication::instance()->installEventFilter(this);
            m_closeRequests.start();
        } else {
            QCoreApplication::instance()->removeEventFilter(this);
            m_closeRequests.stop();
        }
        m_names.stop();
        m_watched.clear();
        m_press.reset();
        m_openMenu.reset();
        m_key.reset();
        m_focus = {};
    }
    m_isOn = record.isOn;
    m_isVerifying = record.isVerifying;
    m_verifyKeys = record.verifyKeys;
}

bool Recorder::eventFilter(QObject* object, QEvent* event) {
    const bool isTaken = filter(object, event);
    if (m_isOn)
        m_names.forget(event->spontaneous() ? ForeseenNames::Cause::Person
                                            : ForeseenNames::Cause::Program);
    return isTaken;
}

bool Recorder::filter(QObject* object, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseMove:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Close:
            // Widgets and items get what comes to their window once more.
            return object->isWindowType() && event->spontaneous() &&
                   filterWindowEvent(static_cast<QWindow*>(object), event);
        case QEvent::Drop:
            return object->isWindowType() &&
                   filterWindowEvent(static_cast<QWindow*>(object), event);
        case QEvent::ShortcutOverride:
            if (!event->spontaneous())
                return false;
            if (isSwitch(static_cast<QKeyEvent&>(*event))) {
                event->accept();
                return true;
            }
            announceKey(static_cast<QKeyEvent&>(*event));
            return false;
        case QEvent::Shortcut:
            takeShortcut(object);
            return false;
        case QEvent::InputMethod:
            if (object == QGuiApplication::focusObject())
                takeCommit(static_cast<QInputMethodEvent&>(*event));
            return false;
        case QEvent::Show:
            if (m_isHovering && !object->isWindowType())
                takeShown(object);
            return false;
        default:
            return false;
    }
}

bool Recorder::filterWindowEvent(QWindow* window, QEvent* event) {
    if (event->type() == QEvent::MouseMove) {
        const auto& move = static_cast<QMouseEvent&>(*event);
        m_isHovering = move.buttons() == Qt::NoButton;
        m_mouse = globalPositionOf(move);
        m_mouseWindow = window;
        return false;
    }
    if (!hasListener()) {
        follow(Wire::Record{false, {}, false});
        return false;
    }
    if (filterVerifying(window, event))
        return true;
    m_isHovering = false;
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            takePress(window, static_cast<QMouseEvent&>(*event));
            break;
        case QEvent::MouseButtonDblClick:
            if (m_press)
                send(Wire::ObservedDoubleClick{});
            break;
        case QEvent::MouseButtonRelease:
            takeRelease(static_cast<QMouseEvent&>(*event));
            break;
        case QEvent::Wheel:
            takeWheel(window, static_cast<QWheelEvent&>(*event));
            break;
        case QEvent::KeyPress:
            takeKey(static_cast<QKeyEvent&>(*event));
            break;
        case QEvent::KeyRelease:
            // Buttons act when the key goes up.
            scheduleRest();
            break;
        case QEvent::Drop:
            takeDrop(window, static_cast<QDropEvent&>(*event));
            break;
        case QEvent::Close:
            takeClose(window);
            break;
        default:
            break;
    }
    return false;
}

bool Recorder::isSwitch(const QKeyEvent& event) const {
    return !m_verifyKeys.isEmpty() && keysOf(event) == m_verifyKeys;
}

/// Takes the key that switches, and while clicks verify, the mouse. True for what the application
/// does not get.
bool Recorder::filterVerifying(QWindow* window, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
            if (!isSwitch(static_cast<QKeyEvent&>(*event)))
                return false;
            if (!static_cast<QKeyEvent&>(*event).isAutoRepeat()) {
                m_isVerifying = !m_isVerifying;
                send(Wire::ObservedMode{m_isVerifying});
            }
            return true;
        case QEvent::KeyRelease:
            return isSwitch(static_cast<QKeyEvent&>(*event));
        case QEvent::MouseButtonPress: {
            if (!m_isVerifying)
                return false;
            m_takesRelease = true;
            takeVerdict(window, globalPositionOf(static_cast<QMouseEvent&>(*event)));
            return true;
        }
        case QEvent::MouseButtonDblClick:
            return m_takesRelease;
        case QEvent::MouseButtonRelease:
            return std::exchange(m_takesRelease, false);
        default:
            return false;
    }
}

// The mouse

Element Recorder::usedAt(QWindow* window, const QPoint& position, Qt::MouseButton button) const {
    const Element around = Session::self()->element(window);
    if (around.isNull())
        return {};
    // Beside an open popup, a press only closes it.
    if (window->type() != Qt::Popup && !popupWindow().isNull())
        return {};
    const Element element = around.toolkit->elementAt(around, position, button);
    return element.isNull() ? element : element.toolkit->meant(element);
}

Element Recorder::popup() const {
    const Element open = popupWindow();
    if (!open.isNull())
        return open;
    // One within the window.
    const Element window = Session::self()->element(QGuiApplication::focusWindow());
    return window.isNull() ? window : window.toolkit->openPopup();
}

Element Recorder::popupWindow() const {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (!window->isVisible() || window->type() != Qt::Popup)
            continue;
        const Element element = Session::self()->element(window);
        const Element open = element.isNull() ? element : element.toolkit->openPopup();
        if (!open.isNull())
            return open;
    }
    return {};
}

Element Recorder::openMenu() const {
    const Element open = popup();
    const std::shared_ptr<const Menu> menu = open.isNull() ? nullptr : open.toolkit->menu(open);
    if (!menu)
        return {};
    // An entry is an element of the menu, or an item that takes the click.
    QVector<Element> entries;
    open.toolkit->children(open, true, &entries);
    for (const MenuEntry& entry : menu->entries())
        entries.append(entry.target);
    for (const Element& entry : qAsConst(entries)) {
        const std::optional<RecordedWay> way =
            entry.isNull() ? std::nullopt : entry.toolkit->wayTo(entry);
        if (way)
            return isBar(way->holder) ? Element() : way->holder;
    }
    return open;
}

void Recorder::takePress(QWindow* window, const QMouseEvent& event) {
    m_focus = {};
    tellChanges();
    const QPoint position = globalPositionOf(event);
    const Element open = popup();
    const bool isMenuOpen = !open.isNull() && open.toolkit->menu(open);
    const Element element = usedAt(window, position, event.button());
    if (element.isNull()) {
        m_press = isMenuOpen ? std::make_optional(Press{position, true}) : std::nullopt;
        return;
    }
    const bool isEntry = element.toolkit->role(element) == ObservedRole::MenuEntry;
    m_press = Press{position, isMenuOpen || isEntry};
    // What menus do is told when an entry is chosen.
    if (isEntry || element.toolkit->menu(element)) {
        m_press->isInMenu = true;
        return;
    }
    Wire::ObservedPress press;
    press.object = observed(element);
    // Beside what acts in it, it is but a place.
    const QRect acting = element.toolkit->clickArea(element, ClickPurpose::Use);
    if (press.object.role == ObservedRole::Control && !acting.contains(position))
        press.object.role = ObservedRole::Place;
    tellState(element);
    if (const std::optional<RecordedWay> way = element.toolkit->wayTo(element)) {
        press.holder = observed(way->holder);
        // By its place, when its text is another one the next time.
        if (!way->steps.isEmpty() && !mayChange(element, way->steps.constLast()))
            press.steps = way->steps;
        tellState(way->holder);
    }
    press.place = position - element.toolkit->globalBounds(element).topLeft();
    press.button = event.button();
    press.modifiers = static_cast<int>(event.modifiers() & ~Qt::KeypadModifier);
    press.hovered = hoveredFor(element);
    m_revealed.clear();
    send(press);
    scheduleRest();
}

void Recorder::takeRelease(const QMouseEvent& event) {
    if (!m_press)
        return;
    const QPoint position = globalPositionOf(event);
    const QPoint distance = position - m_press->position;
    const bool isDrag =
        distance.manhattanLength() >= QGuiApplication::styleHints()->startDragDistance();
    // 1. The entry of a menu that the mouse is over, unless the press only opened the menu there.
    QWindow* const window = windowAt(position);
    const Element around = Session::self()->element(window);
    Element entry;
    if (!around.isNull() && (m_press->isInMenu || isDrag))
        entry = around.toolkit->elementAt(around, position, event.button());
    if (!entry.isNull() && entry.toolkit->role(entry) == ObservedRole::MenuEntry)
        choose(entry);
    // 2. The end of the click or the drag.
    endPress(distance, isDrag);
}

void Recorder::takeDrop(QWindow* window, const QDropEvent& event) {
    // The drag took the release.
    if (m_press)
        endPress(window->mapToGlobal(positionOf(event)) - m_press->position, true);
}

void Recorder::endPress(const QPoint& distance, bool isDrag) {
    m_press.reset();
    send(Wire::ObservedRelease{distance, isDrag});
    scheduleRest();
}

void Recorder::choose(const Element& entry) {
    const std::optional<RecordedWay> way = entry.toolkit->wayTo(entry);
    if (!way || way->steps.isEmpty() || !entry.toolkit->isEnabled(entry) ||
        entry.toolkit->opensMenu(entry))
        return;
    send(Wire::ObservedChoice{observed(way->holder), way->steps});
    if (m_openMenu)
        m_openMenu->hasChosen = true;
}

/// What has opened the menu is in the script by then; without this it would stay open there.
void Recorder::followMenu() {
    const Element menu = openMenu();
    const quint64 handle = menu.isNull() ? 0 : Session::self()->handle(menu);
    if (m_openMenu && m_openMenu->menu.handle == handle)
        return;
    if (m_openMenu && !m_openMenu->hasChosen)
        send(Wire::ObservedKey{m_openMenu->menu, QStringLiteral("Escape"), {}});
    m_openMenu.reset();
    if (!menu.isNull())
        m_openMenu = OpenMenu{observed(menu)};
}

void Recorder::takeWheel(QWindow* window, const QWheelEvent& event) {
    // It turns values; what only scrolls is nothing to a script.
    const Element element = usedAt(window, event.globalPosition().toPoint(), Qt::NoButton);
    if (element.isNull())
        return;
    const ObservedRole role = element.toolkit->role(element);
    if (role == ObservedRole::Number || role == ObservedRole::Slider ||
        role == ObservedRole::Choice) {
        tellState(element);
        send(Wire::ObservedWheel{observed(element)});
        scheduleRest();
    }
}

void Recorder::takeClose(QWindow* window) {
    // In Qt 6 windows that the program closes get the same event: menus, what closes before the
    // program is at rest behind an input, and what the window system did not ask to close.
    const bool isAskedFor = m_closeRequests.take(*window).value_or(true);
    if (window->type() == Qt::Popup || m_rest.isActive() || !isAskedFor)
        return;
    const Element element = Session::self()->element(window);
    if (element.isNull() || element.toolkit->isInternal(element))
        return;
    tellChanges();
    send(Wire::ObservedClose{observed(element)});
}

void Recorder::takeVerdict(QWindow* window, const QPoint& position) {
    tellChanges();
    const Element around = Session::self()->element(window);
    const Element inner =
        around.isNull() ? around : around.toolkit->elementAt(around, position, Qt::LeftButton);
    if (inner.isNull())
        return;
    const Element element = inner.toolkit->meant(inner);
    send(Wire::ObservedVerdict{observed(element), verdictProperties(element)});
}

void Recorder::takeShown(QObject* object) {
    if (!m_mouseWindow || m_revealed.size() >= mostRevealed)
        return;
    const Element shown = Session::self()->element(object);
    if (shown.isNull() || shown.object != object || shown.toolkit->window(shown) == shown)
        return;
    Element hovered = usedAt(m_mouseWindow, m_mouse, Qt::NoButton);
    // It may have come up right under the mouse.
    if (!hovered.isNull() && isWithin(hovered.object, object)) {
        const Element around = shown.toolkit->parent(shown);
        hovered = around.isNull() ? around : around.toolkit->meant(around);
    }
    if (!hovered.isNull())
        m_revealed.append({object, observed(hovered)});
}

Wire::ObservedObject Recorder::hoveredFor(const Element& element) const {
    for (const Revealed& revealed : m_revealed) {
        const bool isSame = revealed.hovered.handle == Session::self()->handle(element);
        if (revealed.object && !isSame && isWithin(element.object, revealed.object))
            return revealed.hovered;
    }
    return {};
}

// Keys

Element Recorder::focus() const {
    const Element open = popup();
    if (!open.isNull())
        return open.toolkit->meant(open);
    Element element = Session::self()->element(QGuiApplication::focusObject());
    if (element.isNull())
        element = Session::self()->element(QGuiApplication::focusWindow());
    // What has the focus may be hidden by now.
    while (!element.isNull() && !element.toolkit->isVisible(element))
        element = element.toolkit->parent(element);
    return element.isNull() ? element : element.toolkit->meant(element);
}

Wire::ObservedObject Recorder::observedFocus(const Element& element) {
    if (Session::self()->handle(element) != m_focus.handle)
        m_focus = observed(element);
    return m_focus;
}

/// Each key is announced before it is known whether it is one of the application's shortcuts.
void Recorder::announceKey(const QKeyEvent& event) {
    if (isModifier(event.key()) ||
        (m_key && m_key->timestamp == event.timestamp() && m_key->code == event.key()))
        return;
    // The one before was the first of a combination.
    if (m_key && !m_key->observed.keys.isEmpty())
        m_chord.append(m_key->observed.keys);
    m_key.reset();
    const Element element = focus();
    if (element.isNull())
        return;
    Key key;
    key.timestamp = event.timestamp();
    key.code = event.key();
    const Element open = popup();
    key.isOfMenu = !open.isNull() && open.toolkit->menu(open);
    if (!key.isOfMenu) {
        tellChanges();
        tellState(element);
        key.observed.focus = observedFocus(element);
        const bool isHidden = key.observed.focus.role == ObservedRole::Password;
        // Keys in a list of completions only choose one of them.
        const bool isInList = key.observed.focus.role == ObservedRole::Field && !open.isNull();
        if (!isHidden && isTyping(event))
            key.observed.text = event.text();
        if ((!isHidden && (!isInList || !key.observed.text.isEmpty())) ||
            (isHidden && isEndKey(event.key())))
            key.observed.keys = keysOf(event);
    }
    m_key = key;
}

void Recorder::takeKey(const QKeyEvent& event) {
    if (isModifier(event.key()))
        return;
    const Element open = popup();
    const Element chosen = open.isNull() ? open : open.toolkit->chosenBy(open, event);
    if (!chosen.isNull())
        choose(chosen);
    announceKey(event);
    m_chord.clear();
    if (!m_key)
        return;
    if (!m_key->isOfMenu)
        send(m_key->observed);
    m_key.reset();
    scheduleRest();
}

void Recorder::takeShortcut(QObject* receiver) {
    if (!m_key)
        return;
    const Key key = *m_key;
    m_key.reset();
    const QStringList before = std::exchange(m_chord, {});
    const Element element = Session::self()->element(receiver);
    // A menu that opens does nothing yet.
    if (key.isOfMenu || (!element.isNull() && element.toolkit->menu(element)))
        return;
    Wire::ObservedShortcut shortcut;
    shortcut.focus = key.observed.focus;
    shortcut.keys = before + QStringList{key.observed.keys};
    const Element button = element.isNull() ? element : element.toolkit->clickedBy(element);
    if (!button.isNull()) {
        shortcut.button = observed(button);
        tellState(button);
    }
    send(shortcut);
    m_focus = {};
    scheduleRest();
}

void Recorder::takeCommit(const QInputMethodEvent& event) {
    const Element element = focus();
    if (event.commitString().isEmpty() || element.isNull())
        return;
    tellState(element);
    Wire::ObservedKey key;
    key.focus = observedFocus(element);
    if (key.focus.role != ObservedRole::Password)
        key.text = event.commitString();
    send(key);
    scheduleRest();
}

// What is told

QVector<Element> Recorder::expected() const {
    QVector<Element> elements;
    if (!hasListener())
        return elements;
    const Element used = m_mouseWindow && m_mouseWindow->isVisible()
                             ? usedAt(m_mouseWindow, m_mouse, Qt::LeftButton)
                             : Element();
    // Entries of menus are chosen by their texts.
    if (!used.isNull() && used.toolkit->role(used) != ObservedRole::MenuEntry) {
        elements.append(used);
        if (const std::optional<RecordedWay> way = used.toolkit->wayTo(used))
            elements.append(way->holder);
    }
    const Element typedInto = focus();
    if (!typedInto.isNull())
        elements.append(typedInto);
    return elements;
}

Wire::ObservedObject Recorder::observed(const Element& element) {
    Wire::ObservedObject object;
    object.handle = Session::self()->handle(element);
    object.role = element.toolkit->role(element);
    const QSize size = element.toolkit->globalBounds(element).size();
    if (object.role == ObservedRole::Place && size.width() <= smallSize &&
        size.height() <= smallSize)
        object.role = ObservedRole::Control;
    object.name = m_names.nameOf(element);
    return object;
}

void Recorder::send(const Wire::Observation& observation) const {
    Session::self()->sendObservation(observation);
}

void Recorder::tellState(const Element& element) {
    const quint64 handle = Session::self()->handle(element);
    Wire::ObservedState state = element.toolkit->state(element);
    state.handle = handle;
    const auto known = std::find_if(m_watched.begin(), m_watched.end(),
                                    [handle](const auto& each) { return each.handle == handle; });
    const bool isNews = known == m_watched.end() || !isSame(known->told, state);
    if (known != m_watched.end())
        m_watched.erase(known);
    else if (m_watched.size() >= mostWatched)
        m_watched.removeFirst();
    m_watched.append({handle, state});
    if (isNews)
        send(state);
}

void Recorder::tellChanges() {
    for (int index = m_watched.size() - 1; index >= 0; --index) {
        const quint64 handle = m_watched.at(index).handle;
        const Outcome<Element> element = Session::self()->find(handle);
        if (!element) {
            m_watched.remove(index);
            continue;
        }
        Wire::ObservedState state = element->toolkit->state(*element);
        state.handle = handle;
        if (isSame(m_watched.at(index).told, state))
            continue;
        m_watched[index].told = state;
        send(state);
    }
}

void Recorder::scheduleRest() {
    m_rest.start(0);
}

}  // namespace Tamrix::Agent
