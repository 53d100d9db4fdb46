#include "interpreter/generic/objectfunctions.h"

#include <QFile>
#include <QTemporaryDir>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/generic/apitest.h"
#include "platform/objectmodel/valueobject.h"
#include "shared/uiabstraction/uielement.h"
#include "support/warningrecorder.h"

namespace Tamrix {
namespace {

using namespace Test;

class ObjectFunctions : public ApiTest {
protected:
    SharedPtr<InMemoryObject> window = model.addObject("Window", "main");
    SharedPtr<InMemoryObject> button = model.addObject("Button", "ok", window);
    SharedPtr<ScriptArgument> buttonValue = object(button);
    SharedPtr<ScriptArgument> buttonName = text("{name='ok' type='Button'}");
    SharedPtr<ScriptArgument> missingName = text("{name='none' type='Button'}");
};

TEST_F(ObjectFunctions, RefuseWrongArguments) {
    const auto one = integer(1);
    expectRefusals({
        {waitForObject, {}, "waitForObject() requires an object or an object name argument"},
        {waitForObject, {one}, "waitForObject() requires an object or an object name argument"},
        {waitForObject, {buttonName, text("1")}, "Invalid type of timeout value"},
        {waitForObjectExists, {}, "Function waitForObjectExists() requires 1 or 2 arguments"},
        {waitForObjectExists,
         {buttonValue},
         "waitForObjectExists() requires an object name argument"},
        {waitForObjectExists,
         {buttonName, text("1")},
         "Invalid type of timeout value, must be a number"},
        {waitForObjectExists, {buttonName, integer(-1)}, "2nd argument must be a positive value"},
        {waitForObjectItem,
         {buttonName, one},
         "waitForObjectItem() requires an object name (or reference) and either an item argument "
         "or row and column arguments"},
        {waitForObjectItem, {buttonName, text("i"), text("1")}, "Invalid type of timeout value"},
        {findObject, {buttonValue}, "findObject() requires a name argument"},
        {findAllObjects, {}, "findAllObjects() requires a name argument"},
        {findAllObjects,
         {text("{occurrence='2' type='Button'}")},
         "findAllObjects(): The provided object name must not contain the property 'occurrence'"},
        {objectExists, {buttonValue}, "object::exists() requires an object name argument"},
        {objectChildren, {buttonName}, "Expected object reference argument"},
        {objectParent, {}, "Expected object reference argument"},
        {objectProperties, {one}, "Expected object reference argument"},
        {objectTopLevelObjects, {one}, "Expected no arguments"},
        {objectGlobalBounds, {one}, "Expected object reference argument"},
        {objectGlobalBounds,
         {object(new Object)},
         "Cannot fetch global bounding rectangle for invalid object"},
        {objectObjectName, {}, "objectName() requires an object reference argument"},
        {objectIsArray, {one}, "isArray() requires an object reference argument"},
        {objectQueryInterface, {buttonValue}, "Expected two arguments"},
        {objectQueryInterface, {one, one}, "Expected object reference as first argument"},
        {objectQueryInterface, {buttonValue, one}, "Expected string as second argument"},
        {objectQueryInterface,
         {buttonValue, text("Clickable")},
         "Could not convert object to interface 'Clickable'"},
        {objectConvertTo, {buttonValue}, "convertTo(object, typeName)"},
        {objectConvertTo, {one, one}, "Invalid object passed to convertTo()"},
        {objectConvertTo, {buttonValue, one}, "convertTo() expected type string as 2nd parameter"},
        {objectConvertTo, {buttonValue, text("None")}, "Unknown type None"},
        {objectConvertTo,
         {buttonValue, text("Window")},
         "Could not convert object of type Button to type Window"},
        {objectCreateNull, {}, "createNull(type)"},
        {objectCreateNull, {one}, "createNull() expected type as 1nd parameter"},
        {objectCreateNull,
         {new FakeArgument(static_cast<const Class*>(nullptr))},
         "Internal error"},
        {castObject, {}, "cast(object, typeName)"},
        {castObject, {one, one}, "Invalid object passed to cast()"},
        {castObject, {buttonValue, one}, "cast() expected type string as 2nd parameter"},
        {castObject, {buttonValue, text("None")}, "Unknown type None"},
        {plain<isNull>, {one}, "isNull() requires an object reference argument"},
        {plain<typeName>, {}, "typeName() requires an argument"},
        {plain<snooze>, {text("1")}, "snooze() requires a time argument"},
        {waitFor, {}, "waitFor(expression|callable, [timeout])"},
        {waitFor, {one}, "waitFor() argument has to be a callable or a string"},
        {waitFor, {text("true"), text("1")}, "Invalid type of timeout value"},
        {plain<highlightObject>,
         {},
         "highlightObject() requires at least 1 and at most 3 arguments"},
        {plain<highlightObject>,
         {buttonValue, integer(0), boolean(true)},
         "indefinite blocking highlight can never return"},
        {plain<highlightObject>, {one}, "highlightObject() argument must be an object or name"},
        {plain<highlightObject>, {object(new Object)}, "Cannot highlight an invalid object"},
        {plain<saveObjectSnapshot>, {one}, "saveObjectSnapshot() requires exactly 2 arguments"},
        {plain<saveObjectSnapshot>,
         {one, one},
         "First argument must be an object name or reference"},
        {plain<saveObjectSnapshot>,
         {buttonName, one},
         "Second argument must be a string with dump file location to write"},
    });
    EXPECT_EQ(runner.calls, QStringList());
}

TEST_F(ObjectFunctions, WaitForObjects) {
    runner.found = button;
    call(waitForObject, {buttonName, number(1500.4)});
    EXPECT_EQ(resultObject(), button);
    call(waitForObject, {buttonName, number(1500.5)});
    call(waitForObject, {buttonValue});
    call(waitForObject, {map({{"type", text("Button")}}), number(-2.5)});
    call(waitForObjectExists, {buttonName, number(2.9)});
    EXPECT_EQ(resultObject(), button);
    const QString time = QString::number(TestSettingsType::s_waitForObjectTimeout);
    EXPECT_EQ(runner.calls,
              (QStringList{"wait for {name='ok' type='Button'} for 1500 ms",
                           "wait for {name='ok' type='Button'} for 1501 ms",
                           "wait for object {name='ok' type='Button'} for " + time + " ms",
                           "wait for {type='Button'} for -3 ms",
                           "wait until exists {name='ok' type='Button'} for 2 ms"}));
    runner.found.reset();
    for (const auto function : {waitForObject, waitForObjectExists}) {
        EXPECT_EQ(call(function, {buttonName}), "it is not there");
        EXPECT_EQ(context.errorType(), ScriptContext::LookupError);
    }
}

TEST_F(ObjectFunctions, WaitForItems) {
    runner.found = button;
    call(waitForObjectItem, {buttonValue, text("a.b"), integer(7)});
    EXPECT_EQ(resultObject(), button);
    call(waitForObjectItem, {buttonName, integer(2), integer(3), number(8.5)});
    EXPECT_EQ(runner.calls, (QStringList{"wait for item 'a.b' row -1 column -1 for 7 ms",
                                         "wait for {name='ok' type='Button'} for 9 ms",
                                         "wait for item '' row 2 column 3 for 9 ms"}));
    // Without the item: the inspector's text, or one of its own.
    runner.found.reset();
    EXPECT_EQ(call(waitForObjectItem, {buttonValue, text("a")}), "it is not there");
    EXPECT_EQ(context.errorType(), ScriptContext::LookupError);
    runner.lookupError.clear();
    EXPECT_EQ(call(waitForObjectItem, {buttonValue, text("a")}),
              "Item a in object {name='ok' type='Button'} of type Button not found or not ready.");
    runner.foundByName = button;
    EXPECT_EQ(call(waitForObjectItem, {text(":OK"), integer(1), integer(2)}),
              "Item  in row 1 and column 2 in object :OK not found or not ready.");
    EXPECT_EQ(context.errorType(), ScriptContext::LookupError);
}

TEST_F(ObjectFunctions, FindWithoutWaiting) {
    call(findObject, {buttonName});
    EXPECT_EQ(resultObject(), button);
    EXPECT_EQ(call(findObject, {missingName}), "No object matches {name='none' type='Button'}");
    EXPECT_EQ(context.errorType(), ScriptContext::GeneralError);

    EXPECT_EQ(call(objectExists, {buttonName}), "true");
    EXPECT_EQ(call(objectExists, {missingName}), "false");
    EXPECT_EQ(Inspector::self()->lastError(), "");
}

TEST_F(ObjectFunctions, NamesThatFindNothingCanBeLookedForAgain) {
    const QString none = "{name='none' type='Button'}";
    const struct {
        ScriptContext::Function function;
        ScriptArgument::List arguments;
        QString name;
    } rows[] = {
        {waitForObject, {missingName}, "waitForObject"},
        {waitForObjectExists, {missingName}, "waitForObjectExists"},
        {waitForObjectItem, {missingName, text("a")}, "waitForObjectItem"},
        {plain<highlightObject>, {missingName}, "highlightObject"},
    };
    for (const auto& row : rows) {
        runner.misses.clear();
        runner.found.reset();
        runner.furtherLooks = 1;
        runner.foundLater = button;
        call(row.function, row.arguments);
        EXPECT_FALSE(context.hasError()) << qPrintable(context.errorMessage());
        EXPECT_EQ(runner.misses, QStringList(none + " in " + row.name + ": it is not there"));
        // Without another look the error takes its course.
        runner.found.reset();
        EXPECT_EQ(call(row.function, row.arguments), "it is not there");
    }
    // These look at once. A name that stays wrong is asked about each time.
    runner.misses.clear();
    runner.furtherLooks = 1;
    EXPECT_EQ(call(findObject, {missingName}), "No object matches " + none);
    EXPECT_EQ(runner.misses, (QStringList{none + " in findObject: No object matches " + none,
                                          none + " in findObject: No object matches " + none}));
    // That nothing is there is an answer of these.
    runner.misses.clear();
    call(objectExists, {missingName});
    call(findAllObjects, {missingName});
    EXPECT_EQ(runner.misses, QStringList());
    // No other name helps an application that has gone.
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(call(findObject, {missingName}), "No application is connected");
    EXPECT_EQ(runner.misses, QStringList());
}

TEST_F(ObjectFunctions, FindAll) {
    const auto second = model.addObject("Button", "cancel", window);
    const auto objects = [&](const char* name) {
        call(findAllObjects, {text(name)});
        QStringList names;
        for (const auto& each : context.result->toList())
            names.append(each->toObject()->objectName());
        EXPECT_EQ(Inspector::self()->lastError(), "");
        return names.join(' ');
    };
    EXPECT_EQ(objects("{type='Button'}"), "ok cancel");
    EXPECT_EQ(objects("{type='Window'}"), "main");
    EXPECT_EQ(objects("{type='None'}"), "");
    // Of Java's objects the first one stands twice.
    model.objectClass("java_lang_Object");
    model.objectClass("Button")->setSuperClasses({"java_lang_Object"});
    EXPECT_EQ(objects("{type='Button'}"), "ok ok cancel");
    EXPECT_NE(call(findAllObjects, {text("no name")}), "");
    EXPECT_TRUE(context.hasError());
}

TEST_F(ObjectFunctions, TellAboutObjects) {
    Class* const buttonClass = model.objectClass("Button");
    buttonClass->setSuperClasses({"Window"});
    buttonClass->addProperty("text");
    buttonClass->addProperty("size");
    buttonClass->addProperty("tags");
    buttonClass->addProperty("unreadable");
    button->setProperty("text", QVariant("OK"));
    button->setProperty("size", QVariant(QSize(3, 4)));
    button->setProperty("tags", QVariant(QVariantList{1, "two", QVariantMap{{"k", 2.5}}}));

    call(objectChildren, {object(window)});
    ASSERT_EQ(context.result->toList().size(), 1u);
    EXPECT_EQ(context.result->toList()[0]->toObject(), button);
    call(objectParent, {buttonValue});
    EXPECT_EQ(resultObject(), window);
    call(objectParent, {object(window)});
    EXPECT_EQ(context.result->typeName(), "null");
    call(objectTopLevelObjects);
    EXPECT_EQ(context.result->toList().size(), 1u);
    EXPECT_EQ(call(objectObjectName, {buttonValue}), "ok");
    EXPECT_EQ(call(objectIsPointer, {buttonValue}), "true");
    EXPECT_EQ(call(objectIsValue, {buttonValue}), "false");
    EXPECT_EQ(call(objectIsValue, {object(new ValueObject(QSize()))}), "true");
    EXPECT_EQ(call(plain<isNull>, {buttonValue}), "false");
    EXPECT_EQ(call(plain<typeName>, {buttonValue}), "Button");
    EXPECT_EQ(call(plain<typeName>, {integer(1)}), "int");

    // Values of properties are those of the language; what it has not stays an object.
    WarningRecorder warnings;
    call(objectProperties, {buttonValue});
    const auto properties = context.result->toMap();
    ASSERT_EQ(properties.size(), 3u);
    EXPECT_EQ(properties.at("text")->toString(), "OK");
    EXPECT_EQ(properties.at("size")->toObject()->className(), "QSize");
    EXPECT_EQ(properties.at("tags")->toList().at(2)->toMap().at("k")->toDouble(), 2.5);
    EXPECT_EQ(warnings.messages(), QStringList("Error reading unreadable property"));

    call(castObject, {buttonValue, text("Window")});
    EXPECT_EQ(resultObject(), button);
    call(castObject, {object(window), text("Button")});
    EXPECT_EQ(context.result->typeName(), "null");
    call(objectConvertTo, {buttonValue, text("Window")});
    EXPECT_EQ(resultObject(), button);
    call(objectQueryInterface, {buttonValue, text("Window")});
    EXPECT_EQ(resultObject(), button);
    call(objectCreateNull, {new FakeArgument(static_cast<const Class*>(buttonClass))});
    EXPECT_TRUE(resultObject()->isNull());
    EXPECT_EQ(resultObject()->className(), "Button");

    EXPECT_EQ(call(objectGlobalBounds, {buttonValue}), "it is not there");
    runner.bounds = createRemoteScreenRectangle({1, 2, 3, 4});
    call(objectGlobalBounds, {buttonValue});
    EXPECT_EQ(unwrapRemoteScreenRectangleAsQRect(resultObject()), QRect(1, 2, 3, 4));
}

TEST_F(ObjectFunctions, FailWithoutAnApplication) {
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(call(objectTopLevelObjects), Inspector::noApplicationText);
    EXPECT_EQ(call(findObject, {buttonName}), Inspector::noApplicationText);
}

TEST_F(ObjectFunctions, WaitForConditions) {
    // The condition is asked until it is true, and the runner works meanwhile.
    int rounds = 0;
    context.conditionEvaluator = [&](const QString& expression, QString*) {
        EXPECT_EQ(expression, "ready");
        return ++rounds == 3;
    };
    EXPECT_EQ(call(waitFor, {text("ready")}), "true");
    EXPECT_EQ(rounds, 3);
    EXPECT_EQ(runner.processedEvents, 2);

    // The time ends it; only a true bool is true.
    rounds = 0;
    const auto textual = callable([&](const auto&, QString*) {
        ++rounds;
        return text("true");
    });
    EXPECT_EQ(call(waitFor, {textual, integer(150)}), "false");
    EXPECT_EQ(rounds, 3);
    rounds = 0;
    EXPECT_EQ(call(waitFor, {textual, integer(0)}), "false");
    EXPECT_LE(rounds, 2);

    // An error ends it.
    EXPECT_EQ(call(waitFor, {callable([](const auto&, QString* error) {
                       *error = "broken";
                       return SharedPtr<ScriptArgument>();
                   })}),
              "broken");
    EXPECT_FALSE(context.result);

    const std::pair<qint64, unsigned long> pauses[] = {{0, 100000},    {1000, 100000},
                                                       {1001, 333000}, {2000, 333000},
                                                       {2001, 666000}, {3001, 1000000}};
    for (const auto& [elapsed, pause] : pauses)
        EXPECT_EQ(waitForPause(elapsed), pause) << elapsed;
}

TEST_F(ObjectFunctions, Highlight) {
    runner.found = button;
    call(plain<highlightObject>, {buttonValue});
    call(plain<highlightObject>, {buttonValue, integer(0), boolean(false)});
    call(plain<highlightObject>, {buttonName, integer(1500), boolean(true)});
    EXPECT_EQ(runner.calls,
              (QStringList{"highlight ok for 3000", "highlight ok for -1",
                           QString("wait until exists {name='ok' type='Button'} for %1 ms")
                               .arg(TestSettingsType::s_waitForObjectTimeout),
                           "highlight ok for 1500", "snooze 1.5", "stop highlight"}));
    runner.highlightError = "it can't be shown";
    EXPECT_EQ(call(plain<highlightObject>, {buttonValue}), "it can't be shown");
    runner.found.reset();
    EXPECT_EQ(call(plain<highlightObject>, {buttonName}), "it is not there");
    EXPECT_EQ(context.errorType(), ScriptContext::GeneralError);
}

TEST_F(ObjectFunctions, SaveSnapshots) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("tree.xml");
    EXPECT_NE(call(plain<saveObjectSnapshot>, {missingName, text(path)}), "no result");
    EXPECT_FALSE(QFile::exists(path));
    model.snapshotBytes = QByteArray("");
    EXPECT_EQ(call(plain<saveObjectSnapshot>, {buttonName, text(path)}), "no result");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("<ui version=\"1.0\">"));
    EXPECT_TRUE(call(plain<saveObjectSnapshot>, {buttonValue, text(folder.filePath("no/t.xml"))})
                    .startsWith("Failed to open file "));
}

TEST_F(ObjectFunctions, WithoutARunner) {
    Interpreter::setSelf(nullptr);
    const std::pair<ScriptContext::Function, const char*> rows[] = {
        {plain<snooze>, "snooze"}, {waitForObject, "waitForObject"}};
    for (const auto& [function, name] : rows) {
        WarningRecorder warnings;
        const auto argument = function == waitForObject ? buttonName : integer(1);
        EXPECT_EQ(call(function, {argument}), "no result");
        EXPECT_EQ(warnings.messages(),
                  QStringList(QString("Without Runner interface no %1()").arg(name)));
    }
}

}  // namespace
}  // namespace Tamrix
