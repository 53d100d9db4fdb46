// Programs that runs attach to, and clients that do what they should not.

#include <poll.h>

#include <QDeadlineTimer>
#include <csignal>

#include "e2e/applicationrun.h"
#include "wire/framechannel.h"

namespace Tamrix {
namespace {

using Test::ApplicationRun;
using Test::RunnerProcess;

class Attachable : public ApplicationRun {
protected:
    Attachable() { prepare(keeper); }
    ~Attachable() override {
        if (keeper.isRunning()) {
            keeper.sendSignal(SIGTERM);
            keeper.finish();
        }
        QDir(runtime.path()).rmdir("tamrix-attachable");
    }

    /// Connects as a run does, once the program is there.
    std::unique_ptr<Wire::FrameChannel> connect() {
        const QDeadlineTimer deadline(100'000);
        while (!deadline.hasExpired()) {
            auto channel = std::make_unique<Wire::FrameChannel>(
                Wire::connectLocalSocket(runtime.filePath("tamrix-attachable/kept.sock"))
                    .value_or(-1));
            while (channel->isOpen() && !deadline.hasExpired()) {
                pollfd waiting{channel->descriptor(), POLLIN, 0};
                ::poll(&waiting, 1, 100);
                channel->receive();
                if (channel->takeFrame()) {
                    channel->send(0, Wire::MessageType::Welcome, {});
                    return channel;
                }
            }
            ::usleep(20000);
        }
        return nullptr;
    }

    RunnerProcess keeper;
};

TEST_F(Attachable, ServesTheNextRunBehindAClientThatFloodsAndReadsNothing) {
    keeper.start({"attachable", "--name", "kept", FAULTY_TARGET});
    const auto flooder = connect();
    ASSERT_TRUE(flooder);
    // Until nothing goes any more for a while.
    const QDeadlineTimer deadline(100'000);
    QDeadlineTimer rest(3000);
    quint32 sequence = 0;
    while (!rest.hasExpired() && !deadline.hasExpired() && flooder->isOpen()) {
        if (!flooder->hasQueued()) {
            rest.setRemainingTime(3000);
            flooder->enqueue(++sequence, Wire::MessageType::DescribeClass,
                             Wire::encode(Wire::Text{"QPushButton"}));
        } else {
            flooder->flush();
        }
    }
    EXPECT_GT(sequence, 100u);
    EXPECT_TRUE(flooder->hasQueued()) << "it got rid of " << sequence << " requests";

    addCase("attach", R"py(
def main():
    end = time.time() + 200
    while True:
        try:
            attachToApplication('kept')
            break
        except RuntimeError as error:
            if time.time() > end:
                raise
            snooze(0.2)
    waitForObject("{text='Crash'}")
)py");
    runner.run({"run", suite.path("suite")});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output() + runner.errors());
}

TEST_F(Attachable, EndsWhenTheAgentIsLost) {
    keeper.run({"attachable", "--name", "kept", FAULTY_TARGET, "leaves"});
    EXPECT_EQ(keeper.exitCode(), 2);
    EXPECT_TRUE(keeper.errors().contains("the agent in 'faulty_target' is lost: "))
        << qPrintable(keeper.errors());
    EXPECT_EQ(leftProcesses(), QStringList());
}

}  // namespace
}  // namespace Tamrix
