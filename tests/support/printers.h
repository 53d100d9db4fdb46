#pragma once

// How GoogleTest shows values of Qt in a failure. Included in every test by tamrix_test.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << '"' << bytes.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << '[';
    for (int i = 0; i < texts.size(); ++i) {
        *out << (i > 0 ? ", " : "");
        PrintTo(texts.at(i), out);
    }
    *out << ']';
}
