// Suites that drive real, unmodified programs from Debian's packages, on an X display of the run's
// own, on the offscreen platform and on Wayland.

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <vector>

#include "agent/input/testdisplay.h"
#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

const char* const calculator =
    "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/widgets/calculator/calculator";

constexpr const char* platforms[] = {"xcb", "offscreen", "wayland"};

/// Runs with programs on a platform.
class OnPlatform : public testing::Test {
protected:
    explicit OnPlatform(const char* platform)
        : m_platform(platform), compositor(isWayland() ? "wayland" : "") {
        prepare(runner);
    }

    /// The programs find none of the user's settings and leave none.
    void prepare(RunnerProcess& process) {
        process.setVariable("HOME", results.path());
        process.setVariable("XDG_CONFIG_HOME", results.path());
        process.setVariable("XDG_DATA_HOME", results.path());
        process.setVariable("QT_QPA_PLATFORM", m_platform);
        process.setVariable("WAYLAND_DISPLAY", compositor.name());
        // See InputProgram.
        process.setVariable("QT_IM_MODULE", "compose");
    }

    bool isWayland() const { return m_platform == "wayland"; }
    QString displayOption() const { return isWayland() ? "inherit" : "auto"; }

    QStringList arguments(const QString& suite) const {
        return {
            "run",           suite,           "--result-dir", results.path(),
            "--aut-display", displayOption(), "--report",     "html:" + results.filePath("html")};
    }

private:
    const QString m_platform;

protected:
    TestDisplay compositor;
    QTemporaryDir results;
    RunnerProcess runner;
};

struct SuiteRun {
    const char* platform;
    const char* suite;
    /// All without any.
    QStringList cases = {};
};

std::vector<SuiteRun> suiteRuns() {
    std::vector<SuiteRun> runs;
    for (const char* const platform : platforms) {
#ifdef TAMRIX_TEST_QT6
        runs.push_back({platform, "examples/suite_applications"});
        runs.push_back({platform, "examples/suite_features"});
        runs.push_back({platform, "tests/e2e/suites/suite_qt6"});
#else
        runs.push_back({platform,
                        "examples/suite_applications",
                        {"calculator", "address_book", "quick_scene"}});
#endif
        runs.push_back({platform, "examples/suite_names"});
        runs.push_back({platform, "tests/e2e/suites/suite_functions"});
        runs.push_back({platform, "tests/e2e/suites/suite_speedcrunch"});
        // Its search images are of a display of X, where letters have other sizes.
        if (qstrcmp(platform, "wayland") != 0)
            runs.push_back({platform, "examples/suite_pictures"});
    }
    return runs;
}

class RealProgramSuites : public OnPlatform, public testing::WithParamInterface<SuiteRun> {
protected:
    RealProgramSuites() : OnPlatform(GetParam().platform) {}
};

TEST_P(RealProgramSuites, Pass) {
    runner.run(arguments(QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/") + GetParam().suite) +
               GetParam().cases);
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << qPrintable(runner.errors());
}

INSTANTIATE_TEST_SUITE_P(, RealProgramSuites, testing::ValuesIn(suiteRuns()), [](const auto& run) {
    const QString suite = run.param.suite;
    return run.param.platform + suite.section('/', -1).toStdString();
});

class RealPrograms : public OnPlatform, public testing::WithParamInterface<const char*> {
protected:
    RealPrograms() : OnPlatform(GetParam()) {}
};

TEST_P(RealPrograms, AMistakeIsShownWithItsMoment) {
    Tamrix::Test::SuiteFolder suite;
    suite.write("suite/oops/test.py", QByteArray("def main():\n    startApplication('") +
                                          calculator +
                                          "')\n"
                                          "    click(\"{type='Button' text='7'}\")\n"
                                          "    waitForObject(\"{type='Button' text='Seven'}\", "
                                          "2000)\n");
    runner.run(arguments(suite.path("suite")));
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(runner.output().contains("Button 'Backspace': text is 'Backspace', wanted 'Seven'"))
        << qPrintable(runner.output());

    const QDir attachments(results.filePath("html/attachments"));
    const QStringList pictures = attachments.entryList({"*screenshot_error*.png"});
    ASSERT_EQ(pictures.size(), 1);
    const QString page = Tamrix::Test::readFile(results.filePath("html/index.html"));
    EXPECT_TRUE(page.contains("attachments/" + pictures.front()));
    // The calculator is on it: more than one colour.
    const QImage picture(attachments.filePath(pictures.front()));
    ASSERT_FALSE(picture.isNull());
    EXPECT_NE(picture.pixel(5, 5), picture.pixel(20, 20));
}

TEST_P(RealPrograms, NamesThatInspectPrintsAreAccepted) {
    RunnerProcess inspection;
    prepare(inspection);
    inspection.run({"inspect", "--aut-display", displayOption(), calculator});
    ASSERT_EQ(inspection.exitCode(), 0) << qPrintable(inspection.errors());
    QByteArray names;
    int count = 0;
    for (const QString& line : inspection.output().split('\n', Qt::SkipEmptyParts)) {
        if (line.contains("(hidden)") || !line.contains("  {"))
            continue;
        names += "        r\"\"\"" + line.mid(line.indexOf("  {")).trimmed().toUtf8() + "\"\"\",\n";
        ++count;
    }
    EXPECT_GT(count, 28);
    Tamrix::Test::SuiteFolder suite;
    suite.write("suite/names/test.py",
                QByteArray("def main():\n    startApplication('") + calculator +
                    "')\n    waitForObject(\"{type='Calculator'}\")\n    for name in [\n" + names +
                    "    ]:\n        test.compare(repr(waitForObject(name, 60000)), name)\n");
    runner.run(arguments(suite.path("suite")));
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
}

/// The same suite in each of the other languages; one platform will do.
class RealProgramsByLanguage : public testing::TestWithParam<const char*> {};

TEST_P(RealProgramsByLanguage, SuitePasses) {
    // Languages are left out of a build where their runtime is not there.
    if (!QFile::exists(QStringLiteral(TAMRIX_TEST_PREFIX "/lib/tamrix%1.so").arg(GetParam())))
        GTEST_SKIP() << "this build has no plug-in for it";
    const QTemporaryDir results;
    RunnerProcess runner;
    for (const char* const name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        runner.setVariable(name, results.path());
    const auto pass = [&](const QString& suite, const QStringList& cases) {
        runner.run(QStringList{"run", suite} + cases +
                   QStringList{"--result-dir", results.path(), "--aut-display", "auto"});
        EXPECT_EQ(runner.exitCode(), 0)
            << qPrintable(runner.output()) << qPrintable(runner.errors());
    };
    const auto suite = [](const char* name) {
        return QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/examples/%1_%2").arg(name, GetParam());
    };
#ifdef TAMRIX_TEST_QT6
    pass(suite("suite_applications"), {});
#else
    pass(suite("suite_applications"), {"calculator", "address_book", "quick_scene"});
#endif
    // Names of objects that are kept in the language's own way.
    pass(suite("suite_names"), {});
}

INSTANTIATE_TEST_SUITE_P(Languages, RealProgramsByLanguage,
                         testing::Values("javascript", "perl", "ruby", "tcl"));

INSTANTIATE_TEST_SUITE_P(Platforms, RealPrograms, testing::ValuesIn(platforms));

}  // namespace
}  // namespace Tamrix
