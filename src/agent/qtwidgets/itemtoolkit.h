#pragma once

#include <QStringList>

#include "agent/core/toolkit.h"

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
    QString text(const Element& element) const override;
    bool isVisible(const Element& element) const override;
    bool isEnabled(const Element& element) const override;
    QVariant property(const Element& element, const QString& name, bool* isKnown) const override;
    QStringList propertyNames(const Element& element) const override;
    QRect globalBounds(const Element& element) const override;
    QRect visibleBounds(const Element& element) const override;
    QWindow* nativeWindow(const Element& element) const override;
    Element elementAt(const Element& inWindowOf, const QPoint& globalPoint) const override;
    bool receivesThrough(const Element& element, const Element& hit) const override;
    Element blockedBy(const Element& element) const override;
    bool scrollIntoView(const Element& element) const override;
    QImage grab(const Element& element) const override;
    bool isItemType(const QString& typeName) const override;
};

/// Kinds of items, for Element::kind.
enum ItemKind { ModelItem = 1, HeaderSection = 2, ComboBoxItem = 3, Tab = 4, GraphicsItem = 5 };

/// Appends the items at the top level of a view, header, combo box or tab bar. Up to some thousand
/// come all of them, of more those that are shown.
void appendItems(QWidget* holder, QVector<Element>* elements);
/// The item at a point of a widget: a view's viewport, a tab bar. Null for none.
Element itemAt(const QWidget* widget, const QPoint& point);
/// The current item of a view, combo box or tab bar; null for none.
Element currentItemOf(QWidget* holder);
/// The item with a path of texts, or for a null text at a row and column. Null with a reason.
Element findItem(QWidget* holder, const QString& text, int row, int column, QString* reason);

}  // namespace Tamrix::Agent
