#include "interpreter/run/wrapperdescriptor.h"

#include <gtest/gtest.h>

#include "platform/objectmodel/inspector.h"
#include "platform/testresult/testresult.h"
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
        for (const ReportEntry& entry : report.results()) {
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

class WrapperDescriptorErrors : public WrapperDescriptor,
                                public testing::WithParamInterface<ErrorCase> {};

TEST_P(WrapperDescriptorErrors, NamesWhatWasExpected) {
    EXPECT_EQ(errorsOf(GetParam().text), QStringList{GetParam().message});
    EXPECT_EQ(inspector->classSettings("Foo").uniqueProperty, "");
    EXPECT_TRUE(inspector->classSettings("Foo").propertyDelegates.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WrapperDescriptorErrors,
    testing::Values(
        ErrorCase{"setUniqueProperty", "Expected class name after setUniqueProperty"},
        ErrorCase{"setUniqueProperty Foo1 bar", "Expected class name after setUniqueProperty"},
        ErrorCase{"setUniqueProperty a.b bar", "Expected class name after setUniqueProperty"},
        ErrorCase{"setUniqueProperty Foo",
                  "Expected property name as second setUniqueProperty argument"},
        ErrorCase{"setUniqueProperty Foo\nbar",
                  "Expected property name as second setUniqueProperty argument"},
        ErrorCase{"setUniqueProperty Foo bar baz",
                  "Expected newline after setUniqueProperty {class} {property}"},
        ErrorCase{"setAllowKeyEventCompression 1",
                  "Expected class name after setAllowKeyCompression"},
        ErrorCase{"setAllowKeyEventCompression Foo True",
                  "Expected 'true' or 'false' as setAllowKeyCompression parameter"},
        ErrorCase{"setAllowKeyEventCompression Foo true {",
                  "Expected newline after setAllowKeycompression {class} {on}"},
        ErrorCase{"enableEventCompression {", "Expected class name after enableEventCompression"},
        ErrorCase{"enableEventCompression Foo",
                  "Expected 'true' or 'false' as enableEventCompression parameter"},
        ErrorCase{"enableEventCompression Foo true false",
                  "Expected newline after enableEventCompression {class} {on}"},
        ErrorCase{"setMouseTracking", "Expected class name after setMouseTracking"},
        ErrorCase{"setMouseTracking Foo yes",
                  "Expected 'true' or 'false' as setMouseTracking parameter"},
        ErrorCase{"setMouseTracking Foo true x",
                  "Expected newline after setMouseTracking {class} {on}"},
        ErrorCase{"setRecorderFilter", "Expected type after setRecorderFilter"},
        ErrorCase{"setRecorderFilter mouse", "Expected name as second setRecorderFilter argument"},
        ErrorCase{"setRecorderFilter mouse move x",
                  "Expected newline after setRecorderFilter {type} {name}"},
        ErrorCase{"setRecordMouseDrag", "Expected class name after setRecordMouseDrag"},
        ErrorCase{"setRecordMouseDrag Foo on",
                  "Expected 'true' or 'false' as setRecordMouseDrag parameter"},
        ErrorCase{"setRecordMouseDrag Foo true x",
                  "Expected newline after setRecordMouseDrag {class} {on}"},
        ErrorCase{"addPropertyDelegate", "Expected class name after addPropertyDelegate"},
        ErrorCase{"addPropertyDelegate Foo bar",
                  "Unexpected token 'bar' in addPropertyDelegate parameters"},
        ErrorCase{"addPropertyDelegate Foo {a b c d true true} }",
                  "Unexpected token '}' in addPropertyDelegate parameters"},
        ErrorCase{"addPropertyDelegate Foo {a b c d true true x}", "Expected '}'"},
        ErrorCase{"addPropertyDelegate Foo {a b", "Expected '}'"}));

}  // namespace
}  // namespace Tamrix
