// Maps of object names that are variables of a package in Perl, read by the real program.

#include "platform/objectmodel/scriptedobjectmap.h"
#include "support/scriptnames.h"

namespace Tamrix {
namespace {

using namespace Test;

class PerlObjectNames : public ScriptNames {
protected:
    PerlObjectNames() : ScriptNames("pl", TAMRIX_TEST_PREFIX) {}
};

TEST_F(PerlObjectNames, VariablesOfThePackageAreNames) {
    use("print 'not part of the names';\n"
        "require 'neighbour.pl';\n"
        "our $of_main = {type => 'M'};\n"
        "package names;\n"
        "use strict;\n"
        "use utf8;\n"
        "our $window = {type => 'W', 'windowTitle*' => 'Bück*'};\n"
        "our $alias = $window;\n"
        "our $nul = {text => \"a\\0b\"};\n"
        "our $save = {%$window, visible => !!1, occurrence => 2};\n"
        "for my $word (qw(Cut Copy)) {\n"
        "    no strict 'refs';\n"
        "    ${'names::' . lc $word} = {text => $word, window => $window};\n"
        "}\n"
        "our $_helper = {'no name' => 1};\n"
        "my $lexical = {type => 'L'};\n"
        "our %table = (a => {b => 1});\n"
        "our @list = ({type => 'Z'});\n"
        "our $object = bless {type => 'P'}, 'Own';\n"
        "sub row { return {in => $window, row => $_[0]} }\n"
        "exit;\n");
    ASSERT_TRUE(
        writeFile(QFileInfo(path).path() + "/neighbour.pl", "our $other = {type => 'O'};\n"));
    EXPECT_EQ(
        *ObjectMap::self()->symbolicNames(),
        (QStringList{":alias", ":copy", ":cut", ":nul", ":of_main", ":other", ":save", ":window"}));
    EXPECT_EQ(realName(":nul"), QString("{text='a%1b'}").arg(QChar(0)));
    for (const char* const name : {":cut", "names.cut", "$names::cut"})
        EXPECT_EQ(realName(name),
                  QString::fromUtf8("{text='Cut' window={type='W' windowTitle*='Bück*'}}"));
    EXPECT_EQ(realName(":save"),
              QString::fromUtf8("{occurrence='2' type='W' visible='true' windowTitle*='Bück*'}"));
    EXPECT_EQ(ObjectMap::self()->symbolicName("{type='O'}"), ":other");
    EXPECT_EQ((*ObjectMap::self()->names())[":cut"].qualifiedName(), "{text='Cut' window=':alias'}")
        << "the first of two names for one object";
    const auto* const script = dynamic_cast<const ScriptedObjectMap*>(ObjectMap::self());
    ASSERT_NE(script, nullptr);
    EXPECT_EQ(script->toSymbolicName(":save"), "$names::save");
}

TEST_F(PerlObjectNames, FaultsNameFileAndLine) {
    const QString text = faults({
        {"an exception", "use strict;\n\ndie 'no names today';\n"},
        {"an exception deeper down", "sub f {\n    die {code => 3};\n}\n\nf();\n"},
        {"an exit with a status", "our $a_name = {type => 'A'};\nexit 3;\n"},
        {"a syntax error", "our $save = {type => 'A',\nour $open = {type => 'B'};\n"},
        {"a name that is not there",
         "package names;\nuse strict;\nour $save = {type => 'A', window => $windw};\n"},
        {"no UTF-8", "our $save = {};\n# \xff\n"},
        {"a name within itself", "our $x = {type => 'A'};\nour $y = {in => $x};\n$x->{in} = $y;\n"},
        {"values that are none",
         "our $first = {type => undef};\nour $second = {text => ['a']};\n"
         "our $third = {in => {x => \\&print}};\n"},
        {"malformed properties",
         "our $spaced = {'a b' => 1};\nour $pattern = {'text~' => '('};\n\n"
         "our $which = {type => 'A', occurrence => 0};\n"},
    });
    EXPECT_TRUE(compareWithGolden("perl/objectnames.txt", text));
}

TEST_F(PerlObjectNames, NewNamesStandBehindWhatPeopleWrote) {
    const QByteArray before =
        "# Names of the shop.\r\npackage names;\r\nuse utf8;\r\n"
        "our $main_window = {type => 'MainWindow'};  # the first one\r\n\r\n"
        "sub save_button { }\r\n";
    use(before + "1;\r\n");
    EXPECT_EQ(add("{text='&Save' type='QPushButton' window={type='MainWindow'}}"),
              ":save_button_2");
    const QString unusual = QString::fromUtf8(
        "{text='quote \" $x @y back\\\\ \\' tab\t line\n ü 😀 \x01' type='QLabel'}");
    EXPECT_EQ(add(unusual), ":quote_x_y_back_label");
    EXPECT_EQ(add(QString::fromUtf8("{text*='it\\'s ü \\\\*' type='QLabel'}")), ":its_u_label");
    EXPECT_EQ(add("{text='ENV'}"), ":env");
    EXPECT_EQ(add("{text='b'}"), ":b_2") << "a variable of Perl";
    EXPECT_EQ(QString::fromUtf8(readFile(path)),
              QString::fromUtf8(
                  before + "our $save_button_2 = {type => 'QPushButton', text => '&Save', "
                           "window => $main_window};\r\n"
                           "our $quote_x_y_back_label = {\r\n    type => 'QLabel',\r\n    text => "
                           "\"quote \\\" \\$x \\@y back\\\\ ' tab\\t line\\n ü 😀 \\x{1}\"\r\n};\r\n"
                           "our $its_u_label = {type => 'QLabel', 'text*' => 'it\\'s ü \\\\*'};\r\n"
                           "our $env = {text => 'ENV'};\r\n"
                           "our $b_2 = {text => 'b'};\r\n"
                           "1;\r\n"));
    EXPECT_EQ(realName(":save_button_2"),
              "{text='&Save' type='QPushButton' window={type='MainWindow'}}");
    EXPECT_EQ(realName(":quote_x_y_back_label"), unusual);
    EXPECT_EQ(add("{type='QPushButton' text='&Save' window={type='MainWindow'}}"),
              ":save_button_2");

    // Without "use utf8" scripts have the bytes of the file.
    use("our $first = {type => 'A'};\n");
    EXPECT_EQ(add(QString::fromUtf8("{text='ü €😀'}")), ":u");
    EXPECT_EQ(readFile(path),
              "our $first = {type => 'A'};\nour $u = {text => \"\\x{fc} "
              "\\x{20ac}\\x{1f600}\"};\n");
    EXPECT_EQ(realName(":u"), QString::fromUtf8("{text='ü €😀'}"));

    // Nothing can be added behind an end.
    for (const QByteArray& end : {QByteArray("exit;\n"), QByteArray("__END__\n")}) {
        use("our $x = {type => 'A'};\n" + end);
        EXPECT_EQ(add("{type='Bee'}"), "The entry our $bee = {type => 'Bee'}; can't be added to '" +
                                           path +
                                           "': it has no effect behind the end of the script");
    }
    use("if (1) {\n    our $x = {type => 'A'};\n    if ($x) {");
    EXPECT_TRUE(add("{type='Bee'}").contains("line 3")) << "a map that is faulty already";
    EXPECT_EQ(readFile(path), "if (1) {\n    our $x = {type => 'A'};\n    if ($x) {");
}

}  // namespace
}  // namespace Tamrix
