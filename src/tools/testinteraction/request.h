#pragma once

#include <QString>
#include <QStringList>
#include <variant>

#include "base/outcome.h"

namespace Tamrix {

/// A text that the person confirms, or a question with Yes and No.
struct TextRequest {
    enum class Kind { Information, Warning, Question };
    Kind kind = Kind::Information;
    QString text;
};

/// A text that the person types; a password is not shown.
struct InputRequest {
    QString message;
    QString initialText;
    bool isPassword = false;
};

struct ChoiceRequest {
    QString message;
    QStringList items;
};

/// A text, or a picture with a text, for some time.
struct NoticeRequest {
    QString text;
    /// Empty for a text alone.
    QString imageFile;
    int milliseconds = 0;
};

/// What is to be shown.
struct Request {
    QString title;
    std::variant<TextRequest, InputRequest, ChoiceRequest, NoticeRequest> content;
};

/// Reads the command line behind the program's name: the kind, the title, and what the kind takes.
/// A failure tells what is wrong with it.
Outcome<Request> parseRequest(const QStringList& arguments);

}  // namespace Tamrix
