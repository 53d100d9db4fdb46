#include "tools/testinteraction/request.h"

#include <limits>

namespace Tamrix {

namespace {

/// In place: a variant that is moved while it is made looks uninitialised to the compiler.
template <typename Content>
Outcome<Request> request(const QString& title, const Content& content) {
    Request made;
    made.title = title;
    made.content.emplace<Content>(content);
    return made;
}

tl::unexpected<Failure> wrong(const QString& text) {
    return fail(FailureKind::BadArgument, text);
}

Outcome<int> parseMilliseconds(const QString& text) {
    bool isNumber = false;
    const int milliseconds = text.toInt(&isNumber);
    if (isNumber && milliseconds > 0)
        return milliseconds;
    return wrong(QStringLiteral("'%1' is no time in milliseconds above 0").arg(text));
}

Outcome<Request> textRequest(TextRequest::Kind kind, const QStringList& arguments) {
    return request(arguments.at(0), TextRequest{kind, arguments.at(1)});
}

Outcome<Request> noticeRequest(const QStringList& arguments, const QString& image,
                               const QString& time) {
    const Outcome<int> milliseconds = parseMilliseconds(time);
    if (!milliseconds)
        return fail(milliseconds.error());
    return request(arguments.at(0), NoticeRequest{arguments.at(1), image, *milliseconds});
}

/// One kind; `read` gets what stands behind it, of the right number.
struct KindRow {
    const char* name;
    int fewest;
    int most;
    const char* parameters;
    Outcome<Request> (*read)(const QStringList& arguments);
};

const KindRow kinds[] = {
    {"choice", 3, std::numeric_limits<int>::max(), "TITLE MESSAGE ITEM...",
     [](const QStringList& arguments) -> Outcome<Request> {
         return request(arguments.at(0), ChoiceRequest{arguments.at(1), arguments.mid(2)});
     }},
    {"image", 4, 4, "TITLE TEXT FILE MILLISECONDS",
     [](const QStringList& arguments) {
         return noticeRequest(arguments, arguments.at(2), arguments.at(3));
     }},
    {"information", 2, 2, "TITLE TEXT",
     [](const QStringList& arguments) {
         return textRequest(TextRequest::Kind::Information, arguments);
     }},
    {"input", 3, 3, "TITLE MESSAGE TEXT",
     [](const QStringList& arguments) -> Outcome<Request> {
         return request(arguments.at(0), InputRequest{arguments.at(1), arguments.at(2), false});
     }},
    {"notification", 3, 3, "TITLE TEXT MILLISECONDS",
     [](const QStringList& arguments) {
         return noticeRequest(arguments, QString(), arguments.at(2));
     }},
    {"password", 2, 2, "TITLE MESSAGE",
     [](const QStringList& arguments) -> Outcome<Request> {
         return request(arguments.at(0), InputRequest{arguments.at(1), QString(), true});
     }},
    {"question", 2, 2, "TITLE TEXT",
     [](const QStringList& arguments) {
         return textRequest(TextRequest::Kind::Question, arguments);
     }},
    {"warning", 2, 2, "TITLE TEXT",
     [](const QStringList& arguments) {
         return textRequest(TextRequest::Kind::Warning, arguments);
     }},
};

}  // namespace

Outcome<Request> parseRequest(const QStringList& arguments) {
    const QString kind = arguments.value(0);
    QStringList names;
    for (const KindRow& row : kinds) {
        names.append(QString::fromLatin1(row.name));
        if (kind != QLatin1String(row.name))
            continue;
        const int count = arguments.size() - 1;
        if (count < row.fewest || count > row.most)
            return wrong(QStringLiteral("usage: testinteraction %1 %2")
                             .arg(kind, QLatin1String(row.parameters)));
        return row.read(arguments.mid(1));
    }
    return wrong(QStringLiteral("'%1' is none of %2").arg(kind, names.join(QLatin1String(", "))));
}

}  // namespace Tamrix
