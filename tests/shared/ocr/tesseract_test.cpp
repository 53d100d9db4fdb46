// The Tesseract engine upon libraries that stand for the real ones.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <clocale>

#include "shared/ocr/fakeocrlibraries.h"
#include "shared/ocr/genericresult.h"
#include "shared/ocr/recordingreporter.h"
#include "shared/ocr/settingsfile.h"
#include "shared/ocr/tesseract/implementation.h"
#include "shared/ocr/tesseract/languagedata.h"
#include "shared/ocr/tesseract/libraries.h"
#include "shared/ocr/tesseract/localehandle.h"
#include "shared/ocr/throwntext.h"
#include "shared/ocr/typedexception.h"
#include "support/environmentguard.h"
#include "support/printqt.h"

namespace Tamrix::OCR {
namespace {

using Element = FakeOcrLibraries::Element;
using Tesseract::Implementation;
using Vision::SearchRegion;

/// An installation in a folder of its own.
class TesseractEngine : public ::testing::Test {
protected:
    QTemporaryDir m_folder;

public:
    TesseractEngine() {
        QDir(m_folder.path()).mkpath("engine/lib64");
        for (const char* name : {"leptonica", "tesseract"})
            QFile::link(TAMRIX_FAKE_OCR_LIBRARIES,
                        m_folder.filePath(QStringLiteral("engine/lib64/lib%1.so").arg(name)));
        const Settings settings =
            settingsFile(m_folder.filePath("ocr.ini"),
                         {{"Tesseract", "InstallPath/40", install()},
                          {"Tesseract", "InstallPath/40/fast", m_folder.filePath("fast")}});
        writeLanguages(R"(<languageMap><languages>
            <language code="deu" recordedName="German" displayName="German, Deutsch"/>
            <language code="eng" recordedName="English"/></languages>
            <engineModes> LSTM </engineModes></languageMap>)");
        engine = std::make_unique<Implementation>(settings);
        using GetLibraries = FakeOcrLibraries* (*)();
        libraries = reinterpret_cast<GetLibraries>(dlsym(RTLD_DEFAULT, "fakeOcrLibraries"))();
        *libraries = FakeOcrLibraries();
        image.fill(Qt::white);
    }
    ~TesseractEngine() override { EXPECT_EQ(libraries->handedOut(), 0); }

