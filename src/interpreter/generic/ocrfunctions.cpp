#include "interpreter/generic/ocrfunctions.h"

#include <stdexcept>

#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/findtextdebugger.h"
#include "interpreter/generic/ocroptions.h"
#include "interpreter/generic/ocrrecognition.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/screenplace.h"
#include "interpreter/generic/searchpictures.h"
#include "interpreter/generic/searchregionsource.h"

namespace Tamrix {

using OCR::Match;
using OCR::Word;
using Vision::SearchArea;
using Vision::SearchRegionSource;

namespace {

using Argument = SharedPtr<ScriptArgument>;

/// What was read where.
struct ReadArea {
    SearchArea area;
    QSharedPointer<OCR::Result> result;
};

ScriptArgument::Map optionMap(const Argument& argument) {
    if (!argument)
        return {};
    if (!argument->isMap())
        throw std::runtime_error("The options argument must be a map");
    return argument->toMap();
}

/// Reads the screen, or the picture, that the arguments name.
ReadArea read(ScriptContext* context, RunnerInterface* runner, const Argument& optionArgument,
              const Argument& region) {
    // 1. The options,
    ScriptArgument::Map map = optionMap(optionArgument);
    const bool savesScreenshots = takeSaveScreenshots(map);
    // 2. where to read, and who reads.
    const QSharedPointer<SearchRegionSource> source =
        SearchRegionSource::fromScriptArgument(region);
    const QSharedPointer<OCR::Implementation> engine = OCR::Implementation::get();
    // 3. The picture.
    ReadArea read;
    read.area = source->getSearchArea(runner);
    // 4. Files that the options name.
    const QStringList searchPaths = ocrSearchPaths(runner);
    // 5. The options over those of the suite.
    const OCR::Options options = stack(TestSettingsType::s_ocr, OCR::getOCROptions(map));
    // 6. The results may get the picture.
    if (savesScreenshots)
        storeScreenshot(runner, context, read.area);
    // 7. and 8. The text.
    read.result = recognizeText(*engine, read.area, searchPaths, options);
    return read;
}

/// A place in the picture as a screen rectangle; null on failure.
SharedPtr<Object> placeOf(RunnerInterface* runner, const SearchArea& area, const QRect& rectangle) {
    return placeObject(runner, area.imageToNative(rectangle));
}

bool readText(ScriptContext* context, RunnerInterface* runner) {
    const ReadArea found = read(context, runner, context->argument(0), context->argument(1));
    context->setStringResult(found.result->getText());
    return true;
}

bool readWords(ScriptContext* context, RunnerInterface* runner) {
    const ReadArea found = read(context, runner, context->argument(0), context->argument(1));
    ScriptArgument::List words;
    const QList<Word> allWords = found.result->getAllWords();
    for (const Word& word : allWords) {
        const SharedPtr<Object> place = placeOf(runner, found.area, word.rect);
        words.push_back(
            context->createMap({{QStringLiteral("text"), context->createString(word.text)},
                                {QStringLiteral("location"),
                                 place ? context->createObject(place) : context->createNull()}}));
    }
    context->setResult(context->createList(words));
    return true;
}

bool findAll(ScriptContext* context, RunnerInterface* runner) {
    const Argument text = context->argument(0);
    if (!text || !text->isString())
        throw std::runtime_error("The text argument needs to be specified a string");
    const QString phrase = text->toString();
    const ReadArea found = read(context, runner, context->argument(1), context->argument(2));
    ScriptArgument::List places;
    const QList<Match> matches = found.result->getTextLocations(phrase);
    for (const Match& match : matches) {
        const SharedPtr<Object> place = placeOf(runner, found.area, match.boundingBox());
        if (!place)
            throw std::runtime_error("findAllOcrText error: cannot find ScreenRectangle class");
        places.push_back(context->createObject(place));
    }
    context->setResult(context->createList(places));
    return true;
}

/// What tells the functions apart.
struct ReadKind {
    const char* function;
    int fewestArguments;
    int mostArguments;
    /// What is said of another number.
    const char* wrongCount;
    bool (*work)(ScriptContext* context, RunnerInterface* runner);
};

constexpr ReadKind textKind = {
    "getOcrText", 0, 2,
    "Incorrect number of arguments, please call as getOcrText([options][,region])", readText};
constexpr ReadKind wordsKind = {
    "getAllOcrText", 0, 2,
    "Incorrect number of arguments, please call as getAllOcrText([options][, region])", readWords};
constexpr ReadKind allKind = {
    "findAllOcrText", 1, 3,
    "Incorrect number of arguments, please call as findAllOcrText(text[, options][, region])",
    findAll};

bool callReader(ScriptContext* context, const ReadKind& kind) {
    const ActionRecord record(context, kind.function);
    const int count = context->argumentCount();
    if (count < kind.fewestArguments || count > kind.mostArguments) {
        context->setError(kind.wrongCount);
        return false;
    }
    RunnerInterface* const runner = runnerFor(kind.function);
    return !runner || withOcrErrors(context, runner, kind.work);
}

}  // namespace

bool getOcrText(ScriptContext* context) {
    return callReader(context, textKind);
}

bool getAllOcrText(ScriptContext* context) {
    return callReader(context, wordsKind);
}

bool findAllOcrText(ScriptContext* context) {
    return callReader(context, allKind);
}

}  // namespace Tamrix
