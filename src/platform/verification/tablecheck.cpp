#include "platform/verification/check.h"
#include "platform/verification/expectations.h"
#include "platform/verification/observation.h"

namespace Tamrix {

namespace {

/// The comparison of one view.
class TableCheck {
public:
    TableCheck(ExpectedTable& table, const ObservedTable& observed, Findings& findings)
        : m_table(table), m_observed(observed), m_findings(findings) {}

    void run() {
        checkSize();
        // What is there of both.
        for (std::size_t row = 0; row < m_table.rows.size() && row < m_observed.rows.size();
             ++row) {
            std::vector<ExpectedCell>& expected = m_table.rows[row];
            const auto& observed = m_observed.rows[row];
            for (std::size_t column = 0; column < expected.size() && column < observed.size();
                 ++column)
                checkCell(expected[column], observed[column], placeText(row, column));
        }
        takeSize();
    }

private:
    QString placeText(std::size_t row, std::size_t column) const {
        return QStringLiteral("row %1, column %2")
            .arg(QString::number(m_table.firstRow + static_cast<int>(row)),
                 QString::number(m_table.firstColumn + static_cast<int>(column)));
    }
    void add(QStringList& differences, const QString& text) {
        differences.append(QStringLiteral("Object '%1': %2").arg(m_table.name, text));
    }

    void checkSize() {
        const int rows = m_table.firstRow + static_cast<int>(m_table.rows.size());
        const int columns =
            m_table.firstColumn +
            (m_table.rows.empty() ? 0 : static_cast<int>(m_table.rows.front().size()));
        const auto differs = [this](int expected, int observed) {
            return m_table.isWhole ? expected != observed : expected > observed;
        };
        const QString least = m_table.isWhole ? QString() : QStringLiteral("at least ");
        if (differs(rows, m_observed.rowCount))
            add(m_findings.renewable,
                QStringLiteral("there are %1 rows, expected %2%3")
                    .arg(QString::number(m_observed.rowCount), least, QString::number(rows)));
        // Without rows nothing is known of columns.
        if (!m_table.rows.empty() && differs(columns, m_observed.columnCount))
            add(m_findings.renewable,
                QStringLiteral("there are %1 columns, expected %2%3")
                    .arg(QString::number(m_observed.columnCount), least, QString::number(columns)));
    }

    void checkCell(ExpectedCell& expected, const ObservedTable::Cell& observed,
                   const QString& place) {
        const QString difference = differenceFrom(expected.text, observed.text);
        if (!difference.isEmpty()) {
            add(isRenewable(expected.text) ? m_findings.renewable : m_findings.lasting,
                QStringLiteral("%1 %2").arg(place, difference));
            if (isRenewable(expected.text))
                expected.text = {PlainValue{observed.text}};
        }
        if (expected.background && *expected.background != observed.background) {
            add(m_findings.renewable,
                QStringLiteral("%1 has the background %2, expected %3")
                    .arg(place, colorText(observed.background), colorText(*expected.background)));
            expected.background = observed.background;
        }
    }

    /// Gives the renewed table the size of the observed one.
    void takeSize() {
        const bool hasColors = !m_table.rows.empty() && !m_table.rows.front().empty() &&
                               m_table.rows.front().front().background.has_value();
        m_table.rows.resize(m_observed.rows.size());
        for (std::size_t row = 0; row < m_table.rows.size(); ++row) {
            const auto& observed = m_observed.rows[row];
            std::vector<ExpectedCell>& cells = m_table.rows[row];
            const std::size_t known = std::min(cells.size(), observed.size());
            cells.resize(observed.size());
            for (std::size_t column = known; column < cells.size(); ++column) {
                cells[column].text = {PlainValue{observed[column].text}};
                if (hasColors)
                    cells[column].background = observed[column].background;
            }
        }
    }

    ExpectedTable& m_table;
    const ObservedTable& m_observed;
    Findings& m_findings;
};

}  // namespace

Findings check(const TablePoint& point, const FindObject& findObject) {
    Findings findings;
    findings.things = QStringLiteral("cells");
    TablePoint renewed = point;
    for (ExpectedTable& table : renewed.tables) {
        const int rows = static_cast<int>(table.rows.size());
        const int columns = rows > 0 ? static_cast<int>(table.rows.front().size()) : 0;
        findings.compared += rows * columns;
        const Outcome<SharedPtr<Object>> object = findObject(table.name);
        if (!object) {
            findings.isObjectMissing = true;
            findings.lasting.append(object.error().text);
            continue;
        }
        const Outcome<ObservedTable> observed =
            observedTable(*object, table.firstRow, table.firstColumn, table.isWhole ? -1 : rows,
                          table.isWhole ? -1 : columns);
        if (!observed)
            findings.lasting.append(QStringLiteral("Object '%1': the cells can't be read: %2")
                                        .arg(table.name, observed.error().text));
        else
            TableCheck(table, *observed, findings).run();
    }
    findings.renewed = renewed;
    return findings;
}

}  // namespace Tamrix
