#include "platform/objectmodel/scriptnotation.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

ScriptNotation notationOf(const char* statement, const char* reference,
                          ScriptNotation::Words words) {
    ScriptNotation notation;
    notation.statement = statement;
    notation.reference = reference;
    notation.open = "{";
    notation.afterPropertyName = " => ";
    notation.betweenProperties = ", ";
    notation.close = "}";
    notation.words = words;
    notation.literal = [](const QString& text) { return '<' + text + '>'; };
    notation.reserved = "else if";
    return notation;
}

const ScriptNotation underscores =
    notationOf("our $%1 = %2;", "$%1", ScriptNotation::Words::Underscores);

TEST(ScriptNotation, VariablesAreMadeOfWhatObjectsShow) {
    const ScriptNotation camels = notationOf("%1 = %2", "%1", ScriptNotation::Words::Camels);
    const ScriptNotation capitals = notationOf("%1 = %2", "%1", ScriptNotation::Words::Capitals);
    const auto isFree = [](const QString& name) { return !name.startsWith("taken"); };
    const struct {
        const char* name;
        const char* variable;
    } rows[] = {
        {"{type='QPushButton' text='&Save as...'}", "save_as_button"},
        {"{type='QLineEdit' name='userName'}", "username_edit"},
        {"{type='QMenuBar'}", "bar"},
        {"{type='Ui::Dialog' windowTitle='Öffne Größe'}", "offne_gro_e_dialog"},
        {"{type='X' text='一二'}", "object"},
        {"{text='一二'}", "object"},
        {"{text='2nd page'}", "object_2nd_page"},
        {"{text='7' type='QToolButton'}", "button_7"},
        {"{text='a b c d e f'}", "a_b_c_d"},
        {"{text='Button' type='QPushButton'}", "button"},
        {"{text='if'}", "if_2"},
        {"{occurrence='2'}", "object"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(newVariable(underscores, ObjectName(QString::fromUtf8(row.name)), isFree),
                  row.variable)
            << row.name;
    }
    const ObjectName save("{type='QPushButton' text='Save all'}");
    EXPECT_EQ(newVariable(camels, save, isFree), "saveAllButton");
    EXPECT_EQ(newVariable(capitals, save, isFree), "SAVE_ALL_BUTTON");
    int asked = 0;
    EXPECT_EQ(newVariable(underscores, save, [&](const QString&) { return ++asked == 3; }),
              "save_all_button_3");
}

TEST(ScriptNotation, TellsIdentifiers) {
    for (const char* const name : {"a", "_1", "Save_button2"})
        EXPECT_TRUE(isPlainIdentifier(name)) << name;
    for (const char* const name : {"", "1a", "a b", "a-b", "é"})
        EXPECT_FALSE(isPlainIdentifier(QString::fromUtf8(name))) << name;
}

TEST(ScriptNotation, TextsBecomeTheNearestVariable) {
    const struct {
        const char* text;
        const char* variable;
    } rows[] = {
        {"save_button", "save_button"},
        {"Save it", "Save_it"},
        {"_own", "own"},
        {"if", "name_if"},
        {"2", "name_2"},
        {"...", "name"},
        {"Ärger & Co.", "Arger_Co"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(variableOfText(underscores, QString::fromUtf8(row.text)), row.variable);
    const ScriptNotation capitals = notationOf("%1 = %2", "%1", ScriptNotation::Words::Capitals);
    EXPECT_EQ(variableOfText(capitals, "save it"), "SAVE_IT");
}

TEST(ScriptNotation, EntriesStandWithinWhatTheScriptEndsWith) {
    ScriptNotation block = underscores;
    block.ending = "end\n";
    block.indent = "  ";
    const struct {
        const char* before;
        const char* after;
    } rows[] = {
        {"module M\n  A = 1\nend\n", "module M\n  A = 1\n  b {\n    c\n  }\nend\n"},
        {"module M\r\nend\r\n\r\n", "module M\r\n  b {\r\n    c\r\n  }\r\nend\r\n\r\n"},
        {"end", "  b {\n    c\n  }\nend"},
        {"module M; end", "module M; end\nb {\n  c\n}\n"},
        {"# the end", "# the end\nb {\n  c\n}\n"},
        {"", "b {\n  c\n}\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(withWrittenEntry(block, row.before, "b {\n  c\n}"), row.after);
    EXPECT_EQ(withWrittenEntry(underscores, "a\nend", "b"), "a\nend\nb\n");
    // A script may have more than its module, or none.
    block.heading = "# Names\nmodule M\n";
    const struct {
        const char* before;
        const char* after;
    } mixed[] = {
        {"module M\n  A = 1\nend\n", "module M\n  A = 1\n  b\nend\n"},
        {"module M\nend\nC = 1\n", "module M\nend\nC = 1\nmodule M\n  b\nend\n"},
        {"module M\nend\ndef f\nend\n", "module M\nend\ndef f\nend\nmodule M\n  b\nend\n"},
        {"def f\nend\n# more\n\nmodule M # names\nend",
         "def f\nend\n# more\n\nmodule M # names\n  b\nend"},
        {"C = 1\ndef f\nend\n", "C = 1\ndef f\nend\nb\n"},
    };
    for (const auto& row : mixed)
        EXPECT_EQ(withWrittenEntry(block, row.before, "b"), row.after);
    const QString script = "module M\n  our $a = 1;\nend\nour $b = 2;\n";
    EXPECT_TRUE(hasModule(block, script));
    EXPECT_TRUE(isInModule(block, script, "a"));
    EXPECT_FALSE(isInModule(block, script, "b"));
}

TEST(ScriptNotation, EntriesAreWrittenAndFound) {
    EXPECT_EQ(writtenName(underscores,
                          ObjectName("{window=':main' text*=':main' type='B' box={in=':main' "
                                     "name=':main'}}")),
              "{<type> => <B>, <text*> => <:main>, <box> => {<name> => <:main>, <in> => $main}, "
              "<window> => $main}");
    EXPECT_EQ(writtenEntry(underscores, ":b", ObjectName("{in=':main'}")),
              "our $b = {<in> => $main};");
    EXPECT_EQ(
        writtenEntry(underscores, ":b",
                     ObjectName("{a='" + QString(100, 'x') + "' b~='y' c=':d'}")),
        "our $b = {\n    <a> => <" + QString(100, 'x') + ">,\n    <b~> => <y>,\n    <c> => $d\n};");

    const QString script =
        "our $a = {};\n  our  $b={\n# our $c = 1\nour $b = 2;\nmy $d = 3;\nour $e == 1";
    EXPECT_EQ(definitionLines(underscores, script),
              (QMap<QString, int>{{"a", 1}, {"b", 4}, {"e", 6}}));
    const ScriptNotation tcl = notationOf("set %1 %2", "$%1", ScriptNotation::Words::Underscores);
    EXPECT_EQ(definitionLines(tcl, "set save_button 1\nset x 2"),
              (QMap<QString, int>{{"save_button", 1}, {"x", 2}}));
}

}  // namespace
}  // namespace Tamrix
