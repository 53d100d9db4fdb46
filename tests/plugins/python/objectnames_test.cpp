// Maps of object names that are Python modules, read by the real program.

#include "support/scriptnames.h"

namespace Tamrix {
namespace {

using namespace Test;

class PythonObjectNames : public ScriptNames {
protected:
    PythonObjectNames() : ScriptNames("py", TAMRIX_TEST_PREFIX) {}
};

TEST_F(PythonObjectNames, VariablesOfTheModuleAreNames) {
    use("import os, sys\n"
        "from neighbour import *\n"
        "print('not part of the names')\n"
        "window = {'type': 'W', 'windowTitle*': 'Book*'}\n"
        "alias = window\n"
        "nul = {'text': 'a\\0b'}\n"
        "save = dict(window, visible=True, occurrence=2)\n"
        "for word in ('Cut', 'Copy'):\n"
        "    globals()[word.lower()] = {'text': word, 'window': window}\n"
        "_helper = {'no name': 1}\n"
        "def row(number):\n"
        "    return {'in': window, 'row': number}\n"
        "sys.exit(0)\n");
    ASSERT_TRUE(writeFile(QFileInfo(path).path() + "/neighbour.py", "other = {'type': 'O'}\n"));
    EXPECT_EQ(*ObjectMap::self()->symbolicNames(),
              (QStringList{":alias", ":copy", ":cut", ":nul", ":other", ":save", ":window"}));
    EXPECT_EQ(realName(":nul"), QString("{text='a%1b'}").arg(QChar(0)));
    EXPECT_EQ(realName("names.cut"), "{text='Cut' window={type='W' windowTitle*='Book*'}}");
    EXPECT_EQ(realName(":save"), "{occurrence='2' type='W' visible='true' windowTitle*='Book*'}");
    EXPECT_EQ(ObjectMap::self()->symbolicName("{type='O'}"), ":other");
    EXPECT_EQ((*ObjectMap::self()->names())[":cut"].qualifiedName(), "{text='Cut' window=':alias'}")
        << "the first of two names for one object";
}

TEST_F(PythonObjectNames, FaultsNameFileAndLine) {
    const std::vector<FaultyScript> rows = {
        {"an exception", "import os\n\nraise ValueError('no names today')\n"},
        {"an exception deeper down", "def f():\n    return {}['x']\n\nf()\n"},
        {"a syntax error", "save = {'type': 'A',\nopen = {'type': 'B'}\n"},
        {"a name that is not there", "save = {'type': 'A', 'window': windw}\n"},
        {"a module that is not there", "import nowhere\n"},
        {"no UTF-8", "save = {}\n# \xff\n"},
        {"a NUL", QByteArray("save = 1\nx = '\0'\n", 18)},
        {"a name within itself", "a = {'type': 'A'}\nb = {'in': a}\na['in'] = b\n"},
        {"values that are none",
         "first = {'type': None}\nsecond = {'text': ['a']}\nthird = {'in': {'x': print}}\n"},
        {"malformed properties",
         "spaced = {'a b': 1}\npattern = {'text~': '('}\n\nwhich = {'type': 'A', "
         "'occurrence': 0}\n"},
    };
    EXPECT_TRUE(compareWithGolden("python/objectnames.txt", faults(rows)));
}

TEST_F(PythonObjectNames, NewNamesStandBehindWhatPeopleWrote) {
    const QByteArray before =
        "# Names of the shop.\r\nmain_window = {'type': 'MainWindow'}  # the first one\r\n\r\n"
        "def save_button(): pass";
    use(before);
    EXPECT_EQ(add("{text='&Save' type='QPushButton' window={type='MainWindow'}}"),
              ":save_button_2");
    EXPECT_EQ(add("{text='quote \" back\\\\ \\' tab\t line\n ü 😀 \x01' type='QLabel'}"),
              ":quote_back_tab_line_label");
    EXPECT_EQ(add("{text='Import' type='QWidget'}"), ":import_widget");
    EXPECT_EQ(add("{text='click'}"), ":click_2") << "a function";
    EXPECT_EQ(add("{text='with'}"), ":with_2") << "a word of Python";
    EXPECT_EQ(
        QString::fromUtf8(readFile(path)),
        QString::fromUtf8(
            before + "\r\nsave_button_2 = {\"type\": \"QPushButton\", \"text\": \"&Save\", "
                     "\"window\": main_window}\r\n"
                     "quote_back_tab_line_label = {\"type\": \"QLabel\", \"text\": \"quote \\\" "
                     "back\\\\ ' tab\\t line\\n ü 😀 \\u0001\"}\r\n"
                     "import_widget = {\"type\": \"QWidget\", \"text\": \"Import\"}\r\n"
                     "click_2 = {\"text\": \"click\"}\r\n"
                     "with_2 = {\"text\": \"with\"}\r\n"));
    EXPECT_EQ(realName(":save_button_2"),
              "{text='&Save' type='QPushButton' window={type='MainWindow'}}");
    EXPECT_EQ(
        realName(":quote_back_tab_line_label"),
        QString::fromUtf8("{text='quote \" back\\\\ \\' tab\t line\n ü 😀 \x01' type='QLabel'}"));
    EXPECT_EQ(add("{type='QPushButton' text='&Save' window={type='MainWindow'}}"),
              ":save_button_2");

    // Nothing can be added behind an end.
    use("a = {'type': 'A'}\nraise SystemExit\n");
    EXPECT_EQ(add("{type='Bee'}"), "The entry bee = {\"type\": \"Bee\"} can't be added to '" +
                                       path + "': it has no effect behind the end of the script");
    use("if True:\n    a = {'type': 'A'}\n    if a:");
    EXPECT_TRUE(add("{type='Bee'}").contains("line 3")) << "a map that is faulty already";
    EXPECT_EQ(readFile(path), "if True:\n    a = {'type': 'A'}\n    if a:");
}

}  // namespace
}  // namespace Tamrix
