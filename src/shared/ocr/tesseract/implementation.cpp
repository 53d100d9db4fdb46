#include "shared/ocr/tesseract/implementation.h"

#include <json/json.h>

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <stdexcept>
#include <vector>

#include "shared/ocr/genericresult.h"
#include "shared/ocr/tesseract/extraction.h"
#include "shared/ocr/tesseract/framelines.h"
#include "shared/ocr/tesseract/handles.h"
#include "shared/ocr/tesseract/languagedata.h"
#include "shared/ocr/tesseract/localehandle.h"
#include "shared/ocr/tesseract/preprocessing.h"
#include "shared/ocr/tesseract/rawresult.h"
#include "shared/ocr/typedexception.h"
#include "shared/resources/testresource.h"
#include "vision/search/jsonhelpers.h"

namespace Tamrix::Tesseract {

using OCR::GenericResult;
using OCR::Language;
using OCR::Options;
using OCR::ProgressReporter;
using OCR::TesseractOptions;

namespace {

constexpr double inchesPerMeter = 39.3701;

/// What Tesseract's own progress is raised by: the steps before it come first.
constexpr int recognitionStart = 30;

/// Texts in the form in which the C interface takes lists of them.
class TextArray {
public:
    explicit TextArray(const QStringList& texts) {
        for (const QString& text : texts)
            m_bytes.push_back(text.toUtf8());
        for (QByteArray& bytes : m_bytes)
            m_pointers.push_back(bytes.data());
    }
    char** data() { return m_pointers.data(); }
    std::size_t size() const { return m_pointers.size(); }

private:
    std::vector<QByteArray> m_bytes;
    std::vector<char*> m_pointers;
};

/// The paths of the configuration files that the profiles name; what isn't found stays as it is,
/// for the engine's own.
QStringList locateProfiles(const QStringList& profiles, const QStringList& searchPaths) {
    QStringList directories;
    for (const QString& path : searchPaths)
        directories.append(QStringLiteral("%1%2tesseract").arg(path, QDir::separator()));
    QStringList files;
    for (const QString& profile : profiles) {
        const QString file = TestResource::locate(TestResource::Profile, profile, directories);
        files.append(file.isEmpty() ? profile : file);
    }
    return files;
}

/// Tesseract's name of the language. An empty one of the engine's own options, which is their
/// default, leaves the word to the one for all engines.
QString languageCode(const Options& options, const QList<Language>& known) {
    QString wanted = options.tesseract.language.value_or(QString());
    if (wanted.isEmpty())
        wanted = options.language.value_or(QString());
    if (wanted.isEmpty())
        return QStringLiteral("eng");
    const auto language = std::find_if(known.begin(), known.end(), [&](const Language& each) {
        return each.recordedName == wanted;
    });
    return language != known.end() ? language->code : wanted;
}

int engineMode(const Options& options, const QList<TesseractOptions::Mode>& allowed) {
    const TesseractOptions::Mode mode =
        options.tesseract.mode.value_or(TesseractOptions::DefaultMode);
    if (!allowed.contains(mode)) {
        QString text =
            QStringLiteral("Invalid engine mode: %1. Allowed modes:").arg(static_cast<int>(mode));
        for (const TesseractOptions::Mode each : allowed)
            text += QStringLiteral(" %1").arg(static_cast<int>(each));
        throw InitializationError(text);
    }
    return mode;
}

int pageSegmentationMode(const Options& options) {
    const int mode = options.tesseract.psm.value_or(TesseractOptions::SingleBlock);
    return mode >= 0 && mode <= TesseractOptions::SparseTextOsd ? mode
                                                                : TesseractOptions::SingleBlock;
}

void initialize(TessBaseAPI* api, const Options& options, const QString& flavorDir,
                const QStringList& configurationFiles) {
    const LanguageData data = loadLanguages(flavorDir);
    const QByteArray language = languageCode(options, data.first).toUtf8();
    const int mode = engineMode(options, data.second);
    TextArray configurations(configurationFiles);
    TextArray variables(options.options.keys());
    TextArray values(options.options.values());
    if (tesseract->TessBaseAPIInit4(api, tessdataOf(flavorDir).toUtf8().constData(),
                                    language.constData(), mode, configurations.data(),
                                    static_cast<int>(configurations.size()), variables.data(),
                                    values.data(), variables.size(), 1) != 0)
        throw InitializationError(QStringLiteral("Failed to initialize the Tesseract engine"));
}

bool tessProgress(ETEXT_DESC* monitor, int /*left*/, int /*right*/, int /*top*/, int /*bottom*/) {
    auto* const reporter =
        static_cast<ProgressReporter*>(tesseract->TessMonitorGetCancelThis(monitor));
    reporter->report(tesseract->TessMonitorGetProgress(monitor) + recognitionStart);
    return true;
}

bool tessCancel(void* reporter, int /*words*/) {
    return static_cast<ProgressReporter*>(reporter)->isCanceled();
}

void recognize(TessBaseAPI* api, ProgressReporter* progress) {
    MonitorHandle monitor;
    if (progress) {
        monitor = owned(tesseract->TessMonitorCreate());
        tesseract->TessMonitorSetProgressFunc(monitor.get(), tessProgress);
        tesseract->TessMonitorSetCancelFunc(monitor.get(), tessCancel);
        tesseract->TessMonitorSetCancelThis(monitor.get(), progress);
    }
    if (tesseract->TessBaseAPIRecognize(api, monitor.get()) != 0) {
        OCR::throwIfCancelled(progress);
        throw EngineError(QStringLiteral("OCR recognition error"));
    }
}

int sourceResolution(const QImage& image, double scale) {
    const int dotsPerMeter = std::min(image.dotsPerMeterX(), image.dotsPerMeterY());
    return qRound(dotsPerMeter / inchesPerMeter * scale);
}

/// The part of the picture that is read. A profile that is made for screens does without frames.
PixHandle pixForProfile(const QImage& image, const QRect& workRect, const QString& profile) {
    if (profile != QLatin1String("default"))
        return toPix(image, workRect);
    const QImage part = withoutFrameLines(image.copy(workRect));
    return toPix(part, part.rect());
}

/// What was read, in the form that the profile wants.
QSharedPointer<OCR::Result> takeResult(TessBaseAPI* api, const QString& profile,
                                       const Vision::SearchRegion& region,
                                       const Placement& placement) {
    const IteratorHandle iterator(tesseract->TessBaseAPIGetIterator(api));
    TessPageIterator* const page =
        iterator ? tesseract->TessResultIteratorGetPageIterator(iterator.get()) : nullptr;
    if (page)
        tesseract->TessPageIteratorBegin(page);
    if (!page || !tesseract->TessPageIteratorIsAtBeginningOf(page, BlockLevel))
        return QSharedPointer<GenericResult>::create(region, QList<GenericResult::Line>());
    if (profile == QLatin1String("default"))
        return QSharedPointer<GenericResult>::create(
            region, extractLines(iterator.get(), region, placement));
    if (profile == QLatin1String("none"))
        return QSharedPointer<RawResult>::create(extractRawLines(iterator.get(), region, placement),
                                                 region);
    throw InvalidInputs(QStringLiteral("Unknown postprocessing mode: ") + profile);
}

Json::Value textArray(const QStringList& texts) {
    Json::Value array(Json::arrayValue);
    for (const QString& text : texts)
        array.append(text.toStdString());
    return array;
}

}  // namespace

QStringList postprocessingProfiles() {
    return {QStringLiteral("default"), QStringLiteral("none")};
}

Implementation::Implementation(const Settings& settings)
    : m_settings(settings), m_installPath(installPathOf(settings)) {
    if (m_installPath.isEmpty())
        throw SetupError(QStringLiteral("The path to the tesseract engine is not configured"));
    try {
        loadLibraries(tesseractLibDir().toStdString());
    } catch (const std::runtime_error& error) {
        // The default folder points to what packages of the system bring.
        if (m_installPath != defaultInstallPath())
            throw;
        throw SetupError(QStringLiteral("%1; install the packages tesseract-ocr and "
                                        "tesseract-ocr-eng")
                             .arg(QString::fromUtf8(error.what())));
    }
}

QString Implementation::tesseractLibDir() const {
    return QStringLiteral("%1/lib64").arg(m_installPath);
}

QMap<QString, const OCR::Implementation::Capability*> Implementation::capabilities() {
    if (!m_hasLanguages) {
        m_languageHint.languages = loadLanguages(m_installPath).first;
        m_hasLanguages = true;
    }
    return {{QLatin1String(OCR::UsesLanguageHint::propertyKey), &m_languageHint}};
}

Json::Value Implementation::getOptionData(const Json::Value& options) {
    QString flavor;
    if (options.isObject() && options.isMember(OCR::tesseractFlavorId))
        flavor = Vision::requireQString(options, OCR::tesseractFlavorId);
    const LanguageData data = loadLanguages(tesseractFlavorDir(m_settings, flavor));

    Json::Value value = OCR::describeEngine("Tesseract");
    value["languages"] = OCR::toJson(data.first);
    Json::Value& modes = value["engineModes"] = Json::Value(Json::arrayValue);
    for (const TesseractOptions::Mode mode : data.second)
        modes.append(OCR::toJson(mode));
    value["flavors"] =
        textArray(QStringList(QString()) + m_settings.entryList(QStringLiteral("Tesseract"),
                                                                QStringLiteral("InstallPath/40")));
    value["profiles"] = textArray(preprocessingProfiles());
    value["postprofiles"] = textArray(postprocessingProfiles());
    return value;
}

QSharedPointer<OCR::Result> Implementation::processImage(
    const QImage& image, const QStringList& searchPaths, const Options& options,
    const Vision::SearchRegion& region, const QSharedPointer<ProgressReporter>& progress) {
    // 1.
    const ApiHandle api = owned(tesseract->TessBaseAPICreate());
    // 2. and 3. Files of the suite.
    const QStringList configurationFiles = locateProfiles(options.profiles, searchPaths);
    // 5. Tesseract reads and writes numbers by the locale.
    const LocaleOverride locale(LocaleHandle::C);
    // 4. and 6. to 9. Its data, with the variables that are set in it.
    const QString flavor = options.tesseract.flavor.value_or(QString());
    initialize(api.get(), options, tesseractFlavorDir(m_settings, flavor), configurationFiles);
    // 10.
    tesseract->TessBaseAPISetPageSegMode(api.get(), pageSegmentationMode(options));
    // 11.
    if (progress)
        progress->report(2);
    // 12. Where to read.
    const QRect workRect = OCR::checkedWorkRectangle(image, region);
    // 13. and 14. The picture.
    const TesseractOptions profiles = stack(TesseractOptions::defaults(), options.tesseract);
    const QString preprocessing = *profiles.preprocessing;
    const double scale = OCR::effectiveScale(options);
    PixHandle picture = preprocess(pixForProfile(image, workRect, preprocessing), preprocessing,
                                   scale, progress.data());
    // 15. The engine has a copy of its own.
    tesseract->TessBaseAPISetImage2(api.get(), picture.get());
    tesseract->TessBaseAPISetSourceResolution(api.get(), sourceResolution(image, scale));
    picture.reset();
    // 16.
    recognize(api.get(), progress.data());
    // 18. That places are not scaled back with the profile "invert_color" is meant.
    const Placement placement = {workRect, preprocessing == QLatin1String("default") ? scale : 1.0};
    // 17., 19. and 20.
    return takeResult(api.get(), *profiles.postprocessing, region, placement);
}

}  // namespace Tamrix::Tesseract
