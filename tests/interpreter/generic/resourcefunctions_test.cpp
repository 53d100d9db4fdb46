#include "interpreter/generic/resourcefunctions.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/environmentguard.h"
#include "support/fakelanguage.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

class ResourceFunctions : public testing::Test {
protected:
    ~ResourceFunctions() override { ScriptContext::setCurrent(nullptr); }

    QString find(const ScriptArgument::List& arguments) {
        context.setArguments(arguments);
        const bool found = context.execute(findFile);
        EXPECT_EQ(found, !context.hasError());
        return found ? context.result->toString() : context.errorMessage();
    }

    QTemporaryDir folder;
    FakeContext context;
};

TEST_F(ResourceFunctions, FindsFiles) {
    const EnvironmentGuard suite("TAMRIX_SUITE_DIR", folder.path());
    ASSERT_TRUE(writeFile(folder.filePath("shared/testdata/a.csv")));
    EXPECT_EQ(find({text("testdata"), text("a.csv")}), folder.filePath("shared/testdata/a.csv"));
    EXPECT_EQ(find({text("scripts"), text("a.csv")}), "Can't find file 'a.csv' of type 'scripts'");
    EXPECT_EQ(find({text("images"), text("a.csv")}),
              "Unknown file type. Possible options are: scripts, testdata");
    for (const auto& wrong :
         {ScriptArgument::List{text("scripts")}, ScriptArgument::List{text("scripts"), integer(1)}})
        EXPECT_EQ(find(wrong), "findFiles() requires two string arguments");
}

TEST_F(ResourceFunctions, SourcesInAContextOfItsOwn) {
    QString seenText;
    QString seenFile;
    context.evaluator = [&](FakeContext& sub, const QString& code, const QString& fileName) {
        EXPECT_EQ(ScriptContext::current(), &sub);
        EXPECT_NE(&sub, &context);
        seenText = code;
        seenFile = fileName;
        if (code != "good") {
            sub.setError("it is bad", ScriptContext::VerificationError);
            return false;
        }
        return true;
    };
    ASSERT_TRUE(writeFile(folder.filePath("good.fake"), "good"));
    ASSERT_TRUE(writeFile(folder.filePath("bad.fake"),
                          "b\xc3\xa4"
                          "d"));
    ASSERT_TRUE(writeFile(folder.filePath("empty.fake")));
    const WorkingDirectory inFolder(folder.path());

    EXPECT_FALSE(context.call(sourceFile, {text("good.fake")}));
    EXPECT_EQ(seenFile, QFileInfo(folder.filePath("good.fake")).canonicalFilePath());
    EXPECT_EQ(ScriptContext::current(), &context);

    EXPECT_TRUE(context.call(sourceFile, {text("bad.fake")}));
    EXPECT_EQ(seenText, QString::fromUtf8("b\xc3\xa4"
                                          "d"));
    EXPECT_EQ(context.errorMessage(), "it is bad");
    EXPECT_EQ(context.errorType(), ScriptContext::GeneralError);
    EXPECT_EQ(ScriptContext::current(), &context);

    // A NUL is the language's to refuse; what stands behind it is not lost.
    ASSERT_TRUE(writeFile(folder.filePath("nul.fake"), QByteArray("before\0behind", 13)));
    EXPECT_TRUE(context.call(sourceFile, {text("nul.fake")}));
    EXPECT_EQ(seenText, QString("before") + QChar(0) + "behind");

    EXPECT_FALSE(context.call(sourceFile, {text("empty.fake")}));
    EXPECT_TRUE(context.call(sourceFile, {text("none.fake")}));
    EXPECT_EQ(context.errorMessage(), "Couldn't open file none.fake");
    EXPECT_TRUE(context.call(sourceFile));
    EXPECT_EQ(context.errorMessage(), "source(fileName)");
}

}  // namespace
}  // namespace Tamrix
