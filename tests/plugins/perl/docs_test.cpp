// What the page about Perl shows, run as it stands there.

#include "interpreter/names/objectmaps.h"
#include "plugins/perl/perltest.h"

namespace Tamrix {
namespace {

using namespace Test;

TEST_F(PerlTest, WhatTheDocumentShowsRuns) {
    const QString document =
        QString::fromUtf8(readFile(TAMRIX_TEST_SOURCE_DIR "/docs/scripts-perl.md"));
    const QStringList parts = document.split("\n```perl\n");
    ASSERT_GT(parts.size(), 4);
    interpreter->addToSearchPath(QFileInfo(folder.path()));
    for (int index = 1; index < parts.size(); ++index) {
        // A block that drives a program is run as an example.
        if (parts.at(index - 1).section('\n', -1).startsWith("<!-- Tested in examples/"))
            continue;
        const QString code = parts.at(index).section("\n```", 0, 0);
        if (parts.at(index - 1).section('\n', -1) == "<!-- shared/scripts/names.pl -->") {
            ASSERT_TRUE(writeFile(folder.filePath("names.pl"), code.toUtf8()));
            ASSERT_TRUE(useObjectMap(folder.filePath("names.pl")));
            continue;
        }
        interpreter->setScriptArguments(script(), {});
        report.entries.clear();
        EXPECT_EQ(run("use strict; use warnings;\n#line 1\n" + code), "") << qPrintable(code);
        for (const ResultAdded& entry : report.results())
            EXPECT_TRUE(entry.type == TestResult::Pass || entry.type == TestResult::ExpectedFail ||
                        entry.type == TestResult::Log)
                << qPrintable(entry.message + ": " + entry.detail);
        for (const ReportEntry& entry : report.entries)
            EXPECT_FALSE(eventOf<OutputWritten>(entry)) << qPrintable(code);
    }
    ObjectMap::use(nullptr);
}

}  // namespace
}  // namespace Tamrix
