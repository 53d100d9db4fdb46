// What agents are told of what is visible, from outlines.

#include "runner/mcp/screen/view.h"

#include <gtest/gtest.h>

#include "runner/mcp/screen/changes.h"
#include "runner/mcp/screen/viewtext.h"
#include "runner/mcp/session/session.h"
#include "support/printqt.h"

namespace Tamrix::Mcp {
namespace {

using Object = Wire::OutlinedObject;

constexpr int enabled = Object::Enabled;
constexpr int window = enabled | Object::Window;
constexpr int item = enabled | Object::Item;
constexpr int field = enabled | Object::Entered;

/// One object of an outline.
struct Row {
    int depth;
    const char* type;
    int handle;
    int state = enabled;
    QString text = {};
    QString name = {};
    QString label = {};
};

Wire::ObjectOutline outlineOf(const std::vector<Row>& rows) {
    Wire::ObjectOutline outline;
    for (const Row& row : rows) {
        if (!outline.types.contains(row.type))
            outline.types.append(row.type);
        Object object;
        object.depth = row.depth;
        object.type = outline.types.indexOf(row.type);
        object.handle = static_cast<quint64>(row.handle);
        object.state = static_cast<quint16>(row.state);
        object.text = row.text;
        object.name = row.name;
        object.label = row.label;
        outline.objects.append(object);
    }
    return outline;
}

class Views : public testing::Test {
protected:
    View view(const std::vector<Row>& rows, int application = 1) {
        View view;
        appendView(application, outlineOf(rows), &refs, &view);
        refs.note(view);
        return view;
    }
    QString text(const std::vector<Row>& rows, const ViewPart& part = {}) {
        return viewText(view(rows), part);
    }

