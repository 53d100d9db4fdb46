#include <QPointer>
#include <QTreeView>

#include "agent/core/readiness.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"
#include "agent/qtwidgets/itemtoolkit.h"

namespace Tamrix::Agent {

namespace {

/// Qt Quick's combo boxes make their items when their popup opens.
bool hasOwnPopup(const Element& element) {
    return !element.isItem() && element.object->inherits("QQuickComboBox");
}

Element itemOf(const ElementRef& ref, const ItemPath& path, QString* reason) {
    const Element view = ref.get();
    return view.isNull() ? Element() : view.toolkit->item(view, path, -1, -1, reason);
}

/// Opens what is closed on the way to an item.
void openTowards(const ElementRef& ref, const ItemPath& path) {
    auto* const tree = qobject_cast<QTreeView*>(ref.get().object);
    if (tree != nullptr && tree->model() != nullptr)
        expandTowards(tree, path);
}

bool isWithinClosed(const ElementRef& ref, const Element& item) {
    const auto* const tree = qobject_cast<QTreeView*>(ref.get().object);
    if (tree == nullptr || !item.index.isValid())
        return false;
    for (QModelIndex above = item.index.parent(); above.isValid() && above != tree->rootIndex();
         above = above.parent())
        if (!tree->isExpanded(above))
            return true;
    return false;
}

void failNotFound(const Call& call, const ElementRef& view, const ItemPath& path) {
    if (failIfGone(call, view))
        return;
    QString reason;
    const Element found = itemOf(view, path, &reason);
    if (reason.isEmpty())
        reason = found.isNull() ? QStringLiteral("there is no item '%1'").arg(path.text())
                                : QStringLiteral("'%1' is in a closed item").arg(path.text());
    call.responder()->fail(FailureKind::NotFound, reason);
}

/// Adds steps that wait for the item, opening what holds it, and click it.
void addItemClick(StepQueue* queue, const Call& call, const ElementRef& view,
                  const ItemPath& path) {
    const auto isThere = [view, path] {
        QString reason;
        const Element item = itemOf(view, path, &reason);
        return !item.isNull() && !isWithinClosed(view, item);
    };
    queue->waitFor(
        [queue, view, path, isThere] {
            if (isThere())
                return true;
            // Code of the application runs below it.
            QMetaObject::invokeMethod(
                queue, [view, path] { openTowards(view, path); }, Qt::QueuedConnection);
            return false;
        },
        call.timeout(), [call, view, path] { failNotFound(call, view, path); });
    queue->add([queue, call, view, path] {
        QString reason;
        const Element item = itemOf(view, path, &reason);
        if (item.isNull()) {
            failNotFound(call, view, path);
            return;
        }
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        waitUntilReady(item, Aim(), call.timeout(),
                       [guard, call, ref = ElementRef(item)](const Readiness& readiness) {
                           if (guard == nullptr)
                               return;
                           guard->resume();
                           if (!readiness.isReady) {
                               call.responder()->fail(FailureKind::NotReady,
                                                      notReadyText(ref, readiness.obstacle));
                               return;
                           }
                           addAnswer(guard, call);
                           addClick(guard, ref, readiness.point);
                       });
    });
}

}  // namespace

void selectItem(Call& call) {
    const Element element = call.takeObject();
    const ItemPath path = call.takePath("text");
    call.takeEnd();
    if (selectMenuItem(call, element, path) || selectQuickMenuItem(call, element, path) ||
        selectComboItem(call, element, path))
        return;
    // A view whose middle is covered by an item's editor is still a view: its items count.
    if (!hasOwnPopup(element)) {
        auto* const queue = StepQueue::create();
        addActivation(queue, ElementRef(element));
        addItemClick(queue, call, ElementRef(element), path);
        run(queue, call);
        return;
    }
    whenReady(call, element, Aim(), [=](const ElementRef& ref, const QPoint& point) {
        auto* const queue = StepQueue::create();
        addActivation(queue, ref);
        addClick(queue, ref, point);
        addItemClick(queue, call, ref, path);
        run(queue, call);
    });
}

}  // namespace Tamrix::Agent
