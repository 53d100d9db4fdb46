#include "runner/names/mapconversion.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

class MapConversion : public testing::Test {
protected:
    /// The text of the map in another form, or the error.
    QString convert(const QString& from, const QString& to) {
        const Outcome<ConvertedMap> converted = convertMap(from, to);
        renamed = converted ? converted->renamed : decltype(renamed)();
        return converted ? QString::fromUtf8(converted->content) : converted.error().text;
    }
    QString write(const QString& name, const QByteArray& content) {
        EXPECT_TRUE(writeFile(folder.filePath(name), content));
        return folder.filePath(name);
    }

    QTemporaryDir folder;
    QString script = folder.filePath("new/names.py");
    QString plain = folder.filePath("new/names.tsv");
    QList<QPair<QString, QString>> renamed;
    const EnvironmentGuard prefix{"TAMRIX_PREFIX", TAMRIX_TEST_PREFIX};
};

TEST_F(MapConversion, BackAndForthNothingIsLost) {
    const QString text =
        "# The shop\n"
        ":save\t{text='Save' type='QPushButton' window=':main'}\n"
        "\n"
        "# Windows\n"
        "# that stay\n"
        ":main\t{type='Main' windowTitle*='Shop*'}\n"
        ":field\t{container={in=':main' type='Box'} text='a\\\\tb \\\\\\\\ ü' type='QLineEdit'}\n";
    const QString asScript =
        "# Names of objects, for scripts: import names\n"
        "# The shop\n"
        "main = {\"type\": \"Main\", \"windowTitle*\": \"Shop*\"}\n"
        "save = {\"type\": \"QPushButton\", \"text\": \"Save\", \"window\": main}\n"
        "\n"
        "# Windows\n"
        "# that stay\n"
        "field = {\"type\": \"QLineEdit\", \"text\": \"a\\\\tb \\\\\\\\ ü\", \"container\": "
        "{\"type\": \"Box\", \"in\": main}}\n";
    QString expected = asScript;
    expected.replace("a\\\\tb \\\\\\\\ ü", "a\\\\tb \\\\ ü");
    const QString first = convert(write("a.tsv", text.toUtf8()), script);
    EXPECT_TRUE(first.startsWith(asScript.section('\n', 0, 6))) << qPrintable(first);
    EXPECT_TRUE(renamed.isEmpty());
    const QString back = convert(write("b/names.py", first.toUtf8()), plain);
    EXPECT_TRUE(back.contains(":save\t{text='Save' type='QPushButton' window=':main'}\n"));
    // From here on it stays the same.
    const QString second = convert(write("c.tsv", back.toUtf8()), script);
    EXPECT_EQ(second, first);
    EXPECT_EQ(convert(write("d/names.py", second.toUtf8()), plain), back);
}

TEST_F(MapConversion, NamesThatCantStayAreTold) {
    const QString from = write("a.tsv",
                               ":Save it\t{text='1'}\n:Save_it\t{text='2'}\n:class\t{text='3'}\n"
                               ":Ü\t{in=':Save it'}\n:_x\t{text='4' in=':class'}\n");
    EXPECT_EQ(convert(from, script),
              "# Names of objects, for scripts: import names\n"
              "Save_it_2 = {\"text\": \"1\"}\n"
              "Save_it = {\"text\": \"2\"}\n"
              "name_class = {\"text\": \"3\"}\n"
              "U = {\"in\": Save_it_2}\n"
              "x = {\"text\": \"4\", \"in\": name_class}\n");
    EXPECT_EQ(renamed, (QList<QPair<QString, QString>>{{":Save it", ":Save_it_2"},
                                                       {":_x", ":x"},
                                                       {":class", ":name_class"},
                                                       {QString::fromUtf8(":Ü"), ":U"}}));
}

TEST_F(MapConversion, WhatCantBeReadIsNotWritten) {
    EXPECT_EQ(convert("/none.tsv", script), "There is no object map '/none.tsv'");
    const QString faulty = write("faulty.tsv", ":A\n");
    EXPECT_EQ(convert(faulty, script),
              faulty + ", line 1: there is no tab between symbolic and real name");
    const QString raising = write("raising/names.py", "a = {'type': 'A'}\nraise ValueError('x')\n");
    EXPECT_EQ(convert(raising, plain),
              "Objectmaptool error: " + raising + ", line 2: ValueError: x");
    const QString good = write("good.tsv", ":A\t{a='1'}\n");
    const EnvironmentGuard nothingInstalled("TAMRIX_PREFIX", folder.path());
    EXPECT_TRUE(convert(good, folder.filePath("names.rb")).contains("names.rb' can't be used: "));
}

}  // namespace
}  // namespace Tamrix
