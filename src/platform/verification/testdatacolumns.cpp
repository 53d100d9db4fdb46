#include "platform/verification/testdatacolumns.h"

#include "base/overloaded.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix {

namespace {

/// Calls `visit` with each expected value of the point.
template <typename Visit>
void visitValues(VerificationPoint& point, Visit visit) {
    std::visit(Overloaded{[&visit](PropertiesPoint& properties) {
                              for (ExpectedObject& object : properties.objects) {
                                  for (ExpectedProperty& property : object.properties)
                                      visit(property.expected);
                              }
                          },
                          [&visit](TablePoint& tables) {
                              for (ExpectedTable& table : tables.tables) {
                                  for (std::vector<ExpectedCell>& row : table.rows) {
                                      for (ExpectedCell& cell : row)
                                          visit(cell.text);
                                  }
                              }
                          },
                          [](VisualPoint&) {}},
               point);
}

QString fieldNames(const TestDataRecord& record) {
    QStringList names;
    const TestDataRecord* const header = record.dataSet() ? record.dataSet()->header() : nullptr;
    for (int column = 0; header && column < header->count(); ++column)
        names.append(header->valueAsString(column));
    return names.join(QStringLiteral(", "));
}

}  // namespace

Outcome<VerificationPoint> withRecord(VerificationPoint point, const TestDataRecord* record) {
    QString fault;
    visitValues(point, [&](ExpectedValue& expected) {
        auto* const column = std::get_if<ColumnValue>(&expected);
        if (!column || !fault.isEmpty())
            return;
        if (!record) {
            fault = QStringLiteral(
                        "The column '%1' is expected, but the verification point was given no "
                        "record of test data")
                        .arg(column->name);
        } else if (!record->dataSet() || record->dataSet()->fieldIndex(column->name) < 0) {
            fault = QStringLiteral("The test data has no column '%1', but these: %2")
                        .arg(column->name, fieldNames(*record));
        } else {
            column->text = record->valueAsString(column->name);
        }
    });
    if (!fault.isEmpty())
        return fail(FailureKind::BadArgument, fault);
    return point;
}

}  // namespace Tamrix
