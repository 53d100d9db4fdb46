#include "agent/input/clickarea.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <QStyleOptionGroupBox>
#include <QStyleOptionViewItem>

#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

namespace {

QRect onScreen(const QWidget* widget, const QRect& rect) {
    return QRect(widget->mapToGlobal(rect.topLeft()), rect.size());
}

QRect buttonArea(const QAbstractButton* button, QStyle::SubElement element) {
    QStyleOptionButton option;
    option.initFrom(button);
    option.text = button->text();
    option.icon = button->icon();
    option.iconSize = button->iconSize();
    return onScreen(button, button->style()->subElementRect(element, &option, button));
}

QRect groupMark(const QGroupBox* box) {
    QStyleOptionGroupBox option;
    option.initFrom(box);
    option.text = box->title();
    option.textAlignment = box->alignment();
    option.lineWidth = 1;
    option.midLineWidth = 0;
    option.subControls =
        QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxCheckBox | QStyle::SC_GroupBoxLabel;
    return onScreen(box, box->style()->subControlRect(QStyle::CC_GroupBox, &option,
                                                      QStyle::SC_GroupBoxCheckBox, box));
}

QRect itemMark(const QAbstractItemView* view, const Element& item, const QRect& bounds) {
    QStyleOptionViewItem option;
    option.initFrom(view);
    option.rect = QRect(QPoint(0, 0), bounds.size());
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.text = item.index.data().toString();
    option.viewItemPosition = QStyleOptionViewItem::OnlyOne;
    const QRect mark =
        view->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view);
    return mark.translated(bounds.topLeft());
}

QRect specialArea(const Element& element, const QRect& bounds, bool forMark) {
    if (element.isItem()) {
        const auto* const view = qobject_cast<QAbstractItemView*>(element.object);
        return forMark && view != nullptr && element.index.isValid()
                   ? itemMark(view, element, bounds)
                   : QRect();
    }
    if (const auto* const box = qobject_cast<QCheckBox*>(element.object))
        return buttonArea(box, QStyle::SE_CheckBoxClickRect);
    if (const auto* const radio = qobject_cast<QRadioButton*>(element.object))
        return buttonArea(radio, QStyle::SE_RadioButtonClickRect);
    const auto* const group = qobject_cast<QGroupBox*>(element.object);
    return group != nullptr && group->isCheckable() && forMark ? groupMark(group) : QRect();
}

}  // namespace

QRect clickArea(const Element& element, bool forMark) {
    const QRect bounds = element.toolkit->globalBounds(element);
    const QRect area = specialArea(element, bounds, forMark) & bounds;
    return area.isEmpty() ? bounds : area;
}

}  // namespace Tamrix::Agent
