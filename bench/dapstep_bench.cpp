// A step over a line of a script: through the debugger's lines, and through the server of the Debug
// Adapter Protocol, which has the same lines below it. The two take turns.

#include <poll.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "dap/program/childprogram.h"
#include "dap/protocol/frames.h"

using namespace Tamrix;

namespace {

constexpr int rounds = 500;
const char runner[] = TAMRIX_BENCH_PREFIX "/bin/tamrixrunner";
const char script[] =
    "def main():\n"
    "    n = 0\n"
    "    while True:\n"
    "        n += 1\n";

[[noreturn]] void giveUp(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

/// A program at the other end of a pipe.
class Dialogue {
public:
    explicit Dialogue(const QStringList& arguments) {
        auto started = Dap::startChildProgram({runner, arguments, {}});
        if (!started)
            giveUp("the program can't be started");
        m_program = std::move(*started);
    }

    void write(const QByteArray& bytes) { m_program->write(bytes); }
    /// Waits for what it writes next.
    QByteArray read() {
        QByteArray output;
        while (output.isEmpty()) {
            std::vector<pollfd> watched;
            m_program->watch(&watched);
            ::poll(watched.data(), watched.size(), -1);
            for (const auto& piece : m_program->receive())
                output += piece.isError ? QByteArray() : piece.bytes;
            if (m_program->exitCode())
                giveUp("the program has ended");
        }
        return output;
    }

private:
    std::unique_ptr<Dap::Program> m_program;
};

/// The lines of the debugger, as a program drives them.
class LineClient {
public:
    explicit LineClient(const QString& suite)
        : m_dialogue({"run", "--debugger", "--quiet", suite}) {
        waitForStop();
    }

    void step() {
        m_dialogue.write("next\n");
        waitForStop();
    }

private:
    void waitForStop() {
        QByteArray output;
        while (!output.contains("TDBG:@line ") || !output.endsWith('\n'))
            output += m_dialogue.read();
    }

    Dialogue m_dialogue;
};

class DapClient {
public:
    DapClient() : m_dialogue({"dap"}) {}

    /// Sends a request and waits for its response.
    QJsonObject request(const char* command, const QJsonObject& arguments = {}) {
        const QJsonObject message{
            {"seq", ++m_seq}, {"type", "request"}, {"command", command}, {"arguments", arguments}};
        m_dialogue.write(Dap::framed(QJsonDocument(message).toJson(QJsonDocument::Compact)));
        const QJsonObject response =
            waitFor([&](const QJsonObject& each) { return each["request_seq"] == m_seq; });
        if (!response["success"].toBool())
            giveUp(qPrintable(response["message"].toString()));
        return response["body"].toObject();
    }
    void waitForStop() {
        waitFor([](const QJsonObject& each) { return each["event"] == "stopped"; });
    }

private:
    QJsonObject waitFor(const std::function<bool(const QJsonObject&)>& isMeant) {
        while (true) {
            while (const auto text = m_frames.take().value()) {
                const QJsonObject message = QJsonDocument::fromJson(*text).object();
                if (isMeant(message))
                    return message;
            }
            m_frames.append(m_dialogue.read());
        }
    }

    Dialogue m_dialogue;
    Dap::FrameReader m_frames;
    int m_seq = 0;
};

/// The median of the times, in milliseconds.
double medianOf(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[rounds / 2];
}

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    QDir(folder.path()).mkpath("suite/a");
    const QString suite = folder.filePath("suite");
    QFile file(folder.filePath("suite/a/test.py"));
    if (!file.open(QIODevice::WriteOnly) || file.write(script) < 0)
        giveUp("the script can't be written");
    file.close();

    LineClient lines(suite);
    DapClient client;
    client.request("initialize");
    client.request("launch", {{"suite", suite}, {"stopOnEntry", true}});
    client.request("configurationDone");
    client.waitForStop();

    struct Row {
        const char* what;
        std::function<void()> step;
        std::vector<double> times;
    };
    const auto dapStep = [&] {
        client.request("next", {{"threadId", 1}});
        client.waitForStop();
    };
    Row rows[] = {
        {"the debugger's lines", [&] { lines.step(); }, {}},
        {"a DAP client", dapStep, {}},
        {"a DAP client that asks for stack and variables",
         [&] {
             dapStep();
             client.request("stackTrace", {{"threadId", 1}});
             const QJsonObject scopes = client.request("scopes", {{"frameId", 1}});
             const QJsonObject scope = scopes["scopes"].toArray().at(0).toObject();
             client.request("variables", {{"variablesReference", scope["variablesReference"]}});
         },
         {}},
    };
    for (int round = 0; round < rounds; ++round) {
        for (Row& row : rows) {
            QElapsedTimer timer;
            timer.start();
            row.step();
            row.times.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
        }
    }
    const double base = medianOf(rows[0].times);
    std::printf("A step over a line, milliseconds, medians of %d:\n", rounds);
    for (const Row& row : rows) {
        const double median = medianOf(row.times);
        std::printf("  %-48s %7.3f  %+.3f\n", row.what, median, median - base);
    }
    std::printf("The aim is at most 5 ms more for a DAP client.\n");
    client.request("disconnect");
    return medianOf(rows[1].times) - base <= 5 ? 0 : 1;
}
