#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

#include "agent/core/readiness.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"
#include "agent/qtwidgets/actionplace.h"

namespace Tamrix::Agent {

namespace {

/// A menu or menu bar on the way through the menus, and what is left of the way.
struct MenuWay {
    Call call;
    ElementRef menu;
    ItemPath path;

    QWidget* widget() const { return qobject_cast<QWidget*>(menu.get().object); }
};

/// The entry of the menu that is the next step of the way, and the way behind it.
struct Entry {
    QAction* action = nullptr;
    ItemPath::Fit fit;
};

Entry entryOf(const MenuWay& way) {
    Entry entry;
    const QWidget* const widget = way.widget();
    if (widget == nullptr)
        return entry;
    const QList<QAction*> actions = widget->actions();
    for (QAction* action : actions) {
        if (!action->isVisible() || action->isSeparator())
            continue;
        ItemPath::Fit fit = way.path.fit(actionText(action));
        if (!fit.isNone() && (entry.action == nullptr || fit.rank < entry.fit.rank))
            entry = Entry{action, std::move(fit)};
    }
    return entry;
}

QRect placeOf(const QWidget* menu, QAction* action) {
    if (const auto* const bar = qobject_cast<const QMenuBar*>(menu))
        return bar->actionGeometry(action);
    return qobject_cast<const QMenu*>(menu)->actionGeometry(action);
}

void failNotFound(const MenuWay& way) {
    if (failIfGone(way.call, way.menu))
        return;
    QStringList texts;
    if (const QWidget* const widget = way.widget()) {
        const QList<QAction*> actions = widget->actions();
        for (const QAction* action : actions)
            if (action->isVisible() && !action->isSeparator())
                texts.append(actionText(action));
    }
    way.call.responder()->fail(
        FailureKind::NotFound,
        QStringLiteral("%1 has no item '%2'; it has: %3")
            .arg(Session::self()->describe(way.menu.get()), way.path.text(),
                 texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral(", "))));
}

void addWay(StepQueue* queue, const MenuWay& way);

/// Adds the click on the item at the point, and what comes after it.
void addItem(StepQueue* queue, const MenuWay& way, const QPoint& point) {
    const Entry entry = entryOf(way);
    QAction* const action = entry.action;
    if (action == nullptr) {
        failNotFound(way);
        return;
    }
    const QString name = actionText(action);
    if (!action->isEnabled()) {
        way.call.responder()->fail(
            FailureKind::NotReady,
            QStringLiteral("the menu item '%1' is not ready: it is disabled").arg(name));
        return;
    }
    if (entry.fit.rest.isNull()) {
        addAnswer(queue, way.call);
        addClick(queue, way.menu, point);
        return;
    }
    const QPointer<QMenu> inner = action->menu();
    if (inner == nullptr) {
        way.call.responder()->fail(FailureKind::NotFound,
                                   QStringLiteral("the menu item '%1' has no items").arg(name));
        return;
    }
    // A click on an open menu's title would close it.
    if (!inner->isVisible())
        addClick(queue, way.menu, point);
    const auto isOpen = [inner] { return inner != nullptr && inner->isVisible(); };
    queue->waitFor(isOpen, way.call.timeout(), [way, name] {
        way.call.responder()->fail(
            FailureKind::NotReady,
            QStringLiteral("the menu item '%1' is not ready: its menu does not open").arg(name));
    });
    queue->add([queue, next = MenuWay{way.call, ElementRef(Session::self()->element(inner)),
                                      entry.fit.rest}] { addWay(queue, next); });
}

/// Adds the steps for the first item of the way.
void addWay(StepQueue* queue, const MenuWay& way) {
    // Menus are often filled when they open.
    queue->waitFor([way] { return entryOf(way).action != nullptr; }, way.call.timeout(),
                   [way] { failNotFound(way); });
    queue->add([queue, way] {
        const Element menu = way.menu.get();
        QAction* const action = entryOf(way).action;
        if (menu.isNull() || action == nullptr) {
            failNotFound(way);
            return;
        }
        const QPoint offset = placeOf(way.widget(), action).center();
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        waitUntilReady(
            menu, Aim{offset}, way.call.timeout(), [guard, way](const Readiness& readiness) {
                if (guard == nullptr)
                    return;
                guard->resume();
                if (readiness.isReady)
                    addItem(guard, way, readiness.point);
                else
                    way.call.responder()->fail(FailureKind::NotReady,
                                               notReadyText(way.menu, readiness.obstacle));
            });
    });
}

}  // namespace

bool selectMenuItem(const Call& call, const Element& element, const ItemPath& path) {
    const bool isMenu = !element.isItem() && (qobject_cast<QMenu*>(element.object) != nullptr ||
                                              qobject_cast<QMenuBar*>(element.object) != nullptr);
    if (!isMenu)
        return false;
    auto* const queue = StepQueue::create();
    addActivation(queue, ElementRef(element));
    addWay(queue, MenuWay{call, ElementRef(element), path});
    run(queue, call);
    return true;
}

}  // namespace Tamrix::Agent
