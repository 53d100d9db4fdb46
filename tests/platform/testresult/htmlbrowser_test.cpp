#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include "platform/testresult/htmlreport.h"
#include "platform/testresult/htmlrun.h"
#include "support/files.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

/// A page that opens the report beside it in a frame, acts there as a person would, and leaves what
/// it saw as its own text. "%1" stands for the fragment of the report's address, "%2" for the
/// steps, which fill `seen`.
const char* const visitor = R"(<!DOCTYPE html>
<meta charset="utf-8">
<iframe src="report/index.html%1" width="1000" height="700"></iframe>
<script>
const frame = document.querySelector("iframe");
const seen = {};
const until = async (holds) => {
    while (!holds())
        await new Promise((resolve) => setTimeout(resolve, 20));
};
const leave = () =>
    document.body.textContent = "BEGIN" + encodeURIComponent(JSON.stringify(seen)) + "END";
frame.addEventListener("load", async () => {
    const page = frame.contentDocument;
    frame.contentWindow.addEventListener("error", (event) => {
        seen.error = event.message;
        leave();
    });
    const one = (selector) => page.querySelector(selector);
    const isVisible = (element) => element.checkVisibility();
    const cases = () => [...page.querySelectorAll(".case")].filter(isVisible)
        .map((element) => element.querySelector(".name").textContent).join(" ");
    try {
%2
    } catch (error) {
        seen.error = String(error);
    }
    seen.hacked = frame.contentWindow.hacked !== undefined;
    leave();
});
</script>
)";

class HtmlBrowserTest : public testing::Test {
protected:
    HtmlBrowserTest() {
        HtmlReport html(directory.filePath("report"));
        EXPECT_TRUE(addHtmlRun(&html, directory.path()));
        html.finish();
        EXPECT_EQ(html.errorText(), QString());
    }

