#include "comparison/difftext.h"

#include <QTextStream>
#include <algorithm>
#include <cstring>

namespace Tamrix {

namespace {

/// By Diff::Operation.
constexpr const char* marks[] = {"+ ", "- ", "  "};

}  // namespace

Diff::Lines splitLines(const QByteArray& bytes) {
    const char* const end = bytes.constData() + bytes.size();
    Diff::Lines lines;
    lines.reserve(static_cast<std::size_t>(std::count(bytes.constData(), end, '\n')) + 1);
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
    return bytes.contains("\r\n") ? bytes.replace("\r\n", "\n") : bytes;
}

QByteArray listifyQString(QString text) {
    return text.replace(QLatin1Char('\r'), QLatin1Char('\n')).append(QLatin1Char('\n')).toUtf8();
}

QString toUtfString(const QByteArray& bytes) {
    QTextStream stream(bytes);
    stream.setCodec("UTF-8");
    stream.setAutoDetectUnicode(true);
    return stream.readAll();
}

void createDiff(const Diff::Lines& expected, const Diff::Lines& actual, QByteArray& out,
                bool& differ) {
    const auto bytesOf = [](const Diff::Lines& lines) {
        std::size_t bytes = 0;
        for (const Diff::Line& line : lines)
            bytes += line.size() + std::strlen(marks[Diff::Equal]);
        return static_cast<int>(bytes);
    };
    const std::vector<Diff::Run> runs = Diff::diff(expected, actual);
    out.reserve(out.size() + std::max(bytesOf(expected), bytesOf(actual)));
    for (const Diff::Run& run : runs) {
        if (run.operation != Diff::Equal)
            differ = true;
        const Diff::Lines& lines = run.operation == Diff::Insert ? actual : expected;
        for (int i = run.begin; i < run.begin + run.count; ++i) {
            const Diff::Line& line = lines[static_cast<std::size_t>(i)];
            out.append(marks[run.operation]).append(line.data(), static_cast<int>(line.size()));
        }
    }
}

QString diffForDetail(const QByteArray& diff) {
    return QStringLiteral(" Diff:\n%1")
        .arg(toUtfString(diff).replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

}  // namespace Tamrix
