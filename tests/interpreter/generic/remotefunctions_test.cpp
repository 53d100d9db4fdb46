#include "interpreter/generic/remotefunctions.h"

#include "interpreter/generic/apitest.h"
#include "interpreter/generic/remotearguments.h"

namespace Tamrix {
namespace {

using namespace Test;

/// Notes what it is asked, and answers that, a given value, or a failure.
class NotingRunner : public FakeRunner {
public:
    QString failure;
    QStringList calls;
    QVariant property;
    QMap<QString, QVariant> answer;

    int connectToRemoteSystem(const QString& host, int port, QString* error) override {
        return note(QStringLiteral("connect %1:%2").arg(host, QString::number(port)), error, 7);
    }
    void closeRemoteSystemConnection(int handle, QString* error) override {
        note(QStringLiteral("close %1").arg(handle), error, 0);
    }
    QString getOSName(int, QString* error) override { return note("os", error, "Linux"); }
    bool remoteCreatePath(int, const QString& path, bool recursive, QString* error) override {
        return note(QStringLiteral("create %1 %2").arg(path).arg(recursive), error, true);
    }
    bool remoteRenamePath(int, const QString& from, const QString& to, QString* error) override {
        return note(from + " to " + to, error, true);
    }
    QVariant getRemotePathProperty(int, const QString&, const QString&, QString* error) override {
        return note("property", error, property);
    }
    QMap<QString, QVariant> executeCommand(int, const QList<QVariant>& command,
                                           const QString& directory,
                                           const QMap<QString, QVariant>& environment,
                                           bool keepLineEnding, bool clearEnvironment, int timeout,
                                           const QString& encoding, QString* error) override {
        QStringList words;
        for (const QVariant& word : command)
            words.append(QLatin1String(word.typeName()) + '=' + word.toString());
        for (auto variable = environment.cbegin(); variable != environment.cend(); ++variable)
            words.append(variable.key() + '=' + variable.value().toString());
        return note(QStringLiteral("%1 in %2 %3 %4 %5 %6")
                        .arg(words.join(' '), directory)
                        .arg(keepLineEnding)
                        .arg(clearEnvironment)
                        .arg(timeout)
                        .arg(encoding),
                    error, answer);
    }

private:
    template <typename T>
    T note(const QString& call, QString* error, T value) {
        calls.append(call);
        *error = failure;
        return failure.isEmpty() ? value : T();
    }
};

class RemoteFunctions : public ApiTest {
protected:
    NotingRunner remote;
    FakeInterpreter remoteInterpreter{&remote, Interpreter::Tcl};
};

TEST_F(RemoteFunctions, ConnectsToTheDefaultOrAHost) {
    EXPECT_EQ(call(RemoteSystemApi::connectToRemoteSystem), "7");
    EXPECT_EQ(call(RemoteSystemApi::connectToRemoteSystem, {text("lab"), integer(22)}), "7");
    EXPECT_EQ(remote.calls, (QStringList{"connect :-1", "connect lab:22"}));
    remote.failure = "why";
    EXPECT_EQ(call(RemoteSystemApi::connectToRemoteSystem),
              "Failed to connect to default tamrix server system, received error: why");
    EXPECT_EQ(call(RemoteSystemApi::connectToRemoteSystem, {text("lab"), integer(22)}),
              "Failed to connect to remote system lab:22, received error: why");
    EXPECT_EQ(call(RemoteSystemApi::closeRemoteSystemConnection, {integer(0)}),
              "Failed to close connection to remote system by handle 0, received error: why");
}

TEST_F(RemoteFunctions, RefusesWrongArguments) {
    const SharedPtr<ScriptArgument> one = integer(1);
    const SharedPtr<ScriptArgument> path = text("/a");
    const SharedPtr<ScriptArgument> words = list({text("a")});
    const SharedPtr<ScriptArgument> none = map({});
    expectRefusals(
        {{RemoteSystemApi::connectToRemoteSystem,
          {path},
          "Incorrect number of arguments, please call as _tamrix_connect_to_remote_system() or "
          "_tamrix_connect_to_remote_system(host, port)."},
         {RemoteSystemApi::connectToRemoteSystem,
          {one, one},
          "remote system host needs to be specified as string."},
         {RemoteSystemApi::connectToRemoteSystem,
          {path, path},
          "remote system port needs to be specified as integral number."},
         {RemoteSystemApi::closeRemoteSystemConnection,
          {path},
          "remote system connection handle needs to be specified as integral number."},
         {RemoteSystemApi::remotePathExists,
          {path, path},
          "remote system handle needs to be specified as integral number."},
         {RemoteSystemApi::remotePathExists,
          {one, one},
          "remote path needs to be specified as string."},
         {RemoteSystemApi::remoteRenamePath,
          {one, path, one},
          "new remote path needs to be specified as string."},
         {RemoteSystemApi::remoteCreateFile,
          {one, path},
          "Incorrect number of arguments, please call as _tamrix_remote_create_file ( handle, "
          "remotePath, content, enconding )."},
         {RemoteSystemApi::remoteDownloadFile,
          {one},
          "Incorrect number of arguments, please call as _tamrix_remote_upload_file( handle, "
          "remotePath, localPath )."},
         {RemoteSystemApi::executeCommand,
          {one, path, path, none, none},
          "command variable needs to be specified as list."},
         {RemoteSystemApi::executeCommand,
          {one, words, path, words, none},
          "environment variable needs to be specified as map."},
         {RemoteSystemApi::executeCommand,
          {one, list({none}), path, none, none},
          "Failed to execute command. Wrong command parameter: Unknown type in parameter"},
         {RemoteSystemApi::executeCommand,
          {one, words, path, map({{"A", words}}), none},
          "Failed to execute command. Wrong env parameter: Unknown type in parameter"},
         {RemoteSystemApi::executeCommand,
          {one, words, path, none, map({{"timeout", none}})},
          "Failed to execute command. Wrong options parameter: Unknown type in parameter"}});
    EXPECT_EQ(remote.calls, QStringList());
}

TEST_F(RemoteFunctions, FailuresTellPathAndReason) {
    remote.failure = "%1 is gone";
    EXPECT_EQ(call(RemoteSystemApi::remoteRenamePath, {integer(1), text("/%2"), text("/b")}),
              "Failed to rename old path '/%2' to new path '/b' on remote system: %1 is gone");
    EXPECT_EQ(call(RemoteSystemApi::getOSName, {integer(1)}),
              "Failed to retrieve OS name from remote system: %1 is gone");
}

TEST_F(RemoteFunctions, TheFlagOfRecursionMayBeAText) {
    const auto flag = [&](const SharedPtr<ScriptArgument>& argument) {
        call(RemoteSystemApi::remoteCreatePath, {integer(1), text("p"), argument});
        return remote.calls.takeLast() == "create p 1";
    };
    for (const char* yes : {"True", "t", "1", "Tomorrow"})
        EXPECT_TRUE(flag(text(yes))) << yes;
    for (const char* no : {"yes", "", "false", " 1", "0"})
        EXPECT_FALSE(flag(text(no))) << no;
    EXPECT_TRUE(flag(boolean(true)));
    EXPECT_FALSE(flag(boolean(false)));
    call(RemoteSystemApi::remoteCreatePath, {integer(1), text("p")});
    EXPECT_EQ(remote.calls.takeLast(), "create p 0");
}

TEST_F(RemoteFunctions, PropertiesByTheirTypes) {
    const auto property = [&](const char* name, const QVariant& value) {
        remote.property = value;
        return call(RemoteSystemApi::getRemotePathProperty, {integer(1), text("p"), text(name)});
    };
    property("size", QVariant(quint64{1} << 40));
    EXPECT_EQ(context.result->toDouble(), 1099511627776.0);
    EXPECT_FALSE(context.result->isInteger());
    EXPECT_EQ(property("isFile", true), context.createBool(true)->toString());
    EXPECT_EQ(property("ownerId", 5), "5");
    EXPECT_EQ(property("owner", "me"), "me");
    EXPECT_EQ(property("lastModified", QDateTime::fromSecsSinceEpoch(0)),
              context.createDateTime(QDateTime::fromSecsSinceEpoch(0))->toString());
    EXPECT_EQ(property("x", QByteArray("b")),
              "Failed to retrieve property. Return type not supported.");
}

TEST_F(RemoteFunctions, CommandsWithTheirOptions) {
    const SharedPtr<ScriptArgument> words =
        list({text("a b"), integer(1), boolean(true), number(0.5)});
    const auto run = [&](const ScriptArgument::Map& options) {
        const QString error =
            call(RemoteSystemApi::executeCommand,
                 {integer(1), words, text("/d"), map({{"A", integer(1)}}), map(options)});
        return remote.calls.isEmpty() ? error : remote.calls.takeLast();
    };
    const QString start = "QString=a b qlonglong=1 bool=true double=0.5 A=1 in /d ";
    EXPECT_EQ(run({}), start + "0 0 30 UTF-8");
    EXPECT_EQ(run({{"timeout", integer(2)},
                   {"clearenv", boolean(true)},
                   {"keepLineEnding", boolean(true)},
                   {"encoding", text("latin1")}}),
              start + "1 1 2 latin1");
    // A text can be converted to a number, whatever it says.
    EXPECT_EQ(run({{"timeout", text("abc")}}), start + "0 0 0 UTF-8");
    remote.answer = {{"exitcode", 0}, {"stdout", "out"}};
    run({});
    EXPECT_EQ(context.result->toMap().at("stdout")->toString(), "out");
}

TEST(RemoteOptions, ValuesThatCannotBeConvertedAreTold) {
    QMap<QString, QVariant> options{{"timeout", QVariant(QStringList{"a", "b"})}};
    QString error;
    executeCommandCheckOptionsMapField("timeout", QVariant::Int, 30, &options, &error);
    EXPECT_EQ(error, "timeout option has wrong data type QStringList");
}

}  // namespace
}  // namespace Tamrix
