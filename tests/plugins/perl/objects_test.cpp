#include <QRect>

#include "platform/objectmodel/inspector.h"
#include "plugins/perl/perltest.h"
#include "support/inmemorymodel.h"

namespace Tamrix {
namespace {

using namespace Test;

class PerlObjects : public PerlTest {
protected:
    PerlObjects() {
        Class* const buttonClass = model.objectClass("Button");
        buttonClass->addProperty("text", "QString", true);
        buttonClass->addProperty("width", "int", true);
        buttonClass->addProperty("checked", "bool", true);
        buttonClass->addProperty("geometry", "QRect");
        buttonClass->addProperty("tags", "QVariantList", true);
        buttonClass->addMethod("resize", Signature({Argument("int"), Argument("int")}));
        buttonClass->addMethod("setValue", Signature({Argument("int")}));
        button = model.addObject("Button", "ok", model.addObject("Window", "main"));
        button->setProperty("text", QVariant("OK"));
        button->setProperty("geometry", QVariant(QRect(1, 2, 30, 40)));
        button->setProperty("ofItsOwn", QVariant(3));
        Class* const global = model.editableGlobalClass();
        global->addMethod("click", Signature({Argument("QObject")}));
        global->addMethod("own", Signature({Argument("QString")}));
        model.onCall = [this](const auto& self, const QString& method,
                              const ObjectList& arguments) {
            return answer(self, method, arguments);
        };
        Inspector::self()->setModel(&model);
        runner.found = button;
        s_button = button;
        define("theButton", [](ScriptContext* context) {
            context->setObjectResult(s_button);
            return true;
        });
    }
    ~PerlObjects() override {
        s_button.reset();
        interpreter.reset();
        Inspector::self()->setModel(nullptr);
    }

    Outcome<SharedPtr<Object>> answer(const SharedPtr<Object>& self, const QString& method,
                                      const ObjectList& arguments) {
        QStringList words{self ? self->objectName() : "-", method};
        for (const SharedPtr<Object>& argument : arguments)
            words.append(argument->handle()
                             ? argument->objectName()
                             : QString("%1:%2").arg(argument->className(),
                                                    argument->toVariant().toString()));
        s_seen.append(words.join(' '));
        if (!failure.isEmpty())
            return fail(isLookup ? FailureKind::NotReady : FailureKind::Failed, failure);
        return Inspector::self()->createObject(nextResult);
    }

