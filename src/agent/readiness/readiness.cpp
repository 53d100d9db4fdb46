#include "agent/readiness/readiness.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTimer>
#include <memory>

#include "agent/core/elementref.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/windowstack.h"

namespace Tamrix::Agent {

namespace {

/// Time between two looks that tell whether something moves.
constexpr int lookInterval = 20;
/// A look that is older says nothing about what happens now.
constexpr int lookLifetime = 250;
constexpr int pollInterval = 50;

using Done = std::function<void(const Readiness&)>;

struct Place {
    QRect bounds;
    /// When it was seen there first and last.
    qint64 since = 0;
    qint64 seen = 0;
};

qint64 now() {
    static const QElapsedTimer s_clock = [] {
        QElapsedTimer clock;
        clock.start();
        return clock;
    }();
    return s_clock.elapsed();
}

QHash<quint64, Place>& places() {
    static QHash<quint64, Place> s_places;
    return s_places;
}

void rememberPlace(quint64 handle, const QRect& bounds) {
    QHash<quint64, Place>& all = places();
    const qint64 time = now();
    for (auto it = all.begin(); it != all.end();)
        it = time - it->seen > lookLifetime ? all.erase(it) : std::next(it);
    const auto known = all.constFind(handle);
    const bool stands = known != all.cend() && known->bounds == bounds;
    all.insert(handle, Place{bounds, stands ? known->since : time, time});
}

/// Where the element was seen long enough ago, and not too long, to tell whether it moves; none
/// when it was not.
std::optional<QRect> placeBefore(quint64 handle) {
    const auto known = places().constFind(handle);
    const qint64 time = now();
    if (known == places().cend() || time - known->seen > lookLifetime ||
        time - known->since < lookInterval)
        return std::nullopt;
    return known->bounds;
}

Readiness notReady(const QString& obstacle) {
    return Readiness{false, obstacle, QPoint()};
}

bool isPopup(const QWindow* window) {
    return window->type() == Qt::Popup;
}

QString invisibleText(const QString& reason) {
    return reason.isEmpty() ? QStringLiteral("it is not visible")
                            : QStringLiteral("it is not visible: %1").arg(reason);
}

/// The wanted point, on the screen. The middle of an element that shows in part only is where it
/// shows.
QPoint pointOf(const Element& element, const Aim& aim) {
    const QRect bounds = element.toolkit->globalBounds(element);
    if (aim.offset)
        return bounds.topLeft() + *aim.offset;
    const QRect area = element.toolkit->clickArea(element, ClickPurpose::Use);
    const QRect visible = element.toolkit->visibleBounds(element) & area;
    return visible.isEmpty() || visible.contains(area.center()) ? area.center() : visible.center();
}

bool isWithin(const Element& element, const Element& hit) {
    for (Element next = hit; !next.isNull(); next = next.toolkit->parent(next))
        if (next == element)
            return true;
    return false;
}

/// What lies over the point; empty for nothing.
QString coverAt(const Element& element, const QPoint& point, Qt::MouseButton button) {
    const Session* const session = Session::self();
    const Toolkit* const toolkit = element.toolkit;
    Element cover;
    QWindow* const window = toolkit->nativeWindow(element);
    QWindow* const over = window == nullptr ? nullptr : windowOver(window, point);
    if (over != nullptr) {
        cover = session->element(over);
    } else {
        cover = toolkit->elementAt(element, point, button);
        if (!cover.isNull() &&
            (toolkit->receivesThrough(element, cover, button) || isWithin(element, cover)))
            return QString();
    }
    const QPoint local = point - toolkit->globalBounds(element).topLeft();
    const QString place = QStringLiteral("the point (%1, %2)")
                              .arg(QString::number(local.x()), QString::number(local.y()));
    if (cover.isNull())
        return place + QStringLiteral(" is outside of what can be clicked");
    return session->describe(cover) + QStringLiteral(" covers ") + place;
}

/// What hinders at once, whatever the place is.
QString obstacleTo(const Element& element, const Aim& aim) {
    QString obstacle = obstacleOf(element);
    if (!obstacle.isEmpty() || !aim.mindsOpenLists)
        return obstacle;
    const Element owner = element.toolkit->openListOver(element);
    if (owner.isNull())
        return obstacle;
    const bool isList = owner.toolkit->nativeWindow(owner) != nullptr &&
                        !isPopup(owner.toolkit->nativeWindow(owner));
    return QStringLiteral("it is blocked by the %1%2")
        .arg(isList ? QStringLiteral("list of ") : QStringLiteral("open "),
             Session::self()->describe(owner));
}

/// The second look: `before` is where it was at the first one.
Readiness look(const Element& element, const Aim& aim, const QRect& before) {
    const QString obstacle = obstacleTo(element, aim);
    if (!obstacle.isEmpty())
        return notReady(obstacle);
    const QRect bounds = element.toolkit->globalBounds(element);
    if (bounds != before)
        return notReady(QStringLiteral("it is moving"));
    const QPoint point = pointOf(element, aim);
    const QString cover =
        aim.button == Qt::NoButton ? QString() : coverAt(element, point, aim.button);
    if (!cover.isEmpty())
        return notReady(cover);
    return Readiness{true, QString(), point};
}

const QString& goneText() {
    static const QString s_text = QStringLiteral("it is gone");
    return s_text;
}

void lookTwice(const Element& element, const Aim& aim, const Done& done) {
    const ElementRef ref(element);
    const QString obstacle = obstacleTo(element, aim);
    if (!obstacle.isEmpty()) {
        done(notReady(obstacle));
        return;
    }
    if (const std::optional<QRect> before = placeBefore(ref.handle())) {
        const Readiness readiness = look(element, aim, *before);
        rememberPlace(ref.handle(), element.toolkit->globalBounds(element));
        done(readiness);
        return;
    }
    const QRect bounds = element.toolkit->globalBounds(element);
    rememberPlace(ref.handle(), bounds);
    QTimer::singleShot(lookInterval, Qt::PreciseTimer, Session::self(), [ref, aim, bounds, done] {
        const Element same = ref.get();
        if (same.isNull()) {
            done(notReady(goneText()));
            return;
        }
        const Readiness readiness = look(same, aim, bounds);
        rememberPlace(ref.handle(), same.toolkit->globalBounds(same));
        done(readiness);
    });
}

/// Brings what is aimed at into view. The rest of an element may be larger than its viewport.
void scrollTo(const Element& element, const Aim& aim) {
    const Toolkit* const toolkit = element.toolkit;
    if (!aim.offset)
        toolkit->scrollIntoView(element);
    else if (!toolkit->visibleBounds(element).contains(toolkit->globalBounds(element).topLeft() +
                                                       *aim.offset))
        toolkit->scrollIntoView(element, aim.offset);
}

struct Wait {
    ElementRef element;
    Aim aim;
    int timeout = 0;
    Done done;
    QElapsedTimer clock;
};

void poll(const std::shared_ptr<Wait>& wait) {
    const Element element = wait->element.get();
    if (element.isNull()) {
        wait->done(notReady(goneText()));
        return;
    }
    scrollTo(element, wait->aim);
    lookTwice(element, wait->aim, [wait](const Readiness& readiness) {
        const bool isOver =
            readiness.obstacle == goneText() || wait->clock.hasExpired(wait->timeout);
        if (readiness.isReady || isOver)
            wait->done(readiness);
        else
            QTimer::singleShot(pollInterval, Session::self(), [wait] { poll(wait); });
    });
}

}  // namespace

QString obstacleOf(const Element& element) {
    const Toolkit* const toolkit = element.toolkit;
    if (!toolkit->isVisible(element))
        return invisibleText(toolkit->hiddenReason(element));
    const QRect bounds = toolkit->globalBounds(element);
    if (toolkit->visibleBounds(element).isEmpty() && bounds.isEmpty())
        return QStringLiteral("it has no size");
    if (toolkit->visibleBounds(element).isEmpty()) {
        toolkit->scrollIntoView(element);
        if (toolkit->visibleBounds(element).isEmpty()) {
            const QString reason = toolkit->hiddenReason(element);
            return invisibleText(reason.isEmpty() ? QStringLiteral("it is scrolled out of sight")
                                                  : reason);
        }
    }
    if (!toolkit->isEnabled(element))
        return QStringLiteral("it is disabled");
    const Element blocker = toolkit->blockedBy(element);
    if (!blocker.isNull())
        return QStringLiteral("the modal window %1 blocks it")
            .arg(Session::self()->describe(blocker));
    return QString();
}

void lookIfReady(const Element& element, const Aim& aim, const Done& done) {
    lookTwice(element, aim, done);
}

void waitUntilReady(const Element& element, const Aim& aim, int timeout, Done done) {
    auto wait = std::make_shared<Wait>();
    wait->element = ElementRef(element);
    wait->aim = aim;
    wait->timeout = timeout;
    wait->done = std::move(done);
    wait->clock.start();
    poll(wait);
}

}  // namespace Tamrix::Agent
