#include "platform/objectmodel/display/displaymodel.h"

#include <QDeadlineTimer>
#include <QFile>
#include <algorithm>

#include "platform/objectmodel/display/windowclass.h"
#include "platform/objectmodel/display/windowobject.h"
#include "platform/objectmodel/display/windowsnapshot.h"
#include "platform/objectmodel/nearmisstext.h"
#include "platform/objectmodel/valueobject.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {

using Display::describe;
using Display::otherTypeText;
using Display::Session;
using Display::Spot;
using Display::WindowFacts;
using Display::WindowList;
using Display::WindowName;
using Display::WindowObject;

namespace {

constexpr int lookInterval = 20;
/// The bit of a mouse event's mask that says that x and y are given.
constexpr int hasCoordinates = 8;

/// The rectangle of an object that is a part of the screen; nothing for all others.
std::optional<QRect> screenPart(const SharedPtr<Object>& object) {
    const QRect rect = unwrapRemoteScreenRectangleAsQRect(object);
    return rect.isValid() ? std::optional(rect) : std::nullopt;
}

tl::unexpected<Failure> noEvents() {
    return fail(FailureKind::Refused,
                QStringLiteral("events need an agent in the application, and it has none"));
}

/// The modal window that is there for this one; null for none.
const WindowFacts* modalWindowOf(const WindowFacts& window, const WindowList& windows) {
    const auto blocks = [&](const WindowFacts& each) {
        return each.isModal && each.isVisible && each.owner == window.id && each.id != window.id;
    };
    const auto found = std::find_if(windows.begin(), windows.end(), blocks);
    return found == windows.end() ? nullptr : &*found;
}

QVariantList numbers(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

}  // namespace

DisplayModel::DisplayModel(std::shared_ptr<Display::XConnection> connection,
                           const Display::ProcessTest& isOwn, ApplicationFacts facts)
    : m_session(std::make_shared<Session>(std::move(connection), isOwn, facts.pid)),
      m_facts(std::move(facts)) {}

DisplayModel::~DisplayModel() {
    m_session->close(QStringLiteral("the run has ended"));
}

// The connection

bool DisplayModel::takeNews() {
    m_session->takeNews();
    return isOpen();
}

int DisplayModel::descriptor() const {
    return isOpen() ? m_session->connection().descriptor() : -1;
}

bool DisplayModel::owns(const SharedPtr<Object>& object) const {
    const auto* const window = dynamic_cast<const WindowObject*>(object.get());
    return window && window->session() == m_session.get();
}

Outcome<> DisplayModel::ping(int timeout) {
    return m_session->ping(timeout);
}

// Look-ups

SharedPtr<Object> DisplayModel::object(const WindowFacts& window) const {
    return {new WindowObject(m_session, window)};
}

Outcome<WindowFacts> DisplayModel::windowOf(const SharedPtr<Object>& object) {
    const auto* const window = dynamic_cast<const WindowObject*>(object.get());
    if (!window || !owns(object))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("This is no window of the application"));
    return window->facts();
}

Outcome<QString> DisplayModel::obstacleOf(const WindowFacts& window, Wire::Wanted wanted) {
    if (wanted == Wire::Wanted::Existence)
        return QString();
    if (!window.isVisible)
        return QStringLiteral("it is not visible");
    const Outcome<WindowList> all = m_session->windows();
    if (!all)
        return fail(all.error());
    if (const WindowFacts* const modal = modalWindowOf(window, *all))
        return QStringLiteral("it is blocked by the modal %1").arg(describe(*modal));
    const QRect screen = m_session->connection().rootGeometry();
    if (wanted == Wire::Wanted::Readiness && !screen.contains(window.geometry.center()))
        return QStringLiteral("its middle is outside of the screen");
    return QString();
}

Outcome<DisplayModel::Look> DisplayModel::lookAtObject(const Target& target) {
    Look look;
    if (const std::optional<QRect> part = screenPart(target.object)) {
        look.answer.object = target.object;
        look.answer.isReady = true;
        look.spot.bounds = *part;
        return look;
    }
    const Outcome<WindowFacts> window = windowOf(target.object);
    if (!window) {
        if (window.error().kind != FailureKind::Gone)
            return fail(window.error());
        look.answer.missText = window.error().text;
        return look;
    }
    look.answer.object = target.object;
    look.spot = {*window, window->geometry};
    return look;
}

