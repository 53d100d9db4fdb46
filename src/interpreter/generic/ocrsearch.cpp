// The functions that look for a text on the screen.

#include <json/json.h>

#include <QElapsedTimer>

#include "base/blocking.h"
#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/findtextdebugger.h"
#include "interpreter/generic/ocrfunctions.h"
#include "interpreter/generic/ocrrecognition.h"
#include "interpreter/generic/ocrsearchreport.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/screenplace.h"
#include "interpreter/generic/searchpictures.h"
#include "interpreter/generic/searchstop.h"
#include "interpreter/generic/visualverification.h"
#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testvp.h"

namespace Tamrix {

using OCR::Match;
using Vision::SearchArea;

namespace {

/// What tells the four functions apart.
struct TextSearchKind {
    /// The script's name.
    const char* function;
    /// Whether it looks again until the time-out is over.
    bool waits;
    /// Whether it ends in a verdict.
    bool isVerdict;
    /// Whether the text is wanted, not unwanted.
    bool isExpected;
};

constexpr TextSearchKind findKind = {"findOcrText", false, false, true};
constexpr TextSearchKind waitKind = {"waitForOcrText", true, false, true};
constexpr TextSearchKind presentKind = {"ocrTextPresent", true, true, true};
constexpr TextSearchKind notPresentKind = {"ocrTextNotPresent", true, true, false};

// In microseconds: for the screen to settle, and between looks at a screen that stays the same.
constexpr unsigned long initialPause = 200'000;
constexpr unsigned long unchangedPause = 50'000;

/// The last recognition, which is as good as the next one while nothing changes.
class LastRecognition {
public:
    /// Reads the area unless it looks as it did. Throws what the engine throws.
    const QSharedPointer<OCR::Result>& read(OCR::Implementation& engine, const SearchArea& area,
                                            const QStringList& searchPaths,
                                            const OCR::Options& options) {
        const QList<QRect>& rectangles = area.region.rectangles();
        const QRect box = area.region.boundingBox();
        const QImage picture = area.image().copy(box & area.image().rect());
        Json::Value optionsKey = options.toJson();
        m_isReused = m_result && rectangles == m_rectangles && picture == m_picture &&
                     optionsKey == m_options;
        if (m_isReused)
            return m_result;
        m_result = recognizeText(engine, area, searchPaths, options);
        m_rectangles = rectangles;
        m_picture = picture;
        m_options = optionsKey;
        return m_result;
    }

    /// Whether the last read() recognised nothing.
    bool isReused() const { return m_isReused; }

private:
    QSharedPointer<OCR::Result> m_result;
    QList<QRect> m_rectangles;
    QImage m_picture;
    Json::Value m_options;
    bool m_isReused = false;
};

/// One call.
class TextSearch {
public:
    TextSearch(ScriptContext* context, RunnerInterface* runner, const TextSearchKind& kind)
        : m_context(context),
          m_runner(runner),
          m_kind(kind),
          m_engine(OCR::Implementation::get()),
          m_search(context->argument(0), context->argument(1), context->argument(2)) {}

    /// Whether no error was set.
    bool run();

private:
    bool lookUntilEnd();
    bool look();
    bool reportFailedVerdict();
    void setNotFoundError(const QImage& screenshot);
    bool finishSuccess();
    TextSearchRecord record() const;

