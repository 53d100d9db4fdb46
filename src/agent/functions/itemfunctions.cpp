#include <QPointer>
#include <QTreeView>

#include "agent/core/itempath.h"
#include "agent/core/readiness.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"

namespace Tamrix::Agent {

namespace {

/// Qt Quick's combo boxes make their items when their popup opens.
bool hasOwnPopup(const Element& element) {
    return !element.isItem() && element.object->inherits("QQuickComboBox");
}

/// The first visible element with the text below another one.
Element findByText(const Element& root, const QString& text) {
    QVector<Element> children;
    root.toolkit->children(root, true, &children);
    for (const Element& child : qAsConst(children)) {
        if (!child.toolkit->isVisible(child))
            continue;
        if (child.toolkit->text(child) == text)
            return child;
        const Element found = findByText(child, text);
        if (!found.isNull())
            return found;
    }
    return Element();
}

/// What Qt Quick shows of a view's or box's items are elements like others.
Element quickItemOf(const Element& view, const QString& text) {
    QObject* holder = view.object;
    if (hasOwnPopup(view)) {
        const auto* const popup = view.object->property("popup").value<QObject*>();
        holder = popup == nullptr ? nullptr : popup->property("contentItem").value<QObject*>();
    }
    const Element root = Session::self()->element(holder);
    return root.isNull() ? Element() : findByText(root, unescapeItemText(text));
}

Element itemOf(const ElementRef& ref, const QString& text, QString* reason) {
    const Element view = ref.get();
    if (view.isNull())
        return Element();
    if (!view.isItem() && view.object->inherits("QQuickItem"))
        return quickItemOf(view, text);
    return view.toolkit->item(view, text, -1, -1, reason);
}

/// Opens what is closed on the way to an item. A model may make its items only then.
void expandTowards(const ElementRef& ref, const QString& text) {
    auto* const tree = qobject_cast<QTreeView*>(ref.get().object);
    if (tree == nullptr)
        return;
    const QStringList parts = splitItemPath(text);
    for (int count = 1; count < parts.size(); ++count) {
        QString reason;
        const Element item = itemOf(ref, QStringList(parts.mid(0, count)).join(u'.'), &reason);
        if (!item.index.isValid())
            return;
        if (!tree->isExpanded(item.index)) {
            tree->expand(item.index);
            return;
        }
    }
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

void failNotFound(const Call& call, const ElementRef& view, const QString& text) {
    if (failIfGone(call, view))
        return;
    QString reason;
    const Element found = itemOf(view, text, &reason);
    if (reason.isEmpty())
        reason = found.isNull() ? QStringLiteral("there is no item '%1'").arg(text)
                                : QStringLiteral("'%1' is in a closed item").arg(text);
    call.responder()->fail(Wire::FailureCode::NotFound, reason);
}

/// Adds steps that wait for the item, opening what holds it, and click it.
void addItemClick(StepQueue* queue, const Call& call, const ElementRef& view, const QString& text) {
    const auto isThere = [view, text] {
        QString reason;
        const Element item = itemOf(view, text, &reason);
        return !item.isNull() && !isWithinClosed(view, item);
    };
    queue->waitFor(
        [queue, view, text, isThere] {
            if (isThere())
                return true;
            // Code of the application runs below it.
            QMetaObject::invokeMethod(
                queue, [view, text] { expandTowards(view, text); }, Qt::QueuedConnection);
            return false;
        },
        call.timeout(), [call, view, text] { failNotFound(call, view, text); });
    queue->add([queue, call, view, text] {
        QString reason;
        const Element item = itemOf(view, text, &reason);
        if (item.isNull()) {
            failNotFound(call, view, text);
            return;
        }
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        waitUntilReady(item, nullptr, call.timeout(),
                       [guard, call, ref = ElementRef(item)](const Readiness& readiness) {
                           if (guard == nullptr)
                               return;
                           guard->resume();
                           if (!readiness.isReady) {
                               call.responder()->fail(Wire::FailureCode::NotReady,
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
    const QString text = call.takeText("text");
    call.takeEnd();
    if (selectMenuItem(call, element, text) || selectComboItem(call, element, text))
        return;
    // A view whose middle is covered by an item's editor is still a view: its items count.
    if (!hasOwnPopup(element)) {
        auto* const queue = StepQueue::create();
        addActivation(queue, ElementRef(element));
        addItemClick(queue, call, ElementRef(element), text);
        run(queue, call);
        return;
    }
    whenReady(call, element, std::nullopt, [=](const ElementRef& ref, const QPoint& point) {
        auto* const queue = StepQueue::create();
        addActivation(queue, ref);
        addClick(queue, ref, point);
        addItemClick(queue, call, ref, text);
        run(queue, call);
    });
}

}  // namespace Tamrix::Agent
