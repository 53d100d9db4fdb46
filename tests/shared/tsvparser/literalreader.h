#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QStringList>
#include <QTextStream>
#include <QVector>

namespace Tamrix {

/// Reads delimited text as its rules tell it, one character and one state after the other. Slow and
/// plain: what the block reader is measured against and must agree with.
class LiteralReader {
public:
    explicit LiteralReader(const QByteArray& bytes) {
        m_device.setData(bytes);
        m_device.open(QIODevice::ReadOnly);
        m_stream.setDevice(&m_device);
        m_stream.setCodec("UTF-8");
    }

    int lineNumber() const { return m_lineNumber; }

    QString nextLine() {
        QString line = "";
        if (m_stream.atEnd())
            return line;
        ++m_lineNumber;
        State state = State::Outside;
        for (QChar c; !m_stream.atEnd();) {
            m_stream >> c;
            if (m_stream.status() != QTextStream::Ok)
                break;
            if (c == '\n' && state != State::Inside) {
                if (line.endsWith('\r'))
                    line.chop(1);
                return line;
            }
            line += c;
            switch (state) {
                case State::Outside:
                    if (c == '"')
                        state = State::Inside;
                    break;
                case State::Inside:
                    if (c == '"' && !m_stream.atEnd())
                        state = State::QuoteSeen;
                    break;
                case State::QuoteSeen:
                    state = c == '"' ? State::Inside : State::Outside;
                    break;
            }
        }
        return line;
    }

    static QStringList fields(const QString& line, char separator) {
        QStringList values;
        int number = 0;
        State state = State::Outside;
        const auto setField = [&](const QString& value) {
            while (values.size() <= number)
                values.append("");
            values[number] = value;
        };
        const auto append = [&](QChar c) { setField(values.value(number) + c); };
        for (int i = 0; i < line.size(); ++i) {
            const QChar c = line.at(i);
            switch (state) {
                case State::Outside:
                    if (c == QLatin1Char(separator)) {
                        ++number;
                        setField("");
                    } else if (c == '"') {
                        state = State::Inside;
                    } else {
                        append(c);
                    }
                    break;
                case State::Inside:
                    if (c != '"' || c == QLatin1Char(separator))
                        append(c);
                    else if (i + 1 < line.size())
                        state = State::QuoteSeen;
                    break;
                case State::QuoteSeen:
                    state = c == '"' ? State::Inside : State::Outside;
                    if (c != QLatin1Char(separator) || c == '"') {
                        append(c);
                    } else {
                        ++number;
                        setField("");
                    }
                    break;
            }
        }
        return values;
    }

    /// The rows up to the first blank line.
    QVector<QStringList> rows(char separator) {
        QVector<QStringList> rows;
        for (QString line; !(line = nextLine()).isEmpty();)
            rows.append(fields(line, separator));
        return rows;
    }

private:
    enum class State { Outside, Inside, QuoteSeen };

    QBuffer m_device;
    QTextStream m_stream;
    int m_lineNumber = -1;
};

}  // namespace Tamrix
