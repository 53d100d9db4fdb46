#include <QDeadlineTimer>
#include <QPointer>

#include "agent/core/toolkit.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"
#include "agent/readiness/readiness.h"

namespace Tamrix::Agent {

namespace {

/// A view or box, and the way to the item in it.
struct ItemWay {
    Call call;
    ElementRef view;
    ItemPath path;
    /// As long an item is looked for again that goes before it is clicked.
    QDeadlineTimer deadline = QDeadlineTimer(call.timeout());
};

Outcome<Element> itemOf(const ItemWay& way) {
    const Outcome<Element> view = Session::self()->find(way.view.handle());
    return view ? view->toolkit->item(*view, way.path, -1, -1) : view;
}

bool isWithinClosed(const Element& item) {
    return item.toolkit->isWithinClosed(item);
}

void openTowards(const ItemWay& way) {
    const Element view = way.view.get();
    if (!view.isNull())
        view.toolkit->openTowards(view, way.path);
}

void failNotFound(const ItemWay& way) {
    const Outcome<Element> item = itemOf(way);
    if (!item)
        way.call.responder()->fail(
            item.error().kind == FailureKind::Gone ? FailureKind::Gone : FailureKind::NotFound,
            item.error().text);
    else
        way.call.responder()->fail(FailureKind::NotFound,
                                   QStringLiteral("'%1' is in a closed item").arg(way.path.text()));
}

/// How the mouse comes to an item.
enum class Approach {
    Straight,
    /// A list takes the release of a click near the one that opened it for the end of that.
    FromAside
};

/// Adds steps that wait for the item, opening what holds it, and click it.
void addItemClick(StepQueue* queue, const ItemWay& way, Approach approach) {
    queue->waitFor(
        [queue, way] {
            const Outcome<Element> item = itemOf(way);
            if (item && !isWithinClosed(*item))
                return true;
            // Code of the application runs below it.
            QMetaObject::invokeMethod(
                queue, [way] { openTowards(way); }, Qt::QueuedConnection);
            return false;
        },
        way.call.timeout(), [way] { failNotFound(way); });
    queue->add([queue, way, approach] {
        const Outcome<Element> item = itemOf(way);
        if (!item) {
            failNotFound(way);
            return;
        }
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        waitUntilReady(*item, Aim(), way.call.timeout(),
                       [guard, way, approach, ref = ElementRef(*item)](const Readiness& readiness) {
                           if (guard == nullptr)
                               return;
                           guard->resume();
                           if (!readiness.isReady) {
                               if (ref.get().isNull() && !way.deadline.hasExpired())
                                   addItemClick(guard, way, approach);
                               else
                                   failNotReady(way.call, ref, readiness.obstacle);
                               return;
                           }
                           constexpr QPoint detour(30, 0);
                           addAnswer(guard, way.call);
                           if (approach == Approach::FromAside)
                               addMove(guard, ref, readiness.point + detour);
                           addClick(guard, ref, readiness.point);
                       });
    });
}

bool isOpen(const ElementRef& ref) {
    const Element box = ref.get();
    return !box.isNull() && box.toolkit->itemPopup(box).value_or(ItemPopup()).isOpen;
}

void selectInView(const ItemWay& way) {
    // A view whose middle is covered by an item's editor is still a view: its items count.
    auto* const queue = StepQueue::create();
    addActivation(queue, way.view);
    addItemClick(queue, way, Approach::Straight);
    run(queue, way.call);
}

void selectInPopup(const Call& call, const Element& box, const ItemPopup& popup,
                   const ItemPath& path) {
    // An open list may cover what opens it.
    const Aim aim = popup.isOpen ? Aim::withoutPoint() : Aim{popup.button};
    whenReady(
        call, box, aim,
        [call, path, knowsItems = popup.knowsItems](const ElementRef& ref, const QPoint& point) {
            const ItemWay way{call, ref, path};
            auto* const queue = StepQueue::create();
            if (knowsItems)
                queue->waitFor([way] { return itemOf(way).has_value(); }, call.timeout(),
                               [way] { failNotFound(way); });
            addActivation(queue, ref);
            queue->add([queue, ref, point] {
                if (!isOpen(ref))
                    addClick(queue, ref, point);
            });
            queue->waitFor(
                [ref] { return isOpen(ref); }, call.timeout(),
                [call, ref] { failNotReady(call, ref, QStringLiteral("its list does not open")); });
            queue->call([way] { openTowards(way); });
            addItemClick(queue, way, Approach::FromAside);
            run(queue, call);
        });
}

}  // namespace

void selectItem(Call& call) {
    const Element element = call.takeObject();
    const ItemPath path = call.takePath("text");
    call.takeEnd();
    const std::optional<ItemPopup> popup = element.toolkit->itemPopup(element);
    if (const std::shared_ptr<const Menu> menu = element.toolkit->menu(element))
        selectInMenu(call, element, menu, path);
    else if (popup)
        selectInPopup(call, element, *popup, path);
    else
        selectInView(ItemWay{call, ElementRef(element), path});
}

}  // namespace Tamrix::Agent
