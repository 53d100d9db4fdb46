// Maps of object names that are constants of Ruby modules, read by the real program.

#include "support/scriptnames.h"

namespace Tamrix {
namespace {

using namespace Test;

class RubyObjectNames : public ScriptNames {
protected:
    RubyObjectNames() : ScriptNames("rb", TAMRIX_TEST_PREFIX) {}
};

TEST_F(RubyObjectNames, ConstantsOfTheModuleAreNames) {
    use("require 'neighbour'\n"
        "require 'set'\n"
        "puts 'not part of the names'\n"
        "OUTSIDE = { type: 'X' }\n"
        "module Names\n"
        "  include Neighbour\n"
        "  WINDOW = { type: 'W', 'windowTitle*': 'Büch*' }.freeze\n"
        "  Alias = WINDOW\n"
        "  NUL = { text: \"a\\0b\" }\n"
        "  SAVE = WINDOW.merge('visible' => true, occurrence: 2)\n"
        "  %w[Cut Copy].each { |word| const_set(word.upcase, { text: word, window: WINDOW }) }\n"
        "  HELPERS = [{ type: 'none' }]\n"
        "  def self.row(number) = { in: WINDOW, row: number }\n"
        "end\n"
        "exit\n");
    ASSERT_TRUE(writeFile(QFileInfo(path).path() + "/neighbour.rb",
                          "module Neighbour\n  OTHER = { type: 'O' }\nend\n"));
    EXPECT_EQ(
        *ObjectMap::self()->symbolicNames(),
        (QStringList{":Alias", ":COPY", ":CUT", ":NUL", ":OTHER", ":OUTSIDE", ":SAVE", ":WINDOW"}));
    EXPECT_EQ(realName(":NUL"), QString("{text='a%1b'}").arg(QChar(0)));
    EXPECT_EQ(realName("Names::CUT"),
              QString::fromUtf8("{text='Cut' window={type='W' windowTitle*='Büch*'}}"));
    EXPECT_EQ(realName("names.CUT"), realName(":CUT")) << "as in other languages";
    EXPECT_EQ(realName(":SAVE"),
              QString::fromUtf8("{occurrence='2' type='W' visible='true' windowTitle*='Büch*'}"));
    EXPECT_EQ(ObjectMap::self()->symbolicName("{type='O'}"), ":OTHER");
    EXPECT_EQ((*ObjectMap::self()->names())[":CUT"].qualifiedName(), "{text='Cut' window=':Alias'}")
        << "the first of two names for one object";
}

TEST_F(RubyObjectNames, FaultsNameFileAndLine) {
    const std::vector<FaultyScript> rows = {
        {"an exception", "require 'set'\n\nraise ArgumentError, 'no names today'\n"},
        {"an exception deeper down", "def f\n  {}.fetch('x')\nend\n\nf\n"},
        {"a syntax error", "module Names\n  SAVE = { type: 'A'\n  OPEN = { type: 'B' }\nend\n"},
        {"a name that is not there", "module Names\n  SAVE = { type: 'A', window: WINDW }\nend\n"},
        {"a module that is not there", "require 'nowhere'\n"},
        {"no UTF-8", "SAVE = {}\n# \xff\n"},
        {"a NUL", QByteArray("SAVE = 1\nX = '\0'\n", 18)},
        {"a name within itself", "A = { type: 'A' }\nB = { in: A }\nA[:in] = B\n"},
        {"values that are none",
         "module Names\n  FIRST = { type: nil }\n  SECOND = { text: ['a'] }\n"
         "  THIRD = { in: { x: Object } }\nend\n"},
        {"malformed properties",
         "SPACED = { 'a b' => 1 }\nPATTERN = { 'text~' => '(' }\n\nWHICH = { type: 'A', "
         "occurrence: 0 }\n"},
    };
    EXPECT_TRUE(compareWithGolden("ruby/objectnames.txt", faults(rows)));
}

TEST_F(RubyObjectNames, NewNamesStandBehindWhatPeopleWrote) {
    const QByteArray before =
        "# Names of the shop.\r\nmodule Names\r\n"
        "  MAIN_WINDOW = { type: 'MainWindow' }  # the first one\r\n\r\n"
        "  SAVE_BUTTON = 1\r\n";
    use(before + "end\r\n");
    EXPECT_EQ(add("{text='&Save' type='QPushButton' window={type='MainWindow'}}"),
              ":SAVE_BUTTON_2");
    EXPECT_EQ(add("{text='quote \" #{x} back\\\\ \\' tab\t line\n ü 😀 \x01' type='QLabel'}"),
              ":QUOTE_X_BACK_TAB_LABEL");
    EXPECT_EQ(add("{text='env'}"), ":ENV_2") << "a constant of Ruby";
    const QByteArray after =
        before +
        "  SAVE_BUTTON_2 = { type: 'QPushButton', text: '&Save', window: MAIN_WINDOW }\r\n"
        "  QUOTE_X_BACK_TAB_LABEL = {\r\n    type: 'QLabel',\r\n    text: \"quote \\\" \\#{x} "
        "back\\\\ ' tab\\t line\\n ü 😀 \\u0001\"\r\n  }\r\n"
        "  ENV_2 = { text: 'env' }\r\n"
        "end\r\n";
    EXPECT_EQ(QString::fromUtf8(readFile(path)), QString::fromUtf8(after));
    EXPECT_EQ(realName(":QUOTE_X_BACK_TAB_LABEL"),
              QString::fromUtf8(
                  "{text='quote \" #{x} back\\\\ \\' tab\t line\n ü 😀 \x01' type='QLabel'}"));
    EXPECT_EQ(add("{type='QPushButton' text='&Save' window={type='MainWindow'}}"),
              ":SAVE_BUTTON_2");

    // A long entry, in a script of the top level.
    use("WINDOW = { type: 'W' }");
    EXPECT_EQ(add("{type='QTreeViewItem' text='" + QString("long ").repeated(20) + "'}"),
              ":LONG_LONG_LONG_LONG_ITEM");
    EXPECT_EQ(QString::fromUtf8(readFile(path)),
              "WINDOW = { type: 'W' }\nLONG_LONG_LONG_LONG_ITEM = {\n  type: "
              "'QTreeViewItem',\n  text: '" +
                  QString("long ").repeated(20) + "'\n}\n");

    // Nothing can be added behind an end.
    use("A = { type: 'A' }\nexit\n");
    EXPECT_EQ(add("{type='Bee'}"), "The entry BEE = { type: 'Bee' } can't be added to '" + path +
                                       "': it has no effect behind the end of the script");
    use("module Names\n  A = { type: 'A' }\n  if A");
    EXPECT_TRUE(add("{type='Bee'}").contains("line 3")) << "a map that is faulty already";
    EXPECT_EQ(readFile(path), "module Names\n  A = { type: 'A' }\n  if A");
}

}  // namespace
}  // namespace Tamrix
