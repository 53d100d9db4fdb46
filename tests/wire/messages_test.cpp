#include "wire/messages.h"

#include <gtest/gtest.h>

#include <QTimeZone>
#include <QUrl>
#include <QVector>

#include "support/printqt.h"
#include "wire/samples.h"
#include "wire/value.h"

namespace Tamrix::Wire {
namespace {

QVariant roundTrip(const QVariant& value) {
    Value read;
    EXPECT_TRUE(decode(encode(Value{value}), &read));
    return read.value;
}

/// A list of values whose bytes are given.
QByteArray listBytes(quint32 count, const QByteArray& elements) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << quint8(11) << count;
    return bytes + elements;
}

TEST(Messages, ComeOutAsTheyWentInAndInNoOtherLength) {
    forEachSample([](MessageType type, const auto& body) {
        const QByteArray bytes = encode(body);
        std::decay_t<decltype(body)> read;
        ASSERT_TRUE(decode(bytes, &read)) << static_cast<int>(type);
        EXPECT_EQ(encode(read), bytes) << static_cast<int>(type);
        // A field that neither side handled would come out as its default.
        EXPECT_NE(encode(std::decay_t<decltype(body)>()), bytes);
        for (int length = 0; length < bytes.size(); ++length) {
            EXPECT_FALSE(decode(bytes.left(length), &read)) << static_cast<int>(type);
        }
        EXPECT_FALSE(decode(bytes + '\0', &read)) << static_cast<int>(type);
    });
}

TEST(Messages, FieldsFindTheirPlaces) {
    FindItem item;
    ASSERT_TRUE(decode(encode(FindItem{7, {QString(), 1, 2}, true}), &item));
    EXPECT_TRUE(item.item.text.isNull()) << "null means by row and column";
    EXPECT_EQ(item.item.column, 2);
    LookUp lookUp;
    lookUp.wanted = static_cast<Wanted>(3);
    EXPECT_FALSE(decode(encode(lookUp), &lookUp)) << "nothing that can be wanted";
    Target target;
    target.wanted = static_cast<Wanted>(3);
    EXPECT_FALSE(decode(encode(target), &target));
    MatchList matches{0, {Match()}};
    EXPECT_FALSE(decode(encode(matches), &matches)) << "more than there are";
    MouseEvent mouse;
    ASSERT_TRUE(decode(encode(MouseEvent{{7}, 9, -1, 2, 4, 8, false, true}), &mouse));
    EXPECT_EQ(mouse.x, -1);
    EXPECT_EQ(mouse.button, 4);
    EXPECT_TRUE(mouse.press && !mouse.buttonChange);

    // Of another version only the number is read, whatever follows.
    Hello hello;
    ASSERT_TRUE(decode(encode(quint32(magicNumber)) + encode(quint16(99)) + "anything", &hello));
    EXPECT_EQ(hello.version, 99);
    EXPECT_EQ(hello.token, "");
}

/// The same for listings and outlines.
template <typename Listing>
void refuseWhatHasNoPlaceOrType() {
    const auto isRead = [](int firstDepth, int secondDepth, int type) {
        Listing listing;
        listing.types = QStringList{"QWidget"};
        listing.objects.resize(2);
        listing.objects[0].depth = firstDepth;
        listing.objects[1].depth = secondDepth;
        listing.objects[1].type = type;
        return decode(encode(listing), &listing);
    };
    EXPECT_TRUE(isRead(0, 1, 0));
    EXPECT_TRUE(isRead(0, 0, 0));
    EXPECT_FALSE(isRead(1, 0, 0)) << "the first is below nothing";
    EXPECT_FALSE(isRead(0, 2, 0)) << "a level is left out";
    EXPECT_FALSE(isRead(0, -1, 0));
    EXPECT_FALSE(isRead(0, 1, 1)) << "there is one type";
    EXPECT_FALSE(isRead(0, 1, -1));
}

TEST(Messages, RefuseListingsThatNameNoPlaceOrType) {
    refuseWhatHasNoPlaceOrType<ObjectListing>();
    refuseWhatHasNoPlaceOrType<ObjectOutline>();
}

TEST(Values, TravelAsWhatScriptsKnow) {
    const struct {
        QVariant given;
        QVariant expected;
    } rows[] = {
        {QVariant(quint64(5)), QVariant(qint64(5))},
        {QVariant(std::numeric_limits<quint64>::max()), QVariant(18446744073709551616.0)},
        {QVariant::fromValue(std::numeric_limits<ulong>::max()), QVariant(18446744073709551616.0)},
        {QVariant::fromValue(QList<int>{1, 2}), QVariantList{qint64(1), qint64(2)}},
        {QVariant::fromValue(QVector<QString>{"a"}), QVariantList{"a"}},
        {QVariant::fromValue(QMap<QString, int>{{"a", 1}}), QVariantMap{{"a", qint64(1)}}},
        {QVariant::fromValue(Qt::Alignment(Qt::AlignRight)), QVariant(qint64(2))},
        {QVariant::fromValue(Qt::StrongFocus), QVariant(qint64(11))},
        {QUrl("file:///a"), "file:///a"},
        {QDateTime(), QDateTime()},
        {QDateTime({2024, 7, 1}, {12, 0}, QTimeZone("Europe/Berlin")),
         QDateTime({2024, 7, 1}, {12, 0}, Qt::OffsetFromUTC, 7200)},
        {QDateTime({1900, 1, 1}, {0, 0}), QDateTime({1900, 1, 1}, {0, 0})},
        {QPointF(1.6, 2.2), QPointF(1.6, 2.2)},
        {QSizeF(0.25, 1e300), QSizeF(0.25, 1e300)},
        {QRectF(-0.5, 1, 1e300, 2), QRectF(-0.5, 1, 1e300, 2)},
        {QVariant::fromValue(static_cast<void*>(nullptr)), QVariant()},
    };
    for (const auto& row : rows)
        EXPECT_EQ(roundTrip(row.given), row.expected) << row.given.typeName();
}

TEST(Values, LimitsHold) {
    Value value;
    EXPECT_FALSE(decode(QByteArray(1, '\x7f'), &value)) << "an unknown kind";
    EXPECT_TRUE(decode(listBytes(3, QByteArray(3, '\0')), &value));
    EXPECT_FALSE(decode(listBytes(4, QByteArray(3, '\0')), &value)) << "more than there is";
    EXPECT_FALSE(decode(listBytes(0xffffffff, {}), &value));

    // In one list, and in many together.
    const int most = maximalCount - 1;
    EXPECT_TRUE(decode(listBytes(most, QByteArray(most, '\0')), &value));
    EXPECT_FALSE(decode(listBytes(most + 2, QByteArray(most + 2, '\0')), &value));
    const QByteArray half = listBytes(most / 2, QByteArray(most / 2, '\0'));
    EXPECT_FALSE(decode(listBytes(3, half + half + half), &value));

    QByteArray nested(1, '\0');
    for (int depth = 0; depth < maximalDepth; ++depth)
        nested = listBytes(1, nested);
    EXPECT_TRUE(decode(nested, &value));
    EXPECT_FALSE(decode(listBytes(1, nested), &value));

    Query query;
    auto inner = std::make_shared<Query>();
    for (int depth = 0; depth < maximalDepth; ++depth)
        inner = std::make_shared<Query>(Query{{{"in", 0, {}, inner}}, 1});
    EXPECT_TRUE(decode(encode(*inner), &query));
    EXPECT_FALSE(decode(encode(Query{{{"in", 0, {}, inner}}, 1}), &query));

    // A text that claims two gigabytes.
    Text text;
    EXPECT_FALSE(decode(QByteArray("\x7f\xff\xff\xf0", 4) + "ab", &text));
}

}  // namespace
}  // namespace Tamrix::Wire
