#include "runner/mcp/screen/view.h"

#include <algorithm>
#include <iterator>

namespace Tamrix::Mcp {

namespace {

using Wire::OutlinedObject;

/// Types of objects that hold and arrange others or adorn them, and that nobody clicks; those of
/// Qt Quick as QML has them.
constexpr const char* containerTypes[] = {"QWidget",
                                          "QFrame",
                                          "QSplitter",
                                          "QStackedWidget",
                                          "QScrollArea",
                                          "QTabWidget",
                                          "QMdiArea",
                                          "QToolBox",
                                          "QDialogButtonBox",
                                          "QToolBar",
                                          "QStatusBar",
                                          "QTabBar",
                                          "QHeaderView",
                                          "QSizeGrip",
                                          "QSplitterHandle",
                                          "QRubberBand",
                                          "QLabel",
                                          "Item",
                                          "QToolBarSeparator",
                                          "QTableCornerButton",
                                          "Row",
                                          "Column",
                                          "Grid",
                                          "Flow",
                                          "RowLayout",
                                          "ColumnLayout",
                                          "GridLayout",
                                          "StackLayout",
                                          "SplitView",
                                          "Loader",
                                          "FocusScope",
                                          "Rectangle",
                                          "Pane",
                                          "Page",
                                          "Control",
                                          "Container",
                                          "Repeater",
                                          "StackView",
                                          "ScrollView",
                                          "PaddedRectangle",
                                          "ColorImage"};

constexpr const char* windowContents[] = {"QQuickContentItem", "QQuickRootItem"};

/// The parts of a control of Qt Quick, named by the control's properties.
constexpr const char* controlParts[] = {"contentItem", "background", "indicator", "handle"};

template <size_t count>
bool isAmong(const char* const (&words)[count], const QString& word) {
    return std::any_of(std::begin(words), std::end(words),
                       [&](const char* each) { return word == QLatin1String(each); });
}

bool isContainerType(const QString& type) {
    const QLatin1String prefix("QQuick");
    return isAmong(containerTypes, type) ||
           (type.startsWith(prefix) && isAmong(containerTypes, type.mid(prefix.size())));
}

/// Whether it writes the words of a control of Qt Quick.
bool isControlText(const OutlinedObject& object, const QString& type) {
    return type == QLatin1String("QQuickIconLabel") ||
           type == QLatin1String("QQuickMnemonicLabel") || isAmong(controlParts, object.name);
}

bool hasSameWords(QString text, QString other) {
    return text.remove(QLatin1Char('&')) == other.remove(QLatin1Char('&'));
}

/// Whether a client knows of the object by that around it: the scroll bars of a view, the line edit
/// of a spin box.
bool isPart(const OutlinedObject& object, const QString& type, const ViewObject& around) {
    if (type == QLatin1String("QScrollBar") || type == QLatin1String("ScrollBar"))
        return !around.is(OutlinedObject::Window) && around.type != QLatin1String("QGroupBox") &&
               !isContainerType(around.type);
    const bool isField =
        (object.state & OutlinedObject::Entered) != 0 && around.is(OutlinedObject::Entered);
    if (isField || isControlText(object, type))
        return hasSameWords(object.text, around.facts.text) &&
               (object.state & OutlinedObject::Focused) == 0;
    return false;
}

/// Whether it writes in an empty field what belongs there, which is as good as a label.
bool isPlaceholder(const QString& type, const ViewObject& around) {
    return type == QLatin1String("QQuickPlaceholderText") && around.facts.label.isEmpty();
}

/// Whether it only stands for something else that is visible: an action with a button of a tool
/// bar, whose menu is closed.
bool isStandIn(const OutlinedObject& object, const QString& type, int parent) {
    return type.endsWith(QLatin1String("Action")) && (parent < 0 || object.text.isEmpty());
}

/// Recognises the sections of headers that have nothing but their numbers.
class SectionNumbers {
public:
    bool isNext(const OutlinedObject& object, const QString& type) {
        if (!type.contains(QLatin1String("HeaderViewItem")))
            return false;
        const bool isNumber =
            object.text == QLatin1String("1") || object.text == QString::number(m_last + 1);
        m_last = isNumber ? object.text.toInt() : -1;
        return isNumber;
    }

private:
    int m_last = -1;
};

/// Whether a line about the object tells a client something.
bool tellsSomething(const OutlinedObject& object, const QString& type) {
    if ((object.state & OutlinedObject::Window) != 0)
        return true;
    // The whole of a window, also when that has the focus.
    if (isAmong(windowContents, type))
        return false;
    const bool hasWords = !object.text.isEmpty() || !object.label.isEmpty();
    const bool hasState = (object.state & (OutlinedObject::Checkable | OutlinedObject::Selected |
                                           OutlinedObject::Focused)) != 0;
    if ((object.state & OutlinedObject::Item) != 0)
        return hasWords || hasState;
    return hasWords || hasState || !(isContainerType(type) || isAmong(controlParts, object.name));
}

}  // namespace

int countBelow(const View& view, int index) {
    const auto first = view.begin() + index;
    const auto end = std::find_if(first + 1, view.end(), [&](const ViewObject& object) {
        return object.depth <= first->depth;
    });
    return static_cast<int>(end - first) - 1;
}

int indexOf(const View& view, int ref) {
    const auto found = std::find_if(view.begin(), view.end(),
                                    [ref](const ViewObject& object) { return object.ref == ref; });
    return found == view.end() ? -1 : static_cast<int>(found - view.begin());
}

int Refs::refOf(const ObjectKey& key) {
    int& ref = m_refs[key];
    if (ref == 0) {
        ViewObject object;
        object.key = key;
        m_known.push_back(object);
        ref = static_cast<int>(m_known.size());
        m_known.back().ref = ref;
    }
    return ref;
}

void Refs::note(const View& view) {
    for (const ViewObject& object : view)
        m_known[static_cast<size_t>(object.ref - 1)] = object;
}

const ViewObject* Refs::known(int ref) const {
    return ref < 1 || ref > static_cast<int>(m_known.size())
               ? nullptr
               : &m_known[static_cast<size_t>(ref - 1)];
}

void appendView(int application, const Wire::ObjectOutline& outline, Refs* refs, View* view) {
    // The nearest object of the view around each level of the outline; -1 at the top.
    std::vector<int> parents;
    SectionNumbers sections;
    for (const OutlinedObject& outlined : outline.objects) {
        parents.resize(static_cast<size_t>(outlined.depth), -1);
        const int parent = parents.empty() ? -1 : parents.back();
        const QString& type = outline.types.at(outlined.type);
        if (parent >= 0 && isPlaceholder(type, (*view)[static_cast<size_t>(parent)])) {
            (*view)[static_cast<size_t>(parent)].facts.label = outlined.text;
            parents.push_back(parent);
            continue;
        }
        const bool isKnown =
            parent >= 0 && isPart(outlined, type, (*view)[static_cast<size_t>(parent)]);
        if (isKnown || isStandIn(outlined, type, parent) || sections.isNext(outlined, type) ||
            !tellsSomething(outlined, type)) {
            parents.push_back(parent);
            continue;
        }
        ViewObject object;
        object.key = {application, outlined.handle};
        object.ref = refs->refOf(object.key);
        object.parent = parent;
        object.depth = parent < 0 ? 0 : (*view)[static_cast<size_t>(parent)].depth + 1;
        object.type = type;
        object.facts = outlined;
        parents.push_back(static_cast<int>(view->size()));
        view->push_back(object);
    }
}

}  // namespace Tamrix::Mcp
