// The engines that are services, against a server of the test's own.

#include <gtest/gtest.h>
#include <json/json.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include "base/blocking.h"
#include "shared/ocr/recordingreporter.h"
#include "shared/ocr/rest/ocrspace.h"
#include "shared/ocr/rest/rekognition.h"
#include "shared/ocr/rest/sharpening.h"
#include "shared/ocr/settingsfile.h"
#include "shared/ocr/throwntext.h"
#include "shared/ocr/typedexception.h"
#include "support/printqt.h"

namespace Tamrix::OCR {
namespace {

using Vision::SearchRegion;

bool s_isInterrupted = false;

class LocalRekognition : public Rekognition::Implementation {
public:
    LocalRekognition(const Settings& settings, const QString& address)
        : Implementation(settings), m_address(address) {}

protected:
    QUrl endpoint(const QString& host) const override {
        EXPECT_EQ(host, "rekognition.eu-west-1.amazonaws.com");
        return QUrl(m_address);
    }

private:
    QString m_address;
};

class OcrServices : public ::testing::Test {
protected:
    OcrServices() {
        m_server.setWorkingDirectory(m_folder.path());
        m_server.start("/usr/bin/python3",
                       {TAMRIX_TEST_SOURCE_DIR "/tests/shared/ocr/recognitionserver.py"});
        m_address = "http://127.0.0.1:" + line() + '/';
        image.fill(Qt::white);
        s_isInterrupted = false;
        setInterruptCheck([] { return s_isInterrupted; });
    }
    ~OcrServices() override {
        setInterruptCheck(nullptr);
        m_server.kill();
        m_server.waitForFinished();
    }

    /// The next line that the server prints.
    QString line() {
        while (!m_server.canReadLine() && m_server.waitForReadyRead(100'000)) {
        }
        return QString::fromUtf8(m_server.readLine()).trimmed();
    }

    void reply(const QByteArray& status, const QByteArray& body = QByteArray()) const {
        QFile file(m_folder.filePath("REPLY"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(status + '\n' + body);
    }

    Settings settings(const QList<SettingsEntry>& more = {}) const {
        return settingsFile(m_folder.filePath("ocr.ini"),
                            QList<SettingsEntry>{{"OCRSpace", "ApiKey", "the key"},
                                                 {"OCRSpace", "ApiEndpoint", m_address},
                                                 {"Rekognition", "ApiKeyId", "the id"},
                                                 {"Rekognition", "ApiKey", "secret"}} +
                                more);
    }

    QSharedPointer<Result> readBySpace(const Options& options) {
        OcrSpace::Implementation engine(settings());
        return engine.processImage(image, {}, options, region, reporter);
    }
    QSharedPointer<Result> readByRekognition(const Options& options) {
        LocalRekognition engine(settings(), m_address);
        return engine.processImage(image, {}, options, region, reporter);
    }

    QImage image = QImage(40, 30, QImage::Format_RGB32);
    SearchRegion region = SearchRegion(QRect(10, 20, 100, 100));
    QSharedPointer<RecordingReporter> reporter;

    QTemporaryDir m_folder;
    QString m_address;

private:
    int m_argumentCount = 1;
    char m_program[5] = "test";
    char* m_arguments[1] = {m_program};
    QCoreApplication m_application{m_argumentCount, m_arguments};

protected:
    QProcess m_server;
};

/// A reply of OCR.Space whose one page is this.
QByteArray spaceReply(const QByteArray& page) {
    return "{\"OCRExitCode\": 1, \"ParsedResults\": [" + page + "]}";
}
QByteArray spaceLines(const QByteArray& lines) {
    return spaceReply(
        "{\"FileParseExitCode\": 1, \"TextOverlay\": {\"HasOverlay\": true, \"Lines\": " + lines +
        "}}");
}

TEST_F(OcrServices, SpaceReadsWords) {
    reply("200", spaceLines(R"([{"Words": [
        {"WordText": "Save", "Left": 7, "Top": 4, "Width": 9, "Height": 5},
        {"WordText": "as", "Left": 20, "Top": 4, "Width": 9, "Height": 5}]}, {"Words": []}])"));
    Options options;
    options.scaleFactor = 2;
    options.language = "German";
    // The picture is only as large as the image; what lies outside of the region does not exist.
    region = SearchRegion(QRect(10, 20, 30, 10));
    const auto result = readBySpace(options);
    EXPECT_EQ(line(), "ok");
    EXPECT_EQ(result->getText(), "Save as");
    EXPECT_EQ(result->getAllWords().value(0).rect, QRect(13, 22, 4, 2));
    EXPECT_EQ(result->getAllWords().value(0).pointSize, 2);

    // No language, and one that is unknown: names count, not codes.
    readBySpace(Options());
    EXPECT_EQ(line(), "ok");
    options.language = "ger";
    EXPECT_EQ(thrownText<InvalidInputs>([&] { readBySpace(options); }),
              "Unknown OCR language: ger");
    region = SearchRegion(QRect(100, 100, 1, 1));
    EXPECT_EQ(thrownText<InvalidInputs>([&] { readBySpace(Options()); }),
              "Invalid search region specified");
}

TEST_F(OcrServices, RekognitionReadsWords) {
    reply("200", R"({"TextDetections": [
        {"Type": "LINE", "Id": 7, "ParentId": 0}, {"Type": "LINE", "Id": 2}, {"Type": "OTHER"},
        {"Type": "WORD", "Id": 8, "ParentId": 7, "DetectedText": "below", "Geometry": {"BoundingBox":
            {"Left": 0.1, "Top": 0.5, "Width": 0.5, "Height": 0.5}}},
        {"Type": "WORD", "Id": 9, "ParentId": 2, "DetectedText": "above", "Geometry": {"BoundingBox":
            {"Left": 0, "Top": 0, "Width": 1, "Height": 0.25}}}]})");
    region = SearchRegion(QRect(10, 10, 30, 20));
    const auto result = readByRekognition(Options());
    EXPECT_EQ(line(), "ok");
    EXPECT_EQ(result->getText(), "above\nbelow");
    EXPECT_EQ(result->getAllWords().value(1).rect, QRect(13, 20, 15, 10));
    EXPECT_EQ(result->getAllWords().value(1).pointSize, 10);

