#include <json/json.h>

#include <QRegularExpression>
#include <QTemporaryDir>
#include <sstream>

#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/debugger/testdebugger.h"
#include "interpreter/generic/imagesearchtest.h"
#include "interpreter/generic/ocrfunctions.h"
#include "shared/ocr/genericresult.h"
#include "shared/ocr/implementation.h"
#include "shared/ocr/typedexception.h"
#include "support/environmentguard.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

using OCR::GenericResult;
using Options = ScriptArgument::Map;

/// An engine that reads what a test says.
class FakeEngine : public OCR::Implementation {
public:
    QMap<QString, const Capability*> capabilities() override { return {}; }
    Json::Value getOptionData(const Json::Value& /*options*/) override { return {}; }
    QSharedPointer<OCR::Result> processImage(
        const QImage& /*image*/, const QStringList& paths, const OCR::Options& given,
        const Vision::SearchRegion& region,
        const QSharedPointer<OCR::ProgressReporter>& progress) override {
        ++recognitions;
        searchPaths = paths;
        options = given;
        if (progress)
            progress->report(30);
        if (onRead)
            onRead();
        return QSharedPointer<GenericResult>::create(region, lines);
    }

    QList<GenericResult::Line> lines = {
        {{"Save", QRect(10, 20, 20, 10), 10}, {"as", QRect(40, 20, 10, 10), 10}},
        {{"Save", QRect(10, 60, 20, 10), 10}}};
    std::function<void()> onRead;
    int recognitions = 0;
    QStringList searchPaths;
    OCR::Options options;
};

class OcrText : public ImageSearchTest {
protected:
    OcrText() { OCR::implemenations.insert("Tesseract", engine); }
    ~OcrText() override { OCR::implemenations.clear(); }

    QString find(const char* phrase, const Options& options = {}) {
        return search(findOcrText, {text(phrase), map(options)});
    }

    const QSharedPointer<FakeEngine> engine = QSharedPointer<FakeEngine>::create();
};

const SharedPtr<ScriptArgument> save = text("save");

TEST_F(OcrText, ChecksItsArguments) {
    const ScriptArgument::List tooMany = {save, map({}), text("all"), integer(1)};
    const struct {
        ScriptContext::Function function;
        const char* name;
    } functions[] = {{plain<findOcrText>, "findOcrText"},
                     {plain<waitForOcrText>, "waitForOcrText"},
                     {testOcrTextPresent, "ocrTextPresent"},
                     {testOcrTextNotPresent, "ocrTextNotPresent"}};
    for (const auto& row : functions) {
        for (const ScriptArgument::List& arguments : {ScriptArgument::List(), tooMany})
            EXPECT_EQ(call(row.function, arguments),
                      QStringLiteral("Incorrect number of arguments, please call as "
                                     "%1(image[, options][, region])")
                          .arg(row.name));
    }
    const auto withOptions = [](const Options& options) {
        return ScriptArgument::List{save, map(options)};
    };
    expectRefusals({
        {plain<getOcrText>,
         {map({}), text("all"), integer(1)},
         "Incorrect number of arguments, please call as getOcrText([options][,region])"},
        {plain<getAllOcrText>,
         {map({}), text("all"), integer(1)},
         "Incorrect number of arguments, please call as getAllOcrText([options][, region])"},
        {plain<findAllOcrText>,
         {},
         "Incorrect number of arguments, please call as findAllOcrText(text[, options][, region])"},
        {plain<getOcrText>, {text("x")}, "The options argument must be a map"},
        {plain<getAllOcrText>, {integer(1)}, "The options argument must be a map"},
        {plain<findOcrText>, {save, text("x")}, "The options argument must be a map"},
        {plain<findOcrText>, {integer(1)}, "The text argument needs to be specified a string"},
        {plain<findAllOcrText>, {integer(1)}, "The text argument needs to be specified a string"},
        {plain<findOcrText>,
         {save, map({}), integer(1)},
         "Search region must be an object, object list or 'all'"},
        {plain<findOcrText>, withOptions({{"timeout", integer(0)}}),
         "Timeout must be a positive integer"},
        {plain<findOcrText>, withOptions({{"interval", integer(-1)}}),
         "Interval must be a positive integer"},
        {plain<findOcrText>, withOptions({{"occurrence", integer(0)}}),
         "Occurrence must be a positive integer"},
        {plain<findOcrText>, withOptions({{"saveScreenshots", integer(1)}}),
         "saveScreenshots must be a boolean"},
        {plain<findOcrText>, withOptions({{"x", integer(1)}, {"y", integer(1)}}),
         "Unknown options keys: x,y"},
        {plain<findAllOcrText>, withOptions({{"occurrence", integer(1)}}),
         "Unknown options keys: occurrence"},
    });
    EXPECT_EQ(engine->recognitions, 0);
}

