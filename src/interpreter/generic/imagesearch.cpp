#include "interpreter/generic/imagesearch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImageReader>
#include <memory>
#include <stdexcept>

#include "base/blocking.h"
#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/findimagedebugger.h"
#include "interpreter/generic/imagesearchreport.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/screenplace.h"
#include "interpreter/generic/searchpictures.h"
#include "interpreter/generic/searchstop.h"
#include "interpreter/generic/verdictsupport.h"
#include "interpreter/generic/visualverification.h"
#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testvp.h"
#include "shared/resources/testresource.h"
#include "vision/search/imagelookup.h"

namespace Tamrix {

using Vision::ImageLookupImplementation;
using Vision::ImageLookupOptions;
using Vision::SearchArea;

namespace {

/// What tells the four functions apart.
struct SearchKind {
    /// The script's name.
    const char* function;
    /// Whether it looks again until the time-out is over.
    bool waits;
    /// Whether it ends in a verdict.
    bool isVerdict;
    /// Whether the image is wanted, not unwanted.
    bool isExpected;
};

constexpr SearchKind findKind = {"findImage", false, false, true};
constexpr SearchKind waitKind = {"waitForImage", true, false, true};
constexpr SearchKind presentKind = {"imagePresent", true, true, true};
constexpr SearchKind notPresentKind = {"imageNotPresent", true, true, false};

/// What stopWithSearchImage() is told of how a missing image can be found.
enum StopTarget {
    /// Not by other defaults, which the call has fixed or which were looked for in vain.
    SettingsDoNotHelp = 2,
    /// Perhaps by other defaults, which nobody has asked for.
    SettingsMayHelp = 3
};

/// The value of the fix target that asks for other defaults.
constexpr int fixBySettings = 1;

/// For the screen to settle, in milliseconds.
constexpr int initialPause = 200;

/// Without a part of a second that is left over.
void sleepMilliseconds(int milliseconds) {
    if (milliseconds > 0)
        blockingSleep(static_cast<unsigned long>(milliseconds) * 1000);
}

/// One call.
class ImageSearch {
public:
    ImageSearch(ScriptContext* context, RunnerInterface* runner, const SearchKind& kind)
        : m_context(context),
          m_runner(runner),
          m_kind(kind),
          m_search(runner, context->argument(0), context->argument(1), context->argument(2)),
          m_engine(ImageLookupImplementation::get()) {}

    /// Whether no error was set.
    bool run();

private:
    /// How a round ends the call, or that it doesn't.
    enum class Round { Again, Succeeded, Failed };

    Round lookOnce();
    bool look();
    bool loadNeedles();
    void pauseBeforeNextRound();

    bool reportFailedVerdict();
    Round handleMissing();
    bool adjustSettings();
    void setNotFoundError(const QImage& screenshot);
    bool finishFound();

    QString notFoundText() const;
    ImageSearchRecord record() const;

