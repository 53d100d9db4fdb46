#include "platform/objectmodel/display/windownames.h"

#include <gtest/gtest.h>

#include "platform/objectmodel/nearmisstext.h"

namespace Tamrix::Display {
namespace {

WindowFacts window(xcb_window_t id, const QString& title, const QString& windowClass,
                   bool isVisible = true) {
    WindowFacts facts;
    facts.id = id;
    facts.title = title;
    facts.windowClass = windowClass;
    facts.type = "normal";
    facts.pid = 100 + id;
    facts.isVisible = isVisible;
    return facts;
}

const WindowList windows{window(1, "Editor - a's.txt", "Editor"),
                         window(2, "Editor - b.txt", "Editor", false),
                         window(3, "Find", "Editor"),
                         window(4, "Find", "Other"),
                         window(5, "", "Other"),
                         window(6, "", ""),
                         window(7, "", "")};

TEST(WindowNamesTest, NamesFindWindows) {
    const struct {
        const char* name;
        /// 0 for none.
        xcb_window_t found;
    } table[] = {
        {"{title='Find'}", 3},
        {"{title='Find' occurrence='2'}", 4},
        {"{title='Find' occurrence='3'}", 0},
        {"{type='Window' class='Other'}", 4},
        {"{title*='Editor*'}", 1},
        // Hidden ones only where nothing visible matches, or the name says so.
        {"{title='Editor - b.txt'}", 2},
        {"{title*='Editor*' visible='false'}", 2},
        {"{title*='Editor*' visible='0'}", 2},
        {"{title~='^F.n' class='Other' visible='1'}", 4},
        {"{pid='104'}", 4},
        {"{title='find'}", 0},
        {"{type='QWidget'}", 0},
        {"{type*='Win*' text='Find'}", 0},
        {"{title='Find' window={type='Window'}}", 0},
    };
    for (const auto& row : table) {
        const Outcome<WindowName> name = WindowName::of(ObjectName(QString(row.name)));
        ASSERT_TRUE(name) << row.name;
        const WindowFacts* const found = name->findIn(windows);
        EXPECT_EQ(found ? found->id : 0, row.found) << row.name;
    }
    EXPECT_EQ(WindowName::of(ObjectName(QString("{title~='('}"))).error().kind,
              FailureKind::BadArgument);
}

TEST(WindowNamesTest, EachWindowHasANameThatFindsIt) {
    for (const WindowFacts& each : windows) {
        const QString text = realNameOf(each, windows);
        const Outcome<WindowName> name = WindowName::of(ObjectName(text));
        ASSERT_TRUE(name) << qPrintable(text);
        ASSERT_TRUE(name->findIn(windows)) << qPrintable(text);
        EXPECT_EQ(name->findIn(windows)->id, each.id) << qPrintable(text);
    }
    EXPECT_EQ(realNameOf(windows[0], windows), "{title='Editor - a\\'s.txt' type='Window'}");
    EXPECT_EQ(realNameOf(windows[3], windows), "{class='Other' title='Find' type='Window'}");
}

TEST(WindowNamesTest, WhatNearlyMatchedIsTold) {
    const auto missOf = [](const char* text) {
        const ObjectName name{QString(text)};
        return missText(name, WindowName::of(name)->nearMissesIn(windows)).toStdString();
    };
    EXPECT_EQ(missOf("{class='Editor' title='Replace'}"),
              "No object matches {class='Editor' title='Replace'}. Nearest:\n"
              "  Window 'Editor - a's.txt': title is 'Editor - a's.txt', wanted 'Replace'\n"
              "  Window 'Editor - b.txt': title is 'Editor - b.txt', wanted 'Replace'\n"
              "  Window 'Find': title is 'Find', wanted 'Replace'");
    EXPECT_EQ(missOf("{occurrence='9' title='Find'}"),
              "No object matches {occurrence='9' title='Find'}. Nearest: 2 objects match, wanted "
              "occurrence 9");
    EXPECT_TRUE(WindowName::of(ObjectName(QString("{type='QPushButton'}")))->asksForOtherTypes());
    EXPECT_FALSE(WindowName::of(ObjectName(QString("{type*='W*'}")))->asksForOtherTypes());
}

}  // namespace
}  // namespace Tamrix::Display
