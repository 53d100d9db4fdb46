// Maps of object names as people use them: in runs, and by "tamrixrunner names".

#include <gtest/gtest.h>

#include <QProcess>

#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::compareWithGolden;
using Tamrix::Test::readFile;
using Tamrix::Test::RunnerProcess;

class NamesCommand : public testing::Test {
protected:
    NamesCommand() {
        suite.write("suite/config.xml",
                    "<suite><applications><application name='calculator' "
                    "path='/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/calculator/"
                    "calculator'/></applications></suite>");
        suite.write("suite/tst/test.py", "def main():\n    pass\n");
        runner.setVariable("QT_QPA_PLATFORM", "offscreen");
    }

    /// Exit code, output and errors of a command.
    static QString told(const QStringList& arguments) {
        RunnerProcess command;
        command.setVariable("QT_QPA_PLATFORM", "offscreen");
        command.run(arguments);
        return QStringLiteral("$ names %1\n%2%3exit code %4\n\n")
            .arg(arguments.mid(1).join(' '), command.output(), command.errors(),
                 QString::number(command.exitCode()));
    }
    QString normalised(const QString& text) const {
        return Tamrix::Test::Normaliser().path(suite.path(), "<FOLDER>")(text);
    }
    /// The results of a run of a script, in the case "tst".
    QString run(const QByteArray& script) {
        suite.write("suite/tst/test.py", script);
        runner.run({"run", suite.path("suite")});
        return runner.takeOutput() + runner.errors();
    }

    Tamrix::Test::SuiteFolder suite;
    RunnerProcess runner;
};

TEST_F(NamesCommand, TellsWhatNamesAreOfUse) {
    suite.write("suite/shared/scripts/names.py",
                "window = {'type': 'Calculator'}\n"
                "display = {'type': 'QLineEdit', 'window': window, 'readOnly': True}\n"
                "seven = {'type': 'Button', 'text': '7', 'window': window}\n"
                "button = {'type': 'Button'}\n"
                "third = {'type': 'Button', 'occurrence': 3}\n"
                "click = {'type': 'Button', 'text': '8'}\n"
                "eleven = {'type': 'Button', 'text': '11'}\n"
                "lost = {'window': ':gone', 'type': 'Button'}\n");
    suite.write("suite/tst/test.py", "import names\n\ndef main():\n    click(names.seven)\n");
    QString text = told({"names", "check", suite.path("suite"), "calculator"});
    text += told({"names", "unused", suite.path("suite")});
    const QString script = suite.path("suite/shared/scripts/names.py");
    text += told({"names", "convert", script, suite.path("suite/new.tsv")});
    // The way there, without the name that refers to nothing.
    QByteArray whole = readFile(script);
    whole.replace("lost = {'window': ':gone', 'type': 'Button'}\n", "");
    suite.write("suite/shared/scripts/names.py", whole);
    text += told({"names", "convert", script, suite.path("suite/shared/objectnames.tsv")});
    text += told({"names", "convert", script, suite.path("suite/shared/objectnames.tsv")});
    suite.write("suite/others.tsv", ":Two words\t{type='A'}\n:class\t{in=':Two words'}\n");
    text += told({"names", "convert", suite.path("suite/others.tsv"), suite.path("others.py")});
    text += "# objectnames.tsv\n" + readFile(suite.path("suite/shared/objectnames.tsv")) +
            "\n# others.py\n" + readFile(suite.path("others.py"));
    EXPECT_TRUE(compareWithGolden("e2e/names-commands.txt", normalised(text)));
}

TEST_F(NamesCommand, MapsOfEachLanguageGoBackAndForth) {
    const QByteArray table =
        ":WINDOW\t{box={text~='^a.*b$' type='Box'} type='Main' windowTitle*='Shop*'}\n"
        ":SAVE\t{text='Sa\\\\\\\\ve \"#$@%\" \\\\'it\\\\'' type='Button' window=':WINDOW'}\n";
    suite.write("names.tsv", "# The shop\n" + table);
    for (const char* const suffix : {"pl", "py", "rb"}) {
        const QString script = suite.path(QStringLiteral("maps/names.%1").arg(suffix));
        const QString back = suite.path(QStringLiteral("maps/%1.tsv").arg(suffix));
        const QString again = suite.path(QStringLiteral("again/names.%1").arg(suffix));
        told({"names", "convert", suite.path("names.tsv"), script});
        told({"names", "convert", script, back});
        told({"names", "convert", back, again});
        EXPECT_TRUE(compareWithGolden(QStringLiteral("e2e/names.%1.txt").arg(suffix),
                                      QString::fromUtf8(readFile(script))));
        EXPECT_TRUE(readFile(back).endsWith(table)) << readFile(back).constData();
        EXPECT_EQ(readFile(again), readFile(script)) << suffix;
    }
}

TEST_F(NamesCommand, FailsClearly) {
    QString text = told({"names", "check", suite.path("suite"), "calculator"});
    text += told({"names", "unused", suite.path("suite")});
    text += told({"names", "unused", suite.path("none")});
    text += told({"names", "convert", suite.path("none.tsv"), suite.path("none.py")});
    suite.write("suite/shared/scripts/names.py", "a = {'type': 'A'}\nb = {'type': c}\n");
    text += told({"names", "check", suite.path("suite"), "calculator"});
    text += told(
        {"names", "convert", suite.path("suite/shared/scripts/names.py"), suite.path("none.tsv")});
    EXPECT_TRUE(compareWithGolden("e2e/names-failures.txt", normalised(text)));
    EXPECT_FALSE(QFile::exists(suite.path("none.tsv")));
}

TEST_F(NamesCommand, AMapMayChangeWhileTheRunGoesOn) {
    suite.write("suite/shared/scripts/names.py", "seven = {'type': 'Button', 'text': '7'}\n");
    const QString output = run(R"py(
import names, os, time

def main():
    startApplication("calculator")
    path = names.__file__
    click(":seven")
    with open(path, "a") as file:
        file.write("eight = {'type': 'Button', 'text': '8'}\n")
    click(":eight")
    test.compare(objectMap.symbolicNames(), [":eight", ":seven"])
    with open(path, "a") as file:
        file.write("nine = {'type': 'Button', 'text': here}\n")
    try:
        click(":seven")
    except RuntimeError as error:
        test.verify("names.py, line 3: NameError: name 'here' is not defined" in str(error),
                    str(error))
    # Names that need no map go on to work.
    click(names.seven)
    with open(path, "w") as file:
        file.write("seven = {'type': 'Button', 'text': '7'}\n")
    test.compare(objectMap.add(waitForObject({"type": "Button", "text": "1"})), ":button_1")
)py");
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(output);
}

TEST_F(NamesCommand, RunsAreAsBeforeWithoutNamesAsTexts) {
    // A script that would fail is not even run.
    suite.write("suite/shared/scripts/names.py", "raise ValueError('nobody asks')\n");
    QString output =
        run("def main():\n    test.pass_('well')\n"
            "    test.compare(object.exists(\"{type='A'}\"), False)\n");
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(output);
    output = run("def main():\n    objectMap.symbolicNames()\n");
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(
        output.contains("Objectmaptool error: " + suite.path("suite/shared/scripts/names.py") +
                        ", line 1: ValueError: nobody asks"))
        << qPrintable(output);
    EXPECT_TRUE(output.contains("tst/test.py:2")) << qPrintable(output);
}

}  // namespace
}  // namespace Tamrix