    Refs refs;
};

const std::vector<Row> form = {
    {0, "QMainWindow", 10, window, "Form", "main"},
    {1, "QWidget", 11, enabled, "", "centralwidget"},
    {2, "QLabel", 12, enabled, "Name"},
    {2, "QLineEdit", 13, field | Object::Focused, "Anna", "nameEdit", "Name"},
    {2, "QCheckBox", 14, enabled | Object::Checkable | Object::Checked, "On"},
    {2, "QCheckBox", 15, Object::Checkable | Object::PartlyChecked, "Off"},
    {2, "QListView", 16},
    {3, "ListItem", 17, item, "one"},
    {3, "ListItem", 18, item | Object::Selected, "two"},
    {3, "ListItem", 19, item},
    {2, "Canvas", 20},
    {2, "QToolButton", 21, enabled, "", "", "Save it"},
};

TEST_F(Views, AreShortLines) {
    EXPECT_EQ(text(form), R"(e1 QMainWindow "Form" #main
 e2 QLabel "Name"
 e3 QLineEdit "Name" #nameEdit = "Anna" [focused]
 e4 QCheckBox "On" [checked]
 e5 QCheckBox "Off" [partly checked] [disabled]
 e6 QListView
  e7 ListItem "one"
  e8 ListItem "two" [selected]
 e9 Canvas
 e10 QToolButton "Save it"
)");
    // Refs stay, also those of an object that comes back; another application has its own.
    EXPECT_EQ(text({form[0], {1, "QToolButton", 21, enabled, "", "", "Save it"}}),
              "e1 QMainWindow \"Form\" #main\n e10 QToolButton \"Save it\"\n");
    EXPECT_EQ(viewText(view({form[0]}, 2), {}), "e11 QMainWindow \"Form\" #main\n");
    EXPECT_EQ(refs.known(3)->facts.name, "nameEdit");
    EXPECT_EQ(refs.known(0), nullptr);
    EXPECT_EQ(refs.known(12), nullptr);
}

TEST_F(Views, LeaveOutWhatGoesWithoutSaying) {
    EXPECT_EQ(text({{0, "QWidget", 1, window, "Parts"},
                    {1, "QLabel", 2},
                    {1, "QScrollBar", 3, field, "5"},
                    {1, "QTableView", 4},
                    {2, "QScrollBar", 5, field, "0"},
                    {2, "QHeaderViewItem", 6, item, "1"},
                    {2, "QHeaderViewItem", 7, item, "2"},
                    {2, "QHeaderViewItem", 8, item, "1"},
                    {2, "QHeaderViewItem", 9, item, "2024"},
                    {1, "QSpinBox", 10, field, "7"},
                    {2, "QLineEdit", 11, field, "7", "qt_spinbox_lineedit"},
                    {1, "QPushButton", 12, enabled, "OK", "qt_ok"},
                    {1, "QWidgetAction", 13},
                    {1, "QAction", 14, enabled, "File"},
                    {0, "QAction", 15, enabled, "Open"}}),
              R"(e1 QWidget "Parts"
 e2 QScrollBar = "5"
 e3 QTableView
  e4 QHeaderViewItem "2024"
 e5 QSpinBox = "7"
 e6 QPushButton "OK"
 e7 QAction "File"
)");
}

TEST_F(Views, TellControlsOfQtQuickWithoutTheirParts) {
    EXPECT_EQ(text({{0, "ApplicationWindow", 1, window, "Orders"},
                    {1, "QQuickContentItem", 17, enabled | Object::Focused},
                    {2, "QQuickColumnLayout", 2},
                    {2, "TextField", 3, field, "", "name"},
                    {3, "QQuickPlaceholderText", 4, enabled, "Name", "placeholder"},
                    {2, "ComboBox", 5, field, "Red"},
                    {3, "QQuickColorImage", 6, enabled, "", "indicator"},
                    {3, "ButtonPanel", 7, enabled, "", "background"},
                    {3, "QQuickTextField", 8, Object::Entered, "Red", "contentItem"},
                    {2, "QQuickListView", 9},
                    {3, "ItemDelegate", 10, enabled, "Row 0"},
                    {4, "QQuickIconLabel", 11, enabled, "&Row 0", "contentItem"},
                    {5, "QQuickMnemonicLabel", 12, enabled, "&Row 0", "label"},
                    {2, "GroupBox", 13, enabled, "Send"},
                    {3, "Button", 14, enabled, "Send"},
                    {4, "QQuickText", 15, enabled, "Sends now", "contentItem"},
                    {2, "QQuickMouseArea", 16}}),
              R"(e1 ApplicationWindow "Orders"
 e2 TextField "Name" #name = ""
 e3 ComboBox = "Red"
 e4 QQuickListView
  e5 ItemDelegate "Row 0"
 e6 GroupBox "Send"
  e7 Button "Send"
   e8 QQuickText "Sends now" #contentItem
 e9 QQuickMouseArea
)");
}

TEST_F(Views, TellThePartThatIsWanted) {
    view(form);
    EXPECT_EQ(text(form, {6, {}, -1}),
              "e6 QListView\n e7 ListItem \"one\"\n e8 ListItem \"two\" [selected]\n");
    EXPECT_EQ(text(form, {6, {}, 0}), "e6 QListView (+2 below)\n");
    EXPECT_EQ(text(form, {0, "NAME", -1}),
              "e2 QLabel \"Name\"\ne3 QLineEdit \"Name\" #nameEdit = \"Anna\" [focused]\n");
    EXPECT_EQ(text(form, {6, "name", -1}),
              "nothing visible has \"name\" in its type, name or text\n");
    EXPECT_EQ(text({}), "nothing is visible\n");
}

TEST_F(Views, EndBeforeTheyCostTooMuch) {
    std::vector<Row> rows{{0, "QWidget", 1, window, "Long"}};
    for (int number = 2; number < 400; ++number)
        rows.push_back({1, "QLabel", number, enabled, QString("ä").repeated(100)});
    const QString shown = text(rows);
    EXPECT_LT(shown.toUtf8().size(), longestViewText + 100);
    EXPECT_TRUE(shown.endsWith(" more: ask for less with root, find or depth\n"));
    EXPECT_EQ(shown.section('\n', 1, 1), " e2 QLabel \"" + QString("ä").repeated(80) + "...\"");
}

TEST_F(Views, QuoteTextsOnOneLine) {
    EXPECT_EQ(quotedText("a\"b\\c\nd\t\x1b"), QString("\"a\\\"b\\\\c\\nd\\t\ufffd\""));
    EXPECT_EQ(quotedText("a\u2028b\u202ec\u200dd"), QString("\"a\ufffdb\ufffdc\u200dd\""));
    // No half of a pair is left at the end.
    EXPECT_EQ(quotedText(QString("x").repeated(79) + "\U0001f600y"),
              '"' + QString("x").repeated(79) + "...\"");
}

TEST_F(Views, TellWhatChanged) {
    const View before = view(form);
    std::vector<Row> rows = form;
    EXPECT_EQ(changesText(before, view(rows)), "");
    // The focus alone is no change.
    rows[3].state = field;
    EXPECT_EQ(changesText(before, view(rows)), "");
    rows[3].text = "Bo";
    rows[4].state = Object::Checkable;
    rows.erase(rows.begin() + 6, rows.begin() + 10);
    rows.push_back({0, "QDialog", 30, window | Object::Modal, "Sure?"});
    rows.push_back({1, "QPushButton", 31, enabled, "Yes"});
    rows.insert(rows.begin() + 6, {2, "QLabel", 32, enabled, "!"});
    EXPECT_EQ(changesText(before, view(rows)),
              R"(e3 QLineEdit "Name" #nameEdit = "Bo" (was "Anna")
e4 QCheckBox "On" [unchecked] [disabled] (was [checked])
new e11 QLabel "!"
new window e12 QDialog "Sure?" [modal]
 e13 QPushButton "Yes"
gone e6 QListView (+2 below)
)");
    // Much is counted.
    std::vector<Row> many;
    for (int number = 100; number < 200; ++number)
        many.push_back({0, "QLabel", number, enabled, "x"});
    const QString text = changesText({}, view(many));
    EXPECT_EQ(text.count('\n'), 17);
    EXPECT_TRUE(text.endsWith("... 84 more: see snapshot\n")) << text.toStdString();
}

TEST_F(Views, FindWhatIsNearest) {
    const View all = view(form);
    const auto nearest = [&](const Row& row) {
        const View gone = view({row}, 3);
        const int index = nearestTo(all, gone.front());
        return index < 0 ? QString("none") : objectLine(all[static_cast<size_t>(index)]);
    };
    EXPECT_EQ(nearest({0, "QCheckBox", 50, enabled, "On"}), "e4 QCheckBox \"On\" [checked]");
    EXPECT_EQ(nearest({0, "QTextEdit", 51, field, "", "nameEdit", "Name"}),
              "e3 QLineEdit \"Name\" #nameEdit = \"Anna\" [focused]");
    EXPECT_EQ(nearest({0, "QCheckBox", 52, enabled, "Other"}), "none");
}

TEST(RefNumbers, AreReadStrictly) {
    const std::pair<const char*, int> rows[] = {{"e7", 7},  {"E12", 12}, {" e1 ", 1},
                                                {"e0", 0},  {"7", 0},    {"e-1", 0},
                                                {"e1x", 0}, {"", 0},     {"e9999999999", 0}};
    for (const auto& [text, number] : rows)
        EXPECT_EQ(refNumber(text), number) << text;
}

}  // namespace
}  // namespace Tamrix::Mcp
