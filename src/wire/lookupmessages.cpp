// The messages about looks: queries, targets, and what they find or miss.

#include "wire/lists.h"
#include "wire/messages.h"
#include "wire/reading.h"

namespace Tamrix::Wire {

namespace {

void writeQuery(QDataStream& stream, const Query& query) {
    stream << static_cast<quint32>(query.criteria.size());
    for (const Criterion& criterion : query.criteria) {
        stream << criterion.property << criterion.modifier << criterion.text
               << bool(criterion.object);
        if (criterion.object)
            writeQuery(stream, *criterion.object);
    }
    stream << query.occurrence;
}

void readQuery(QDataStream& stream, Query& query, int depth) {
    query.criteria.clear();
    const int count = readCount(stream, 2 * textSize + 5);
    for (int index = 0; index < count && stream.status() == QDataStream::Ok; ++index) {
        Criterion criterion;
        bool hasObject = false;
        criterion.property = readText(stream);
        stream >> criterion.modifier;
        criterion.text = readText(stream);
        stream >> hasObject;
        if (hasObject && depth >= maximalDepth) {
            setCorrupt(stream);
        } else if (hasObject) {
            criterion.object = std::make_shared<Query>();
            readQuery(stream, *criterion.object, depth + 1);
        }
        query.criteria.append(criterion);
    }
    stream >> query.occurrence;
}

}  // namespace

QDataStream& operator<<(QDataStream& stream, const NearMiss::Difference& difference) {
    return stream << difference.property << difference.wanted << difference.actual;
}

QDataStream& operator>>(QDataStream& stream, NearMiss::Difference& difference) {
    difference.property = readText(stream);
    difference.wanted = readText(stream);
    difference.actual = readText(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const NearMiss& miss) {
    stream << miss.object << miss.handle;
    writeList(stream, miss.differences);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, NearMiss& miss) {
    miss.object = readText(stream);
    stream >> miss.handle;
    miss.differences = readList<NearMiss::Difference>(stream, 3 * textSize);
    return stream;
}

QList<NearMiss> readNearMisses(QDataStream& stream) {
    return readList<NearMiss>(stream, 2 * textSize + 8);
}

QDataStream& operator<<(QDataStream& stream, const Query& body) {
    writeQuery(stream, body);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, Query& body) {
    readQuery(stream, body, 0);
    return stream;
}

namespace {

Wanted readWanted(QDataStream& stream) {
    quint8 wanted = 0;
    stream >> wanted;
    if (wanted > static_cast<quint8>(Wanted::Readiness))
        setCorrupt(stream);
    return stream.status() == QDataStream::Ok ? static_cast<Wanted>(wanted) : Wanted::Existence;
}

}  // namespace

QDataStream& operator<<(QDataStream& stream, const LookUp& body) {
    return stream << body.handle << body.query << static_cast<quint8>(body.wanted)
                  << body.wantNearMisses;
}

QDataStream& operator>>(QDataStream& stream, LookUp& body) {
    stream >> body.handle >> body.query;
    body.wanted = readWanted(stream);
    return stream >> body.wantNearMisses;
}

QDataStream& operator<<(QDataStream& stream, const ItemAddress& body) {
    return stream << body.text << body.row << body.column;
}

QDataStream& operator>>(QDataStream& stream, ItemAddress& body) {
    body.text = readText(stream);
    return stream >> body.row >> body.column;
}

QDataStream& operator<<(QDataStream& stream, const Target& body) {
    return stream << body.handle << body.query << body.isItem << body.item
                  << static_cast<quint8>(body.wanted) << body.timeout << body.wantNearMisses;
}

QDataStream& operator>>(QDataStream& stream, Target& body) {
    stream >> body.handle >> body.query >> body.isItem >> body.item;
    body.wanted = readWanted(stream);
    return stream >> body.timeout >> body.wantNearMisses;
}

QDataStream& operator<<(QDataStream& stream, const Missed& body) {
    stream << body.object << body.obstacle;
    writeList(stream, body.nearMisses);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, Missed& body) {
    stream >> body.object;
    body.obstacle = readText(stream);
    body.nearMisses = readNearMisses(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const LookUpResult& body) {
    stream << body.object << body.isReady << body.obstacle;
    writeList(stream, body.nearMisses);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, LookUpResult& body) {
    stream >> body.object >> body.isReady;
    body.obstacle = readText(stream);
    body.nearMisses = readNearMisses(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const Expect& body) {
    return stream << body.handle << body.query << body.properties << body.wantNearMisses;
}

QDataStream& operator>>(QDataStream& stream, Expect& body) {
    return stream >> body.handle >> body.query >> body.properties >> body.wantNearMisses;
}

QDataStream& operator<<(QDataStream& stream, const FindItem& body) {
    return stream << body.handle << body.item << body.wantReady;
}

QDataStream& operator>>(QDataStream& stream, FindItem& body) {
    return stream >> body.handle >> body.item >> body.wantReady;
}

QDataStream& operator<<(QDataStream& stream, const Match& body) {
    return stream << body.object << body.bounds << body.isVisible;
}

QDataStream& operator>>(QDataStream& stream, Match& body) {
    return stream >> body.object >> body.bounds >> body.isVisible;
}

QDataStream& operator<<(QDataStream& stream, const MatchList& body) {
    stream << body.count;
    writeList(stream, body.matches);
    return stream;
}

QDataStream& operator>>(QDataStream& stream, MatchList& body) {
    constexpr int matchSize = 8 + 2 * textSize + 4 * 4 + 1;
    stream >> body.count;
    body.matches = readList<Match>(stream, matchSize);
    if (body.count < body.matches.size())
        setCorrupt(stream);
    return stream;
}

QDataStream& operator<<(QDataStream& stream, const ScreenPoint& body) {
    return stream << body.x << body.y;
}

QDataStream& operator>>(QDataStream& stream, ScreenPoint& body) {
    return stream >> body.x >> body.y;
}

}  // namespace Tamrix::Wire