Outcome<DisplayModel::Look> DisplayModel::lookForName(const Target& target) {
    const Outcome<WindowName> name = WindowName::of(target.name);
    if (!name)
        return fail(name.error());
    // No time will bring what is no window.
    if (name->asksForOtherTypes())
        return fail(FailureKind::NotFound, otherTypeText(target.name));
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    Look look;
    const WindowFacts* const window = name->findIn(*windows);
    if (!window) {
        look.answer.missText = missText(
            target.name, target.wantNearMisses ? name->nearMissesIn(*windows) : QList<NearMiss>());
        return look;
    }
    look.answer.object = object(*window);
    look.spot = {*window, window->geometry};
    return look;
}

Outcome<DisplayModel::Look> DisplayModel::look(const Target& target) {
    if (const Outcome<> open = m_session->checkOpen(); !open)
        return fail(open.error());
    if (target.item)
        return fail(FailureKind::Refused,
                    QStringLiteral("Items need an agent in the application: without one, what is "
                                   "in its windows is not known"));
    Outcome<Look> look = target.object ? lookAtObject(target) : lookForName(target);
    if (!look || !look->spot.window)
        return look;
    const Outcome<QString> obstacle = obstacleOf(*look->spot.window, target.wanted);
    if (!obstacle)
        return fail(obstacle.error());
    look->answer.obstacle = *obstacle;
    look->answer.isReady = obstacle->isEmpty();
    return look;
}

Outcome<DisplayModel::Look> DisplayModel::waitFor(const Target& target) {
    const QDeadlineTimer deadline(target.timeout);
    while (true) {
        Outcome<Look> seen = look(target);
        const bool isGone = seen && target.object && !seen->answer.object;
        if (!seen || isGone || seen->answer.isReady || deadline.hasExpired() ||
            !m_session->pause(lookInterval))
            return seen;
    }
}

Outcome<TargetAnswer> DisplayModel::lookUp(const Target& target, int /*answerTimeout*/) {
    const Outcome<Look> seen = look(target);
    if (!seen)
        return fail(seen.error());
    return seen->answer;
}

Outcome<TargetAnswer> DisplayModel::expect(const Target& target, const ObjectName& properties,
                                           int /*answerTimeout*/) {
    const Outcome<WindowName> wanted = WindowName::of(properties);
    Outcome<Look> seen = look(target);
    if (!wanted)
        return fail(wanted.error());
    if (!seen)
        return fail(seen.error());
    TargetAnswer& answer = seen->answer;
    answer.lack = QStringLiteral("not as expected");
    if (seen->spot.window) {
        const NearMiss miss = wanted->differences(*seen->spot.window);
        answer.isReady = miss.differences.isEmpty();
        answer.obstacle = answer.isReady ? QString() : differenceText(miss);
    }
    return answer;
}

Outcome<SharedPtr<Object>> DisplayModel::objectById(int remoteId) {
    const Outcome<WindowFacts> window = m_session->window(static_cast<xcb_window_t>(remoteId));
    if (!window)
        return fail(window.error());
    return object(*window);
}

Outcome<SharedPtr<Object>> DisplayModel::findObject(const ObjectName& name) {
    Target target = Target::ofName(name);
    target.wantNearMisses = true;
    const Outcome<Look> seen = look(target);
    if (!seen)
        return fail(seen.error());
    if (!seen->answer.object)
        return fail(FailureKind::NotFound, seen->answer.missText);
    return seen->answer.object;
}

Outcome<ObjectList> DisplayModel::topLevelObjects() {
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    ObjectList objects;
    for (const WindowFacts& window : *windows)
        objects.push_back(object(window));
    return objects;
}

// Classes and calls

Outcome<const Class*> DisplayModel::classByName(const QString& name) {
    for (const Class* const known : {Display::windowClass(), Display::globalClass()}) {
        if (known->name() == name)
            return known;
    }
    return nullptr;
}

Outcome<const Class*> DisplayModel::globalClass() {
    return Display::globalClass();
}

