#include "agent/core/toolkit.h"

#include <QMetaProperty>

#include "agent/core/classnames.h"
#include "agent/core/session.h"

namespace Tamrix::Agent {

Toolkit::~Toolkit() = default;

Element Toolkit::element(QObject* object) const {
    Element element;
    if (object) {
        element.toolkit = this;
        element.object = object;
    }
    return element;
}

Element ToolkitTree::related(const Element& /*element*/, Relation /*relation*/) const {
    return {};
}

bool ToolkitTree::isAlive(const Element& /*element*/) const {
    return true;
}

QString ToolkitNames::typeName(const Element& element) const {
    return typeNameOf(element.object->metaObject());
}

QStringList ToolkitNames::superTypes(const Element& element) const {
    return superTypesOf(element.object->metaObject());
}

QString ToolkitNames::name(const Element& element) const {
    return element.isItem() ? QString() : element.object->objectName();
}

ToolkitNames::Hint ToolkitNames::hint(const Element& /*element*/) const {
    return {};
}

QString ToolkitLook::hiddenReason(const Element& /*element*/) const {
    return {};
}

TypeTraits ToolkitNames::traitsOf(const QString& /*typeName*/) const {
    return {};
}

bool ToolkitNames::isTextLasting(const Element& /*element*/) const {
    return true;
}

bool ToolkitLook::isInternal(const Element& /*element*/) const {
    return false;
}

bool ToolkitLook::isPlain(const Element& /*element*/) const {
    return false;
}

QVariant ToolkitLook::property(const Element& element, const QString& name, bool* isKnown) const {
    *isKnown = false;
    if (element.isItem())
        return {};
    const QByteArray bytes = name.toUtf8();
    *isKnown = element.object->metaObject()->indexOfProperty(bytes.constData()) >= 0 ||
               element.object->dynamicPropertyNames().contains(bytes);
    return *isKnown ? element.object->property(bytes.constData()) : QVariant();
}

QStringList ToolkitLook::propertyNames(const Element& element) const {
    QStringList names;
    if (element.isItem())
        return names;
    const QMetaObject* const metaObject = element.object->metaObject();
    for (int index = 0; index < metaObject->propertyCount(); ++index) {
        const QString name = QString::fromUtf8(metaObject->property(index).name());
        if (metaObject->property(index).isReadable() && !names.contains(name))
            names.append(name);
    }
    for (const QByteArray& name : element.object->dynamicPropertyNames())
        names.append(QString::fromUtf8(name));
    return names;
}

bool ToolkitPlace::receivesThrough(const Element& element, const Element& hit,
                                   Qt::MouseButton /*button*/) const {
    // The element or something in it.
    for (Element each = hit; !each.isNull(); each = each.toolkit->parent(each)) {
        if (each == element)
            return true;
    }
    return false;
}

Element ToolkitPlace::openListOver(const Element& /*element*/) const {
    return {};
}

bool ToolkitPlace::scrollIntoView(const Element& /*element*/,
                                  const std::optional<QPoint>& /*point*/) const {
    return false;
}

Outcome<Field> ToolkitAct::field(const Element& element) const {
    return fail(
        FailureKind::Refused,
        QStringLiteral("%1 is no field that takes text").arg(Session::self()->describe(element)));
}

Outcome<CheckMark> ToolkitAct::checkMark(const Element& element) const {
    const auto boolProperty = [&element](const char* name, bool* isKnown) {
        return element.toolkit->property(element, QString::fromLatin1(name), isKnown).toBool();
    };
    const bool isExclusive =
        !element.isItem() && element.object->property("autoExclusive").toBool();
    // Boxes that may have three states.
    const QVariant state = element.isItem() ? QVariant() : element.object->property("checkState");
    if (state.isValid())
        return CheckMark{checkStateOf(state), isExclusive};
    bool isKnown = false;
    const bool isCheckable = boolProperty("checkable", &isKnown) || !isKnown;
    const bool isChecked = boolProperty("checked", &isKnown);
    if (!isCheckable || !isKnown)
        return fail(FailureKind::Refused,
                    QStringLiteral("%1 can't be checked").arg(Session::self()->describe(element)));
    return CheckMark{isChecked ? CheckState::Checked : CheckState::Unchecked, isExclusive};
}

QRect ToolkitAct::clickArea(const Element& element, ClickPurpose /*purpose*/) const {
    return element.toolkit->globalBounds(element);
}

void ToolkitAct::takeFocus(const Element& /*element*/, Qt::FocusReason /*reason*/) const {}

void ToolkitAct::tellTyping(const Element& /*element*/, Typing /*typing*/) const {}

std::function<void()> ToolkitAct::closerOf(const Element& /*element*/) const {
    return {};
}

int ToolkitAct::quietTime() const {
    return 2;
}

CheckState checkStateOf(const QVariant& state) {
    switch (state.toInt()) {
        case Qt::Unchecked:
            return CheckState::Unchecked;
        case Qt::PartiallyChecked:
            return CheckState::Partly;
        default:
            return CheckState::Checked;
    }
}

Menu::~Menu() = default;

Outcome<Element> Menu::element() const {
    return Session::self()->find(m_element.handle());
}

Outcome<Element> ToolkitItems::item(const Element& view, const ItemPath& /*path*/, int /*row*/,
                                    int /*column*/) const {
    return fail(FailureKind::Refused,
                QStringLiteral("%1 has no items").arg(Session::self()->describe(view)));
}

Outcome<ViewCells> ToolkitItems::cells(const Element& view, const CellRange& /*range*/) const {
    return fail(FailureKind::Refused,
                QStringLiteral("%1 has no cells").arg(Session::self()->describe(view)));
}

Element ToolkitRecord::meant(const Element& element) const {
    Element meant = element;
    while (meant.toolkit->isInternal(meant)) {
        const Element parent = meant.toolkit->parent(meant);
        if (parent.isNull())
            break;
        meant = parent;
    }
    return meant;
}

Wire::ObservedRole ToolkitRecord::role(const Element& /*element*/) const {
    return Wire::ObservedRole::Place;
}

Wire::ObservedState ToolkitRecord::state(const Element& element) const {
    Wire::ObservedState state;
    if (const Outcome<CheckMark> mark = element.toolkit->checkMark(element))
        state.check = mark->state == CheckState::Checked     ? Qt::Checked
                      : mark->state == CheckState::Unchecked ? Qt::Unchecked
                                                             : Qt::PartiallyChecked;
    return state;
}

std::optional<RecordedWay> ToolkitRecord::wayTo(const Element& /*item*/) const {
    return std::nullopt;
}

Element ToolkitRecord::openPopup() const {
    return {};
}

bool ToolkitRecord::opensMenu(const Element& /*entry*/) const {
    return false;
}

Element ToolkitRecord::clickedBy(const Element& /*receiver*/) const {
    return {};
}

Element ToolkitRecord::chosenBy(const Element& /*popup*/, const QKeyEvent& /*key*/) const {
    return {};
}

bool ToolkitItems::isWithinClosed(const Element& /*item*/) const {
    return false;
}

void ToolkitItems::openTowards(const Element& /*view*/, const ItemPath& /*path*/) const {}

std::optional<ItemPopup> ToolkitItems::itemPopup(const Element& /*view*/) const {
    return std::nullopt;
}

std::shared_ptr<const Menu> ToolkitItems::menu(const Element& /*element*/) const {
    return nullptr;
}

}  // namespace Tamrix::Agent
