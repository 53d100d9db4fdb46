#include "platform/objectmodel/remote/remotemodel.h"

#include <gtest/gtest.h>

#include <QPoint>
#include <optional>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/remoteobject.h"
#include "platform/objectmodel/valueobject.h"
#include "support/failuretext.h"
#include "support/fakeagent.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::failureText;
using Test::FakeAgent;
using Wire::decode;
using Wire::encode;
using Wire::Frame;
using Wire::MessageType;

const Wire::ObjectInfo button{7, "QPushButton", "ok"};

/// An application with one button; asked for anything else, it tells what it was asked.
void answer(FakeAgent& agent, const Frame& frame) {
    switch (frame.type) {
        case MessageType::LookUp: {
            Wire::LookUp request;
            decode(frame.body, &request);
            Wire::LookUpResult result;
            const auto& criteria = request.query.criteria;
            if (request.handle == 7 || (criteria.size() == 1 && criteria[0].text == "QPushButton"))
                result.object = button;
            else if (request.wantNearMisses)
                result.nearMisses = {{"QPushButton 'Save as'",
                                      8,
                                      {{"text", "Save", "Save as"}, {"enabled", "true", "false"}}},
                                     {"QLabel", 9, {{"text", "Save", QString()}}},
                                     {QString(), 0, {{"occurrence", "3", "2"}}}};
            result.obstacle = "it is disabled";
            agent.reply(frame, encode(result));
            return;
        }
        case MessageType::FindItem: {
            Wire::FindItem request;
            decode(frame.body, &request);
            Wire::LookUpResult result;
            if (request.text == "there")
                result.object = button;
            else if (request.text == "reason")
                result.obstacle = "the list has 3 items";
            agent.reply(frame, encode(result));
            return;
        }
        case MessageType::DescribeClass: {
            Wire::Text name;
            decode(frame.body, &name);
            Wire::ClassInfo info;
            if (name.text == "QPushButton" || name.text == "Global") {
                info.name = name.text;
                info.superClasses = QStringList{"QAbstractButton", "QWidget"};
                info.properties = {{"text", "QString", true}, {"down", "bool", false}};
                info.methods = {{"click", "void", {"int"}}};
            }
            agent.reply(frame, encode(info));
            return;
        }
        case MessageType::Children:
            agent.fail(frame, FailureKind::Gone, "QPushButton 'ok' is gone");
            return;
        case MessageType::Parent:
            agent.reply(frame, encode(Wire::ObjectInfo()));
            return;
        case MessageType::ReadProperty: {
            Wire::PropertyAccess access;
            decode(frame.body, &access);
            Wire::Value value;
            if (access.name == "buddy")
                value.value = QVariant::fromValue(button);
            else if (access.name == "noBuddy")
                value.value = QVariant::fromValue(Wire::ObjectInfo{0, "QPushButton", {}});
            else
                value.value = QVariantList{QPoint(1, 2), 3, QVariant::fromValue(button)};
            agent.reply(frame, encode(value));
            return;
        }
        case MessageType::ReadProperties:
            agent.reply(
                frame,
                encode(Wire::Value{QVariantMap{{"aDynamic", 1}, {"down", true}, {"text", "t"}}}));
            return;
        case MessageType::Invoke: {
            Wire::Invoke call;
            decode(frame.body, &call);
            QStringList seen{QString::number(call.handle), call.method,
                             QString::number(call.timeout)};
            for (const QVariant& argument : call.arguments) {
                seen << (argument.canConvert<Wire::ObjectInfo>()
                             ? QString::number(argument.value<Wire::ObjectInfo>().handle)
                             : argument.toString());
            }
            agent.reply(frame,
                        encode(Wire::Value{call.method == "nothing" ? QVariant()
                                                                    : QVariant(seen.join('|'))}));
            return;
        }
        default:
            agent.reply(frame);
    }
}

/// A connection with a model of its own.
struct Application {
    Application() : agent(FakeAgent::serving(answer)) {
        connection = std::make_shared<AgentConnection>(agent.runnerDescriptor(), FakeAgent::token);
        EXPECT_TRUE(connection->waitForHello(20000));
        model.emplace(connection);
        model->setReadyTimeout(1234);
    }
    SharedPtr<Object> find() {
        return model->findObject(ObjectName(QString("{type='QPushButton'}"))).value_or(nullptr);
    }

    FakeAgent agent;
    std::shared_ptr<AgentConnection> connection;
    std::optional<RemoteModel> model;
};

SharedPtr<Object> value(const QVariant& variant) {
    return new ValueObject(variant);
}

QString lastError() {
    return Inspector::self()->lastError();
}

