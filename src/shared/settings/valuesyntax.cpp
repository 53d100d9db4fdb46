#include "shared/settings/valuesyntax.h"

#include "base/environment.h"

namespace Tamrix {

namespace {

struct Escape {
    char16_t character;
    char16_t letter;  ///< stands behind the backslash
};

constexpr Escape escapes[] = {
    {u'\\', u'\\'}, {u'"', u'"'}, {u'\n', u'n'}, {u'\r', u'r'}, {u'\t', u't'},
};

const Escape* escapeOfCharacter(QChar character) {
    for (const Escape& escape : escapes) {
        if (character == escape.character)
            return &escape;
    }
    return nullptr;
}

const Escape* escapeOfLetter(QChar letter) {
    for (const Escape& escape : escapes) {
        if (letter == escape.letter)
            return &escape;
    }
    return nullptr;
}

void warnOfUnknownEscape(QChar letter, const QString& file) {
    const uint code = letter.unicode();
    if (code < 256)
        qWarning("Tamrix::Settings: unknown quoted character '%c' (0x%x) in %s", code, code,
                 file.toLocal8Bit().constData());
    else
        qWarning("Tamrix::Settings: unknown quoted character with hex code 0x%x in %s", code,
                 file.toLocal8Bit().constData());
}

}  // namespace

QString quoteString(const QString& text) {
    QString quoted;
    quoted.reserve(text.size() + 2);
    quoted += '"';
    for (const QChar character : text) {
        if (const Escape* escape = escapeOfCharacter(character)) {
            quoted += '\\';
            quoted += QChar(escape->letter);
        } else {
            quoted += character;
        }
    }
    quoted += '"';
    return quoted;
}

bool unquoteStringList(const QString& raw, QStringList* list, const QString& file) {
    enum class State { Outside, Inside, Escape };

    State state = State::Outside;
    QString collected;
    for (const QChar character : raw) {
        switch (state) {
            case State::Outside:
                // Commas, blanks and any other text between strings mean nothing.
                if (character == '"')
                    state = State::Inside;
                break;
            case State::Inside:
                if (character == '"') {
                    list->append(collected);
                    collected = QString();
                    state = State::Outside;
                } else if (character == '\\') {
                    state = State::Escape;
                } else {
                    collected += character;
                }
                break;
            case State::Escape:
                const Escape* escape = escapeOfLetter(character);
                if (!escape) {
                    warnOfUnknownEscape(character, file);
                    return false;
                }
                collected += QChar(escape->character);
                state = State::Inside;
                break;
        }
    }
    if (state != State::Outside) {
        qWarning("Tamrix::Settings: string not delimited by quotes in %s",
                 file.toLocal8Bit().constData());
        return false;
    }
    return true;
}

bool unquoteString(QString& text, const QString& file) {
    QStringList list;
    if (!unquoteStringList(text, &list, file))
        return false;
    if (list.size() != 1) {
        qWarning("Tamrix::Settings: entry is not a string in %s", file.toLocal8Bit().constData());
        return false;
    }
    text = list.first();
    return true;
}

void expandEnvironmentVariables(QString& text) {
    int position = 0;
    for (;;) {
        // Find the next "$" and stand behind it.
        const int dollar = text.indexOf('$', position);
        if (dollar < 0)
            return;
        position = dollar + 1;
        if (position == text.size())
            continue;

        // "$$" loses one "$"; what follows it is no reference any more.
        if (text.at(position) == '$') {
            text.remove(dollar, 1);
            continue;
        }
        if (text.at(position) != '(')
            continue;

        const int end = text.indexOf(')', dollar);
        if (end < 0)
            return;
        const QString value = Environment::getVariable(text.mid(dollar + 2, end - dollar - 2));
        if (!value.isEmpty())
            text.replace(dollar, end + 1 - dollar, value);
        // Meant: not moved past the inserted value, so that references in it, from its third
        // character on, are replaced as well.
        position = dollar + 2;
    }
}

}  // namespace Tamrix
