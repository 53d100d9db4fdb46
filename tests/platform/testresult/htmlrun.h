#pragma once

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QString>

#include "platform/testresult/resulttext.h"
#include "platform/testresult/samplerun.h"
#include "support/files.h"

namespace Tamrix::Test {

/// Objects as `tamrixrunner inspect --json` prints them.
inline const char* const objectsJson =
    R"([{"type":"QMainWindow","text":"Shop","name":"{type='QMainWindow'}",
"properties":{"visible":"true","enabled":"true"},"children":[
{"type":"QPushButton","text":"Pay\n<b>","name":"{text='Pay'}","properties":{"visible":"false","enabled":"false"},"children":[]},
{"type":"QLabel","text":"","name":"","properties":{"visible":"true","enabled":"true"},"children":[]}]}])";

/// A run for the HTML report with what can belong to a failure: scripts, a screenshot and the
/// application's output, which are files made below `directory`. It ends without its end, as after
/// a kill. False when a file can't be made.
inline bool addHtmlRun(ReportGenerator* report, const QString& directory) {
    const QString suite = directory + "/suite_shop";
    const QString script = suite + "/tst_basket/test.py";
    const QString helper = suite + "/shared/scripts/helper.py";
    const QString picture = directory + "/out/screenshot_fail_1.png";
    const QString windows = directory + "/out/windows.png";
    const QString objects = directory + "/out/objects.json";
    const QString output = directory + "/out/calculator-stderr.txt";
    QByteArray lines;
    for (int line = 1; line <= 12; ++line)
        lines += "line(" + QByteArray::number(line) + ")  # <b>\n";
    QImage image(640, 400, QImage::Format_RGB32);
    image.fill(QColor(70, 120, 180));
    if (!writeFile(script, lines) || !writeFile(helper, lines) ||
        !writeFile(output, "Calculator: no key <7>\n") || !image.save(picture) ||
        !image.copy(100, 100, 200, 150).save(windows) || !writeFile(objects, objectsJson))
        return false;
    // Older than the run, so that the report trusts their lines; the helper was changed since.
    QFile file(script);
    if (!file.open(QIODevice::ReadWrite) ||
        !file.setFileTime(QDateTime(QDate(2024, 1, 1), QTime()), QFileDevice::FileModificationTime))
        return false;

    FixedClock clock(report);
    TestResult result(&clock);
    result.startSuite("suite_shop", suite);
    for (const char* fact : {"5.15.8", "5.15.8", "6 <b>"})
        result.addEnvironment("Qt", fact);
    result.addResult(TestResult::Warning, "No application", "", LineInfo());

    result.startCase("tst_login", suite + "/tst_login/test.py");
    result.addOutput(OutputStream::StandardOutput, "logging ");
    result.addOutput(OutputStream::StandardOutput, "in\n");
    result.startSection("Form", "with two fields", LineInfo(script, 3));
    result.addResult(TestResult::Pass, "Comparison", "'1' and '1' are equal", LineInfo(script, 1));
    result.addResult(TestResult::ExpectedFail, "Not verified", "False expression",
                     LineInfo(suite + "/tst_gone/test.py", 5), "known since May");
    result.endSection(LineInfo(script, 6));
    result.endCase();

    result.startCase("tst_basket", script);
    result.addAction("startApplication", "\"shop\"", 800, false, LineInfo(script, 2));
    result.addAction("click", "{text='<b>'}", 20, false, LineInfo(script, 3));
    result.addAction("waitForObject", "{text='gone'}", 300, true, LineInfo(script, 4));
    result.startSection("Pay", "", LineInfo(script, 3));
    result.addResultAttachment(TestResult::ImageAttachment, "Windows", windows);
    result.addResultAttachment(TestResult::ObjectsAttachment, "Objects", objects);
    result.addResult(QDateTime(), TestResult::Fail, "Comparison" + screenshotNote(picture),
                     "'<script>window.hacked = 1</script>'\nand '2' are not equal",
                     CallStack{{helper, 11}, {script, 6}}, "the total", -1,
                     "@@ -1 +1 @@\n-<script>\r\n+2");
    result.endSection(LineInfo(script, 9));
    result.addResult(TestResult::Error, "Script Error", "NameError: x\nis not defined",
                     LineInfo(script, 99));
    result.addAttachment(TestResult::OutputAttachment, "", output, {});
    result.addAttachment(TestResult::FileAttachment, "Attached File", directory + "/gone.txt", {});
    result.endCase();

    result.startCase("tst_print", suite + "/tst_print/test.py");
    result.addResult(TestResult::Skipped, "No printer", "here", LineInfo(script, 1), "testcase");
    result.addSkipEcho(TestResult::Error, "Script Error", "FatalError: No printer: here",
                       {LineInfo(script, 1)});
    result.endCase();

    result.startCase("tst_lost", suite + "/tst_lost/test.py");
    result.startSection("Before the kill", "", LineInfo());
    result.addResult(TestResult::Log, "last words \x1b[31m", "", LineInfo());
    result.setComplete();
    return true;
}

}  // namespace Tamrix::Test
