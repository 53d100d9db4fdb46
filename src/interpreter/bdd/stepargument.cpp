#include "interpreter/bdd/stepargument.h"

#include <QStringList>
#include <algorithm>

namespace Tamrix {

namespace {

/// Columns are filled up to at most this width.
constexpr int widestColumn = 60;

QString cellText(const Gherkin::TableCell& cell) {
    return QString::fromStdString(cell.text)
        .replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('|'), QLatin1String("\\|"))
        .replace(QLatin1Char('\n'), QLatin1String("\\n"));
}

QString tableText(const std::vector<std::vector<Gherkin::TableCell>>& table) {
    std::vector<int> widths;
    for (const std::vector<Gherkin::TableCell>& row : table) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], std::min(widestColumn, cellText(row[i]).size()));
    }
    QStringList lines;
    for (const std::vector<Gherkin::TableCell>& row : table) {
        QString line = QStringLiteral("|");
        for (std::size_t i = 0; i < row.size(); ++i)
            line += QStringLiteral(" %1 |").arg(cellText(row[i]), -widths[i]);
        lines += line;
    }
    return lines.join(QLatin1Char('\n'));
}

QString docStringText(const Gherkin::DocString& docString) {
    QString text = QString::fromStdString(docString.text);
    // A fence in the text has to be told from that which ends it.
    text.replace(QLatin1String("\"\"\""), QLatin1String("\\\"\\\"\\\""));
    return QStringLiteral("\"\"\"%1\n%2\n\"\"\"")
        .arg(QString::fromStdString(docString.mediaType), text);
}

}  // namespace

QString stepArgumentText(const Gherkin::Step& step) {
    return step.docString ? docStringText(*step.docString) : tableText(step.table);
}

}  // namespace Tamrix
