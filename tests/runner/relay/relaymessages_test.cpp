#include "runner/relay/relaymessages.h"

#include <gtest/gtest.h>

#include "runner/relay/remoteprogram.h"
#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix::Relay {
namespace {

using namespace Test;

TEST(RelayMessages, FramesPassAStreamInAnyPieces) {
    const QByteArray stream =
        encode(Frame{Type::Data, 7, "abc"}) + encode(Frame{Type::Close, 8, {}});
    Inbox inbox;
    QStringList seen;
    for (const char byte : stream) {
        inbox.append(&byte, 1);
        const Outcome<std::optional<Frame>> frame = inbox.take();
        ASSERT_TRUE(frame);
        if (*frame)
            seen.append(QString("%1 %2 %3")
                            .arg(static_cast<int>((*frame)->type))
                            .arg((*frame)->link)
                            .arg(QString::fromLatin1((*frame)->body)));
    }
    EXPECT_EQ(seen, (QStringList{"5 7 abc", "6 8 "}));
}

TEST(RelayMessages, RefusesWhatCanBeNoFrame) {
    for (const char* hex : {"00100001 05 00000000", "ffffffff 05 00000000", "00000000 00 00000000",
                            "00000000 0c 00000000"}) {
        Inbox inbox;
        const QByteArray bytes = QByteArray::fromHex(hex);
        inbox.append(bytes.constData(), bytes.size());
        EXPECT_EQ(errorOf(inbox.take()), "what came is no message of a relay") << hex;
    }
    End end;
    EXPECT_FALSE(decode(QByteArray("\0\0\0\1", 4), &end));
    EXPECT_FALSE(decode(encode(End{1, 2}) + "x", &end));
}

TEST(RelayMessages, WhatIsToBeStartedArrivesAsItIs) {
    RemoteProgram program;
    program.target = {"lab", 2222};
    program.start = {
        {"shop", "a b", "ü"}, "preload", "/work", {{"A", "1\n2"}, {"B", QString()}}, {}};
    RemoteProgram read;
    ASSERT_TRUE(decode(encode(program), &read));
    EXPECT_EQ(read.target.host, "lab");
    EXPECT_EQ(read.target.port, 2222);
    EXPECT_EQ(read.start.words, program.start.words);
    EXPECT_EQ(read.start.hook, "preload");
    EXPECT_EQ(read.start.workingDirectory, "/work");
    EXPECT_EQ(read.start.environment, program.start.environment);
    EXPECT_TRUE(read.start.environment[1].second.isNull());
    EXPECT_FALSE(decode(QByteArray("nonsense"), &read));
}

}  // namespace
}  // namespace Tamrix::Relay