Outcome<SharedPtr<Object>> DisplayModel::construct(const Class* objectClass,
                                                   const ObjectList& /*arguments*/) {
    return fail(FailureKind::Refused,
                QStringLiteral("The application has no agent that could make objects of class '%1'")
                    .arg(objectClass->name()));
}

Outcome<TargetAnswer> DisplayModel::act(const QString& function, const Target& target,
                                        const ObjectList& arguments, int /*timeout*/) {
    QVariantList values;
    for (const SharedPtr<Object>& argument : arguments)
        values.append(argumentValue(argument));
    // 1. The call is read, whether its target is there or not.
    const Outcome<Display::Act> act = Display::readCall(function, values);
    if (!act) {
        TargetAnswer answer;
        answer.isReady = true;
        answer.result = fail(act.error());
        return answer;
    }
    // 2. The target is waited for.
    Outcome<Look> seen = waitFor(target);
    if (!seen)
        return fail(seen.error());
    if (!seen->answer.isReady)
        return seen->answer;
    // 3. The function runs.
    const Outcome<> done = (*act)(*m_session, seen->spot);
    if (done)
        seen->answer.result = SharedPtr<Object>(new ValueObject(QVariant()));
    else
        seen->answer.result = fail(done.error());
    return seen->answer;
}

Outcome<SharedPtr<Object>> DisplayModel::invokeGlobal(const QString& method,
                                                      const ObjectList& arguments) {
    if (arguments.empty()) {
        const Outcome<Display::Act> refused = Display::readCall(method, {});
        return fail(refused
                        ? Failure{FailureKind::BadArgument,
                                  QStringLiteral("%1: the argument object is missing").arg(method)}
                        : refused.error());
    }
    Target target = Target::ofObject(arguments.front(), Wire::Wanted::Reach);
    target.timeout = m_readyTimeout;
    const Outcome<TargetAnswer> answer =
        act(method, target, ObjectList(arguments.begin() + 1, arguments.end()), m_readyTimeout);
    if (!answer)
        return fail(answer.error());
    if (!answer->isReady)
        return missFailure(*answer);
    return answer->result;
}

// Input

Outcome<Spot> DisplayModel::spotOf(const Target& target) {
    const Outcome<Look> seen = waitFor(target);
    if (!seen)
        return fail(seen.error());
    if (!seen->answer.object || (target.wanted != Wire::Wanted::Existence && !seen->answer.isReady))
        return missFailure(seen->answer);
    return seen->spot;
}

Outcome<> DisplayModel::mouseEvent(const Target& target, const Wire::MouseEvent& event) {
    if (event.buttonChange && !Wire::isMouseButton(event.button))
        return fail(FailureKind::BadArgument, Wire::noMouseButtonText(event.button));
    const bool isGiven = (event.mask & hasCoordinates) != 0;
    std::optional<QPoint> point;
    if (isGiven)
        point = QPoint(event.x, event.y);
    // 1. The place: in the target, on the screen, or where the mouse is.
    if (!target.isNothing()) {
        const Outcome<Spot> spot = spotOf(target);
        if (!spot)
            return fail(spot.error());
        point = isGiven ? spot->bounds.topLeft() + *point : spot->bounds.center();
        const WindowFacts* const window = spot->window ? &*spot->window : nullptr;
        const bool isPress = event.buttonChange && event.press;
        if (const Outcome<> free = m_session->uncover(isPress ? window : nullptr, *point); !free)
            return free;
    }
    // 2. The event there.
    const Outcome<Display::Input*> input = m_session->input();
    if (!input)
        return fail(input.error());
    const auto button = static_cast<Qt::MouseButton>(event.button);
    return (*input)->withModifiers(Qt::KeyboardModifiers(event.modifiers), [&]() -> Outcome<> {
        if (point)
            (*input)->move(*point);
        if (event.buttonChange && event.press)
            return (*input)->pressButton(button);
        if (event.buttonChange)
            (*input)->releaseButton(button);
        return {};
    });
}