    ScriptContext* m_context;
    RunnerInterface* m_runner;
    const SearchKind& m_kind;
    FindImageDebugger m_search;
    std::unique_ptr<ImageLookupImplementation> m_engine;
    QElapsedTimer m_clock;
    /// Loaded at the first round, and anew after a stop, which may have changed what is searched.
    std::unique_ptr<ImageLookupImplementation::Cache> m_cache;
    QList<QImage> m_needles;
    QStringList m_files;
    SearchArea m_area;
    QRect m_place;
};

bool ImageSearch::run() {
    // 2. The screen settles, and the time starts.
    const SearchRegistration registration(&m_search);
    sleepMilliseconds(initialPause);
    m_clock.start();
    // 3. One round after the other.
    while (true) {
        switch (lookOnce()) {
            case Round::Again:
                break;
            case Round::Succeeded:
                return true;
            case Round::Failed:
                return false;
        }
    }
}

ImageSearch::Round ImageSearch::lookOnce() {
    const auto ended = [](bool succeeded) { return succeeded ? Round::Succeeded : Round::Failed; };
    // 3.1. A new picture,
    m_area = m_search.source->getSearchArea(m_runner);
    // 3.2. which the results may get.
    if (m_search.saveScreenshots)
        storeScreenshot(m_runner, m_context, m_area);
    // 3.3. What is searched for.
    if (!m_cache && !loadNeedles())
        return Round::Failed;
    // 3.4., 3.5. The image is there, or is not, as it should be.
    if (look() == m_kind.isExpected)
        return ended(finishFound());
    // 3.6. There may be time for another round.
    if (m_kind.waits && m_clock.elapsed() <= m_search.timeout) {
        pauseBeforeNextRound();
        return Round::Again;
    }
    // 3.7. A failed verdict.
    if (m_kind.isVerdict)
        return ended(reportFailedVerdict());
    // 3.8. A missing image.
    return handleMissing();
}

bool ImageSearch::loadNeedles() {
    // The names of files that a stop has put right are looked up again.
    m_needles.clear();
    m_files.clear();
    const QFileInfoList files =
        TestResource::locateCollection(TestResource::SearchImage, m_search.imageName,
                                       m_runner->testCasePath(), Debugger::currentFile());
    if (files.isEmpty()) {
        m_context->setError("No image files found for: '" + m_search.imageName + "'");
        return false;
    }
    for (const QFileInfo& file : files) {
        QImageReader reader(file.filePath());
        const QImage image = reader.read();
        if (image.isNull()) {
            m_context->setError("Could not load image: '" + file.filePath() +
                                "': " + reader.errorString());
            return false;
        }
        m_needles.append(Vision::searchable(image));
        m_files.append(file.fileName());
    }
    m_cache.reset(m_engine->newCache(m_needles, true));
    return true;
}

bool ImageSearch::look() {
    m_place = m_engine->findMatch(m_area.image(), m_area.region, m_cache.get(),
                                  m_search.effectiveOptions(), m_search.occurrence);
    return m_place.isValid();
}

void ImageSearch::pauseBeforeNextRound() {
    m_runner->processEvents();
    if (QCoreApplication::instance())
        QCoreApplication::processEvents();
    sleepMilliseconds(m_search.interval);
}

// 4. The search has failed.

// 4a. A verdict.
bool ImageSearch::reportFailedVerdict() {
    const QString detail = m_kind.isExpected
                               ? notFoundText()
                               : QStringLiteral(
                                     "Image '%3', occurrence: %2 was still present "
                                     "after %1ms")
                                     .arg(QString::number(m_search.timeout),
                                          QString::number(m_search.occurrence), m_search.imageName);
    const ResultDetails details = m_kind.isExpected ? describeMissingImage(record())
                                                    : describePresentImage(record(), m_place);
    if (TestVP::wantLogScreenshotForResult(TestSettingsType::s_vpOptions, TestResult::Fail))
        attachPictures(m_runner->testResult(), m_runner, details);
    return visualVerificationResult(m_context, m_runner, false, detail, m_search.message,
                                    prepareErrorScreenshot(m_area, m_search), details.explanation);
}

// 4b. Not found.
ImageSearch::Round ImageSearch::handleMissing() {
    // 1. Whether other settings would have helped.
    int target = SettingsDoNotHelp;
    if (ImageLookupOptions::canRelaxDefaults(TestSettingsType::s_image, m_search.options)) {
        if (m_runner->imageSearchFixTarget() != fixBySettings)
            target = SettingsMayHelp;
        else if (adjustSettings())
            return finishFound() ? Round::Succeeded : Round::Failed;
    }
    // 2. Somebody may put it right while the script stands still. The time goes on.
    const QImage screenshot = prepareErrorScreenshot(m_area, m_search);
    if (stopForMissingImage(m_search.imageName, target, screenshot)) {
        m_cache.reset();
        return Round::Again;
    }
    // 3. The error.
    setNotFoundError(screenshot);
    return Round::Failed;
}

bool ImageSearch::adjustSettings() {
    const auto [adjusted, places] = m_engine->bestOccurrences(
        m_area.image(), m_area.region, m_cache.get(), TestSettingsType::s_image, m_search.options,
        m_search.occurrence, {});
    if (places.size() < m_search.occurrence)
        return false;
    // 1. The results tell of it.
    addSearchLog(m_runner, m_context,
                 QStringLiteral("The test suite image lookup settings were adjusted %1")
                     .arg(TestVP::logScreenshot(m_runner, TestResult::Log, m_area.image())),
                 QStringLiteral("The lookup: '%1', the settings: {%2}")
                     .arg(m_search.imageName, adjusted.description()));
    // 2. All later searches have them. Meant: in place of the old ones, not over them.
    TestSettingsType::s_image = adjusted;
    // 3. The place.
    m_place = places.at(m_search.occurrence - 1);
    // 4. The front end learns of it.
    if (Debugger* const debugger = Debugger::self())
        debugger->notify(QStringLiteral("imageLookupDefaults"),
                         TestSettingsType::s_image.description());
    return true;
}

void ImageSearch::setNotFoundError(const QImage& screenshot) {
    m_context->setError(notFoundText(), ScriptContext::LookupError);
    if (Interpreter* const interpreter = Interpreter::self()) {
        interpreter->setErrorImage(screenshot);
        // Scripts may catch it: what takes time is found out when it is reported.
        interpreter->setErrorDetails([search = record()] { return describeMissingImage(search); });
    }
}

QString ImageSearch::notFoundText() const {
    return QStringLiteral("Could not find image '%1', occurrence: %2 on the screen(s).")
        .arg(m_search.imageName, QString::number(m_search.occurrence));
}

ImageSearchRecord ImageSearch::record() const {
    return {m_search.imageName,          m_needles,           m_files,
            m_search.effectiveOptions(), m_search.occurrence, m_area};
}

// 5. The image was there, or was not, as it should be.
bool ImageSearch::finishFound() {
    if (m_kind.isVerdict) {
        const QString detail =
            QStringLiteral("Image '%2', occurrence: %1 was %3")
                .arg(QString::number(m_search.occurrence), m_search.imageName,
                     m_kind.isExpected ? QStringLiteral("found") : QStringLiteral("not found"));
        return visualVerificationResult(m_context, m_runner, true, detail, m_search.message,
                                        prepareErrorScreenshot(m_area, m_search));
    }
    const SharedPtr<Object> place = placeObject(m_runner, m_area.imageToNative(m_place));
    if (!place) {
        const QString reason = Inspector::self()->lastError();
        m_context->setError("Cannot create a ScreenRectangle object: " +
                            (reason.isEmpty() ? QStringLiteral("Unknown error") : reason));
        return false;
    }
    place->setFoundAs(QStringLiteral("image '%1'").arg(m_search.imageName));
    m_context->setObjectResult(place);
    return true;
}

bool searchImage(ScriptContext* context, const SearchKind& kind) {
    const QString function = QString::fromLatin1(kind.function);
    // 1. The arguments.
    const int count = context->argumentCount();
    if (count < 1 || count > 3) {
        context->setError(QStringLiteral("Incorrect number of arguments, please call as "
                                         "%1(image[, options][, searchRegion])")
                              .arg(function));
        return false;
    }
    RunnerInterface* const runner = runnerFor(kind.function);
    if (!runner)
        return true;
    // 2. to 5.
    try {
        return ImageSearch(context, runner, kind).run();
    } catch (const std::exception& error) {
        context->setError(QString::fromUtf8(error.what()));
        return false;
    }
}

}  // namespace

bool findImage(ScriptContext* context) {
    const ActionRecord record(context, "findImage");
    return searchImage(context, findKind);
}

bool waitForImage(ScriptContext* context) {
    const ActionRecord record(context, "waitForImage");
    return searchImage(context, waitKind);
}

void testImagePresent(ScriptContext* context) {
    searchImage(context, presentKind);
}

void testImageNotPresent(ScriptContext* context) {
    searchImage(context, notPresentKind);
}

}  // namespace Tamrix
