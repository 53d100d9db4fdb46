#include "interpreter/run/wrapperdescriptor.h"

#include <gtest/gtest.h>

#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testresult.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using Test::RecordingReport;

class WrapperDescriptor : public testing::Test {
protected:
    ~WrapperDescriptor() override { inspector->reset(); }

    /// Evaluates the text; the messages of the results, which are all errors.
    QStringList errorsOf(const QString& text) {
        RecordingReport report;
        TestResult result(&report);
        const bool ok = evalInitScript(&result, text);
        QStringList messages;
        for (const ResultAdded& entry : report.results()) {
            EXPECT_EQ(entry.type, TestResult::Error);
            EXPECT_EQ(entry.detail, "");
            messages.append(entry.message);
        }
        EXPECT_EQ(ok, messages.isEmpty());
        return messages;
    }

    Inspector* inspector = Inspector::self();
};

TEST_F(WrapperDescriptor, SendsEachCommand) {
    EXPECT_EQ(errorsOf(QString::fromUtf8("\n"
                                         "setUniqueProperty Button text\n"
                                         "\r\n"
                                         "  setAllowKeyEventCompression\tButton true\r"
                                         "enableEventCompression Button true\n"
                                         "setMouseTracking \u00fcber\u00a0true\n"
                                         "setRecordMouseDrag Button true\n"
                                         "setRecorderFilter mouse move\n"
                                         "setMouseTracking Button true\n"
                                         "setMouseTracking Button false")),
              QStringList());
    const Inspector::ClassSettings button = inspector->classSettings("Button");
    EXPECT_EQ(button.uniqueProperty, "text");
    EXPECT_TRUE(button.allowKeyEventCompression);
    EXPECT_TRUE(button.eventCompression);
    EXPECT_TRUE(button.recordMouseDrag);
    EXPECT_FALSE(button.mouseTracking);
    EXPECT_TRUE(inspector->classSettings(QString::fromUtf8("\u00fcber")).mouseTracking);
    EXPECT_EQ(inspector->recorderFilters(), (QMap<QString, QString>{{"mouse", "move"}}));
}

TEST_F(WrapperDescriptor, BackslashContinuesTheLine) {
    EXPECT_EQ(errorsOf("setUniqueProperty \\\n Button\\\ntext\\\n\n"), QStringList());
    EXPECT_EQ(inspector->classSettings("Button").uniqueProperty, "text");
    // Elsewhere it starts a word, also at the end of the text.
    EXPECT_EQ(errorsOf("\\x"), QStringList{"Unexpected token '\\x'"});
    EXPECT_EQ(errorsOf("\\"), QStringList{"Unexpected token '\\'"});
}

TEST_F(WrapperDescriptor, JoinsTheDelegatesOfAClass) {
    EXPECT_EQ(
        errorsOf("addPropertyDelegate Button {a b.c d1 e true false}{f g h i \\\n maybe true} "
                 "\naddPropertyDelegate Other"),
        QStringList());
    EXPECT_EQ(inspector->classSettings("Button").propertyDelegates,
              (QStringList{"a b.c d1 e 1 0", "f g h i maybe 1"}));
    EXPECT_EQ(inspector->classSettings("Other").propertyDelegates, QStringList());
}

TEST_F(WrapperDescriptor, FirstErrorEndsTheEvaluation) {
    EXPECT_EQ(errorsOf("setMouseTracking A true\nbad line\nworse line\nsetMouseTracking B true"),
              QStringList{"Unexpected token 'bad'"});
    EXPECT_TRUE(inspector->classSettings("A").mouseTracking) << "what was sent stays in force";
    EXPECT_FALSE(inspector->classSettings("B").mouseTracking);
    EXPECT_FALSE(evalInitScript(nullptr, "bad")) << "also without a result sink";
    EXPECT_TRUE(evalInitScript(nullptr, "")) << "an error doesn't outlive its evaluation";
}

struct ErrorCase {
    const char* text;
    const char* message;
};

const ErrorCase errorCases[] = {
    {"setUniqueProperty", "Expected class name after setUniqueProperty"},
    {"setUniqueProperty Foo1 bar", "Expected class name after setUniqueProperty"},
    {"setUniqueProperty a.b bar", "Expected class name after setUniqueProperty"},
    {"setUniqueProperty Foo", "Expected property name as second setUniqueProperty argument"},
    {"setUniqueProperty Foo\nbar", "Expected property name as second setUniqueProperty argument"},
    {"setUniqueProperty Foo bar baz",
     "Expected newline after setUniqueProperty {class} {property}"},
    {"setAllowKeyEventCompression 1", "Expected class name after setAllowKeyCompression"},
    {"setAllowKeyEventCompression Foo True",
     "Expected 'true' or 'false' as setAllowKeyCompression parameter"},
    {"setAllowKeyEventCompression Foo true {",
     "Expected newline after setAllowKeycompression {class} {on}"},
    {"enableEventCompression {", "Expected class name after enableEventCompression"},
    {"enableEventCompression Foo",
     "Expected 'true' or 'false' as enableEventCompression parameter"},
    {"enableEventCompression Foo true false",
     "Expected newline after enableEventCompression {class} {on}"},
    {"setMouseTracking", "Expected class name after setMouseTracking"},
    {"setMouseTracking Foo yes", "Expected 'true' or 'false' as setMouseTracking parameter"},
    {"setMouseTracking Foo true x", "Expected newline after setMouseTracking {class} {on}"},
    {"setRecorderFilter", "Expected type after setRecorderFilter"},
    {"setRecorderFilter mouse", "Expected name as second setRecorderFilter argument"},
    {"setRecorderFilter mouse move x", "Expected newline after setRecorderFilter {type} {name}"},
    {"setRecordMouseDrag", "Expected class name after setRecordMouseDrag"},
    {"setRecordMouseDrag Foo on", "Expected 'true' or 'false' as setRecordMouseDrag parameter"},
    {"setRecordMouseDrag Foo true x", "Expected newline after setRecordMouseDrag {class} {on}"},
    {"addPropertyDelegate", "Expected class name after addPropertyDelegate"},
    {"addPropertyDelegate Foo bar", "Unexpected token 'bar' in addPropertyDelegate parameters"},
    {"addPropertyDelegate Foo {a b c d true true} }",
     "Unexpected token '}' in addPropertyDelegate parameters"},
    {"addPropertyDelegate Foo {a b c d true true x}", "Expected '}'"},
    {"addPropertyDelegate Foo {a b", "Expected '}'"},
};

TEST_F(WrapperDescriptor, ErrorsNameWhatWasExpected) {
    for (const ErrorCase& line : errorCases)
        EXPECT_EQ(errorsOf(line.text), QStringList{line.message}) << line.text;
    EXPECT_EQ(inspector->classSettings("Foo").uniqueProperty, "");
    EXPECT_TRUE(inspector->classSettings("Foo").propertyDelegates.isEmpty());
}

}  // namespace
}  // namespace Tamrix
