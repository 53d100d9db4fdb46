#include "runner/remote/sftpmessages.h"

#include <gtest/gtest.h>

#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix::Sftp {
namespace {

using namespace Test;

QByteArray bytesOf(const char* hex) {
    return QByteArray::fromHex(hex);
}

TEST(SftpMessages, RequestsStandAsTheProtocolWantsThem) {
    EXPECT_EQ(initMessage(), bytesOf("00000005 01 00000003"));
    EXPECT_EQ(Request(Type::Read, 7).text("ab").longNumber(0x0102030405060708).number(9).bytes(),
              bytesOf("00000017 05 00000007 00000002 6162 0102030405060708 00000009"));
    EXPECT_EQ(Request(Type::Open, 1).permissions(0640).bytes(),
              bytesOf("0000000d 03 00000001 00000004 000001a0"));
}

TEST(SftpMessages, AStreamIsCutIntoMessages) {
    const QByteArray stream = bytesOf("00000006 65 00000001 aa 00000005 66 00000002");
    Inbox inbox;
    QList<quint32> ids;
    for (const char byte : stream) {
        inbox.append(&byte, 1);
        const Outcome<std::optional<Reply>> reply = inbox.take();
        ASSERT_TRUE(reply);
        if (*reply)
            ids.append((*reply)->id);
    }
    EXPECT_EQ(ids, (QList<quint32>{1, 2}));
}

TEST(SftpMessages, RefusesLengthsThatCannotBe) {
    for (const char* head : {"00000000 65 00000001", "00000004 65 00000001", "00100001 65 00000001",
                             "ffffffff 65 00000001"}) {
        Inbox inbox;
        const QByteArray bytes = bytesOf(head);
        inbox.append(bytes.constData(), bytes.size());
        EXPECT_EQ(errorOf(inbox.take()), "the server's answer is no message of SFTP") << head;
    }
}

TEST(SftpMessages, AttributesSayWhatIsThere) {
    PathFacts facts;
    ASSERT_TRUE(readAttributes(
        bytesOf("8000000f 0000000100000005 000003e8 000003e9 000041ed 00000001 00000002"
                "00000001 00000001 61 00000002 6263"),
        &facts));
    EXPECT_EQ(facts.size, 0x100000005U);
    EXPECT_EQ(facts.ownerId, 1000U);
    EXPECT_EQ(facts.groupId, 1001U);
    EXPECT_EQ(facts.kind, PathFacts::Kind::Directory);
    EXPECT_EQ(facts.permissions, 0755U);
    EXPECT_EQ(facts.lastAccessed.toSecsSinceEpoch(), 1);
    EXPECT_EQ(facts.lastModified.toSecsSinceEpoch(), 2);
}

TEST(SftpMessages, BodiesThatAreNotWholeAreRefused) {
    Status status;
    EXPECT_TRUE(readStatus(bytesOf("00000002"), &status)) << "old servers tell no text";
    EXPECT_FALSE(readStatus(bytesOf("0000"), &status));
    QByteArray bytes;
    EXPECT_FALSE(readHandle(bytesOf("00000005 61"), &bytes));
    EXPECT_FALSE(readData(bytesOf("ffffffff 61"), &bytes));
    QList<QByteArray> names;
    EXPECT_FALSE(readNames(bytesOf("7fffffff 00000000 00000000 00000000"), &names));
    EXPECT_FALSE(readNames(bytesOf("00000001 00000001 61 00000000"), &names));
    PathFacts facts;
    EXPECT_FALSE(readAttributes(bytesOf("80000000 ffffffff"), &facts));
    QMap<QByteArray, QByteArray> extensions;
    EXPECT_FALSE(readExtensions(bytesOf("00000001 61 00000009"), &extensions));
    Limits limits;
    EXPECT_FALSE(readLimits(bytesOf("0000000000000001"), &limits));
}

}  // namespace
}  // namespace Tamrix::Sftp