    Options options;
    options.language = "English";
    EXPECT_EQ(thrownText<InvalidInputs>([&] { readByRekognition(options); }),
              "Amazon Rekognition does not support language selection");
    options.language = "";
    options.profiles = QStringList{"a"};
    EXPECT_EQ(thrownText<InvalidInputs>([&] { readByRekognition(options); }),
              "Amazon Rekognition does not support profiles");
    options.profiles.clear();
    options.options = {{"a", "1"}, {"b", "2"}};
    EXPECT_EQ(thrownText<InvalidInputs>([&] { readByRekognition(options); }),
              "Unknown options: a, b");
}

TEST_F(OcrServices, FailuresOfRequests) {
    reply("200", R"({"OCRExitCode": 3, "ErrorMessage": ["no ", 1, "credit"]})");
    EXPECT_EQ(thrownText<EngineError>([&] { readBySpace(Options()); }), "no credit");
    reply("403", R"({"message": "wrong key"})");
    EXPECT_EQ(thrownText<EngineError>([&] { readByRekognition(Options()); }), "wrong key");
    EXPECT_NE(thrownText<ConnectionError>([&] { readBySpace(Options()); }), "");
    reply("500");
    EXPECT_NE(thrownText<ConnectionError>([&] { readByRekognition(Options()); }), "");
    for (const auto& [body, text] :
         {std::pair<const char*, const char*>{"[]", "Response is not a JSON object"},
          {"{}", "The error response did not specify the "}}) {
        reply("500", body);
        try {
            readByRekognition(Options());
            FAIL();
        } catch (const InvalidResponse& exception) {
            EXPECT_STREQ(exception.what(), text);
            EXPECT_EQ(exception.responseBytes, body);
            EXPECT_EQ(exception.responseFormat, "json");
        }
    }
    m_server.kill();
    m_server.waitForFinished();
    EXPECT_NE(thrownText<ConnectionError>([&] { readBySpace(Options()); }), "");
}

TEST_F(OcrServices, WaitsEndEarly) {
    reply("silent");
    QElapsedTimer clock;
    clock.start();
    const auto endsSoon = [&] {
        EXPECT_EQ(thrownText<OperationCancelled>([&] { readBySpace(Options()); }),
                  "Operation cancelled");
        EXPECT_LT(clock.restart(), 20'000);
    };
    // By a signal in the middle, by the flag alone, and before anything is sent.
    reporter.reset(new RecordingReporter);
    QTimer look;
    look.start(10);
    QObject::connect(&look, &QTimer::timeout, reporter.data(), [this] {
        // The server has the request, and its answer is waited for.
        if (m_server.canReadLine())
            Q_EMIT reporter->canceled();
    });
    endsSoon();
    EXPECT_EQ(line(), "ok");
    endsSoon();
    // By Ctrl-C.
    reporter.reset();
    QTimer::singleShot(300, [] { s_isInterrupted = true; });
    endsSoon();
}

TEST_F(OcrServices, GoThroughAProxy) {
    reply("200", spaceLines("[]"));
    const QString port = m_address.section(':', 2).remove('/');
    OcrSpace::Implementation engine(settingsFile(
        m_folder.filePath("ocr.ini"), {{"OCRSpace", "ApiKey", "the key"},
                                       {"OCRSpace", "ApiEndpoint", "http://ocr.invalid/parse"},
                                       {"Proxy", "Type", "Http"},
                                       {"Proxy", "Host", "127.0.0.1"},
                                       {"Proxy", "Port", port}}));
    EXPECT_EQ(engine.processImage(image, {}, Options(), region, nullptr)->getText(), "");
    EXPECT_EQ(line(), "ok");
}

TEST(OcrReplies, OfSpaceThatCannotBeUsed) {
    const struct {
        QByteArray reply;
        const char* text;
    } rows[] = {
        {"[]", "Response is not a JSON object"},
        {"{}", "OCRExitCode entry missing"},
        {R"({"OCRExitCode": "1"})", "OCRExitCode entry is not an integer"},
        {R"({"OCRExitCode": 1})", "ParsedResults entry missing"},
        {R"({"OCRExitCode": 1, "ParsedResults": 1})", "ParsedResults entry is not an array"},
        {R"({"OCRExitCode": 1, "ParsedResults": []})",
         "Unexpected response: ParsedResults array size 0"},
        {spaceReply("1"), "Unexpected response: Result is not an object"},
        {spaceReply("{}"), "FileParseExitCode entry missing"},
        {spaceReply(R"({"FileParseExitCode": 1})"), "TextOverlay entry missing"},
        {spaceReply(R"({"FileParseExitCode": 1, "TextOverlay": 1})"),
         "TextOverlay entry is not an object"},
        {spaceReply(R"({"FileParseExitCode": 1, "TextOverlay": {"HasOverlay": 1}})"),
         "HasOverlay entry is not a boolean"},
        {spaceReply(R"({"FileParseExitCode": 1, "TextOverlay": {"HasOverlay": false}})"),
         "Response does not include an overlay"},
        {spaceLines("1"), "Lines entry is not an array"},
        {spaceLines("[{}]"), "Words entry missing"},
        {spaceLines(R"([{"Words": [1]}])"), "Unexpected response: Word entry is not an object"},
        {spaceLines(R"([{"Words": [{"Height": 1.5}]}])"), "Height entry is not an integer"},
        {spaceLines(
             R"([{"Words": [{"Height": 1, "Width": 1, "Top": 1, "Left": 1, "WordText": 1}]}])"),
         "WordText entry is not a string"},
        {QByteArray(100000, '['), ""},
        {"{\"a\": 1,}", ""},
    };
    for (const auto& row : rows) {
        try {
            OcrSpace::linesOf(row.reply, QRect(0, 0, 10, 10), 2);
            ADD_FAILURE() << row.reply.constData();
        } catch (const InvalidResponse& exception) {
            EXPECT_STREQ(*row.text ? exception.what() : "", row.text);
            EXPECT_EQ(exception.responseBytes, row.reply);
            EXPECT_EQ(exception.responseFormat, "json");
        }
    }
    const auto refusal = [](const QByteArray& reply) {
        return thrownText<EngineError>([&] { OcrSpace::linesOf(reply, QRect(), 1); });
    };
    EXPECT_EQ(refusal(R"({"OCRExitCode": 4})"), "Unknown OCR.Space error: code 4");
    EXPECT_EQ(refusal(spaceReply(R"({"FileParseExitCode": -10, "ErrorMessage": "damaged"})")),
              "damaged");
    // Numbers that no picture has.
    const auto lines = OcrSpace::linesOf(
        spaceLines(R"([{"Words": [{"Height": 2147483647, "Width": -2147483648, "Top": 2147483647,
            "Left": -2147483648, "WordText": "x"}]}])"),
        QRect(0, 0, 10, 10), 0.2);
    EXPECT_EQ(lines.value(0).value(0).text, "x");
}

