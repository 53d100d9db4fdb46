// Maps of object names that are Tcl scripts, read by the real program.

#include "support/scriptnames.h"

namespace Tamrix {
namespace {

using namespace Test;

class TclObjectNames : public ScriptNames {
protected:
    TclObjectNames() : ScriptNames("tcl", TAMRIX_TEST_PREFIX) {}
};

TEST_F(TclObjectNames, VariablesOfTheNamespaceAreNames) {
    use("namespace eval names {\n"
        "    variable window {type W windowTitle* Book*}\n"
        "}\n"
        "puts {not part of the names}\n"
        "source [file join [file dirname [info script]] neighbour.tcl]\n"
        "set names::alias $names::window\n"
        "set names::nul [dict create text a\\0b]\n"
        "set names::save [dict replace $names::window visible true occurrence 2 text {Two words}]\n"
        "foreach word {Cut Copy} {\n"
        "    set names::[string tolower $word] \\\n"
        "        [dict create text $word window [dict create {*}$names::window]]\n"
        "}\n"
        "set names::_helper {{no name} 1}\n"
        "set names::word title\n"
        "set names::empty {}\n"
        "set names::array(type) A\n"
        "set title {Two words}\n"
        "proc row {number} { return [list in $names::window row $number] }\n"
        "exit 0\n");
    ASSERT_TRUE(
        writeFile(QFileInfo(path).path() + "/neighbour.tcl", "set names::other {type O}\n"));
    EXPECT_EQ(*ObjectMap::self()->symbolicNames(),
              (QStringList{":alias", ":copy", ":cut", ":nul", ":other", ":save", ":window"}));
    EXPECT_EQ(realName(":nul"), QString("{text='a%1b'}").arg(QChar(0)));
    for (const char* const name : {":cut", "names::cut", "names.cut"})
        EXPECT_EQ(realName(name), "{text='Cut' window={type='W' windowTitle*='Book*'}}") << name;
    EXPECT_EQ(realName(":save"),
              "{occurrence='2' text='Two words' type='W' visible='true' windowTitle*='Book*'}");
    EXPECT_EQ(ObjectMap::self()->symbolicName("{type='O'}"), ":other");
    EXPECT_EQ((*ObjectMap::self()->names())[":cut"].qualifiedName(), "{text='Cut' window=':alias'}")
        << "the first of two names for one object";
}

TEST_F(TclObjectNames, FaultsNameFileAndLine) {
    const std::vector<FaultyScript> rows = {
        {"an error", "namespace eval names {}\n\nerror {no names today}\n"},
        {"an error deeper down", "proc f {} {\n    dict get {} x\n}\nf\n"},
        {"a brace without end", "set names::save [dict create type A\nset names::open {type B}\n"},
        {"a namespace that is not there", "set names::save {type A}\n"},
        {"a name that is not there",
         "namespace eval names {}\nset names::save [dict create in $names::windw]\n"},
        {"a file that is not there", "source nowhere.tcl\n"},
        {"no UTF-8", "namespace eval names {}\n# \xff\n"},
        {"a name that is nested too deep",
         "namespace eval names {}\nset names::a {type A}\n"
         "for {set i 0} {$i < 20} {incr i} {\n    set names::a [dict create in $names::a]\n}\n"},
        {"values that are none",
         "namespace eval names {}\nset names::first [dict create text [list a b]]\n"
         "set names::second [dict create in [dict create x [list 1 2]]]\n"},
        {"malformed properties",
         "namespace eval names {}\nset names::spaced {{a b} 1}\nset names::pattern {text~ (}\n\n"
         "set names::which {type A occurrence 0}\n"},
    };
    EXPECT_TRUE(compareWithGolden("tcl/objectnames.txt", faults(rows)));
}

TEST_F(TclObjectNames, NewNamesStandBehindWhatPeopleWrote) {
    const QByteArray before =
        "# Names of the shop.\r\nnamespace eval names {}\r\n"
        "set names::main_window {type MainWindow}  ;# the first one\r\n\r\n"
        "proc save_button {} {}";
    use(before);
    EXPECT_EQ(add("{text='&Save' type='QPushButton' window={type='MainWindow'}}"),
              ":save_button_2");
    EXPECT_EQ(add("{text='quote \" back\\\\ \\' tab\t line\n ü 😀 \x01 {$[}' type='QLabel'}"),
              ":quote_back_tab_line_label");
    EXPECT_EQ(add("{text='Save As...' type='QWidget'}"), ":save_as_widget");
    EXPECT_EQ(add("{text='$[x]' windowTitle='a long one, so that there is need of a second line, "
                  "or even some more' type='Dialog'}"),
              ":x_dialog");
    EXPECT_EQ(QString::fromUtf8(readFile(path)),
              QString::fromUtf8(
                  before +
                  "\r\nset names::save_button_2 [dict create type QPushButton text {&Save} window "
                  "$names::main_window]\r\n"
                  "set names::quote_back_tab_line_label [dict create \\\r\n    type QLabel \\\r\n"
                  "    text \"quote \\\" back\\\\ ' tab\\t line\\n ü 😀 \\u0001 "
                  "\\{\\$\\[\\}\" \\\r\n]\r\n"
                  "set names::save_as_widget [dict create type QWidget text {Save As...}]\r\n"
                  "set names::x_dialog [dict create \\\r\n    type Dialog \\\r\n"
                  "    text {$[x]} \\\r\n    windowTitle {a long one, so that there is need of a "
                  "second line, or even some more} \\\r\n]\r\n"));
    EXPECT_EQ(realName(":save_button_2"),
              "{text='&Save' type='QPushButton' window={type='MainWindow'}}");
    EXPECT_EQ(realName(":quote_back_tab_line_label"),
              QString::fromUtf8(
                  "{text='quote \" back\\\\ \\' tab\t line\n ü 😀 \x01 {$[}' type='QLabel'}"));
    EXPECT_EQ(add("{type='QPushButton' text='&Save' window={type='MainWindow'}}"),
              ":save_button_2");

    // Nothing can be added behind an end.
    const QByteArray ended = "namespace eval names {}\nset names::a {type A}\nexit\n";
    use(ended);
    EXPECT_EQ(add("{type='Bee'}"),
              "The entry set names::bee [dict create type Bee] can't be added "
              "to '" +
                  path + "': it has no effect behind the end of the script");
    EXPECT_EQ(readFile(path), ended);
}

}  // namespace
}  // namespace Tamrix