    inline static SharedPtr<Object> s_button;
    InMemoryModel model;
    SharedPtr<InMemoryObject> button;
    QVariant nextResult;
    QString failure;
    bool isLookup = false;
};

TEST_F(PerlObjects, ReadAndWriteProperties) {
    EXPECT_EQ(run(R"perl(
my $b = theButton();
die 'read' unless $b->text eq 'OK' && $b->ofItsOwn == 3 && $b->geometry->width == 30;
die 'equal' unless $b->geometry == theButton()->geometry && $b->geometry != $b && $b == theButton();
$b->text('Cancel');
$b->width(7.0);
$b->checked(1);
$b->tags([1, 'two', {k => undef}, theButton()]);
die 'written' unless $b->text eq 'Cancel' && $b->width == 7 && $b->checked;
die 'tags' unless $b->tags->[1] eq 'two' && $b->tags->[2]{k} // 1 && $b->tags->[3] == $b;
die 'can' unless $b->can('text') && !$b->can('nothing') && $b->can('text')->($b) eq 'Cancel';
die 'truth' unless $b && !object::createNull('Button') && isNull(object::createNull('Button'));
die 'properties' unless object::properties($b)->{text} eq 'Cancel';
die 'text' unless "$b" =~ /name='ok'/ && "$b" eq $b;
die 'parent' unless object::children(object::parent($b))->[0] == $b;
$b->tags([]);
)perl"),
              "");
    const std::pair<const char*, const char*> rows[] = {
        {"$b->txet",
         "tamrix::MemberError: 'Button' has no property or method 'txet'; the nearest: 'text'"},
        {"$b->q(1)", "tamrix::MemberError: 'Button' has no property or method 'q'"},
        {"$b->text(1, 2)",
         "tamrix::ArgumentError: Button.text is a property, which takes no arguments"},
        {"$b->text(sub {})",
         "tamrix::ArgumentError: A value of type 'CODE' can't be passed to an application"},
        {"my $c = []; push @$c, $c; $b->tags($c)",
         "tamrix::Error: Button.tags() failed: A value for an application is nested deeper than "
         "16: "
         "does a part of it hold itself?"},
        {"$b->geometry->q", "tamrix::MemberError: 'QRect' has no property or method 'q'"},
    };
    for (const auto& [code, error] : rows)
        EXPECT_EQ(run(QString("my $b = theButton(); ") + code), error) << code;
}

TEST_F(PerlObjects, AFailedVerdictTellsProperties) {
    const QString code =
        "my $b = theButton();\n"
        "test::verify($b->text eq 'no' && $b->setValue && $b->nothing);\n";
    ASSERT_TRUE(writeFile(script(), code.toUtf8()));
    EXPECT_EQ(run(code), "");
    EXPECT_EQ(report.results().at(0).explanation,
              "$b->text eq 'no' && $b->setValue && $b->nothing\n$b->text: \"OK\"");
    EXPECT_TRUE(s_seen.isEmpty()) << "a method was called";
}

TEST_F(PerlObjects, CallMethodsAndGlobalFunctions) {
    nextResult = 42;
    EXPECT_EQ(run("my $b = theButton();\n"
                  "die unless $b->setValue(5) == 42;\n"
                  "$b->resize(1, 2);\n"
                  "click($b); click('name');\n"
                  "own('text');\n"
                  "package Other; use tamrix; click($b); main::own('x');\n"),
              "");
    EXPECT_EQ(s_seen,
              (QStringList{"ok setValue int:5", "ok resize int:1 int:2", "- click ok", "- click ok",
                           "- own QString:text", "- click ok", "- own QString:x"}));
    failure = "it is gone";
    EXPECT_EQ(run("theButton()->setValue(5)"), "tamrix::Error: it is gone");
    isLookup = true;
    EXPECT_EQ(run("eval { click(theButton()) }; die 'not typed' unless "
                  "$@->isa('tamrix::LookupError'); die $@->message . ' ' . $@->line"),
              "it is gone 1");
    EXPECT_EQ(run("theButton()->resize(1)"),
              "tamrix::ArgumentError: Button.resize() takes (int, int), not 1 arguments");
}

TEST_F(PerlObjects, AFunctionOfTheScriptHidesOneOfTheApplication) {
    EXPECT_EQ(run("use warnings; sub own { 'mine' } die unless own() eq 'mine';"), "");
    EXPECT_TRUE(s_seen.isEmpty());
    for (const ReportEntry& entry : report.entries)
        EXPECT_FALSE(eventOf<OutputWritten>(entry));
}

TEST_F(PerlObjects, DataSetsAreArraysOfHashes) {
    ASSERT_TRUE(writeFile(folder.filePath("people.tsv"), "Name\tAge\nAnn\t33\nBob\t44\n"));
    EXPECT_EQ(run(QString("my $set = testData::dataset('%1');\n"
                          "die 'count' unless @$set == 2;\n"
                          "my $text = join ' ', map { \"$_->{Name}:$_->[1]\" } @$set;\n"
                          "die $text if $text ne 'Ann:33 Bob:44';\n"
                          "die 'field' if testData::field($set->[1], 'Age') != 44;\n")
                      .arg(folder.filePath("people.tsv"))),
              "");
}

TEST_F(PerlObjects, NativeClassesAndSettings) {
    EXPECT_EQ(run("my $i = Image->new(2, 1, 'red');\n"
                  "die unless $i->width == 2 && $i->isa('Image');\n"
                  "die unless eval { $i->width(3); 1 } || $@->message =~ /can't be written/;\n"
                  "testSettings->waitForObjectTimeout(50);\n"
                  "die unless testSettings->waitForObjectTimeout == 50;\n"),
              "");
    EXPECT_EQ(run("Image::width('no image')"),
              "tamrix::ArgumentError: Image.width() needs an object of its class in front");
}

}  // namespace
}  // namespace Tamrix
