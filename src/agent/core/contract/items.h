#pragma once

#include <QColor>
#include <QPoint>
#include <QStringList>
#include <QVector>
#include <memory>
#include <optional>

#include "agent/core/element.h"
#include "agent/core/elementref.h"
#include "agent/core/itempath.h"
#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix::Agent {

class Menu;

/// An entry of a menu or menu bar, as it is at the moment.
struct MenuEntry {
    QString text;
    bool isShown = true;
    /// False for what is known to be disabled; what takes the click may be disabled all the same.
    bool isEnabled = true;
    /// What takes the click...
    Element target;
    /// ...and where, relative to its bounds; none for its middle.
    std::optional<QPoint> offset;
    /// The menu behind the entry; null for none.
    std::shared_ptr<const Menu> below;
};

/// A menu or menu bar that is gone through from entry to entry. It may be deleted meanwhile: then
/// it has no entries and stays closed.
class TAMRIX_EXPORT Menu {
public:
    explicit Menu(const Element& element) : m_element(element) {}
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;
    virtual ~Menu();

    /// A failure of kind Gone when it does not exist any more.
    Outcome<Element> element() const;

    enum class State { Closed, Opening, Open };
    virtual State state() const = 0;
    virtual QVector<MenuEntry> entries() const = 0;
    /// A name for people.
    virtual QString label() const = 0;

private:
    ElementRef m_element;
};

/// A list of items that a click opens.
struct ItemPopup {
    bool isOpen = false;
    /// Where the click goes, relative to the element's bounds; none for its middle.
    std::optional<QPoint> button = std::nullopt;
    /// Whether the items can be found while it is closed.
    bool knowsItems = false;
};

/// A part of a view's cells. Rows and columns count from 0.
struct CellRange {
    int firstRow = 0;
    int firstColumn = 0;
    /// -1 for all from the first one on.
    int rowCount = -1;
    int columnCount = -1;
};

/// What is in the cells of a view.
struct ViewCells {
    /// Of the whole view.
    int rowCount = 0;
    int columnCount = 0;
    /// How many cells of the range each row has.
    int columns = 0;
    /// Of the range, row by row; a background of 0 is none.
    QStringList texts = {};
    QVector<QRgb> backgrounds = {};

    /// How many cells are told at once at most.
    static constexpr int most = 100'000;
};

/// Of a toolkit: the items of views, boxes, bars and menus, and how they open.
class TAMRIX_EXPORT ToolkitItems {
public:
    /// The item of a view, menu, bar or box; `path` null: by row and column. A failure of kind
    /// NotFound when there is none, Refused for what has no items.
    virtual Outcome<Element> item(const Element& view, const ItemPath& path, int row,
                                  int column) const;
    /// The cells of a table, list or tree, at its top level, whether they are shown or not. A
    /// failure of kind Refused for what has none, and for a range of more than ViewCells::most.
    virtual Outcome<ViewCells> cells(const Element& view, const CellRange& range) const;
    /// Whether one of the items above an item has to be opened for it to be seen.
    virtual bool isWithinClosed(const Element& item) const;
    /// Does one thing that brings an item nearer: opens the next closed item above it, or scrolls
    /// an open list so that the item stays where it is. Code of the application runs below it.
    virtual void openTowards(const Element& view, const ItemPath& path) const;
    /// None for an element whose items can be clicked as they are.
    virtual std::optional<ItemPopup> itemPopup(const Element& view) const;
    /// Null for what is no menu or menu bar.
    virtual std::shared_ptr<const Menu> menu(const Element& element) const;

protected:
    ~ToolkitItems() = default;
};

}  // namespace Tamrix::Agent
