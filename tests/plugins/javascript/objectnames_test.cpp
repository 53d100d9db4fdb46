// Maps of object names that are modules in JavaScript, read by the real program.

#include "support/scriptnames.h"

namespace Tamrix {
namespace {

using namespace Test;

class JavaScriptObjectNames : public ScriptNames {
protected:
    JavaScriptObjectNames() : ScriptNames("js", TAMRIX_TEST_PREFIX) {}
};

TEST_F(JavaScriptObjectNames, ExportsAreNames) {
    use("import {other} from './neighbour.js';\n"
        "export * from './neighbour.js';\n"
        "console.log('not part of the names');\n"
        "export const window = {type: 'W', 'windowTitle*': 'Book*'};\n"
        "export const alias = window, nul = {text: 'a\\0b'};\n"
        "export let save = {...window, visible: true, occurrence: 2};\n"
        "const cut = new Map([['text', 'Cut'], ['window', window]]);\n"
        "export {cut, other as another};\n"
        "export default {saveAll: save};\n"
        "export const _helper = {'no name': 1};\n"
        "const own = {x: []};\n"
        "export const row = number => ({in: window, row: number});\n"
        "tamrix.exit();\n"
        "export const late = {type: 'L'};\n");
    ASSERT_TRUE(
        writeFile(QFileInfo(path).path() + "/neighbour.js", "export const other = {type: 'O'};\n"));
    EXPECT_EQ(*ObjectMap::self()->symbolicNames(),
              (QStringList{":alias", ":another", ":cut", ":nul", ":other", ":save", ":window"}));
    EXPECT_EQ(realName(":nul"), QString("{text='a%1b'}").arg(QChar(0)));
    EXPECT_EQ(realName("names.cut"), "{text='Cut' window={type='W' windowTitle*='Book*'}}");
    EXPECT_EQ(realName(":save"), "{occurrence='2' type='W' visible='true' windowTitle*='Book*'}");
    EXPECT_EQ(ObjectMap::self()->symbolicName("{type='O'}"), ":another");
    EXPECT_EQ((*ObjectMap::self()->names())[":cut"].qualifiedName(), "{text='Cut' window=':alias'}")
        << "the first of two names for one object";
}

TEST_F(JavaScriptObjectNames, FaultsNameFileAndLine) {
    const std::vector<FaultyScript> rows = {
        {"an error", "export const a = {};\n\nthrow new RangeError('no names today');\n"},
        {"an error deeper down", "function f() {\n    return null.x;\n}\nexport const a = f();\n"},
        {"an error behind a wait", "await null;\nthrow new Error('late');\n"},
        {"a syntax error", "export const save = {type: 'A',\nexport const open = {type: 'B'};\n"},
        {"a name that is not there", "export const save = {type: 'A', window: windw};\n"},
        {"a module that is not there", "import {x} from './nowhere.js';\n"},
        {"no UTF-8", "export const save = {};\n// \xff\n"},
        {"a name within itself",
         "export const a = {type: 'A'};\nexport const b = {in: a};\na.in = b;\n"},
        {"values that are none",
         "export const first = {type: null};\nexport const second = {text: ['a']};\n"
         "export let third = {in: {x: parseInt}};\n"},
        {"malformed properties",
         "export const spaced = {'a b': 1};\nexport const pattern = {'text~': '('};\n\n"
         "export const which = {type: 'A', occurrence: 0};\n"},
        {"no export", "// Names.\nconst _own = {};\nconst save = {type: 'A'};\n"},
    };
    EXPECT_TRUE(compareWithGolden("javascript/objectnames.txt", faults(rows)));
}

TEST_F(JavaScriptObjectNames, NewNamesStandBehindWhatPeopleWrote) {
    const QByteArray before =
        "// Names of the shop.\r\nexport const mainWindow = {type: 'MainWindow'};  // the first\r\n"
        "\r\nexport function saveButton() {}";
    use(before);
    EXPECT_EQ(add("{text='&Save' type='QPushButton' window={type='MainWindow'}}"), ":saveButton2");
    EXPECT_EQ(add("{text='quote \" back\\\\ \\' tab\t line\n ü 😀 \x01' type='QLabel'}"),
              ":quoteBackTabLineLabel");
    EXPECT_EQ(add("{text='click'}"), ":click2") << "a function";
    EXPECT_EQ(add("{text='with'}"), ":with2") << "a word of the language";
    EXPECT_EQ(add("{windowTitle*='A*' type='Eval'}"), ":aEval");
    EXPECT_EQ(
        QString::fromUtf8(readFile(path)),
        QString::fromUtf8(before +
                          "\r\nexport const saveButton2 = {type: \"QPushButton\", text: "
                          "\"&Save\", window: mainWindow};\r\n"
                          "export const quoteBackTabLineLabel = {\r\n    type: \"QLabel\",\r\n"
                          "    text: \"quote \\\" back\\\\ ' tab\\t line\\n ü 😀 \\u0001\"\r\n};\r\n"
                          "export const click2 = {text: \"click\"};\r\n"
                          "export const with2 = {text: \"with\"};\r\n"
                          "export const aEval = {type: \"Eval\", \"windowTitle*\": \"A*\"};\r\n"));
    EXPECT_EQ(realName(":saveButton2"),
              "{text='&Save' type='QPushButton' window={type='MainWindow'}}");
    EXPECT_EQ(
        realName(":quoteBackTabLineLabel"),
        QString::fromUtf8("{text='quote \" back\\\\ \\' tab\t line\n ü 😀 \x01' type='QLabel'}"));
    EXPECT_EQ(add("{type='QPushButton' text='&Save' window={type='MainWindow'}}"), ":saveButton2");

    // Nothing can be added behind an end.
    use("export const a = {type: 'A'};\ntamrix.exit();\n");
    EXPECT_EQ(add("{type='Bee'}"),
              "The entry export const bee = {type: \"Bee\"}; can't be added to '" + path +
                  "': it has no effect behind the end of the script");
    use("export const a = {\n    type: 'A'\n");
    EXPECT_TRUE(add("{type='Bee'}").contains("line 3")) << "a map that is faulty already";
    EXPECT_EQ(readFile(path), "export const a = {\n    type: 'A'\n");
}

}  // namespace
}  // namespace Tamrix
