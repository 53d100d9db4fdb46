// What a coding agent pays for at "tamrixrunner mcp": the tokens of the tools' descriptions, of
// snapshots of programs and of the answers to acts, four characters each; and the time that they
// take.

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace {

constexpr int patience = 60000;
constexpr int charactersOfToken = 4;
const char examples[] = "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/";
const char runner[] = TAMRIX_BENCH_PREFIX "/bin/tamrixrunner";

[[noreturn]] void fail(const QByteArray& text) {
    std::fprintf(stderr, "agents_bench: %s\n", text.constData());
    std::exit(1);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

struct Answer {
    QString text;
    double milliseconds = 0;

    double tokens() const { return static_cast<double>(text.size()) / charactersOfToken; }
};

/// The server, and its one client.
class Agent {
public:
    Agent() {
        m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_server.start(QString::fromLatin1(runner), {"mcp"});
        ask("initialize", {{"protocolVersion", "2025-06-18"}});
    }
    ~Agent() {
        m_server.closeWriteChannel();
        m_server.waitForFinished(patience);
    }
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    QJsonObject ask(const QString& method, const QJsonObject& params) {
        const QJsonObject message = {
            {"jsonrpc", "2.0"}, {"id", ++m_lastId}, {"method", method}, {"params", params}};
        m_server.write(QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n');
        while (!m_server.canReadLine()) {
            if (!m_server.waitForReadyRead(patience))
                fail("no answer to " + method.toUtf8());
        }
        return QJsonDocument::fromJson(m_server.readLine()).object()["result"].toObject();
    }
    Answer call(const QString& tool, const QJsonObject& arguments) {
        QElapsedTimer timer;
        timer.start();
        const QJsonObject result = ask("tools/call", {{"name", tool}, {"arguments", arguments}});
        const double milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
        const QString text = result["content"].toArray().at(0).toObject()["text"].toString();
        if (result["isError"].toBool())
            fail((tool + ": " + text).toUtf8());
        return {text, milliseconds};
    }

private:
    QProcess m_server;
    int m_lastId = 0;
};

/// The ref of the first line of a snapshot that matches behind the ref.
QString refOf(const QString& snapshot, const QString& expression) {
    const QRegularExpressionMatch match =
        QRegularExpression("\\b(e[0-9]+) " + expression).match(snapshot);
    if (!match.hasMatch())
        fail("nothing is like " + expression.toUtf8() + " in\n" + snapshot.toUtf8());
    return match.captured(1);
}

/// One act: the target is what matches in the snapshot that is made before.
struct Act {
    const char* tool;
    const char* target;
    std::vector<std::pair<const char*, QJsonValue>> others = {};
};

struct Session {
    const char* name;
    const char* program;
    std::vector<Act> acts;
};

std::vector<Session> sessions() {
    return {
        {"the gallery, styles",
         "widgets/styles/styles",
         {{"select", "QComboBox ", {{"item", "Windows"}}},
          {"click", "QPushButton \"Toggle"},
          {"check", "QCheckBox \"Tri-state"},
          {"click", "QTabBarItem \"Text Edit"},
          {"drag", "QDial", {{"dx", 20}, {"dy", 20}}},
          {"fill", "QSpinBox", {{"text", "7"}}}}},
        {"a wizard, classwizard",
         "dialogs/classwizard/classwizard",
         {{"click", "\\w+ \"Next >"},
          {"fill", "QLineEdit \"Class name", {{"text", "Gadget"}}},
          {"fill", "QLineEdit \"Base class", {{"text", "QObject"}}},
          {"check", "QCheckBox \"Generate Q_OBJECT"},
          {"click", "\\w+ \"Next >"},
          {"click", "\\w+ \"Next >"}}},
        {"an editor, application",
         "mainwindows/application/application",
         {{"fill", "QPlainTextEdit", {{"text", "some text"}}},
          {"press", "QPlainTextEdit", {{"keys", "Ctrl+A"}}},
          {"select", "QMenuBar", {{"item", "Help.About"}}},
          {"click", "QPushButton \"OK"},
          {"click", "QToolButton \"Open"},
          {"click", "QPushButton \"Cancel"}}},
        {"a calculator",
         "widgets/calculator/calculator",
         {{"click", "Button \"7"}, {"click", "Button \"Sqrt"}, {"click", "Button \"Clear All"}}},
        {"a table, spreadsheet",
         "itemviews/spreadsheet/spreadsheet",
         {{"click", "QTableViewItem \"Hotel"},
          {"press", "QTableViewItem \"Hotel", {{"keys", "Down"}}}}},
    };
}

/// Notes what each act costs.
void measure(const Session& session, std::vector<Answer>* acts) {
    Agent agent;
    agent.call("start", {{"program", examples + QString::fromLatin1(session.program)}});
    const Answer first = agent.call("snapshot", {});
    std::printf("%-28s %6.0f tokens  %6.0f ms\n", session.name, first.tokens(), first.milliseconds);
    for (const Act& act : session.acts) {
        QJsonObject arguments{{"target", refOf(agent.call("snapshot", {}).text, act.target)}};
        for (const auto& [name, value] : act.others)
            arguments.insert(QLatin1String(name), value);
        acts->push_back(agent.call(act.tool, arguments));
    }
}

}  // namespace

int main() {
    {
        Agent agent;
        const QJsonArray tools = agent.ask("tools/list", {})["tools"].toArray();
        const QByteArray text = QJsonDocument(tools).toJson(QJsonDocument::Compact);
        std::printf("%-28s %6d tokens (aim: at most 1000)\n", "the descriptions of all tools",
                    static_cast<int>(text.size()) / charactersOfToken);
    }
    std::printf("snapshots (aim for the gallery: at most 700 tokens)\n");
    std::vector<Answer> acts;
    for (const Session& session : sessions())
        measure(session, &acts);
    std::vector<double> tokens;
    std::vector<double> times;
    tokens.reserve(acts.size());
    times.reserve(acts.size());
    for (const Answer& answer : acts) {
        tokens.push_back(answer.tokens());
        times.push_back(answer.milliseconds);
    }
    std::printf("%-28s %6.0f tokens  %6.0f ms (aim: below 150 tokens), the longest %.0f tokens\n",
                "answers to acts, the median", median(tokens), median(times),
                *std::max_element(tokens.begin(), tokens.end()));
    return 0;
}