    /// What the visitor saw. The time of the page is virtual: it runs ahead while the page waits,
    /// also for a picture or a video that is being decoded, so that a wait needs hours of it.
    QJsonObject visit(const QString& fragment, const QString& steps) {
        const QString page = QString::fromUtf8(visitor).arg(fragment, steps);
        EXPECT_TRUE(writeFile(directory.filePath("visitor.html"), page.toUtf8()));
        QProcess browser;
        browser.start(
            CHROMIUM,
            {"--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
             "--no-first-run", "--disable-extensions", "--disable-background-networking",
             "--user-data-dir=" + directory.filePath("profile"), "--allow-file-access-from-files",
             "--virtual-time-budget=5000000", "--dump-dom",
             QUrl::fromLocalFile(directory.filePath("visitor.html")).toString()});
        if (!browser.waitForFinished(600'000)) {
            ADD_FAILURE() << "the browser does not end: " << browser.errorString().toStdString();
            browser.kill();
            browser.waitForFinished();
            return {};
        }
        const QByteArray text = browser.readAllStandardOutput();
        const int begin = text.indexOf("BEGIN") + 5;
        const int end = text.indexOf("END", begin);
        QJsonParseError error;
        const QJsonDocument seen = QJsonDocument::fromJson(
            QByteArray::fromPercentEncoding(text.mid(begin, end - begin)), &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError)
            << text.right(2000).toStdString() << browser.readAllStandardError().toStdString();
        return seen.object();
    }

    QTemporaryDir directory;
};

TEST_F(HtmlBrowserTest, ShowsFailuresAndFilters) {
    const QJsonObject seen = visit("", R"(
        seen.all = cases();
        // The first failure stands open, with its screenshot, lines and the application's output.
        const image = one(".case[open] .failure img[alt^=screenshot]");
        await until(() => image.complete);
        seen.imageWidth = image.naturalWidth;
        seen.detail = one(".case[open] .failure .detail").textContent;
        seen.hit = one(".case[open] .failure .hit").textContent;
        seen.note = one(".case[open] .failure .note").textContent;
        seen.calls = one(".case[open] .failure .stack").textContent.includes("called from");
        const output = [...page.querySelectorAll(".entry")].find(
            (element) => element.textContent.includes("calculator-stderr.txt"));
        output.querySelector("summary").click();
        await until(() => output.querySelector("pre"));
        seen.output = output.querySelector("pre").textContent;
        // Enlarged, and back.
        image.parentElement.click();
        seen.isEnlarged = one("dialog[open] img") !== null;
        one("dialog").click();
        seen.isBack = one("dialog[open]") === null;
        // Filters.
        one(".filter .failed").click();
        seen.failed = cases();
        one(".filter .skipped").click();
        seen.failedAndSkipped = cases();
        seen.address = frame.contentWindow.location.hash;
        one(".filter button").click();
        const search = one(".filter input");
        search.value = "WORDS \\x1b";
        search.dispatchEvent(new frame.contentWindow.Event("input"));
        await until(() => cases() === "tst_lost");
        seen.found = cases();
        // Sections.
        one("#case-4 summary").click();
        await until(() => one("#case-4 .section"));
        const section = one("#case-4 .section");
        seen.isFolded = !section.open;
        section.querySelector("summary").click();
        await until(() => section.querySelector(".inside"));
        seen.section = section.textContent;
)");
    EXPECT_EQ(seen["error"].toString(), "");
    EXPECT_FALSE(seen["hacked"].toBool(true));
    EXPECT_EQ(seen["all"].toString(), "Outside the cases tst_login tst_basket tst_print tst_lost");
    EXPECT_EQ(seen["imageWidth"].toInt(), 640);
    EXPECT_EQ(seen["detail"].toString(),
              "'<script>window.hacked = 1</script>'\nand '2' are not equal");
    EXPECT_EQ(seen["hit"].toString(), "11line(11)  # <b>");
    EXPECT_TRUE(seen["note"].toString().startsWith("The file was changed"));
    EXPECT_TRUE(seen["calls"].toBool());
    EXPECT_EQ(seen["output"].toString(), "Calculator: no key <7>\n");
    EXPECT_TRUE(seen["isEnlarged"].toBool());
    EXPECT_TRUE(seen["isBack"].toBool());
    EXPECT_EQ(seen["failed"].toString(), "tst_basket");
    EXPECT_EQ(seen["failedAndSkipped"].toString(), "tst_basket tst_print");
    EXPECT_EQ(seen["address"].toString(), "#outcome=failed%2Cskipped");
    EXPECT_EQ(seen["found"].toString(), "tst_lost");
    EXPECT_TRUE(seen["isFolded"].toBool());
    EXPECT_TRUE(seen["section"].toString().contains("last words \\x1b[31m"));
}

TEST_F(HtmlBrowserTest, ShowsTheMomentOfAFailure) {
    const QJsonObject seen = visit("", R"(
        const copied = [];
        Object.defineProperty(frame.contentWindow.navigator, "clipboard", { value: {
            writeText: (text) => { copied.push(text); return Promise.resolve(); } } });
        const failure = one(".case[open] .failure");
        seen.pictures = [...failure.querySelectorAll(".pictures figcaption")]
            .map((caption) => caption.textContent).join(" ");
        seen.explanation = failure.querySelector(".explanation").textContent;
        seen.removed = failure.querySelector(".explanation .removed").textContent;
        // The objects, with a search and names to copy.
        const objects = [...failure.querySelectorAll(".entry")].find(
            (element) => element.textContent.includes("objects.json"));
        objects.querySelector("summary").click();
        await until(() => objects.querySelector(".object"));
        const shown = () => [...objects.querySelectorAll(".object")]
            .map((line) => line.querySelector(".what").textContent).join("|");
        seen.objects = shown();
        const search = objects.querySelector("input");
        search.value = "TEXT='pay";
        search.dispatchEvent(new frame.contentWindow.Event("input"));
        seen.found = shown();
        objects.querySelector(".object .copy").click();
        [...failure.querySelectorAll(".copy")].pop().click();
        await until(() => copied.length === 2);
        seen.name = copied[0];
        seen.failure = copied[1];
)");
    EXPECT_EQ(seen["error"].toString(), "");
    EXPECT_EQ(seen["pictures"].toString(), "Windows: windows.png screenshot_fail_1.png");
    EXPECT_EQ(seen["explanation"].toString(), "@@ -1 +1 @@\n-<script>\\x0d\n+2\n");
    EXPECT_EQ(seen["removed"].toString(), "-<script>\\x0d\n");
    EXPECT_EQ(seen["objects"].toString(),
              "QMainWindow \"Shop\"|QPushButton \"Pay\\n<b>\" (hidden, disabled)|QLabel");
    EXPECT_EQ(seen["found"].toString(), "QPushButton \"Pay\\n<b>\" (hidden, disabled)");
    EXPECT_EQ(seen["name"].toString(), "{text='Pay'}");
    const QString text = seen["failure"].toString();
    EXPECT_TRUE(text.startsWith("tst_basket: " + directory.path()));
    EXPECT_TRUE(text.contains("helper.py:11: Fail: Comparison\n'<script>")) << text.toStdString();
    EXPECT_TRUE(text.contains("\nComment: the total\n@@ -1 +1 @@\n")) << text.toStdString();
    EXPECT_TRUE(text.contains("\ncalled from ")) << text.toStdString();
}

TEST_F(HtmlBrowserTest, ShowsActionsAlongTheTimeAndTheRunItself) {
    const QJsonObject seen = visit("", R"(
        const open = async (scope, title) => {
            const section = [...scope.querySelectorAll(".section")].find(
                (element) => element.querySelector(".what").textContent.startsWith(title));
            section.querySelector("summary").click();
            await until(() => section.querySelector(".inside"));
            return section;
        };
        const timeline = await open(one(".case[open]"), "Actions (3");
        seen.lines = [...timeline.querySelectorAll(".line")].slice(1)
            .map((line) => line.querySelector(".what").textContent).join("|");
        seen.failed = [...timeline.querySelectorAll(".line.failed")].length;
        const bars = [...timeline.querySelectorAll(".bar")].map((bar) => bar.getBoundingClientRect());
        seen.isLonger = bars[0].width > 2 * bars[1].width;
        seen.isLater = bars[3].left > bars[2].left;
        const all = await open(one(".case[open]"), "Everything that happened");
        const group = [...all.querySelectorAll(".entry")].find(
            (element) => element.textContent.includes("3 actions"));
        group.querySelector("summary").click();
        await until(() => group.querySelector(".action"));
        seen.action = group.querySelector(".action.failed").textContent;
        const about = one(".about");
        seen.environment = (await open(about, "Environment")).querySelector("dl").textContent;
        const slowest = await open(about, "Slowest cases");
        seen.slowest = slowest.querySelectorAll(".line").length;
        slowest.querySelector("a").click();
        seen.address = frame.contentWindow.location.hash;
)");
    EXPECT_EQ(seen["error"].toString(), "");
    EXPECT_EQ(seen["lines"].toString(),
              "startApplication \"shop\"|click {text='<b>'}|waitForObject {text='gone'}|"
              "Fail: Comparison|Error: Script Error");
    EXPECT_EQ(seen["failed"].toInt(), 3);
    EXPECT_TRUE(seen["isLonger"].toBool());
    EXPECT_TRUE(seen["isLater"].toBool());
    EXPECT_TRUE(seen["action"].toString().contains("tst_basket/test.py:4took 0.30 s"))
        << seen["action"].toString().toStdString();
    EXPECT_EQ(seen["environment"].toString(), "Qt5.15.8Qt6 <b>");
    EXPECT_EQ(seen["slowest"].toInt(), 4);
    EXPECT_EQ(seen["address"].toString(), "#case=tst_basket");
}

TEST_F(HtmlBrowserTest, PlaysAVideoFromAFailure) {
    const QString video = directory.filePath("shop_capture.mp4");
    ASSERT_EQ(QProcess::execute("ffmpeg",
                                {"-v", "error", "-f", "lavfi", "-i",
                                 "testsrc=duration=4:size=320x240:rate=10", "-pix_fmt", "yuv420p",
                                 "-movflags", "empty_moov+frag_keyframe", "-g", "10", video}),
              0);
    HtmlReport html(directory.filePath("report"));
    FixedClock clock(&html);
    {
        TestResult result(&clock);
        result.startCase("c", "/c");
        result.addStartVideo("V", video, {});
        for (int count = 0; count < 5; ++count)
            result.addResult(TestResult::Log, "half a second", "", LineInfo());
        result.addResult(TestResult::Fail, "f", "", LineInfo());
        result.addEndVideo("done", video, {});
    }
    html.finish();
    const QJsonObject seen = visit("", R"(
        const video = one("video");
        await until(() => video.readyState > 0);
        seen.duration = video.duration;
        await until(() => one(".marks .mark"));
        seen.left = one(".marks .mark").style.left;
        seen.title = one(".marks .mark").title;
        const button = [...page.querySelectorAll("button")].find(
            (element) => element.textContent.startsWith("Show in the video"));
        seen.button = button.textContent;
        button.click();
        await until(() => !video.seeking);
        seen.time = video.currentTime;
)");
    EXPECT_EQ(seen["error"].toString(), "");
    EXPECT_NEAR(seen["duration"].toDouble(), 4, 0.2);
    EXPECT_EQ(seen["left"].toString(), "75%");
    EXPECT_EQ(seen["title"].toString(), "3.00 s  Fail: f");
    EXPECT_EQ(seen["button"].toString(), "Show in the video at 3.00 s");
    EXPECT_NEAR(seen["time"].toDouble(), 2, 0.9);
}

TEST_F(HtmlBrowserTest, OpensAtTheViewThatItsAddressNames) {
    const QJsonObject seen = visit("#outcome=failed,incomplete&text=kill", R"(
        seen.cases = cases();
        frame.contentWindow.location.hash = "#case=tst_print";
        await until(() => one(".case[open]"));
        seen.open = one(".case[open] .name").textContent;
)");
    EXPECT_EQ(seen["error"].toString(), "");
    EXPECT_EQ(seen["cases"].toString(), "tst_lost");
    EXPECT_EQ(seen["open"].toString(), "tst_print");
}

TEST_F(HtmlBrowserTest, ShowsFeaturesAsATree) {
    HtmlReport html(directory.filePath("report"));
    {
        FixedClock clock(&html);
        TestResult result(&clock);
        const LineInfo place("/s/x.feature", 1);
        const auto start = [&](const char* kind, const char* title, const ItemDescribed& item) {
            result.addResult(TestResult::SectionStart, title, "", place, kind);
            result.describeItem(item);
        };
        result.startSuite("s", "/s");
        result.startCase("c", "/s/c/test.feature");
        start("feature", "Läden <b>", {"Funktionalität", "@shop @slow", ""});
        start("scenario", "kaufen", {"Szenario", "", ""});
        start("step", "ich kaufe 3 Äpfel", {"Wenn ", "", "| Art |\n| rot |"});
        result.addStepMatch({"ich kaufe {int} {word}",
                             LineInfo("/s/steps.py", 3),
                             {{10, 11, "int"}, {12, 17, "word"}}});
        result.addResult(TestResult::SectionEnd, "", "", LineInfo(), "step");
        start("step", "nie", {"Dann ", "", ""});
        result.addResult(TestResult::Skipped, "nie", "", place, "step");
    }
    html.finish();
    const QJsonObject seen = visit("#case=c", R"(
        await until(() => one(".item.step"));
        seen.feature = one(".item.feature > summary .what").textContent;
        seen.tags = one(".item.feature > summary .tags").textContent;
        seen.keyword = one(".item.step .keyword").textContent;
        seen.parameters = [...page.querySelectorAll(".item.step .parameter")]
            .map((element) => element.textContent).join("|");
        seen.argument = one(".argument").textContent;
        one(".item.step summary").click();
        await until(() => one(".item.step .comment"));
        seen.definition = one(".item.step .comment").textContent;
        const skipped = one(".item.skipped");
        seen.skipped = skipped.querySelector(".what").textContent;
        const colour = (element) => frame.contentWindow.getComputedStyle(element).color;
        seen.isGrey = colour(skipped.querySelector(".what")) === colour(one(".facts"));
)");
    EXPECT_EQ(seen["error"].toString(), "");
    EXPECT_EQ(seen["feature"].toString(), "Funktionalität: Läden <b>");
    EXPECT_EQ(seen["tags"].toString(), "@shop @slow");
    EXPECT_EQ(seen["keyword"].toString(), "Wenn ");
    EXPECT_EQ(seen["parameters"].toString(), "3|Äpfel");
    EXPECT_EQ(seen["argument"].toString(), "| Art |\n| rot |");
    EXPECT_EQ(seen["definition"].toString(), "ich kaufe {int} {word} steps.py:3");
    EXPECT_EQ(seen["skipped"].toString(), "Dann nie");
    EXPECT_TRUE(seen["isGrey"].toBool());
}

}  // namespace
