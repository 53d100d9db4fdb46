// The state of an image search, as the front end of a debugger sends it: JSON.

#include <json/json.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "fuzz/fuzztarget.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/findimagedebugger.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"

using namespace Tamrix;

namespace {

Json::Value parseObject(const std::string& text) {
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value value;
    std::string errors;
    // Throws for values that lie too deep in each other.
    if (!reader->parse(text.data(), text.data() + text.size(), &value, &errors) ||
        !value.isObject())
        throw std::runtime_error("no object: " + errors);
    return value;
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    TestSettingsType::reset();
    Test::FakeRunner runner;
    FindImageDebugger search(&runner, Test::text("image"), {}, {});
    try {
        search.setState(parseObject(std::string(reinterpret_cast<const char*>(data), size)));
    } catch (const std::exception& error) {
        fuzzRequire(*error.what() != '\0', "a failure has a text");
    }
    // Whatever was taken of it can be told, and is taken as it is told.
    const Json::Value state = search.getState();
    search.setState(state);
    fuzzRequire(search.getState() == state, "a state is read as it is written");
    fuzzRequire(search.occurrence > 0, "occurrences are counted from 1 on");
    return 0;
}