Outcome<> DisplayModel::keyEvent(const QString& key, bool press) {
    QString error;
    const Wire::KeyCombination keys = Wire::parseKeys(key, &error);
    if (keys.isEmpty())
        return fail(FailureKind::BadArgument, error);
    if (const Outcome<> active = m_session->activateAny(); !active)
        return active;
    const Outcome<Display::Input*> input = m_session->input();
    if (!input)
        return fail(input.error());
    Outcome<> done;
    if (press) {
        for (const Wire::Key& each : keys)
            done = done ? (*input)->press(each) : done;
    } else {
        for (auto each = keys.crbegin(); each != keys.crend(); ++each)
            (*input)->release(*each);
    }
    return done;
}

Outcome<> DisplayModel::highlight(const Target& target, int milliseconds) {
    const Outcome<Spot> spot = spotOf(target);
    if (!spot)
        return fail(spot.error());
    return m_session->highlight(spot->bounds, milliseconds);
}

Outcome<> DisplayModel::stopHighlight() {
    m_session->stopHighlight();
    return {};
}

Outcome<> DisplayModel::quit() {
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    bool wasAsked = false;
    for (const WindowFacts& window : *windows)
        wasAsked = m_session->askToClose(window).has_value() || wasAsked;
    if (!wasAsked)
        return fail(FailureKind::Refused,
                    QStringLiteral("none of the application's windows takes a request to close"));
    return {};
}

// What there is

Outcome<QByteArray> DisplayModel::snapshotOf(const Target& target, bool withImages) {
    const Outcome<WindowList> all = m_session->windows();
    if (!all)
        return fail(all.error());
    WindowList shown = *all;
    if (!target.isNothing()) {
        const Outcome<Spot> spot = spotOf(target);
        if (!spot)
            return fail(spot.error());
        if (!spot->window)
            return fail(FailureKind::BadArgument,
                        QStringLiteral("a part of the screen has no snapshot"));
        shown = {*spot->window};
    }
    return Display::windowSnapshot(shown, *all, [&](const WindowFacts& window) {
        return withImages && window.isVisible
                   ? m_session->picture(window.geometry).value_or(QImage())
                   : QImage();
    });
}

Outcome<Wire::ObjectListing> DisplayModel::listing() {
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    Wire::ObjectListing listing;
    listing.types.append(Display::windowClass()->name());
    for (const WindowFacts& window : *windows) {
        Wire::ListedObject listed;
        listed.state = static_cast<quint8>(Wire::ListedObject::Enabled |
                                           (window.isVisible ? Wire::ListedObject::Visible : 0));
        listed.geometry = window.geometry;
        listed.text = window.title;
        listed.name = realNameOf(window, *windows);
        listing.objects.append(listed);
    }
    return listing;
}

Outcome<Wire::ObjectOutline> DisplayModel::outline() {
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    Wire::ObjectOutline outline;
    outline.types.append(Display::windowClass()->name());
    for (const WindowFacts& window : *windows) {
        if (!window.isVisible)
            continue;
        Wire::OutlinedObject outlined;
        outlined.handle = window.id;
        outlined.state = Wire::OutlinedObject::Enabled | Wire::OutlinedObject::Window;
        outlined.geometry = window.geometry;
        outlined.text = window.title;
        outline.objects.append(outlined);
    }
    return outline;
}

Outcome<SharedPtr<Object>> DisplayModel::globalBounds(SharedPtr<Object> object) {
    const Outcome<Spot> spot = spotOf(Target::ofObject(object));
    if (!spot)
        return fail(spot.error());
    return SharedPtr<Object>(
        new ValueObject(spot->bounds, ValueObject::valueClass(QStringLiteral("ScreenRectangle"))));
}

Outcome<QString> DisplayModel::environmentVariable(const QString& name) {
    QFile file(QStringLiteral("/proc/%1/environ").arg(m_facts.pid));
    if (!file.open(QIODevice::ReadOnly))
        return fail(FailureKind::Failed,
                    QStringLiteral("the application's environment can't be read: %1")
                        .arg(file.errorString()));
    const QByteArray wanted = name.toLocal8Bit() + '=';
    for (const QByteArray& entry : file.readAll().split('\0')) {
        if (entry.startsWith(wanted))
            return QString::fromLocal8Bit(entry.mid(wanted.size()));
    }
    return QString();
}

// Pictures

