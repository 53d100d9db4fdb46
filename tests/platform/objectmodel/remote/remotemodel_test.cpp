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
            const QString wanted = criteria.size() == 1 ? criteria[0].text : QString();
            if (request.handle == 7 || wanted == "QPushButton" || wanted == "Shared")
                result.object = button;
            else if (wanted == "Other")
                result.object = {8, "QPushButton", "other"};
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
            if (request.item.text == "there")
                result.object = button;
            else if (request.item.text == "reason")
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
        case MessageType::Act: {
            Wire::Act act;
            decode(frame.body, &act);
            const auto& criteria = act.target.query.criteria;
            if (act.target.handle == 0 && criteria[0].text == "none")
                agent.miss(frame, {{}, {}, {{"QLabel", 9, {{"text", "none", "some"}}}}});
            else if (act.target.handle == 0 && criteria[0].text == "hidden")
                agent.miss(frame, {button, "it is not visible", {}});
            else if (act.method == "fill")
                agent.fail(frame, FailureKind::NotFound, "it has no field");
            else
                agent.reply(frame,
                            encode(Wire::ActResult{
                                button, QString("%1|%2|%3|%4")
                                            .arg(act.method, act.arguments.value(0).toString())
                                            .arg(act.target.timeout)
                                            .arg(act.timeout)}));
            return;
        }
        case MessageType::Highlight:
            agent.miss(frame, {button, "it is not visible", {}});
            return;
        case MessageType::ListNames:
            agent.reply(frame, encode(Wire::TextList{QStringList{"{type='Shared'}", "{type='None'}",
                                                                 "{type='Other'}",
                                                                 "{type='QPushButton'}"}}));
            return;
        case MessageType::FindMatches: {
            Wire::Query query;
            decode(frame.body, &query);
            Wire::MatchList list;
            list.count = query.criteria[0].text == "Shared" ? 2 : 1;
            list.matches = {{button, QRect(1, 2, 3, 4), true}};
            agent.reply(frame, encode(list));
            return;
        }
        case MessageType::ObjectAt:
            agent.reply(frame, encode(button));
            return;
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

    EXPECT_EQ(found.error().nearMisses.size(), 3);

    Outcome<TargetAnswer> answer = application.model->lookUp(Target::ofName(name), -1);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->missText, "No object matches {text='Save' type~='^QPush'}");
    answer = application.model->lookUp(
        Target::ofObject(application.find(), Wire::Wanted::Readiness), -1);
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
        Target target = Target::ofObject(view, Wire::Wanted::Readiness);
        target.item = Wire::ItemAddress{row.text, 1, 2};
        const Outcome<TargetAnswer> answer = application.model->lookUp(target, -1);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->missText, row.missText);
        EXPECT_EQ(answer->obstacle, "");
        EXPECT_EQ(bool(answer->object), answer->missText.isEmpty());
    }
}

TEST(RemoteModel, ActsOnWhatANameFinds) {
    Application application;
    const SharedPtr<Object> object = application.find();
    Target target = Target::ofName(ObjectName(QString("{type='QPushButton'}")));
    target.timeout = 20;
    Outcome<TargetAnswer> answer = application.model->act("click", target, {value("left")}, 50000);
    ASSERT_TRUE(answer && answer->result) << failureText(answer).toStdString();
    EXPECT_EQ((*answer->result)->toVariant(), "click|left|20|50000");
    EXPECT_EQ(answer->object->handle(), object->handle());
    // That the function fails is something else than that there is nothing to call it with.
    answer = application.model->act("fill", target, {}, 50000);
    ASSERT_TRUE(answer);
    EXPECT_TRUE(answer->isReady);
    EXPECT_EQ(failureText(answer->result), "it has no field");

    const struct {
        const char* name;
        QString missText;
        QString obstacle;
        QString failure;
    } rows[] = {
        {"{text='none'}",
         "No object matches {text='none'}. Nearest: QLabel: text is 'some', wanted 'none'", "",
         "No object matches {text='none'}. Nearest: QLabel: text is 'some', wanted 'none'"},
        {"{text='hidden'}", "", "it is not visible",
         "QPushButton 'ok' is not ready: it is not visible"},
    };
    for (const auto& row : rows) {
        target.name = ObjectName(QString(row.name));
        answer = application.model->act("click", target, {}, 50000);
        ASSERT_TRUE(answer);
        EXPECT_FALSE(answer->isReady);
        EXPECT_EQ(answer->missText, row.missText);
        EXPECT_EQ(answer->obstacle, row.obstacle);
        EXPECT_EQ(missFailure(*answer).value().text, row.failure);
    }
    EXPECT_EQ(failureText(application.model->highlight(Target::ofObject(object), 5)),
              "QPushButton 'ok' is not ready: it is not visible");
}

TEST(RemoteModel, NamesAreThoseThatTheLookUpFinds) {
    Application application;
    const SharedPtr<Object> object = application.find();
    const auto names = application.model->namesOf(object);
    ASSERT_TRUE(names) << failureText(names).toStdString();
    QStringList texts;
    for (const CheckedName& each : *names)
        texts.append(QString("%1 %2").arg(each.name).arg(each.count));
    // The one that is shared goes last; one that finds nothing or another object is none.
    EXPECT_EQ(texts, (QStringList{"{type='QPushButton'} 1", "{type='Shared'} 2"}));
    EXPECT_EQ((*application.model->objectAt({1, 2}))->handle(), object->handle());
    const auto misses = application.model->nearMissesOf(ObjectName(QString("{text='Save'}")));
    ASSERT_TRUE(misses);
    EXPECT_EQ(misses->first().handle, 8U);
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