TEST(RemoteModel, TellsWhatDifferedWhenNothingMatches) {
    Application application;
    const ObjectName name(QString("{text='Save' type~='^QPush'}"));
    const Outcome<SharedPtr<Object>> found = application.model->findObject(name);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().kind, FailureKind::NotFound);
    EXPECT_EQ(
        found.error().text,
        "No object matches {text='Save' type~='^QPush'}. Nearest:\n"
        "  QPushButton 'Save as': text is 'Save as', wanted 'Save'; enabled is 'false', wanted "
        "'true'\n"
        "  QLabel: it has no text, wanted 'Save'\n"
        "  2 objects match, wanted occurrence 3");

    Outcome<LookUpAnswer> answer = application.model->lookUp(name, Wire::Wanted::Readiness, false);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->missText, "No object matches {text='Save' type~='^QPush'}");
    answer = application.model->lookUp(application.find(), Wire::Wanted::Readiness);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->obstacle, "it is disabled");

    // Faults of the name are found before anything is sent.
    const struct {
        const char* name;
        const char* error;
    } rows[] = {
        {"{in={occurrence='x' type='A'}}", "The occurrence in a name is a number from 1, not 'x'"},
        {"{text*='[a'}",
         "The property 'text' of the name {text*='[a'}: the wildcard '[a' has a '[' without ']' at "
         "character 1"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(failureText(application.model->findObject(ObjectName(QString(row.name)))),
                  row.error);
    }
}

TEST(RemoteModel, FindsItemsOrTellsWhyNot) {
    Application application;
    const struct {
        QString text;
        const char* missText;
    } rows[] = {
        {"there", ""},
        {"reason", "the list has 3 items"},
        {"none", "There is no item 'none'"},
        {QString(), "There is no item at row 1, column 2"},
    };
    const SharedPtr<Object> view = application.find();
    for (const auto& row : rows) {
        const Outcome<LookUpAnswer> answer =
            application.model->findItem(view, row.text, 1, 2, true);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->missText, row.missText);
        EXPECT_EQ(answer->obstacle, "");
        EXPECT_EQ(bool(answer->object), answer->missText.isEmpty());
    }
}

TEST(RemoteModel, ObjectsKnowTheirApplication) {
    Application one;
    Application other;
    const SharedPtr<Object> object = one.find();
    const SharedPtr<Object> foreign = other.find();
    ASSERT_TRUE(object && foreign);
    EXPECT_NE(object->handle(), foreign->handle());
    EXPECT_EQ(object->handle(), one.find()->handle());
    EXPECT_EQ(static_cast<RemoteObject&>(*object).remoteId(), 7);
    EXPECT_EQ(object->objectClass(), foreign->objectClass()) << "equal classes are one";
    EXPECT_EQ(one.model->classByName("QNothing").value(), nullptr);
    EXPECT_TRUE(object->isA(object->objectClass()));
    EXPECT_TRUE(object->queryInterface("QWidget") == object);

    EXPECT_EQ(object->parent(), nullptr);
    EXPECT_TRUE(object->children().empty());
    EXPECT_EQ(lastError(), "QPushButton 'ok' is gone");

    const Method click("click", {});
    EXPECT_EQ(click.invoke(object, {value(3), object, nullptr}).value()->toVariant(),
              "7|click|1234|3|7|");
    EXPECT_EQ(failureText(click.invoke(object, {foreign})),
              "The object QPushButton 'ok' belongs to another application or to a "
              "connection that has ended");
    EXPECT_EQ(one.model->invokeGlobal("nothing", {}).value()->className(), "void");
    EXPECT_EQ(failureText(one.model->construct(object->objectClass(), {})),
              "The application can't make objects of class 'QPushButton'");

    // Objects outlive the model, and say what happened.
    one.model.reset();
    one.connection->close("it was detached");
    EXPECT_EQ(object->objectName(), "ok");
    EXPECT_EQ(object->realName(), "");
    EXPECT_EQ(lastError(), "The connection to the application has ended: it was detached");
}

TEST(RemoteModel, ValuesComeBackAsObjects) {
    Application application;
    const SharedPtr<Object> object = application.find();
    EXPECT_EQ(Property("buddy").get(object)->handle(), object->handle());
    const SharedPtr<Object> none = Property("noBuddy").get(object);
    EXPECT_TRUE(none->isNull());
    EXPECT_EQ(none->objectClass(), object->objectClass());

    const QVariantList list = Property("list").get(object)->toVariant().toList();
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list[0], QPoint(1, 2));
    EXPECT_EQ(list[1].userType(), static_cast<int>(QMetaType::Int));
    EXPECT_EQ(list[2].value<SharedPtr<Object>>()->handle(), object->handle());

    QStringList names;
    const auto properties = object->readProperties();
    ASSERT_TRUE(properties);
    for (const auto& [name, each] : *properties)
        names += name + '=' + each->toVariant().toString();
    EXPECT_EQ(names, (QStringList{"text=t", "down=true", "aDynamic=1"}));
}

}  // namespace
}  // namespace Tamrix
