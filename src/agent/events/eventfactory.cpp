#include "agent/events/eventfactory.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QHoverEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "agent/core/globalfunctions.h"
#include "agent/events/eventnames.h"
#include "base/boundedgeometry.h"
#include "wire/keynames.h"

namespace Tamrix::Agent {

namespace {

/// The arguments of an event, and what of them is wrong.
struct Maker {
    const QVariantList& arguments;
    QPoint origin;
    QString error;
    std::vector<std::unique_ptr<QEvent>> events;

    /// 0 for what is no number of an integer's size.
    int number(int index) const {
        const double real = arguments.at(index).toDouble();
        return std::abs(real) <= std::numeric_limits<int>::max() ? static_cast<int>(real) : 0;
    }
    QPoint point(int first) const {
        return boundedPoint(
            QPointF(arguments.at(first).toDouble(), arguments.at(first + 1).toDouble()));
    }
    /// One of the types of the event's class, by name or number.
    QEvent::Type type(int index, const char* className) {
        const QVariant& value = arguments.at(index);
        const QString text = value.toString();
        const std::optional<QEvent::Type> named = eventTypeOf(text);
        const int type = named ? *named : number(index);
        if (!eventTypesOf(QString::fromLatin1(className)).contains(type))
            error = QStringLiteral("'%1' is no type of %2").arg(text, QLatin1String(className));
        return static_cast<QEvent::Type>(type);
    }
    template <typename Event, typename... Arguments>
    void add(const Arguments&... values) {
        events.push_back(std::make_unique<Event>(values...));
    }
};

void makeMouse(Maker& maker) {
    const QEvent::Type type = maker.type(0, "QMouseEvent");
    const QPointF point = maker.point(1);
    const auto button = static_cast<Qt::MouseButton>(maker.number(3));
    // The state holds buttons and modifiers, which share no bit.
    const int state = maker.number(4);
    Qt::MouseButtons buttons = Qt::MouseButtons(state) & Qt::AllButtons;
    if (type != QEvent::MouseButtonRelease && type != QEvent::MouseMove)
        buttons |= button;
    maker.add<QMouseEvent>(type, point, point, point + maker.origin, button, buttons,
                           Qt::KeyboardModifiers(state & ~static_cast<int>(Qt::AllButtons)));
}

void makeWheel(Maker& maker) {
    const QPointF point = maker.point(0);
    maker.add<QWheelEvent>(point, point + maker.origin, QPoint(), maker.point(2), Qt::NoButton,
                           Qt::NoModifier, Qt::NoScrollPhase, false);
}

void makeKey(Maker& maker) {
    const Wire::KeyCombination keys = Wire::parseKeys(maker.arguments.at(0).toString(), &maker.error);
    if (keys.isEmpty())
        return;
    Qt::KeyboardModifiers modifiers;
    for (const Wire::Key& key : keys)
        if (&key != &keys.last())
            modifiers |= Wire::modifierOfKey(key.code);
    const Wire::Key& key = keys.last();
    const bool isShifted = (modifiers & Qt::ShiftModifier) != 0;
    const QString text = isShifted ? key.text.toUpper() : key.text;
    maker.add<QKeyEvent>(QEvent::KeyPress, key.code, modifiers, text);
    maker.add<QKeyEvent>(QEvent::KeyRelease, key.code, modifiers, text);
}

void makeFocus(Maker& maker) {
    maker.add<QFocusEvent>(maker.type(0, "QFocusEvent"), Qt::OtherFocusReason);
}

void makeHover(Maker& maker) {
    const QPointF point = maker.point(1);
    maker.add<QHoverEvent>(maker.type(0, "QHoverEvent"), point, point);
}

void makeEnter(Maker& maker) {
    const QPointF point = maker.point(0);
    maker.add<QEnterEvent>(point, point, point + maker.origin);
}

void makeContextMenu(Maker& maker) {
    maker.add<QContextMenuEvent>(QContextMenuEvent::Other, maker.point(0),
                                 maker.point(0) + maker.origin);
}

void makeClose(Maker& maker) {
    maker.add<QCloseEvent>();
}

struct EventKind {
    const char* name;
    const char* arguments;
    void (*make)(Maker& maker);
};

constexpr EventKind kinds[] = {
    {"QMouseEvent", "QString,int,int,int,int", makeMouse},
    {"QWheelEvent", "int,int,int,int", makeWheel},
    {"QKeyEvent", "QString", makeKey},
    {"QFocusEvent", "QString", makeFocus},
    {"QHoverEvent", "QString,int,int", makeHover},
    {"QEnterEvent", "int,int", makeEnter},
    {"QContextMenuEvent", "int,int", makeContextMenu},
    {"QCloseEvent", "", makeClose},
};

QStringList argumentTypes(const EventKind& kind) {
    return QString::fromLatin1(kind.arguments).split(u',', Qt::SkipEmptyParts);
}

}  // namespace

QList<Wire::EventInfo> globalEvents() {
    QList<Wire::EventInfo> events;
    for (const EventKind& kind : kinds)
        events.append(Wire::EventInfo{QString::fromLatin1(kind.name), argumentTypes(kind)});
    return events;
}

std::vector<std::unique_ptr<QEvent>> makeEvents(const QString& name, const QVariantList& arguments,
                                                const QPoint& globalOrigin, QString* error) {
    for (const EventKind& kind : kinds) {
        if (name != QLatin1String(kind.name))
            continue;
        const QStringList types = argumentTypes(kind);
        if (types.size() != arguments.size()) {
            *error = QStringLiteral("%1 takes %2 arguments (%3), not %4")
                         .arg(name, QString::number(types.size()), types.join(QStringLiteral(", ")),
                              QString::number(arguments.size()));
            return {};
        }
        Maker maker{arguments, globalOrigin, QString(), {}};
        kind.make(maker);
        *error = maker.error;
        if (!error->isEmpty())
            maker.events.clear();
        return std::move(maker.events);
    }
    *error = QStringLiteral("unknown event '%1'").arg(name);
    return {};
}

}  // namespace Tamrix::Agent