Outcome<QVariant> DisplayModel::screenshot(const QRect& rect) {
    const Outcome<QImage> image = m_session->picture(rect);
    if (!image)
        return fail(image.error());
    const QPoint origin =
        rect.isNull() ? QPoint() : QPoint(std::max(rect.x(), 0), std::max(rect.y(), 0));
    return Screenshot(*image, QTransform::fromTranslate(origin.x(), origin.y())).toLocalVariant();
}

Outcome<QVariant> DisplayModel::screenLayout() {
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    QVariantList shown;
    for (const WindowFacts& window : *windows) {
        if (window.isVisible)
            shown.append(QVariant(numbers(window.geometry)));
    }
    QVariantMap layout{{QStringLiteral("windows"), shown}};
    if (const std::optional<QPoint> press = m_session->lastPress())
        layout.insert(QStringLiteral("lastPress"), QVariantList{press->x(), press->y()});
    return QVariant(layout);
}

Outcome<QVariant> DisplayModel::objectScreenshot(const QVariantList& arguments) {
    const QVariant first = arguments.value(0);
    Target target = Target::ofObject(first.value<SharedPtr<Object>>());
    if (first.userType() == QMetaType::QRect)
        return screenshot(first.toRect());
    const Outcome<Spot> spot = spotOf(target);
    if (!spot)
        return fail(spot.error());
    if (spot->window && !spot->window->isVisible)
        return fail(
            FailureKind::NotReady,
            QStringLiteral("%1 is not ready: it is not visible").arg(describe(*spot->window)));
    return screenshot(spot->bounds);
}

Outcome<QVariant> DisplayModel::nativeRequest(const QString& name, const QVariantList& arguments) {
    if (name == QLatin1String("desktopScreenshot"))
        return screenshot({});
    if (name == QLatin1String("grabObjectScreenshot"))
        return objectScreenshot(arguments);
    if (name == QLatin1String("screenLayout"))
        return screenLayout();
    if (name == QLatin1String("getPixmapAsImage"))
        return fail(FailureKind::Refused,
                    QStringLiteral("windows have no pictures of their own; take a screenshot"));
    return fail(
        FailureKind::Refused,
        QStringLiteral("an application without agent knows no native request '%1'").arg(name));
}

// Events, for which there is nobody in the application

Outcome<> DisplayModel::installEventHandler(SharedPtr<Object>, const QString&, const QString&,
                                            const QString&) {
    return noEvents();
}

Outcome<> DisplayModel::uninstallEventHandler(SharedPtr<Object>, const QString&, const QString&,
                                              const QString&) {
    return noEvents();
}

Outcome<> DisplayModel::sendEvent(const Event*, SharedPtr<Object>, const ObjectList&) {
    return noEvents();
}

// Questions

Outcome<NameMatches> DisplayModel::matchesOf(const ObjectName& name) {
    const Outcome<WindowName> wanted = WindowName::of(name);
    if (!wanted)
        return fail(wanted.error());
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    NameMatches found;
    const WindowList matches = wanted->matchesIn(*windows);
    found.count = static_cast<int>(matches.size());
    for (const WindowFacts& window : matches) {
        if (found.matches.size() < Wire::listedMatches)
            found.matches.push_back({object(window), window.geometry, window.isVisible});
    }
    return found;
}

Outcome<SharedPtr<Object>> DisplayModel::objectAt(const QPoint& point) {
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    const xcb_window_t frame = Display::frameAt(m_session->connection(), point);
    for (const WindowFacts& window : *windows) {
        if (window.frame == frame && window.geometry.contains(point))
            return object(window);
    }
    return SharedPtr<Object>();
}

Outcome<QList<CheckedName>> DisplayModel::namesOf(const SharedPtr<Object>& object) {
    const Outcome<WindowFacts> window = windowOf(object);
    const Outcome<WindowList> all = window ? m_session->windows() : fail(window.error());
    if (!all)
        return fail(all.error());
    return Display::namesOf(*window, *all);
}

Outcome<QList<NearMiss>> DisplayModel::nearMissesOf(const ObjectName& name) {
    const Outcome<WindowName> wanted = WindowName::of(name);
    if (!wanted)
        return fail(wanted.error());
    const Outcome<WindowList> windows = m_session->windows();
    if (!windows)
        return fail(windows.error());
    return wanted->nearMissesIn(*windows);
}

}  // namespace Tamrix
