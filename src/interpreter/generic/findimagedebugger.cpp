#include "interpreter/generic/findimagedebugger.h"

#include <json/json.h>

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/objectarguments.h"

namespace Tamrix {

using Vision::ImageLookupOptions;
using Vision::SearchRegionSource;

namespace {

using Argument = SharedPtr<ScriptArgument>;

/// Throws unless the condition holds.
void require(bool condition, const std::string& message) {
    if (!condition)
        throw std::runtime_error(message);
}

void requireNoUnknown(const QStringList& keys) {
    require(keys.isEmpty(), "Unknown keys: " + keys.join(QStringLiteral(", ")).toStdString());
}

/// What reads the value of a key.
template <typename Value>
struct Reader {
    const char* key;
    void (*read)(FindImageDebugger& search, const Value& value, const char* key);
};

/// Null for an unknown key.
template <typename Readers, typename Key>
auto readerOf(const Readers& readers, const Key& key) {
    const auto* const found = std::find_if(std::begin(readers), std::end(readers),
                                           [&](const auto& each) { return key == each.key; });
    return found == std::end(readers) ? nullptr : found;
}

// The options of a call

bool boolOf(const Argument& value, const char* key) {
    require(value->isBool(), std::string(key) + " must be a boolean");
    return value->toBool();
}

double numberOf(const Argument& value, const char* key) {
    require(value->isNumber(), std::string(key) + " must be a number");
    return value->toDouble();
}

constexpr Reader<Argument> optionReaders[] = {
    // Meant: negative times pass. They mean that nothing is waited for.
    {"timeout",
     [](FindImageDebugger& search, const Argument& value, const char*) {
         search.timeout = intOf(value);
         require(search.timeout != 0, "Timeout must be a positive integer");
     }},
    {"interval",
     [](FindImageDebugger& search, const Argument& value, const char*) {
         search.interval = intOf(value);
         require(search.interval != 0, "Interval must be a positive integer");
     }},
    {"occurrence",
     [](FindImageDebugger& search, const Argument& value, const char*) {
         search.occurrence = intOf(value);
         require(search.occurrence > 0, "Occurrence must be a positive integer");
     }},
    {"tolerant", [](FindImageDebugger& search, const Argument& value,
                    const char* key) { search.options.setTolerant(boolOf(value, key)); }},
    {"multiscale", [](FindImageDebugger& search, const Argument& value,
                      const char* key) { search.options.setMultiscale(boolOf(value, key)); }},
    {"saveScreenshots", [](FindImageDebugger& search, const Argument& value,
                           const char* key) { search.saveScreenshots = boolOf(value, key); }},
    // Meant: no range is checked here, unlike in JSON.
    {"threshold", [](FindImageDebugger& search, const Argument& value,
                     const char* key) { search.options.setThreshold(numberOf(value, key)); }},
    {"minScale", [](FindImageDebugger& search, const Argument& value,
                    const char* key) { search.options.setMinScaleFactor(numberOf(value, key)); }},
    {"maxScale", [](FindImageDebugger& search, const Argument& value,
                    const char* key) { search.options.setMaxScaleFactor(numberOf(value, key)); }},
    {"message", [](FindImageDebugger& search, const Argument& value,
                   const char*) { search.message = value->toString(); }},
};

void readOptions(FindImageDebugger& search, const ScriptArgument::Map& options) {
    QStringList unknown;
    for (const auto& [key, value] : options) {
        if (const auto* const reader = readerOf(optionReaders, key))
            reader->read(search, value, reader->key);
        else
            unknown.append(key);
    }
    requireNoUnknown(unknown);
}

// The state for a front end

int integerOf(const Json::Value& value, const char* key) {
    require(value.isInt(), std::string(key) + " must be an integer");
    return value.asInt();
}

ImageLookupOptions optionsOf(const Json::Value& value, const char* key) {
    require(value.isObject(), std::string(key) + " must be an object");
    return ImageLookupOptions::fromJson(value);
}

constexpr Reader<Json::Value> stateReaders[] = {
    {"imageSearchFixTarget", [](FindImageDebugger& search, const Json::Value& value,
                                const char* key) { search.setFixTarget(integerOf(value, key)); }},
    {"imageSearchName",
     [](FindImageDebugger& search, const Json::Value& value, const char* key) {
         require(value.isString(), std::string(key) + " must be a string");
         search.imageName = QString::fromStdString(value.asString());
     }},
    {"imageSearchTimeout", [](FindImageDebugger& search, const Json::Value& value,
                              const char* key) { search.timeout = integerOf(value, key); }},
    {"imageSearchInterval", [](FindImageDebugger& search, const Json::Value& value,
                               const char* key) { search.interval = integerOf(value, key); }},
    {"imageSearchOccurrence",
     [](FindImageDebugger& search, const Json::Value& value, const char* key) {
         require(value.isInt() && value.asInt() > 0,
                 std::string(key) + " must be a positive integer");
         search.occurrence = value.asInt();
     }},
    {"imageSearchOptions", [](FindImageDebugger& search, const Json::Value& value,
                              const char* key) { search.options = optionsOf(value, key); }},
    {"imageSearchDefaults",
     [](FindImageDebugger&, const Json::Value& value, const char* key) {
         TestSettingsType::s_image = optionsOf(value, key);
     }},
    {"imageSearchRegion", [](FindImageDebugger& search, const Json::Value& value,
                             const char*) { search.source = SearchRegionSource::fromJSON(value); }},
};

}  // namespace

FindImageDebugger::FindImageDebugger(RunnerInterface* runner, const Argument& image,
                                     const Argument& optionMap, const Argument& region)
    : timeout(TestSettingsType::s_waitForObjectTimeout),
      m_runner(runner),
      m_fixTarget(runner->imageSearchFixTarget()) {
    // 1. The region.
    source = SearchRegionSource::fromScriptArgument(region);
    // 2. The image's name.
    require(image && image->isString(), "The argument image needs to be specified as string");
    imageName = image->toString();
    // 3. The options are a map,
    if (!optionMap)
        return;
    require(optionMap->isMap(), "The options argument must be a map");
    // 4. of known keys.
    readOptions(*this, optionMap->toMap());
}

QString FindImageDebugger::contextName() const {
    return QStringLiteral("ImageLookup");
}

Json::Value FindImageDebugger::getState() const {
    Json::Value state(Json::objectValue);
    state["imageSearchFixTarget"] = m_fixTarget;
    state["imageSearchName"] = imageName.toStdString();
    state["imageSearchTimeout"] = timeout;
    state["imageSearchInterval"] = interval;
    state["imageSearchOccurrence"] = occurrence;
    state["imageSearchOptions"] = options.toJson();
    state["imageSearchDefaults"] = TestSettingsType::s_image.toJson();
    state["imageSearchRegion"] = source->toJson();
    return state;
}

void FindImageDebugger::setState(const Json::Value& state) {
    QStringList unknown;
    const Json::Value::Members keys = state.getMemberNames();
    for (const std::string& key : keys) {
        if (const auto* const reader = readerOf(stateReaders, key))
            reader->read(*this, state[key], reader->key);
        else
            unknown.append(QString::fromStdString(key));
    }
    requireNoUnknown(unknown);
}

ImageLookupOptions FindImageDebugger::effectiveOptions() const {
    return ImageLookupOptions::overlay(TestSettingsType::s_image, options);
}

void FindImageDebugger::setFixTarget(int target) {
    m_fixTarget = target;
    m_runner->setImageSearchFixTarget(target);
}

}  // namespace Tamrix