    ScriptContext* m_context;
    RunnerInterface* m_runner;
    const TextSearchKind& m_kind;
    QSharedPointer<OCR::Implementation> m_engine;
    FindTextDebugger m_search;
    QElapsedTimer m_clock;
    QStringList m_searchPaths;
    LastRecognition m_recognition;
    SearchArea m_area;
    QSharedPointer<OCR::Result> m_result;
    Match m_match;
};

bool TextSearch::run() {
    const SearchRegistration registration(&m_search);
    // 2. The screen settles, and the time starts.
    blockingSleep(initialPause);
    m_clock.start();
    m_searchPaths = ocrSearchPaths(m_runner);
    while (true) {
        // 3. One pass after the other, until 4. success,
        if (lookUntilEnd())
            return finishSuccess();
        // 5. a failed verdict,
        if (m_kind.isVerdict)
            return reportFailedVerdict();
        // 6. or a missing text, which somebody may put right while the script stands still.
        const QImage screenshot = prepareErrorScreenshot(m_area, m_search);
        if (!stopForMissingText(screenshot)) {
            setNotFoundError(screenshot);
            return false;
        }
    }
}

/// Whether the text was there, or was not, as it should be, before the time was over.
bool TextSearch::lookUntilEnd() {
    while (look() != m_kind.isExpected) {
        if (!m_kind.waits || m_clock.elapsed() > m_search.timeout || isInterrupted())
            return false;
        // The time of a recognition is pause enough.
        if (m_recognition.isReused())
            blockingSleep(unchangedPause);
    }
    return true;
}

/// One pass: whether the text is there.
bool TextSearch::look() {
    m_area = m_search.source->getSearchArea(m_runner);
    if (m_search.saveScreenshots)
        storeScreenshot(m_runner, m_context, m_area);
    m_result = m_recognition.read(*m_engine, m_area, m_searchPaths, m_search.effectiveOptions());
    m_match = m_result->getTextLocation(m_search.text, m_search.occurrence);
    return !m_match.isEmpty();
}

bool TextSearch::finishSuccess() {
    if (m_kind.isVerdict) {
        const QString detail =
            QStringLiteral("The phrase '%2', occurrence: %1 was %3")
                .arg(QString::number(m_search.occurrence), m_search.text,
                     m_kind.isExpected ? QStringLiteral("found") : QStringLiteral("not found"));
        return visualVerificationResult(m_context, m_runner, true, detail, m_search.message,
                                        prepareErrorScreenshot(m_area, m_search));
    }
    const SharedPtr<Object> place =
        placeObject(m_runner, m_area.imageToNative(m_match.boundingBox()));
    if (!place) {
        const QString reason = Inspector::self()->lastError();
        m_context->setError("Cannot create a ScreenRectangle object: " +
                            (reason.isEmpty() ? QStringLiteral("Unknown error") : reason));
        return false;
    }
    place->setFoundAs(QStringLiteral("text '%1'").arg(m_search.text));
    m_context->setObjectResult(place);
    return true;
}

bool TextSearch::reportFailedVerdict() {
    const QString detail =
        m_kind.isExpected
            ? QStringLiteral("Could not find text '%1', occurrence: %2 on the screen(s).")
                  .arg(m_search.text, QString::number(m_search.occurrence))
            : QStringLiteral("The text '%3', occurrence %2 was still present after %1ms")
                  .arg(QString::number(m_search.timeout), QString::number(m_search.occurrence),
                       m_search.text);
    const ResultDetails details = m_kind.isExpected
                                      ? describeMissingText(record())
                                      : describePresentText(record(), m_match.boundingBox());
    if (TestVP::wantLogScreenshotForResult(TestSettingsType::s_vpOptions, TestResult::Fail))
        attachPictures(m_runner->testResult(), m_runner, details);
    return visualVerificationResult(m_context, m_runner, false, detail, m_search.message,
                                    prepareErrorScreenshot(m_area, m_search), details.explanation);
}

void TextSearch::setNotFoundError(const QImage& screenshot) {
    // The spelling is meant.
    m_context->setError(QStringLiteral("Could not find text '%1', ocurrence: %2 on the screen(s).")
                            .arg(m_search.text, QString::number(m_search.occurrence)),
                        ScriptContext::LookupError);
    if (Interpreter* const interpreter = Interpreter::self()) {
        interpreter->setErrorImage(screenshot);
        interpreter->setErrorDetails([search = record()] { return describeMissingText(search); });
    }
}

TextSearchRecord TextSearch::record() const {
    return {m_search.text, m_search.occurrence, m_search.effectiveOptions(), m_area, m_result};
}

template <const TextSearchKind& kind>
bool searchText(ScriptContext* context) {
    // 1. The arguments. That the text speaks of an image is meant.
    const int count = context->argumentCount();
    if (count < 1 || count > 3) {
        context->setError(QStringLiteral("Incorrect number of arguments, please call as "
                                         "%1(image[, options][, region])")
                              .arg(QLatin1String(kind.function)));
        return false;
    }
    RunnerInterface* const runner = runnerFor(kind.function);
    if (!runner)
        return true;
    return withOcrErrors(context, runner, [](ScriptContext* caller, RunnerInterface* services) {
        return TextSearch(caller, services, kind).run();
    });
}

}  // namespace

bool findOcrText(ScriptContext* context) {
    const ActionRecord record(context, findKind.function);
    return searchText<findKind>(context);
}

bool waitForOcrText(ScriptContext* context) {
    const ActionRecord record(context, waitKind.function);
    return searchText<waitKind>(context);
}

void testOcrTextPresent(ScriptContext* context) {
    searchText<presentKind>(context);
}

void testOcrTextNotPresent(ScriptContext* context) {
    searchText<notPresentKind>(context);
}

}  // namespace Tamrix