TEST(OcrReplies, OfRekognitionThatCannotBeUsed) {
    const auto detections = [](const QByteArray& list) {
        return "{\"TextDetections\": [" + list + "]}";
    };
    const struct {
        QByteArray reply;
        const char* text;
    } rows[] = {
        {"{}", "TextDetections entry missing"},
        {R"({"TextDetections": 1})", "TextDetections entry is not an array"},
        {detections("1"), "TextDetection entry is not an object"},
        {detections("{}"), "Type entry missing"},
        {detections(R"({"Type": "LINE"})"), "Id entry missing"},
        {detections(R"({"Type": "LINE", "Id": 1}, {"Type": "LINE", "Id": 1})"),
         "Duplicate line Id"},
        {detections(R"({"Type": "WORD"})"), "ParentId entry missing"},
        {detections(R"({"Type": "WORD", "ParentId": 1, "DetectedText": "x", "Geometry":
            {"BoundingBox": {"Left": 0, "Top": 0, "Width": 1, "Height": 1}}})"),
         "Word without a Line"},
        {detections(R"({"Type": "LINE", "Id": 1}, {"Type": "WORD", "ParentId": 1})"),
         "Geometry entry missing"},
        {detections(R"({"Type": "LINE", "Id": 1}, {"Type": "WORD", "ParentId": 1, "Geometry":
            {"BoundingBox": {"Width": "1"}}})"),
         "Width entry is not a number"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(thrownText<InvalidResponse>(
                      [&] { Rekognition::linesOf(row.reply, QRect(0, 0, 10, 10)); }),
                  row.text);
}

TEST(OcrSharpening, OfPictures) {
    QImage image(24, 24, QImage::Format_RGB32);
    image.fill(qRgb(100, 100, 100));
    const QImage flat = sharpened(image, 1);
    EXPECT_EQ(flat.format(), QImage::Format_Indexed8);
    EXPECT_EQ(qGray(flat.pixel(4, 12)), 0);
    EXPECT_EQ(qGray(flat.pixel(19, 12)), 0);
    // In the middle all taps add up, to 1 and a little.
    EXPECT_NEAR(qGray(flat.pixel(12, 12)), 100, 1);
    image.setPixel(12, 12, qRgb(255, 255, 255));
    EXPECT_EQ(qGray(sharpened(image, 1).pixel(12, 12)), 255);
    EXPECT_EQ(sharpened(image, 1.6).size(), QSize(38, 38));
    const QImage narrow = sharpened(image.copy(0, 0, 10, 24), 1);
    for (int x = 0; x < narrow.width(); ++x)
        EXPECT_EQ(qGray(narrow.pixel(x, 12)), 0);
    EXPECT_THROW(sharpened(image, 1e6), InvalidInputs);
}

}  // namespace
}  // namespace Tamrix::OCR
