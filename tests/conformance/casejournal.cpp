#include "conformance/casejournal.h"

#include <QFileInfo>
#include <QRegularExpression>

#include "platform/testresult/testresult.h"
#include "support/files.h"

namespace Tamrix::Test {

namespace {

QString textOf(const Json::Value& value) {
    // With something in front, since a byte-order mark at the beginning would be left out.
    return QString::fromStdString('|' + value.asString()).mid(1);
}

/// In one line, between quotes.
QString quoted(QString text) {
    for (const auto& [character, written] :
         {std::pair("\\", "\\\\"), {"\"", "\\\""}, {"\n", "\\n"}, {"\t", "\\t"}})
        text.replace(character, written);
    QString visible;
    for (const QChar character : text)
        visible += character < ' '
                       ? QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'))
                       : QString(character);
    return '"' + visible + '"';
}

/// Writes the entries of one case.
class JournalText {
public:
    JournalText(const QString& suite, const LanguageFacts& facts)
        : m_suite(suite), m_facts(facts) {}

    QString line(const Json::Value& entry) {
        const QString kind = textOf(entry["kind"]);
        if (kind == "result")
            return typeName(entry["type"].asInt()) + texts(entry) + positions(entry);
        if (kind == "output")
            return QString(textOf(entry["extra"]) == "stdout" ? "OUT " : "ERR ") +
                   quoted(textOf(entry["message"]));
        if (kind == "sectionStart")
            return "SECTION" + texts(entry) + positions(entry);
        if (kind == "sectionEnd")
            return "END SECTION";
        if (kind == "caseEnd")
            return "CASE ENDS " + textOf(entry["extra"]);
        return kind.toUpper() + texts(entry) + positions(entry);
    }

private:
    static QString typeName(int type) {
        switch (type) {
            case TestResult::Skipped:
                return "SKIPPED";
            case TestResult::Log:
                return "LOG";
            case TestResult::Fatal:
                return "FATAL";
            case TestResult::Error:
                return "ERROR";
            case TestResult::Pass:
                return "PASS";
            case TestResult::Fail:
                return "FAIL";
            case TestResult::ExpectedFail:
                return "XFAIL";
            case TestResult::UnexpectedPass:
                return "XPASS";
            case TestResult::Warning:
                return "WARNING";
            default:
                return QString::number(type);
        }
    }

    /// The message, the detail in brackets, the comment in square ones. What values look like is
    /// the language's own, and left out where the library shows two that were compared.
    QString texts(const Json::Value& entry) const {
        static const QRegularExpression s_screenshot(" \\(Screenshot in '[^']*'\\)");
        QString message = textOf(entry["message"]);
        message.remove(s_screenshot);
        QString detail = textOf(entry["detail"]);
        if (message == "Comparison")
            detail = detail.section(' ', detail.endsWith("not equal") ? -3 : -2);
        const QString comment = textOf(entry["extra"]);
        return ' ' + quoted(common(message)) +
               (detail.isEmpty() ? "" : " (" + quoted(common(detail)) + ")") +
               (comment.isEmpty() ? "" : " [" + quoted(comment) + "]");
    }

    /// The text with common names of exceptions and without the suite's place.
    QString common(QString text) const {
        text.replace(m_suite, "<SUITE>");
        for (const auto& [name, own] : m_facts.names) {
            if (own.isEmpty())
                continue;
            const QRegularExpression expression("(^|\n|: |by |Raised )" +
                                                QRegularExpression::escape(own) + "(?=:|$|\n)");
            text.replace(expression, "\\1" + name);
        }
        return text;
    }

    QString positions(const Json::Value& entry) {
        // Where a loop is when it is ended is nobody's choice.
        if (common(textOf(entry["detail"])).startsWith("<Interrupt>") ||
            textOf(entry["message"]).startsWith("The test case took longer"))
            return {};
        QStringList marks;
        for (const Json::Value& position : entry["callStack"])
            marks += mark(textOf(position["file"]), position["line"].asInt());
        return marks.isEmpty() ? QString() : ' ' + marks.join(" < ");
    }

    QString mark(const QString& file, int line) {
        if (line < 1)
            return "(file)";
        if (file.endsWith(".feature"))
            return QFileInfo(file).fileName() + ':' + QString::number(line);
        if (!m_lines.contains(file))
            m_lines[file] = QString::fromUtf8(readFile(file)).split('\n');
        static const QRegularExpression s_mark("(?:#|//)\\s*(@\\w+)\\s*$");
        const QRegularExpressionMatch match = s_mark.match(m_lines[file].value(line - 1));
        return match.hasMatch() ? match.captured(1) : QStringLiteral("?");
    }

    QString m_suite;
    const LanguageFacts& m_facts;
    QMap<QString, QStringList> m_lines;
};

}  // namespace

LanguageFacts LanguageFacts::read(const QString& path) {
    LanguageFacts facts;
    for (const QString& line : QString::fromUtf8(readFile(path)).split('\n')) {
        const QStringList cells = line.split('\t');
        if (cells.size() == 3 && cells[0] == "refused")
            facts.refused[cells[1]] = cells[2];
        else if (cells.size() == 2)
            facts.names.append({cells[0], cells[1]});
    }
    return facts;
}

QString LanguageFacts::withoutMissingNames(QString journal) const {
    for (const auto& [name, own] : names) {
        if (own.isEmpty())
            journal.remove(name + ": ");
    }
    return journal;
}

QMap<QString, QString> caseJournals(const std::vector<Json::Value>& entries, const QString& suite,
                                    const LanguageFacts& facts) {
    QMap<QString, QString> journals;
    QString name;
    JournalText text(suite, facts);
    for (const Json::Value& entry : entries) {
        const QString kind = textOf(entry["kind"]);
        if (kind == "caseStart") {
            name = textOf(entry["message"]);
            journals[name] = QString();
        } else if (kind != "attachment" && !name.isEmpty()) {
            journals[name] += text.line(entry) + '\n';
        }
        if (kind == "caseEnd")
            name.clear();
    }
    return journals;
}

}  // namespace Tamrix::Test
