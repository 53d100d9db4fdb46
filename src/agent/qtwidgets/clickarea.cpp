#include "agent/qtwidgets/clickarea.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <QStyleOptionGroupBox>
#include <QStyleOptionViewItem>

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

}  // namespace

QRect actingPart(const QWidget* widget, ClickPurpose purpose) {
    if (const auto* const box = qobject_cast<const QCheckBox*>(widget))
        return buttonArea(box, QStyle::SE_CheckBoxClickRect);
    if (const auto* const radio = qobject_cast<const QRadioButton*>(widget))
        return buttonArea(radio, QStyle::SE_RadioButtonClickRect);
    const auto* const group = qobject_cast<const QGroupBox*>(widget);
    return group && group->isCheckable() && purpose == ClickPurpose::Mark ? groupMark(group)
                                                                          : QRect();
}

QRect markOfItem(const QAbstractItemView* view, const QModelIndex& index, const QRect& bounds) {
    QStyleOptionViewItem option;
    option.initFrom(view);
    option.rect = QRect(QPoint(0, 0), bounds.size());
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.text = index.data().toString();
    option.viewItemPosition = QStyleOptionViewItem::OnlyOne;
    const QRect mark =
        view->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view);
    return mark.translated(bounds.topLeft());
}

}  // namespace Tamrix::Agent