TEST_F(OcrText, Reads) {
    EXPECT_EQ(call(plain<getOcrText>), "Save as\nSave");
    EXPECT_EQ(engine->options.scaleFactor, 3.5);
    EXPECT_EQ(engine->options.tesseract.psm, OCR::TesseractOptions::SingleBlock);
    EXPECT_TRUE(engine->searchPaths.value(0).endsWith("/suite/tst"));

    TestSettingsType::s_ocr.profiles = QStringList{"a"};
    context.call(getAllOcrText,
                 {map({{"scaleFactor", integer(2)}}),
                  context.createObject(createRemoteScreenRectangle(QRect(0, 0, 30, 20)))});
    ASSERT_FALSE(context.hasError());
    EXPECT_EQ(engine->options.scaleFactor, 2);
    EXPECT_EQ(engine->options.profiles, QStringList{"a"});
    const ScriptArgument::List words = context.result->toList();
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(words[1]->toMap()["text"]->toString(), "as");
    EXPECT_EQ(unwrapRemoteScreenRectangleAsQRect(words[1]->toMap()["location"]->toObject()),
              QRect(15, 10, 5, 5));

    context.call(findAllOcrText, {save});
    ASSERT_FALSE(context.hasError());
    const ScriptArgument::List places = context.result->toList();
    ASSERT_EQ(places.size(), 2U);
    EXPECT_EQ(unwrapRemoteScreenRectangleAsQRect(places[1]->toObject()), QRect(0, 30, 10, 5));
    taken();
    context.call(getOcrText, {map({{"saveScreenshots", boolean(true)}})});
    EXPECT_EQ(taken().size(), 1);
}

TEST_F(OcrText, FindsOnce) {
    EXPECT_EQ(find("SAVE AS"), "0x10x20x5");
    EXPECT_EQ(find("save", {{"occurrence", integer(2)}}), "0x30x10x5");
    EXPECT_EQ(grabs, 2);
    EXPECT_EQ(find("Sane", {{"timeout", integer(5000)}}),
              "Could not find text 'Sane', ocurrence: 1 on the screen(s).");
    EXPECT_EQ(context.errorType(), ScriptContext::LookupError);
    EXPECT_EQ(grabs, 3);
    EXPECT_EQ(interpreter.errorImage().size(), desktop.size());
    const ResultDetails details = interpreter.errorDetails();
    const QStringList lines = details.explanation.split('\n');
    EXPECT_EQ(lines.value(0), "Text: 'Sane'");
    EXPECT_TRUE(lines.value(1).startsWith(R"(Options: {"engineLanguage":"")"));
    EXPECT_EQ(lines.mid(2),
              (QStringList{"Region: 0x0x120x80 of a screenshot of 120x80 pixels",
                           "Most similar text: 'Save' at 10x20x20x10", "Read: Save as", "Save"}));
    ASSERT_EQ(details.pictures.size(), 2U);
    EXPECT_EQ(details.pictures[0].image.size(), QSize(20, 10));
    EXPECT_EQ(details.pictures[1].image.pixel(8, 18), qRgb(255, 0, 0));
}

TEST_F(OcrText, WaitsAndReadsOnlyWhatHasChanged) {
    onGrab = [this] {
        // The screen stays the same for three looks, then shows another text.
        if (grabs == 4) {
            desktop.fill(Qt::red);
            engine->lines = {{{"Done", QRect(10, 20, 20, 10), 10}}};
        }
    };
    EXPECT_EQ(search(waitForOcrText, {text("done"), map({{"timeout", integer(10000)}})}),
              "0x10x10x5");
    EXPECT_EQ(grabs, 4);
    EXPECT_EQ(engine->recognitions, 2);
    onGrab = {};
    EXPECT_EQ(search(waitForOcrText, {text("never"), map({{"timeout", integer(1)}})}),
              "Could not find text 'never', ocurrence: 1 on the screen(s).");
}

TEST_F(OcrText, GivesVerdicts) {
    const auto verdict = [this](ScriptContext::Function function, const char* phrase,
                                Options options = {}) {
        options.insert({"timeout", integer(1)});
        const QString outcome = call(function, {text(phrase), map(options)});
        return outcome + ' ' + taken().filter(QRegularExpression("erified")).join('|');
    };
    EXPECT_EQ(verdict(testOcrTextPresent, "save", {{"occurrence", integer(2)}}),
              "true 10 Verified: The phrase 'save', occurrence: 2 was found");
    EXPECT_EQ(verdict(testOcrTextNotPresent, "x"),
              "true 10 Verified: The phrase 'x', occurrence: 1 was not found");
    TestSettingsType::s_vpOptions = VerificationOptions();
    EXPECT_TRUE(verdict(testOcrTextPresent, "saved")
                    .contains("Could not find text 'saved', occurrence: 1 on the screen(s)."));
    EXPECT_TRUE(verdict(testOcrTextNotPresent, "save")
                    .contains("The text 'save', occurrence 1 was still present after 1ms"));
}

