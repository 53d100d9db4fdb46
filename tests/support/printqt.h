#pragma once

#include <QString>
#include <ostream>

QT_BEGIN_NAMESPACE

/// Lets GoogleTest show texts instead of their bytes.
inline void PrintTo(const QString& text, std::ostream* stream) {
    if (text.isNull())
        *stream << "(null)";
    else
        *stream << '"' << text.toStdString() << '"';
}

QT_END_NAMESPACE
