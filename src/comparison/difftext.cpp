#include "comparison/difftext.h"

#include <QTextCodec>
#include <algorithm>
#include <cstring>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>

namespace Tamrix {

namespace {

/// By Diff::Operation.
constexpr const char* marks[] = {"+ ", "- ", "  "};
constexpr std::size_t markLength = 2;

}  // namespace

Diff::Lines splitLines(const QByteArray& bytes) {
    const char* const end = bytes.constData() + bytes.size();
    Diff::Lines lines;
    // As if all lines were like the first ones: counting them takes as long as finding them.
    constexpr int sample = 1 << 16;
    const int sampled = std::min(sample, bytes.size());
    const auto feeds =
        static_cast<std::size_t>(std::count(bytes.constData(), bytes.constData() + sampled, '\n'));
    lines.reserve(feeds * (static_cast<std::size_t>(bytes.size()) / sample + 1) + 1);
    for (const char* start = bytes.constData(); start < end;) {
        const auto left = static_cast<std::size_t>(end - start);
        const auto* feed = static_cast<const char*>(std::memchr(start, '\n', left));
        const std::size_t length = feed ? static_cast<std::size_t>(feed - start) + 1 : left;
        lines.emplace_back(start, length);
        start += length;
    }
    return lines;
}

QByteArray withoutCarriageReturns(QByteArray bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::memchr(bytes.constData(), '\r', size) ? bytes.replace("\r\n", "\n") : bytes;
}

QByteArray listifyQString(QString text) {
    return text.replace(QLatin1Char('\r'), QLatin1Char('\n')).append(QLatin1Char('\n')).toUtf8();
}

QString toUtfString(const QByteArray& bytes) {
    // What a text stream with this codec and detection gives, in a tenth of the time.
    return QTextCodec::codecForUtfText(bytes, QTextCodec::codecForName("UTF-8"))->toUnicode(bytes);
}

void createDiff(const Diff::Lines& expected, const Diff::Lines& actual, QByteArray& out,
                bool& differ) {
    const std::vector<Diff::Run> runs = Diff::diff(expected, actual);
    const auto linesOf = [&](const Diff::Run& run) {
        return std::span(run.operation == Diff::Insert ? actual : expected)
            .subspan(static_cast<std::size_t>(run.begin), static_cast<std::size_t>(run.count));
    };
    std::size_t size = static_cast<std::size_t>(out.size());
    std::size_t position = size;
    for (const Diff::Run& run : runs) {
        for (const Diff::Line& line : linesOf(run))
            size += markLength + line.size();
    }
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max() / 2))
        throw std::length_error("the differences are too long for a text");
    // Written in place: a call for every line takes longer than the comparison.
    out.resize(static_cast<int>(size));
    char* const bytes = out.data();
    for (const Diff::Run& run : runs) {
        differ = differ || run.operation != Diff::Equal;
        for (const Diff::Line& line : linesOf(run)) {
            std::memcpy(bytes + position, marks[run.operation], markLength);
            position += markLength;
            std::memcpy(bytes + position, line.data(), line.size());
            position += line.size();
        }
    }
}

QString decodedDetail(QByteArray detail) {
    return toUtfString(withoutCarriageReturns(std::move(detail)));
}

}  // namespace Tamrix
