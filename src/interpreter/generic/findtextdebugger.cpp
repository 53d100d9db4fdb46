#include "interpreter/generic/findtextdebugger.h"

#include <json/json.h>

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/ocroptions.h"

namespace Tamrix {

using Vision::SearchRegionSource;

namespace {

using Argument = SharedPtr<ScriptArgument>;

/// Throws unless the condition holds.
void require(bool condition, const std::string& message) {
    if (!condition)
        throw std::runtime_error(message);
}

/// Takes the value of a key out of the map; null when there is none.
Argument take(ScriptArgument::Map& map, const char* key) {
    const auto entry = map.find(QLatin1String(key));
    if (entry == map.end())
        return {};
    Argument value = entry->second;
    map.erase(entry);
    return value;
}

/// Takes an integer above 0 out of the map. `name` is that of the message.
void takePositive(ScriptArgument::Map& map, const char* key, const char* name, int& target) {
    const Argument value = take(map, key);
    if (!value)
        return;
    require(value->isInteger() && intOf(value) > 0,
            std::string(name) + " must be a positive integer");
    target = intOf(value);
}

int integerOf(const Json::Value& value, const char* key) {
    require(value.isInt(), std::string(key) + " must be an integer");
    return value.asInt();
}

/// What reads the value of a key of the state.
struct StateReader {
    const char* key;
    void (*read)(FindTextDebugger& search, const Json::Value& value, const char* key);
};

constexpr StateReader stateReaders[] = {
    {"ocrText",
     [](FindTextDebugger& search, const Json::Value& value, const char* key) {
         require(value.isString(), std::string(key) + " must be a string");
         search.text = QString::fromStdString(value.asString());
     }},
    {"ocrTimeout", [](FindTextDebugger& search, const Json::Value& value,
                      const char* key) { search.timeout = integerOf(value, key); }},
    {"ocrInterval", [](FindTextDebugger& search, const Json::Value& value,
                       const char* key) { search.interval = integerOf(value, key); }},
    {"ocrOccurrence",
     [](FindTextDebugger& search, const Json::Value& value, const char* key) {
         require(value.isInt() && value.asInt() > 0,
                 std::string(key) + " must be a positive integer");
         search.occurrence = value.asInt();
     }},
    {"ocrOptions", [](FindTextDebugger& search, const Json::Value& value,
                      const char*) { search.options = OCR::Options::fromJson(value); }},
    {"defaultOcrOptions",
     [](FindTextDebugger&, const Json::Value& value, const char*) {
         TestSettingsType::s_ocr = OCR::Options::fromJson(value);
     }},
    {"ocrRegion", [](FindTextDebugger& search, const Json::Value& value,
                     const char*) { search.source = SearchRegionSource::fromJSON(value); }},
};

}  // namespace

bool takeSaveScreenshots(ScriptArgument::Map& map) {
    const Argument value = take(map, "saveScreenshots");
    require(!value || value->isBool(), "saveScreenshots must be a boolean");
    return value && value->toBool();
}

FindTextDebugger::FindTextDebugger(const Argument& searchedText, const Argument& optionMap,
                                   const Argument& region)
    : timeout(TestSettingsType::s_waitForObjectTimeout) {
    // 1. The region.
    source = SearchRegionSource::fromScriptArgument(region);
    // 2. The text.
    require(searchedText && searchedText->isString(),
            "The text argument needs to be specified a string");
    text = searchedText->toString();
    // 3. The options are a map,
    if (!optionMap)
        return;
    require(optionMap->isMap(), "The options argument must be a map");
    ScriptArgument::Map map = optionMap->toMap();
    // 4. of what concerns the search,
    takePositive(map, "timeout", "Timeout", timeout);
    takePositive(map, "interval", "Interval", interval);
    takePositive(map, "occurrence", "Occurrence", occurrence);
    saveScreenshots = takeSaveScreenshots(map);
    if (const Argument comment = take(map, "message"))
        message = comment->toString();
    // 5. and of what concerns the recognition.
    options = OCR::getOCROptions(map);
}

QString FindTextDebugger::contextName() const {
    return QStringLiteral("FindText");
}

Json::Value FindTextDebugger::getState() const {
    Json::Value state(Json::objectValue);
    state["ocrText"] = text.toStdString();
    state["ocrTimeout"] = timeout;
    state["ocrInterval"] = interval;
    state["ocrOccurrence"] = occurrence;
    state["ocrOptions"] = options.toJson();
    state["defaultOcrOptions"] = TestSettingsType::s_ocr.toJson();
    state["ocrRegion"] = source->toJson();
    return state;
}

void FindTextDebugger::setState(const Json::Value& state) {
    QStringList unknown;
    for (const std::string& key : state.getMemberNames()) {
        const auto* const reader =
            std::find_if(std::begin(stateReaders), std::end(stateReaders),
                         [&](const StateReader& each) { return key == each.key; });
        if (reader != std::end(stateReaders))
            reader->read(*this, state[key], reader->key);
        else
            unknown.append(QString::fromStdString(key));
    }
    require(unknown.isEmpty(), "Unknown keys: " + unknown.join(QStringLiteral(", ")).toStdString());
}

OCR::Options FindTextDebugger::effectiveOptions() const {
    return stack(TestSettingsType::s_ocr, options);
}

}  // namespace Tamrix
