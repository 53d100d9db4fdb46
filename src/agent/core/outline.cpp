#include "agent/core/outline.h"

#include <QGuiApplication>
#include <QMetaObject>

#include "agent/core/session.h"
#include "agent/core/shownobjects.h"
#include "agent/core/vocabulary.h"

namespace Tamrix::Agent {

namespace {

using Wire::OutlinedObject;

/// Of a longer text the middle is left out.
constexpr int longestText = 1000;
constexpr int keptAtEachEnd = 400;

QString shortened(const QString& text) {
    if (text.size() <= longestText)
        return text;
    return QStringLiteral("%1 ... %2 (%3 characters)")
        .arg(text.left(keptAtEachEnd), text.right(keptAtEachEnd), QString::number(text.size()));
}

bool isTrue(const Element& element, const char* property) {
    bool isKnown = false;
    return element.toolkit->property(element, QLatin1String(property), &isKnown).toBool();
}

quint16 checkStateOf(const Element& element) {
    const Outcome<CheckMark> mark = element.toolkit->checkMark(element);
    if (!mark)
        return 0;
    switch (mark->state) {
        case CheckState::Unchecked:
            return OutlinedObject::Checkable;
        case CheckState::Partly:
            return OutlinedObject::Checkable | OutlinedObject::PartlyChecked;
        case CheckState::Checked:
            break;
    }
    return OutlinedObject::Checkable | OutlinedObject::Checked;
}

quint16 stateOf(const Element& element, const Element& focused) {
    int state = checkStateOf(element);
    if (element.toolkit->isEnabled(element))
        state |= OutlinedObject::Enabled;
    if (element == focused)
        state |= OutlinedObject::Focused;
    if (element.isItem()) {
        state |= OutlinedObject::Item;
        if (isTrue(element, "selected") || isTrue(element, "current"))
            state |= OutlinedObject::Selected;
    } else if (element.toolkit->parent(element).isNull() ||
               element.toolkit->window(element) == element) {
        state |= OutlinedObject::Window;
        if (isTrue(element, "modal"))
            state |= OutlinedObject::Modal;
    }
    return static_cast<quint16>(state);
}

/// What has the keyboard's focus, as testers see it.
Element focusedElement() {
    QObject* const object = QGuiApplication::focusObject();
    Element element = object ? Session::self()->element(object) : Element();
    while (!element.isNull() && element.toolkit->isInternal(element))
        element = element.toolkit->parent(element);
    return element;
}

/// What a slider, a list to choose from or the like shows.
QString shownValue(const Element& element) {
    if (element.isItem())
        return {};
    for (const char* const name : {"value", "displayText"}) {
        if (element.object->metaObject()->indexOfProperty(name) < 0)
            continue;
        bool isKnown = false;
        const QVariant value = propertyValue(element, QLatin1String(name), &isKnown);
        if (isKnown)
            return valueText(value);
    }
    return {};
}

/// Whether something else is in its place, as of docks that share one, although it counts as shown.
bool isElsewhere(const Element& element, const QRect& seen) {
    return seen.isEmpty() && !element.toolkit->hiddenReason(element).isEmpty();
}

}  // namespace

Wire::ObjectOutline makeOutline() {
    const NameIndex index;
    const Element focused = focusedElement();
    Wire::ObjectOutline outline;
    outline.types = index.typeNames();
    walkShownObjects(index, [&](int number, int depth) {
        if (!index.isVisible(number))
            return Telling::PassedOver;
        if (outline.objects.size() >= Wire::ObjectOutline::most) {
            outline.isCut = true;
            return Telling::PassedOver;
        }
        const Element& element = index.element(number);
        const QRect seen = element.toolkit->visibleBounds(element);
        if (isElsewhere(element, seen))
            return Telling::LeftOut;
        OutlinedObject object;
        object.depth = depth;
        object.type = index.type(number);
        object.handle = Session::self()->handle(element);
        object.state = stateOf(element, focused);
        object.geometry = seen;
        object.name = element.toolkit->name(element);
        object.text = shortened(index.text(number));
        bool isEntered = !element.toolkit->isTextLasting(element);
        if (object.text.isEmpty()) {
            object.text = shownValue(element);
            isEntered = isEntered || !object.text.isEmpty();
        }
        if (isEntered)
            object.state |= OutlinedObject::Entered;
        object.label = shortened(index.label(number));
        outline.objects.append(object);
        return Telling::Told;
    });
    return outline;
}

}  // namespace Tamrix::Agent