TEST_F(OcrText, FailuresOfEngines) {
    engine->onRead = [] { throw EngineError("no credit"); };
    EXPECT_EQ(find("x"), "no credit");
    EXPECT_EQ(context.errorType(), ScriptContext::GeneralError);
    engine->onRead = [] { throw InvalidResponse("Invalid JSON: x", "{damaged", "json"); };
    runner.resultDirectory = folder.filePath("results");
    EXPECT_EQ(call(plain<getOcrText>), "Invalid JSON: x");
    const QString file = folder.filePath("results/suite/tst/attachments/invalidResponse.json");
    EXPECT_EQ(readFile(file), "{damaged");
    ASSERT_FALSE(report.entries.empty());
    const auto* const attached = eventOf<FileAttached>(report.entries.back());
    ASSERT_TRUE(attached);
    EXPECT_EQ(attached->message, "Invalid OCR engine response");
    EXPECT_EQ(attached->path, file);
    // The name is taken: the next one gets another.
    call(plain<getOcrText>);
    EXPECT_TRUE(
        QFile::exists(folder.filePath("results/suite/tst/attachments/invalidResponse_1.json")));
    writeFile(folder.filePath("file"), "");
    runner.resultDirectory = folder.filePath("file");
    EXPECT_EQ(call(plain<getOcrText>),
              "Failed saving the invalid response: Could not create report directory '" +
                  folder.filePath("file/suite/tst/attachments") + "'.");
    // The application ends while its picture is read.
    engine->onRead = [] { Inspector::self()->setModel(nullptr); };
    EXPECT_EQ(call(plain<findAllOcrText>, {text("save")}),
              "findAllOcrText error: cannot find ScreenRectangle class");
    Inspector::self()->setModel(&model);
    OCR::implemenations.clear();
    const EnvironmentGuard user("TAMRIX_USER_SETTINGS_DIR", folder.path());
    writeFile(folder.filePath("ver1/ocr.ini"), "[General]\nDefaultEngine = \"none\"\n");
    EXPECT_EQ(find("x"), "Unknown OCR engine: none");
}

/// A search whose script stops in the debugger where it fails.
class OcrTextStop : public OcrText {
protected:
    OcrTextStop() {
        debugger.enterScript("/nowhere/a.py");
        debugger.setInteractive(true);
        debugger.setTextNotFoundDebugging(true);
        TestSettingsType::s_textNotFoundDebugging = true;
    }
    ~OcrTextStop() override { debugger.shutDown(); }

    TestDebugger debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(debugger);
};

Json::Value parsed(const std::string& json) {
    Json::Value value;
    std::istringstream(json) >> value;
    return value;
}

TEST_F(OcrTextStop, TheSearchIsMadeAgain) {
    frontEnd.commands = {[](Debugger& stopped) {
                             ASSERT_TRUE(stopped.internalDebugger());
                             EXPECT_EQ(stopped.internalDebugger()->contextName(), "FindText");
                             Json::Value state = stopped.internalDebugger()->getState();
                             EXPECT_EQ(state["ocrText"].asString(), "saved");
                             EXPECT_EQ(state.size(), 7U);
                             state["ocrText"] = "save";
                             state["ocrOccurrence"] = 2;
                             stopped.internalDebugger()->setState(state);
                         },
                         Resume::Run};
    EXPECT_EQ(find("saved"), "0x30x10x5");
    EXPECT_FALSE(debugger.internalDebugger());
}

TEST_F(OcrTextStop, WrongStatesAreRefused) {
    const struct {
        const char* state;
        const char* text;
    } rows[] = {
        {R"({"ocrText": 1})", "ocrText must be a string"},
        {R"({"ocrTimeout": "1"})", "ocrTimeout must be an integer"},
        {R"({"ocrInterval": 1.5})", "ocrInterval must be an integer"},
        {R"({"ocrOccurrence": 0})", "ocrOccurrence must be a positive integer"},
        {R"({"ocrOptions": {"x": 1}})", "Unknown keys: x"},
        {R"({"ocrOptions": 1})", "options must be an object"},
        {R"({"defaultOcrOptions": {"tesseract": 1}})", "tesseract configuration must be an object"},
        {R"({"ocrRegion": 1})", "Search region must be an object, object list or 'all'"},
        {R"({"a": 1, "b": 1, "ocrTimeout": -1})", "Unknown keys: a, b"},
    };
    frontEnd.commands = {[&](Debugger& stopped) {
                             for (const auto& row : rows) {
                                 try {
                                     stopped.internalDebugger()->setState(parsed(row.state));
                                     ADD_FAILURE() << row.state;
                                 } catch (const std::exception& exception) {
                                     EXPECT_STREQ(exception.what(), row.text);
                                 }
                             }
                         },
                         Resume::Run};
    find("saved");
}

}  // namespace
}  // namespace Tamrix
