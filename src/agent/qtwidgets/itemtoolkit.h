#pragma once

#include <QStringList>

#include "agent/core/itempath.h"
#include "agent/core/toolkit.h"

class QAbstractItemView;
class QTreeView;
class QWidget;

namespace Tamrix::Agent {

/// Items of views, headers, combo boxes and tab bars. They are no QObjects, so their types are
/// names of ours, `itemTypes` in the source, and every one is of the type "QModelItem" too. Besides
/// the vocabulary items have the properties row, column, toolTip and, where it makes sense,
/// checked, selected, current and expanded.
class ItemToolkit : public Toolkit {
public:
    ItemToolkit();
    ~ItemToolkit() override;

    bool knows(const QObject* object) const override;
    void topLevels(QVector<Element>* elements) const override;
    void children(const Element& element, bool withItems,
                  QVector<Element>* elements) const override;
    Element parent(const Element& element) const override;
    Element window(const Element& element) const override;
    bool isAlive(const Element& element) const override;
    QString typeName(const Element& element) const override;
    QStringList superTypes(const Element& element) const override;
    TypeTraits traitsOf(const QString& typeName) const override;
    QString text(const Element& element) const override;
    bool isVisible(const Element& element) const override;
    QString hiddenReason(const Element& element) const override;
    bool isEnabled(const Element& element) const override;
    QVariant property(const Element& element, const QString& name, bool* isKnown) const override;
    QStringList propertyNames(const Element& element) const override;
    QRect globalBounds(const Element& element) const override;
    QRect visibleBounds(const Element& element) const override;
    QWindow* nativeWindow(const Element& element) const override;
    Element elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                      Qt::MouseButton button) const override;
    bool receivesThrough(const Element& element, const Element& hit,
                         Qt::MouseButton button) const override;
    Element blockedBy(const Element& element) const override;
    Element openListOver(const Element& element) const override;
    bool scrollIntoView(const Element& element, const std::optional<QPoint>& point) const override;
    QImage grab(const Element& element) const override;

    Outcome<CheckMark> checkMark(const Element& item) const override;
    QRect clickArea(const Element& item, ClickPurpose purpose) const override;
    void takeFocus(const Element& item, Qt::FocusReason reason) const override;
    void tellTyping(const Element& item, Typing typing) const override;
    bool isWithinClosed(const Element& item) const override;

    // itemrecord.cpp
    Element meant(const Element& item) const override;
    Wire::ObservedRole role(const Element& item) const override;
    std::optional<RecordedWay> wayTo(const Element& item) const override;
};

/// Kinds of items, for Element::kind.
enum ItemKind { ModelItem = 1, HeaderSection = 2, ComboBoxItem = 3, Tab = 4, GraphicsItem = 5 };

/// Appends the items at the top level of a view, header, combo box or tab bar. Up to some thousand
/// come all of them, of more those that are shown.
void appendItems(QWidget* holder, QVector<Element>* elements);
/// The cells of a view that has a model.
Outcome<ViewCells> cellsOf(QAbstractItemView* view, const CellRange& range);
/// The item at a point of a widget: a view's viewport, a tab bar. Null for none.
Element itemAt(const QWidget* widget, const QPoint& point);
/// The current item of a view, combo box or tab bar; null for none.
Element currentItemOf(QWidget* holder);
/// The item at the end of a path, or for a null path at a row and column. Null for none.
Element findItem(QWidget* holder, const ItemPath& path, int row, int column);
/// Opens the next closed item of a tree on the way to an item: a model may make what is below it
/// only then. False when there is none.
bool expandTowards(QTreeView* tree, const ItemPath& path);
/// An item by its index in a view's or box's model, or by its number among tabs and sections.
Element makeItem(QWidget* holder, ItemKind kind, const QModelIndex& index, int number = -1);

}  // namespace Tamrix::Agent
