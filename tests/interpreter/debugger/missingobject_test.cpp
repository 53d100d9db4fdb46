#include "interpreter/debugger/missingobject.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/debugger/testdebugger.h"
#include "platform/objectmodel/objectmap.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

class MissingObject : public testing::Test {
protected:
    MissingObject() {
        debugger.enterScript("/nowhere/a.py");
        debugger.setInteractive(true);
        debugger.setObjectNotFoundDebugging(true);
        TestSettingsType::s_objectNotFoundDebugging = true;
        writeMap(":OK\t{text='Ok'}\n");
        EXPECT_TRUE(ObjectMap::self()->load(map));
    }
    ~MissingObject() override {
        debugger.shutDown();
        TestSettingsType::reset();
        ObjectMap::self()->clear();
    }

    void writeMap(const QByteArray& text) const { EXPECT_TRUE(writeFile(map, text)); }
    bool stop() const { return stopForMissingObject(":OK", "no button", map); }

    QTemporaryDir folder;
    QString map = folder.filePath("objectnames.tsv");
    TestDebugger debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(debugger);
};

TEST_F(MissingObject, StopsWhereTestAndFrontEndWantIt) {
    for (const bool testWants : {false, true}) {
        for (const bool frontEndWants : {false, true}) {
            TestSettingsType::s_objectNotFoundDebugging = testWants;
            debugger.setObjectNotFoundDebugging(frontEndWants);
            frontEnd.commands = {Resume::Run};
            EXPECT_EQ(stop(), testWants && frontEndWants);
            EXPECT_EQ(frontEnd.take(),
                      testWants && frontEndWants ? "3 no object :OK: no button" : "");
        }
    }
    debugger.setDebuggerMode(Debugger::None);
    EXPECT_FALSE(stop()) << "in code that the debugger evaluates";
    EXPECT_EQ(frontEnd.take(), "");
}

TEST_F(MissingObject, AnyWayOnLooksAgainButForTheErrorsOwnCourse) {
    for (const Resume way : {Resume::Next, Resume::Return, Resume::Step, Resume::Run}) {
        frontEnd.commands = {way};
        EXPECT_TRUE(stop()) << int(way);
    }
    frontEnd.commands = {[](Debugger& stopped) { stopped.setSkipCurrentError(1); }, Resume::Run};
    EXPECT_FALSE(stop());
    EXPECT_FALSE(stop()) << "nobody is there to answer";
}

TEST_F(MissingObject, TheMapIsReadAgainWhenItHasChanged) {
    const QString made = ObjectMap::self()->symbolicName("{text='Made'}", true);
    frontEnd.commands = {[this](Debugger&) { writeMap(":OK\t{text='OK!'}\n"); }, Resume::Run};
    EXPECT_TRUE(stop());
    EXPECT_EQ(ObjectMap::self()->realName(":OK"), "{text='OK!'}");
    EXPECT_EQ(ObjectMap::self()->realName(made), "{text='Made'}") << "was made beside the file";
    EXPECT_EQ(frontEnd.take(), "3 no object :OK: no button");

    // A faulty one leaves the map as it was, and is not told twice.
    frontEnd.commands = {[this](Debugger&) { writeMap("nonsense\n"); }, Resume::Run};
    EXPECT_TRUE(stop());
    EXPECT_EQ(ObjectMap::self()->realName(":OK"), "{text='OK!'}");
    EXPECT_TRUE(
        frontEnd.take().startsWith("3 no object :OK: no button; ObjectMap=" + map + ", line 1: "));
    frontEnd.commands = {Resume::Run};
    EXPECT_TRUE(stop());
    EXPECT_EQ(frontEnd.take(), "3 no object :OK: no button");

    // One that was not there at all.
    ObjectMap::self()->clear();
    frontEnd.commands = {[this](Debugger&) { writeMap(":OK\t{text='New'}\n"); }, Resume::Run};
    EXPECT_TRUE(stop());
    EXPECT_EQ(ObjectMap::self()->realName(":OK"), "{text='New'}");
}

}  // namespace
}  // namespace Tamrix
