#include <json/json.h>

#include <sstream>

#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/debugger/testdebugger.h"
#include "interpreter/generic/findimagedebugger.h"
#include "interpreter/generic/imagesearch.h"
#include "interpreter/generic/imagesearchtest.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

Json::Value parsed(const std::string& text) {
    Json::Value value;
    std::istringstream stream(text);
    stream >> value;
    return value;
}

std::string written(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

/// A search whose script stops in the debugger where it fails.
class ImageSearchStop : public ImageSearchTest {
protected:
    ImageSearchStop() {
        debugger.enterScript("/nowhere/a.py");
        debugger.setInteractive(true);
        debugger.setImageNotFoundDebugging(true);
        TestSettingsType::s_imageNotFoundDebugging = true;
        draw(QPoint(30, 20), pattern(10, 77));
        storeImage("other.png", pattern(10, 77));
    }
    ~ImageSearchStop() override { debugger.shutDown(); }

    /// A command that changes the state of the search.
    static Look setState(const char* state) {
        return [state](Debugger& stopped) { stopped.internalDebugger()->setState(parsed(state)); };
    }
    QString find(const ScriptArgument::Map& options = {}) {
        return search(findImage, {text("dot"), map(options)});
    }

    const QString missing = "Could not find image 'dot', occurrence: 1 on the screen(s).";
    TestDebugger debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(debugger);
};

TEST_F(ImageSearchStop, TheSearchIsMadeAgain) {
    QString screenshot;
    frontEnd.commands = {[&](Debugger& stopped) {
                             ASSERT_TRUE(stopped.internalDebugger());
                             EXPECT_EQ(stopped.internalDebugger()->contextName(), "ImageLookup");
                             screenshot = frontEnd.told.last().section(" in ", 1);
                             EXPECT_EQ(QImage(screenshot).size(), desktop.size());
                         },
                         Resume::Run, setState(R"({"imageSearchName":"other"})"), Resume::Run};
    EXPECT_EQ(find(), "10x10x5x5");
    EXPECT_EQ(grabs, 3);
    EXPECT_FALSE(QFile::exists(screenshot));
    EXPECT_FALSE(debugger.internalDebugger());
    EXPECT_TRUE(frontEnd.take().startsWith("3 no image dot 3 in /"));
}

TEST_F(ImageSearchStop, ChangedFilesAreReadAnew) {
    frontEnd.commands = {[this](Debugger&) { storeImage("dot.png", pattern(10, 77)); },
                         Resume::Step};
    EXPECT_EQ(find(), "10x10x5x5");
}

TEST_F(ImageSearchStop, EachPartOfTheStateCounts) {
    draw(QPoint(70, 20));
    draw(QPoint(70, 60), blemished(pattern(10), qRgb(90, 90, 20)));
    const struct {
        const char* state;
        const char* place;
    } rows[] = {
        {R"({"imageSearchOccurrence":1})", "30x10x5x5"},
        {R"({"imageSearchRegion":{"x":0,"y":5,"width":20,"height":20},"imageSearchName":"other",)"
         R"("imageSearchOccurrence":1})",
         "10x10x5x5"},
        {R"({"imageSearchDefaults":{"tolerant":true,"threshold":99}})", "30x30x5x5"},
        {R"({"imageSearchOptions":{"tolerant":true,"threshold":99}})", "30x30x5x5"},
    };
    for (const auto& row : rows) {
        TestSettingsType::s_image = {};
        frontEnd.commands = {setState(row.state), Resume::Run};
        EXPECT_EQ(find({{"occurrence", integer(2)}}), row.place) << row.state;
    }
    TestSettingsType::s_image = {};
    frontEnd.take();
    frontEnd.commands = {setState(R"({"imageSearchFixTarget":1})"), Resume::Run};
    EXPECT_EQ(find({{"occurrence", integer(2)}}).left(20), "Could not find image");
    EXPECT_EQ(runner.fixTarget, 1);
    EXPECT_TRUE(frontEnd.take().contains("no image dot 2 in "))
        << "the second stop says that settings did not help";
}

TEST_F(ImageSearchStop, TheErrorMayTakeItsCourse) {
    frontEnd.commands = {[](Debugger& stopped) { stopped.setSkipCurrentError(1); }, Resume::Run};
    EXPECT_EQ(find(), missing);
    EXPECT_EQ(find(), missing) << "nobody is there to answer";
    EXPECT_EQ(context.errorType(), ScriptContext::LookupError);
    EXPECT_EQ(grabs, 2);
    frontEnd.take();

    const std::function<void()> offs[] = {
        [this] { TestSettingsType::s_imageNotFoundDebugging = false; },
        [this] { debugger.setImageNotFoundDebugging(false); },
        [this] { debugger.setDebuggerMode(Debugger::None); },
    };
    for (const auto& off : offs) {
        TestSettingsType::s_imageNotFoundDebugging = true;
        debugger.setImageNotFoundDebugging(true);
        off();
        frontEnd.commands = {Resume::Run};
        EXPECT_EQ(find(), missing);
        EXPECT_EQ(frontEnd.take(), "");
    }
    debugger.setDebuggerMode(Debugger::Run);
}

TEST_F(ImageSearchStop, StatesAreCheckedOneMemberAfterTheOther) {
    FindImageDebugger state(&runner, text("dot"),
                            map({{"threshold", number(97)}, {"timeout", integer(-5)}}),
                            text("all"));
    const char* const before =
        R"({"imageSearchDefaults":{},"imageSearchFixTarget":0,"imageSearchInterval":1000,)"
        R"("imageSearchName":"dot","imageSearchOccurrence":1,)"
        R"("imageSearchOptions":{"threshold":97.0},"imageSearchRegion":"all",)"
        R"("imageSearchTimeout":-5})";
    EXPECT_EQ(written(state.getState()), before);
    state.setState(state.getState());
    EXPECT_EQ(written(state.getState()), before);

    const struct {
        const char* state;
        const char* failure;
    } rows[] = {
        {R"({"imageSearchFixTarget":"1"})", "imageSearchFixTarget must be an integer"},
        {R"({"imageSearchName":5})", "imageSearchName must be a string"},
        {R"({"imageSearchTimeout":1.5})", "imageSearchTimeout must be an integer"},
        {R"({"imageSearchInterval":null})", "imageSearchInterval must be an integer"},
        {R"({"imageSearchOccurrence":0})", "imageSearchOccurrence must be a positive integer"},
        {R"({"imageSearchOccurrence":1.5})", "imageSearchOccurrence must be a positive integer"},
        {R"({"imageSearchOptions":[]})", "imageSearchOptions must be an object"},
        {R"({"imageSearchDefaults":"x"})", "imageSearchDefaults must be an object"},
        {R"({"imageSearchOptions":{"threshold":101}})", "threshold must lie in the [0,100] range"},
        {R"({"imageSearchRegion":5})", "Search region must be an object, object list or 'all'"},
        {R"({"foo":1,"bar":2})", "Unknown keys: bar, foo"},
        {R"({"foo":1,"imageSearchName":5})", "imageSearchName must be a string"},
    };
    for (const auto& row : rows) {
        try {
            state.setState(parsed(row.state));
            ADD_FAILURE() << row.state;
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), row.failure);
        }
    }
    EXPECT_EQ(written(state.getState()), before);
    // What stands in front of a wrong one is taken.
    EXPECT_THROW(state.setState(parsed(R"({"imageSearchInterval":7,"imageSearchName":5})")),
                 std::runtime_error);
    EXPECT_EQ(state.interval, 7);
}

}  // namespace
}  // namespace Tamrix
