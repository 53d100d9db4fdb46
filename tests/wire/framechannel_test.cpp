#include "wire/framechannel.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <thread>

#include "support/printqt.h"

namespace Tamrix::Wire {
namespace {

class FrameChannelTest : public testing::Test {
protected:
    void SetUp() override {
        int ends[2];
        ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
        channel = std::make_unique<FrameChannel>(ends[0]);
        m_other = ends[1];
    }
    void TearDown() override { hangUp(); }

    void write(const QByteArray& bytes) {
        ASSERT_EQ(::write(m_other, bytes.constData(), static_cast<size_t>(bytes.size())),
                  bytes.size());
    }
    void hangUp() {
        if (m_other >= 0)
            ::close(std::exchange(m_other, -1));
    }
    int takeOther() { return std::exchange(m_other, -1); }

    std::unique_ptr<FrameChannel> channel;

private:
    int m_other = -1;
};

TEST_F(FrameChannelTest, FramesComeWholeHoweverTheyAreCut) {
    const QByteArray bytes(
        "\0\0\0\2\0\0\0\7\0\x1e"
        "ab"
        "\0\0\0\0\0\0\0\x8\0\x1f",
        22);
    int frames = 0;
    for (const char each : bytes) {
        write(QByteArray(1, each));
        EXPECT_TRUE(channel->receive());
        while (const auto frame = channel->takeFrame()) {
            EXPECT_EQ(frame->sequence, frames == 0 ? 7u : 8u);
            EXPECT_EQ(frame->type, frames == 0 ? MessageType::Ping : MessageType::Sync);
            EXPECT_EQ(frame->body, frames == 0 ? "ab" : "");
            ++frames;
        }
    }
    EXPECT_EQ(frames, 2);

    // What came before the end can still be taken, a cut frame can't.
    write(bytes.left(15));
    hangUp();
    while (channel->receive())
        continue;
    EXPECT_TRUE(channel->takeFrame());
    EXPECT_FALSE(channel->takeFrame());
    EXPECT_EQ(channel->errorText(), "the other side closed the connection");
    EXPECT_FALSE(channel->send(1, MessageType::Ping, {}));
}

TEST_F(FrameChannelTest, RefusesLongFramesBeforeTheirBodiesCome) {
    channel->setMaximalBodySize(10);
    write(QByteArray("\0\0\0\x0b\0\0\0\0\0\1", 10));
    EXPECT_TRUE(channel->receive());
    EXPECT_FALSE(channel->takeFrame());
    EXPECT_FALSE(channel->isOpen());
    EXPECT_EQ(channel->errorText(), "a message of 11 bytes came, at most 10 are taken");
}

TEST_F(FrameChannelTest, PassesOverAnAnswerThatIsTooLong) {
    channel->setMaximalBodySize(100);
    channel->setLongAnswersFail(true);
    const QByteArray head("\0\0\0\x96\0\0\0\7\0\x0a", 10);
    const QByteArray ping("\0\0\0\0\0\0\0\x8\0\x1e", 10);
    // However the body is cut, what stands behind it is read.
    for (const int first : {0, 1, 149, 150}) {
        write(head + QByteArray(first, 'x'));
        EXPECT_TRUE(channel->receive());
        const auto failure = channel->takeFrame();
        ASSERT_TRUE(failure);
        EXPECT_EQ(failure->sequence, 7u);
        EXPECT_EQ(failure->type, MessageType::Failure);
        EXPECT_FALSE(channel->takeFrame());
        write(QByteArray(150 - first, 'x') + ping);
        EXPECT_TRUE(channel->receive());
        const auto next = channel->takeFrame();
        ASSERT_TRUE(next);
        EXPECT_EQ(next->sequence, 8u);
        EXPECT_FALSE(channel->takeFrame());
    }
    // Only answers have somebody to be told.
    write(QByteArray("\0\0\0\x96\0\0\0\7\0\x14", 10));
    channel->receive();
    EXPECT_FALSE(channel->takeFrame());
    EXPECT_FALSE(channel->isOpen());
}

TEST_F(FrameChannelTest, SendsAFailureInPlaceOfAnAnswerThatIsTooLong) {
    const QByteArray body(static_cast<int>(maximalBodySize) + 1, Qt::Uninitialized);
    EXPECT_TRUE(channel->send(7, MessageType::Reply, body));
    FrameChannel other(takeOther());
    other.receive();
    const auto frame = other.takeFrame();
    ASSERT_TRUE(frame);
    Failure failure;
    EXPECT_EQ(frame->sequence, 7u);
    ASSERT_TRUE(frame->type == MessageType::Failure && decode(frame->body, &failure));
    EXPECT_EQ(failure.text,
              "The application's answer is too long: it has 268435457 bytes of at most 268435456");
}

TEST_F(FrameChannelTest, QueuesWhatThePeerDoesNotTake) {
    const QByteArray body(3'000'000, 'x');
    EXPECT_TRUE(channel->enqueue(1, MessageType::Reply, body));
    EXPECT_TRUE(channel->hasQueued());
    EXPECT_TRUE(channel->enqueue(2, MessageType::Reply, "second"));
    FrameChannel other(takeOther());
    std::vector<Frame> frames;
    while (frames.size() < 2 && channel->flush()) {
        other.receive();
        while (auto frame = other.takeFrame())
            frames.push_back(*frame);
    }
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0].body, body);
    EXPECT_EQ(frames[1].body, "second");
    EXPECT_FALSE(channel->hasQueued());
}

TEST_F(FrameChannelTest, SendsMoreThanTheSocketHolds) {
    const QByteArray body(3'000'000, 'x');
    std::thread reader([&, descriptor = takeOther()] {
        FrameChannel other(descriptor);
        std::optional<Frame> frame;
        while (!(frame = other.takeFrame()) && other.receive())
            ::usleep(100);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->body, body);
    });
    EXPECT_TRUE(channel->send(1, MessageType::Reply, body));
    reader.join();
}

TEST_F(FrameChannelTest, GivesUpOnAPeerThatReadsNothing) {
    EXPECT_FALSE(channel->send(1, MessageType::Reply, QByteArray(3'000'000, 'x'), 50));
    EXPECT_EQ(channel->errorText(), "the other side read nothing for 50 ms");
}

TEST(LocalSocket, IsForThisUserOnly) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("socket");
    const auto errorText = [](const Outcome<int>& outcome) {
        return outcome ? QString("none") : outcome.error().text;
    };
    EXPECT_EQ(errorText(connectLocalSocket(path)),
              QString("no connection to '%1': No such file or directory").arg(path));
    const Outcome<int> listening = listenLocalSocket(path);
    ASSERT_TRUE(listening) << listening.error().text.toStdString();
    struct stat status;
    ASSERT_EQ(::stat(path.toLocal8Bit(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    const Outcome<int> connected = connectLocalSocket(path);
    ASSERT_TRUE(connected);
    ::close(*connected);
    EXPECT_EQ(errorText(listenLocalSocket(path)),
              QString("can't listen at '%1': Address already in use").arg(path));
    ::close(*listening);

    const QString longPath = QString("%2").repeated(100);
    EXPECT_EQ(errorText(connectLocalSocket(longPath)),
              "the path '" + longPath +
                  "' is no path for a local socket: it has 200 bytes of at most 107");
}

}  // namespace
}  // namespace Tamrix::Wire
