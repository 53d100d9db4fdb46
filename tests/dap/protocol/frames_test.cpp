#include "dap/protocol/frames.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

TEST(Frames, AMessageComesOutHoweverItWasCut) {
    const QByteArray stream = framed("{\"a\":1}") + framed("") + framed("\xc3\xa4");
    for (int first = 0; first <= stream.size(); ++first) {
        FrameReader reader;
        QList<QByteArray> messages;
        for (const QByteArray& piece : {stream.left(first), stream.mid(first)}) {
            reader.append(piece);
            while (const auto message = reader.take().value())
                messages.append(*message);
        }
        EXPECT_EQ(messages, (QList<QByteArray>{"{\"a\":1}", "", "\xc3\xa4"})) << first;
        EXPECT_FALSE(reader.isInsideMessage());
    }
}

TEST(Frames, HeadersMayHaveOtherFieldsInAnyCase) {
    FrameReader reader;
    reader.append("Content-Type: application/json\r\ncontent-length:  2 \r\n\r\n{}");
    EXPECT_EQ(reader.take().value(), QByteArray("{}"));
}

struct BadHeader {
    const char* name;
    QByteArray header;
    const char* problem;
};

class BadHeaders : public testing::TestWithParam<BadHeader> {};

TEST_P(BadHeaders, AreAFailureThatTellsWhatIsWrong) {
    FrameReader reader;
    reader.append(GetParam().header);
    const auto message = reader.take();
    ASSERT_FALSE(message);
    EXPECT_EQ(message.error().text, QString("the header of a message ") + GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(
    Frames, BadHeaders,
    testing::Values(
        BadHeader{"NoLength", "Content-Type: x\r\n\r\n{}", "has no Content-Length"},
        BadHeader{"FourGigabytes", "Content-Length: 4294967296\r\n\r\n",
                  "tells a length of 4294967296 bytes; at most 67108864 are taken"},
        BadHeader{"BeyondNumbers", "Content-Length: 99999999999999999999999\r\n\r\n",
                  "has no number as length: '99999999999999999999999'"},
        BadHeader{"Negative", "Content-Length: -1\r\n\r\n", "has no number as length: '-1'"},
        BadHeader{"Signed", "Content-Length: +1\r\n\r\n", "has no number as length: '+1'"},
        BadHeader{"NoName", "what is this\r\n\r\n", "has a line without a name: 'what is this'"},
        BadHeader{"Json", "{\"seq\":1}\r\n\r\n", "has no Content-Length"},
        BadHeader{"NoEnd", QByteArray(5000, 'x'), "is longer than 4096 bytes"},
        BadHeader{"Long", QByteArray(5000, 'x') + "\r\n\r\n", "is longer than 4096 bytes"}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace Tamrix::Dap
