#include "dap/program/debuggee.h"

#include <gtest/gtest.h>

#include <QThread>
#include <QUrl>
#include <algorithm>
#include <csignal>
#include <utility>

#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

using std::chrono::milliseconds;

/// Stands still, and evaluates code without an end until it is told to.
class EndlessProgram : public Program {
public:
    std::vector<Piece> receive() override { return std::exchange(m_pieces, {}); }
    void write(const QByteArray& bytes) override {
        if (bytes == "print evaluation\n")
            print("@evaluation failed");
    }
    bool hasTakenInput() override { return ++asked > 3; }
    void signal(int number) override {
        signalNumbers.append(number);
        print("eval" + QUrl::toPercentEncoding("ended"));
    }
    std::optional<int> exitCode() override { return std::nullopt; }
    void watch(std::vector<pollfd>*) const override {}

    void print(const QByteArray& line) { m_pieces.push_back({"TDBG:" + line + '\n', false}); }

    int asked = 0;
    QList<int> signalNumbers;

private:
    std::vector<Piece> m_pieces;
};

struct EndlessCode {
    EndlessCode() { program->print("@line 3, column -1, /suite/case/test.py:"); }

    EndlessProgram* program = new EndlessProgram;
    QList<int> waits;
    bool isEndWanted = false;
    Debuggee debuggee{std::unique_ptr<Program>(program),
                      {[this](int milliseconds) {
                           waits.append(milliseconds);
                           // Nothing else comes: whoever waits for ever is told to end.
                           isEndWanted = isEndWanted || milliseconds < 0;
                           QThread::msleep(static_cast<unsigned long>(std::max(milliseconds, 0)));
                           return waits.size() < 1000;
                       },
                       [this] { return isEndWanted; }, [](const QString&, Debuggee::Stream) {},
                       [](const Notice&) {}}};
};

TEST(Debuggee, CodeIsEndedOnceItsTimeIsOver) {
    EndlessCode code;
    code.debuggee.receive();
    const Outcome<QString> result = code.debuggee.evaluate("1 while 1", milliseconds(20));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().text, "ended");
    EXPECT_EQ(code.program->signalNumbers, QList<int>{SIGINT});
    // Not before the program knows of the code.
    EXPECT_GT(code.program->asked, 3);
    // And only its answer is waited for without a limit.
    EXPECT_EQ(code.waits.indexOf(-1), code.waits.size() - 1);
}

TEST(Debuggee, CodeWithoutALimitIsEndedWhenSomebodyWantsIt) {
    EndlessCode code;
    code.debuggee.receive();
    EXPECT_FALSE(code.debuggee.evaluate("1 while 1", std::nullopt));
    EXPECT_EQ(code.program->signalNumbers, QList<int>{SIGINT});
    // Until then it waits for what comes, and then for the answer.
    EXPECT_EQ(code.waits.count(-1), 2);
}

}  // namespace
}  // namespace Tamrix::Dap
