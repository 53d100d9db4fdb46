#include <QAbstractItemView>
#include <QComboBox>
#include <QPointer>
#include <QStyleOptionComboBox>

#include "agent/core/readiness.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/keyboard.h"
#include "agent/input/mousesteps.h"

namespace Tamrix::Agent {

namespace {

QComboBox* boxOf(const ElementRef& ref) {
    return qobject_cast<QComboBox*>(ref.get().object);
}

int rowOf(const ElementRef& ref, const ItemPath& path) {
    const Element box = ref.get();
    QString reason;
    const Element item = box.isNull() ? Element() : box.toolkit->item(box, path, -1, -1, &reason);
    return item.index.row();
}

/// Where a click opens the box: an editable one has a field in its middle.
QPoint arrowOf(const QComboBox* box) {
    QStyleOptionComboBox option;
    option.initFrom(box);
    option.editable = box->isEditable();
    option.frame = box->hasFrame();
    option.subControls = QStyle::SC_All;
    return box->style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, box)
        .center();
}

bool isOpen(const ElementRef& ref) {
    const QComboBox* const box = boxOf(ref);
    return box != nullptr && box->view()->isVisible();
}

/// Adds the click on the item of the open list. Its move is a long one: the list takes the release
/// of a click near the one that opened it for the end of that.
void addItemClick(StepQueue* queue, const Call& call, const ElementRef& ref, const ItemPath& path) {
    // An item that shows in part would move when the mouse comes over it.
    queue->call([ref, path] {
        QComboBox* const box = boxOf(ref);
        if (box != nullptr)
            box->view()->scrollTo(
                box->model()->index(rowOf(ref, path), box->modelColumn(), box->rootModelIndex()),
                QAbstractItemView::PositionAtCenter);
    });
    queue->add([queue, call, ref, path] {
        const Element box = ref.get();
        QString reason;
        const Element item =
            box.isNull() || rowOf(ref, path) < 0
                ? Element()
                : box.toolkit->item(box, ItemPath(), rowOf(ref, path), -1, &reason);
        if (item.isNull()) {
            call.responder()->fail(FailureKind::NotFound,
                                   QStringLiteral("the item '%1' is gone").arg(path.text()));
            return;
        }
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        waitUntilReady(item, Aim(), call.timeout(),
                       [guard, call, target = ElementRef(item)](const Readiness& readiness) {
                           if (guard == nullptr)
                               return;
                           guard->resume();
                           if (!readiness.isReady) {
                               call.responder()->fail(FailureKind::NotReady,
                                                      notReadyText(target, readiness.obstacle));
                               return;
                           }
                           constexpr QPoint detour(30, 0);
                           addAnswer(guard, call);
                           addMove(guard, target, readiness.point + detour);
                           addClick(guard, target, readiness.point);
                       });
    });
}

}  // namespace

bool selectComboItem(const Call& call, const Element& element, const ItemPath& path) {
    const auto* const box = element.isItem() ? nullptr : qobject_cast<QComboBox*>(element.object);
    if (box == nullptr)
        return false;
    // An open list may cover the arrow.
    const Aim aim = box->view()->isVisible() ? Aim::withoutPoint() : Aim{arrowOf(box)};
    whenReady(call, element, aim, [=](const ElementRef& ref, const QPoint& point) {
        auto* const queue = StepQueue::create();
        queue->waitFor([ref, path] { return rowOf(ref, path) >= 0; }, call.timeout(),
                       [ref, call, path] {
                           if (failIfGone(call, ref))
                               return;
                           call.responder()->fail(
                               FailureKind::NotFound,
                               QStringLiteral("%1 has no item '%2'")
                                   .arg(Session::self()->describe(ref.get()), path.text()));
                       });
        addActivation(queue, ref);
        queue->add([queue, ref, point] {
            if (!isOpen(ref))
                addClick(queue, ref, point);
        });
        queue->waitFor([ref] { return isOpen(ref); }, call.timeout(),
                       [ref, call] {
                           call.responder()->fail(
                               FailureKind::NotReady,
                               notReadyText(ref, QStringLiteral("its list does not open")));
                       });
        addItemClick(queue, call, ref, path);
        run(queue, call);
    });
    return true;
}

}  // namespace Tamrix::Agent
