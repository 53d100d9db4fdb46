// selectItem() through the menus of Qt Quick Controls: a bar holds entries with a menu each, a menu
// is a popup whose entries may have menus of their own.

#include <QPointer>

#include "agent/core/mnemonic.h"
#include "agent/core/readiness.h"
#include "agent/functions/functiontable.h"
#include "agent/input/activation.h"
#include "agent/input/mousesteps.h"

namespace Tamrix::Agent {

namespace {

/// A menu or bar on the way, and what is left of the way.
struct QuickWay {
    Call call;
    QPointer<QObject> menu;
    ItemPath path;
};

struct QuickEntry {
    Element element;
    ItemPath::Fit fit;
};

/// The bar, or the menu of a popup's item; null for other elements.
QObject* menuOf(const Element& element) {
    if (element.isItem())
        return nullptr;
    if (element.object->inherits("QQuickMenuBar"))
        return element.object;
    QObject* const popup = element.object->parent();
    return popup != nullptr && popup->inherits("QQuickMenu") &&
                   element.object->inherits("QQuickPopupItem")
               ? popup
               : nullptr;
}

QVector<Element> entriesOf(const QuickWay& way) {
    QVector<Element> entries;
    const int count = way.menu == nullptr ? 0 : way.menu->property("count").toInt();
    for (int index = 0; index < count; ++index) {
        // The item's class is Qt Quick's, of which this library knows nothing.
        QObject* entry = nullptr;
        QMetaObject::invokeMethod(way.menu, "itemAt", QGenericReturnArgument("QQuickItem*", &entry),
                                  Q_ARG(int, index));
        if (entry != nullptr)
            entries.append(Session::self()->element(entry));
    }
    return entries;
}

QuickEntry entryOf(const QuickWay& way) {
    QuickEntry found;
    const QVector<Element> entries = entriesOf(way);
    for (const Element& entry : entries) {
        ItemPath::Fit fit = way.path.fit(entry.toolkit->text(entry));
        const bool isUsable = !fit.isNone() && entry.toolkit->isVisible(entry);
        if (isUsable && (found.element.isNull() || fit.rank < found.fit.rank))
            found = QuickEntry{entry, std::move(fit)};
    }
    return found;
}

QObject* menuBelow(const Element& entry) {
    // The "menu" of an entry of a menu is the one around it.
    const bool isOfBar = entry.object->inherits("QQuickMenuBarItem");
    return entry.object->property(isOfBar ? "menu" : "subMenu").value<QObject*>();
}

void failNotFound(const QuickWay& way) {
    QStringList texts;
    const QVector<Element> entries = entriesOf(way);
    for (const Element& entry : entries)
        texts.append(entry.toolkit->text(entry));
    const QString title =
        way.menu == nullptr ? QString() : withoutMnemonic(way.menu->property("title").toString());
    way.call.responder()->fail(
        FailureKind::NotFound,
        QStringLiteral("the menu%1 has no item '%2'; it has: %3")
            .arg(title.isEmpty() ? title : QStringLiteral(" '%1'").arg(title), way.path.text(),
                 texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral(", "))));
}

void addQuickWay(StepQueue* queue, const QuickWay& way);

/// Adds the click on the entry at the point, and what comes after it.
void addEntry(StepQueue* queue, const QuickWay& way, const QuickEntry& entry, const QPoint& point) {
    const ElementRef ref(entry.element);
    if (entry.fit.rest.isNull()) {
        addAnswer(queue, way.call);
        addClick(queue, ref, point);
        return;
    }
    const QString name = entry.element.toolkit->text(entry.element);
    const QPointer<QObject> menu = menuBelow(entry.element);
    if (menu == nullptr) {
        way.call.responder()->fail(FailureKind::NotFound,
                                   QStringLiteral("the menu item '%1' has no items").arg(name));
        return;
    }
    // A click on an open menu's title would close it.
    if (!menu->property("visible").toBool())
        addClick(queue, ref, point);
    const auto isOpen = [menu] { return menu != nullptr && menu->property("opened").toBool(); };
    queue->waitFor(isOpen, way.call.timeout(), [way, name] {
        way.call.responder()->fail(
            FailureKind::NotReady,
            QStringLiteral("the menu item '%1' is not ready: its menu does not open").arg(name));
    });
    queue->add(
        [queue, next = QuickWay{way.call, menu, entry.fit.rest}] { addQuickWay(queue, next); });
}

/// Adds the steps for the first entry of the way.
void addQuickWay(StepQueue* queue, const QuickWay& way) {
    queue->waitFor([way] { return !entryOf(way).element.isNull(); }, way.call.timeout(),
                   [way] { failNotFound(way); });
    queue->add([queue, way] {
        const QuickEntry entry = entryOf(way);
        if (entry.element.isNull()) {
            failNotFound(way);
            return;
        }
        queue->hold();
        const QPointer<StepQueue> guard(queue);
        waitUntilReady(
            entry.element, Aim(), way.call.timeout(),
            [guard, way, entry, ref = ElementRef(entry.element)](const Readiness& readiness) {
                if (guard == nullptr)
                    return;
                guard->resume();
                if (readiness.isReady)
                    addEntry(guard, way, entry, readiness.point);
                else
                    way.call.responder()->fail(FailureKind::NotReady,
                                               notReadyText(ref, readiness.obstacle));
            });
    });
}

}  // namespace

bool selectQuickMenuItem(const Call& call, const Element& element, const ItemPath& path) {
    QObject* const menu = menuOf(element);
    if (menu == nullptr)
        return false;
    auto* const queue = StepQueue::create();
    addActivation(queue, ElementRef(element));
    addQuickWay(queue, QuickWay{call, menu, path});
    run(queue, call);
    return true;
}

}  // namespace Tamrix::Agent
