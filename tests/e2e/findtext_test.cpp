// "tamrixrunner find-text" with the engine that the system has.

#include <gtest/gtest.h>

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "e2e/runnerprocess.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

/// A dialog as a toolkit paints it, with many kinds of widgets.
const QString dialog = TAMRIX_TEST_SOURCE_DIR "/tests/e2e/pictures/dialog.png";

class FindText : public ::testing::Test {
protected:
    QString run(const QStringList& arguments) {
        runner.run(QStringList{"find-text"} + arguments);
        return runner.takeOutput();
    }
    QJsonObject json(const QStringList& arguments) {
        return QJsonDocument::fromJson(run(arguments + QStringList{"--json"}).toUtf8()).object();
    }

    RunnerProcess runner;
    QTemporaryDir folder;
};

TEST_F(FindText, TellsWordsWithPlaces) {
    const QString words = run({dialog});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    for (const char* word : {"  Settings\n", "  margaret.hamilton\n", "  2026-11-25\n", "  Help\n"})
        EXPECT_TRUE(words.contains(word)) << word << qPrintable(words);

    const QJsonObject all = json({dialog, "--region", "0x0x400x40"});
    EXPECT_EQ(all["text"].toString(), "Settings of the network connection");
    EXPECT_EQ(all["words"].toArray().size(), 5);
    EXPECT_EQ(all["options"].toObject()["scaleFactor"].toDouble(), 3.5);
    EXPECT_EQ(json({dialog, "--region", "0x0x400x40", "--options",
                    R"({"tesseract": {"postprocessing": "none"}})"})["words"]
                  .toArray()
                  .size(),
              1);
}

TEST_F(FindText, FindsATextByItsPlace) {
    const QString place = run({dialog, "NETWORK connection"});
    EXPECT_EQ(runner.exitCode(), 0);
    EXPECT_TRUE(place.endsWith("  network connection\n")) << qPrintable(place);
    EXPECT_EQ(json({dialog, "proxy", "--occurrence", "1"})["matches"].toArray().size(), 1);
    EXPECT_EQ(run({dialog, "proxy", "--occurrence", "2"}).section(';', 0, 0), "Not found");
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(run({dialog, "Cancle"}).startsWith("Not found; nearest is \"Cancel\" at "));
    EXPECT_EQ(runner.exitCode(), 1);

    const QString annotated = folder.filePath("found.png");
    run({dialog, "Cancel", "--annotate", annotated});
    EXPECT_EQ(QImage(annotated).size(), QImage(dialog).size());
    EXPECT_NE(QImage(annotated), QImage(dialog).convertToFormat(QImage(annotated).format()));
}

TEST_F(FindText, TellsWhatEnginesOffer) {
    const QString engines = run({"--engines"});
    EXPECT_EQ(runner.exitCode(), 0);
    EXPECT_TRUE(engines.contains("Tesseract\n  languages: ")) << qPrintable(engines);
    EXPECT_TRUE(engines.contains("English"));
    EXPECT_TRUE(engines.contains("OCRSpace\n  not usable: OCR.Space API key is not set\n"));
    const QString list = run({"--engines", "--json"});
    EXPECT_EQ(QJsonDocument::fromJson(list.toUtf8()).array().size(), 3) << qPrintable(list);
}

TEST_F(FindText, FailsClearly) {
    const struct {
        QStringList arguments;
        QString error;
    } rows[] = {
        {{"/no/picture.png"},
         "tamrixrunner: the picture '/no/picture.png' can't be read: File not found\n"},
        {{dialog, "--region", "5000x0x10x10"},
         "tamrixrunner: the region 5000x0x10x10 lies outside "},
        {{dialog, "--engine", "Rekognition"}, "tamrixrunner: Rekognition API key ID is not set\n"},
        {{dialog, "--options", R"({"tesseract": {"mode": 0}})"},
         "tamrixrunner: Invalid engine mode: 0. Allowed modes: 3 1\n"},
        {{dialog, "--options", R"({"tesseract": {"preprocessing": "x"}})"},
         "tamrixrunner: Unknown preprocessing profile 'x'\n"},
    };
    for (const auto& row : rows) {
        RunnerProcess failing;
        failing.run(QStringList{"find-text"} + row.arguments);
        EXPECT_EQ(failing.output(), "");
        EXPECT_EQ(failing.exitCode(), 2);
        EXPECT_TRUE(failing.errors().startsWith(row.error)) << qPrintable(failing.errors());
    }
}

}  // namespace
}  // namespace Tamrix
