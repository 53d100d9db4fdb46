#include "agent/input/mousesteps.h"

#include <algorithm>

#include "agent/core/toolkit.h"
#include "agent/input/keyboard.h"
#include "agent/input/pointer.h"

namespace Tamrix::Agent {

namespace {

/// What a drag does between press and release.
constexpr int dragStepLength = 10;
constexpr int leastDragSteps = 5;
constexpr int mostDragSteps = 40;
constexpr int dragStepPause = 5;

void movePointer(const ElementRef& ref, const QPoint& point) {
    const Element element = ref.get();
    if (!element.isNull())
        Pointer::self().move(element.toolkit->nativeWindow(element), point);
}

void addModifiers(StepQueue* queue, Qt::KeyboardModifiers modifiers, bool isPress) {
    QVector<Key> keys = keysOfModifiers(modifiers);
    if (!isPress)
        std::reverse(keys.begin(), keys.end());
    for (const Key& key : keys)
        queue->add([key, isPress] {
            if (isPress)
                Keyboard::self().press(key);
            else
                Keyboard::self().release(key);
        });
}

}  // namespace

void addMove(StepQueue* queue, const ElementRef& element, const QPoint& point) {
    // Two moves, as menus take the first one for the result of their own appearing.
    queue->add([element, point] {
        movePointer(element, point - QPoint(1, 0));
        movePointer(element, point);
    });
}

void addClick(StepQueue* queue, const ElementRef& element, const QPoint& point,
              const MouseStyle& style, int count) {
    addModifiers(queue, style.modifiers, true);
    addMove(queue, element, point);
    queue->add([] { Pointer::self().separateClicks(); });
    for (int i = 0; i < count; ++i) {
        queue->add([button = style.button] { Pointer::self().press(button); });
        queue->add([button = style.button] { Pointer::self().release(button); });
    }
    addModifiers(queue, style.modifiers, false);
}

void addDrag(StepQueue* queue, const ElementRef& element, const QPoint& from, const QPoint& to,
             const MouseStyle& style) {
    addModifiers(queue, style.modifiers, true);
    addMove(queue, element, from);
    queue->add([] { Pointer::self().separateClicks(); });
    queue->add([button = style.button] { Pointer::self().press(button); });
    const QPoint way = to - from;
    const int count = qBound(leastDragSteps, way.manhattanLength() / dragStepLength, mostDragSteps);
    for (int i = 1; i <= count; ++i) {
        queue->pause(dragStepPause);
        queue->add([point = from + way * i / count] { Pointer::self().move(nullptr, point); });
    }
    queue->pause(dragStepPause);
    queue->add([button = style.button] { Pointer::self().release(button); });
    addModifiers(queue, style.modifiers, false);
}

}  // namespace Tamrix::Agent