    QString install() const { return m_folder.filePath("engine"); }
    void write(const QString& path, const QByteArray& bytes) const {
        QDir().mkpath(QFileInfo(m_folder.filePath(path)).path());
        QFile file(m_folder.filePath(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    void writeLanguages(const QByteArray& xml) const { write("engine/languageNames.xml", xml); }

    QSharedPointer<Result> read() {
        return engine->processImage(image, {m_folder.path()}, options, region, reporter);
    }

    std::unique_ptr<Implementation> engine;
    FakeOcrLibraries* libraries = nullptr;
    QImage image = QImage(200, 100, QImage::Format_RGB32);
    Options options;
    SearchRegion region = SearchRegion(QRect(0, 0, 1000, 1000));
    QSharedPointer<RecordingReporter> reporter;
};

TEST_F(TesseractEngine, HandsTheOptionsOn) {
    write("tesseract/profiles/mine", "");
    options.profiles = QStringList{"mine", "digits"};
    options.options = {{"a", "1"}, {"b", "x"}};
    options.tesseract.language = "German";
    options.tesseract.psm = TesseractOptions::SparseText;
    options.scaleFactor = 2;
    image.setDotsPerMeterX(4000);
    image.setDotsPerMeterY(3780);
    read();
    EXPECT_EQ(QString::fromStdString(libraries->dataPath), install() + "/tessdata");
    EXPECT_EQ(libraries->language, "deu");
    EXPECT_EQ(libraries->mode, 3);
    EXPECT_EQ(libraries->configurations,
              (std::vector<std::string>{m_folder.filePath("tesseract/profiles/mine").toStdString(),
                                        "digits"}));
    EXPECT_EQ(libraries->variables, (std::map<std::string, std::string>{{"a", "1"}, {"b", "x"}}));
    EXPECT_EQ(libraries->segmentation, 11);
    EXPECT_EQ(libraries->resolution, 192);
    EXPECT_EQ(libraries->scale, 2.0F);
}

TEST_F(TesseractEngine, Languages) {
    const struct {
        const char* ofEngine;
        const char* ofAll;
        const char* code;
    } rows[] = {
        {nullptr, nullptr, "eng"}, {"", "", "eng"},       {"", "German", "deu"},
        {"fra", "German", "fra"},  {"German", "", "deu"}, {"deu", nullptr, "deu"},
    };
    for (const auto& row : rows) {
        options = Options();
        if (row.ofEngine)
            options.tesseract.language = row.ofEngine;
        if (row.ofAll)
            options.language = row.ofAll;
        read();
        EXPECT_EQ(libraries->language, row.code);
    }
}

TEST_F(TesseractEngine, WordsWithPlaces) {
    // In the picture that is magnified two times, of a region that begins at 10, 20.
    options.scaleFactor = 2;
    region = SearchRegion(QRect(10, 20, 2000, 2000));
    image = QImage(1200, 1200, QImage::Format_RGB32);
    libraries->elements = {{" a ", 0, 0, 41, 21},    {"b", 60, 0, 101, 21, true},
                           {"", 0, 0, 10, 10},       {"c", 0, 40, 21, 61, true},
                           {"high", 0, 0, 20, 1000}, {"higher", 0, 0, 20, 1002, true},
                           {"d", 0, 80, 21, 101}};
    const auto result = read();
    ASSERT_TRUE(result.dynamicCast<GenericResult>());
    // What is dropped ends no line.
    EXPECT_EQ(result->getText(), "a b\nc\nhigh d");
    EXPECT_EQ(result->getAllWords().value(0).rect, QRect(10, 20, 20, 10));
    EXPECT_EQ(result->getAllWords().value(1).rect, QRect(40, 20, 20, 10));
    EXPECT_EQ(result->getAllWords().value(1).pointSize, 12);

    // Meant: other profiles magnify, or not, but nothing is scaled back.
    for (const char* profile : {"invert_color", "none"}) {
        options.tesseract.preprocessing = profile;
        EXPECT_EQ(read()->getAllWords().value(0).rect, QRect(10, 20, 41, 21)) << profile;
    }
    EXPECT_TRUE(libraries->isInverted);
}

TEST_F(TesseractEngine, SymbolsWithBlanks) {
    options.tesseract.postprocessing = "none";
    options.tesseract.preprocessing = "none";
    libraries->elements = {{"a", 20, 20, 30, 30, false, "a b\n"},
                           {"b", 40, 20, 50, 30, true, "a b\n"},
                           {"ß", 20, 50, 30, 60, true, "ß\n"}};
    const auto result = read();
    EXPECT_EQ(result->getText(), "a b\nß\n");
    EXPECT_EQ(result->getTextLocation("a b", 1).boundingBox(),
              QRect(QPoint(20, 10), QPoint(49, 29)));
    libraries->elements = {{"ab", 0, 0, 10, 10, true, "ab\n"}};
    EXPECT_EQ(thrownText<std::runtime_error>([&] { read(); }), "Text length != 1");
}

TEST_F(TesseractEngine, ReadsOnlyTheRegion) {
    options.tesseract.preprocessing = "none";
    image.setPixel(50, 60, qRgb(1, 2, 3));
    region = SearchRegion(QRect(50, 60, 2, 1));
    read();
    EXPECT_EQ(libraries->pixels, (std::vector<unsigned>{0x010203ff, 0xffffffff}));
    // Pictures with a colour table and with bytes for each colour.
    for (const QImage::Format format : {QImage::Format_Indexed8, QImage::Format_RGB888}) {
        image = image.convertToFormat(format);
        read();
        EXPECT_EQ(libraries->pixels, (std::vector<unsigned>{0x010203ff, 0xffffffff}));
    }
}

TEST_F(TesseractEngine, TellsProgress) {
    reporter.reset(new RecordingReporter);
    read();
    EXPECT_EQ(reporter->reports, (QList<int>{2, 3, 4, 10, 20, 70}));
    options.tesseract.preprocessing = "invert_color";
    reporter.reset(new RecordingReporter);
    read();
    EXPECT_EQ(reporter->reports, (QList<int>{2, 3, 4, 10, 20, 25, 70}));
    // An end is possible behind each step.
    for (const int percent : {2, 3, 4, 10, 20, 70}) {
        reporter.reset(new RecordingReporter(percent));
        EXPECT_EQ(thrownText<OperationCancelled>([&] { read(); }), "Operation cancelled");
        EXPECT_EQ(libraries->handedOut(), 0);
    }
}

TEST_F(TesseractEngine, FailuresLeaveNothingBehind) {
    libraries->elements = {{"a", 0, 0, 10, 10, true, "a\n"}};
    const char* const before = std::setlocale(LC_NUMERIC, nullptr);
    const struct {
        const char* failing;
        const char* text;
    } rows[] = {
        {"TessBaseAPICreate", "std::bad_alloc"},
        {"TessBaseAPIInit4", "Failed to initialize the Tesseract engine"},
        {"pixCreateNoInit", "std::bad_alloc"},
        {"pixConvertRGBToGray", "std::bad_alloc"},
        {"pixScaleGeneral", "std::bad_alloc"},
        {"pixUnsharpMasking", "std::bad_alloc"},
        {"TessMonitorCreate", "std::bad_alloc"},
        {"TessBaseAPIRecognize", "OCR recognition error"},
        {"TessPageIteratorBoundingBox", "Failed retrieving a bounding box for a word"},
    };
    reporter.reset(new RecordingReporter);
    for (const auto& row : rows) {
        libraries->failing = row.failing;
        EXPECT_EQ(thrownText<std::exception>([&] { read(); }), row.text) << row.failing;
        EXPECT_EQ(libraries->handedOut(), 0) << row.failing;
        EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE) << row.failing;
    }
    options.tesseract.postprocessing = "none";
    EXPECT_EQ(thrownText<EngineError>([&] { read(); }),
              "Failed retrieving a bounding box for a symbol");
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), before);
    // Nothing recognised is no failure.
    libraries->failing = "TessBaseAPIGetIterator";
    EXPECT_EQ(read()->getText(), "");
}

TEST_F(TesseractEngine, WrongOptionsAreRefused) {
    libraries->elements = {{"a", 0, 0, 10, 10, true}};
    const struct {
        const char* options;
        const char* text;
    } rows[] = {
        {R"({"tesseract": {"flavor": "slow"}})", "Unknown tesseract engine data flavor: slow"},
        {R"({"tesseract": {"mode": 0}})", "Invalid engine mode: 0. Allowed modes: 3 1"},
        {R"({"tesseract": {"preprocessing": "x"}})", "Unknown preprocessing profile 'x'"},
        {R"({"tesseract": {"postprocessing": "x"}})", "Unknown postprocessing mode: x"},
    };
    for (const auto& row : rows) {
        options = Options::fromJson(QString(row.options));
        EXPECT_EQ(thrownText<TypedException>([&] { read(); }), row.text);
    }
    options = Options();
    // Settings of a run are not checked.
    options.tesseract.psm = static_cast<TesseractOptions::PageSegmentationMode>(13);
    read();
    EXPECT_EQ(libraries->segmentation, 6);
    region = SearchRegion(QRect(200, 0, 10, 10));
    EXPECT_EQ(thrownText<InvalidInputs>([&] { read(); }), "Invalid search region specified");
    image = QImage();
    EXPECT_EQ(thrownText<InvalidInputs>([&] { read(); }), "Null QImage received");
}

TEST_F(TesseractEngine, LanguageFile) {
    const auto modes = [&](const char* text) {
        writeLanguages(QByteArray("<languageMap><x><language/></x><engineModes>") + text +
                       "</engineModes></languageMap>");
        QString list;
        for (const auto mode : Tesseract::loadLanguagesFile(install()).second)
            list += QString::number(mode);
        return list;
    };
    EXPECT_EQ(modes("legacy"), "30");
    EXPECT_EQ(modes("\n LSTM,legacy\n"), "3102");
    EXPECT_EQ(modes("other"), "3");

    writeLanguages(R"(<languageMap><languages><language/><other/>
        <language code="a"/><language code="b" recordedName="B"/></languages></languageMap>)");
    const auto languages = Tesseract::loadLanguagesFile(install()).first;
    ASSERT_EQ(languages.size(), 2);
    EXPECT_EQ(languages[0].displayName, "a");
    EXPECT_EQ(languages[1].displayName, "B");

    const std::string path = (install() + "/languageNames.xml").toStdString();
    const struct {
        const char* xml;
        const char* problem;
    } rows[] = {
        {"", "parsing failed: Premature end of document."},
        {"<other/>", "parsing failed: root element must be languageMap"},
        {"<languageMap><languages>", "parsing failed: Premature end of document."},
    };
    for (const auto& row : rows) {
        writeLanguages(row.xml);
        EXPECT_EQ(thrownText<InitializationError>([&] { Tesseract::loadLanguagesFile(install()); }),
                  "Language map file '" + path + "' " + row.problem);
    }
    QFile::remove(QString::fromStdString(path));
    EXPECT_EQ(thrownText<InitializationError>([&] { Tesseract::loadLanguagesFile(install()); }),
              "Language map file '" + path + "' does not exist");
}

TEST_F(TesseractEngine, WithoutLanguageFileTheCodesAreTheNames) {
    QFile::remove(install() + "/languageNames.xml");
    ::testing::internal::CaptureStderr();
    const Tesseract::LanguageData data = Tesseract::loadLanguages(install());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Language map file '" + install().toStdString() +
                  "/languageNames.xml' does not exist\nUsing plain character codes\n");
    QStringList codes;
    for (const Language& language : data.first)
        codes.append(language.displayName);
    EXPECT_EQ(codes, (QStringList{"eng", "deu", "osd"}));
    EXPECT_EQ(data.second.size(), 4);
    for (const char* failing : {"TessBaseAPICreate", "TessBaseAPIInit3"}) {
        libraries->failing = failing;
        ::testing::internal::CaptureStderr();
        EXPECT_THROW(Tesseract::loadLanguages(install()), std::exception);
        ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(libraries->handedOut(), 0);
    }
}

TEST_F(TesseractEngine, TellsWhatCanBeChosen) {
    const Json::Value data = engine->getOptionData(Json::Value(Json::objectValue));
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    EXPECT_EQ(
        Json::writeString(builder, data),
        R"({"displayName":"Tesseract","engineModes":[3,1],"flavors":["","fast"],)"
        R"("languages":[{"code":"deu","displayName":"German, Deutsch","recordedName":"German"},)"
        R"({"code":"eng","displayName":"English","recordedName":"English"}],)"
        R"("name":"Tesseract","postprofiles":["default","none"],)"
        R"("profiles":["default","invert_color","none"]})");
    Json::Value wrong(Json::objectValue);
    wrong["flavor"] = "slow";
    EXPECT_EQ(thrownText<InvalidInputs>([&] { engine->getOptionData(wrong); }),
              "Unknown tesseract engine data flavor: slow");
    const auto capabilities = engine->capabilities();
    ASSERT_EQ(capabilities.keys(), QStringList{"UsesLanguageHint"});
    EXPECT_EQ(capabilities.first()->toJson()["languages"].size(), 2U);
}

TEST_F(TesseractEngine, LibrariesThatDoNotFit) {
    QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    EXPECT_EQ(thrownText<std::runtime_error>([&] { Tesseract::TesseractModule{path}; }),
              "Cannot find the Tesseract library in " + path);
    QFile::link(TAMRIX_INCOMPLETE_OCR_LIBRARY, folder.filePath("libleptonica.so"));
    EXPECT_EQ(thrownText<std::runtime_error>([&] { Tesseract::LeptonicaModule{path}; }),
              "The library Leptonica is incompatible: missing the pixGetData function");
    write("broken/libleptonica.so", "no library");
    EXPECT_EQ(thrownText<std::runtime_error>([&] {
                  Tesseract::LeptonicaModule{m_folder.filePath("broken").toStdString()};
              }).rfind("Error loading the '", 0),
              0U);
    const Settings none(folder.filePath("none.ini"));
    const Tamrix::Test::EnvironmentGuard prefix("TAMRIX_PREFIX", folder.path());
    EXPECT_EQ(thrownText<SetupError>([&] { Implementation{none}; }),
              "The path to the tesseract engine is not configured");
}

TEST(LocaleOverride, OfOneThread) {
    {
        const Tesseract::LocaleOverride override(Tesseract::LocaleHandle::C);
        EXPECT_EQ(uselocale(nullptr), Tesseract::LocaleHandle::C.get());
    }
    EXPECT_EQ(uselocale(nullptr), LC_GLOBAL_LOCALE);
    const Tesseract::LocaleHandle none("no_SUCH");
    EXPECT_EQ(thrownText<std::runtime_error>([&] { Tesseract::LocaleOverride{none}; }),
              "Temporary locale override failed");
}

}  // namespace
}  // namespace Tamrix::OCR
