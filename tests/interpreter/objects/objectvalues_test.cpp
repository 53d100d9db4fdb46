#include "interpreter/objects/objectvalues.h"

#include <QDateTime>
#include <limits>

#include "interpreter/objects/objectstest.h"
#include "platform/objectmodel/valueobject.h"
#include "support/failuretext.h"

namespace Tamrix {
namespace {

using namespace Test;

class ObjectValues : public ObjectsTest {};

TEST_F(ObjectValues, ComeAsValuesOfTheLanguage) {
    const SharedPtr<Object> held = button;
    const struct {
        QVariant value;
        const char* written;
    } rows[] = {
        {QVariant(), "null"},
        {QVariant::fromValue(nullptr), "null"},
        {true, "bool true"},
        {QVariant::fromValue(short(-3)), "int -3"},
        {5U, "int 5"},
        {std::numeric_limits<qint64>::min(), "int -9223372036854775808"},
        // Beyond what a script's integer surely holds only the magnitude is kept.
        {std::numeric_limits<quint64>::max(), "double 1.84467e+19"},
        {QVariant::fromValue(0.5F), "double 0.5"},
        {QByteArray("bytes"), "bytes"},
        {QDate(2020, 2, 29), "2020-02-29T00:00:00"},
        {QStringList{"a", "b"}, "[a, b]"},
        {QVariantList{1, QVariantList{QVariant()}}, "[int 1, [null]]"},
        {QVariantMap{{"k", QVariant::fromValue(held)}}, "{k: {name='ok' type='Button'}}"},
        {QChar('x'), "x"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(written(valueOfVariant(&context, row.value)), row.written);
    EXPECT_EQ(written(valueOfObject(&context, nullptr)), "null");
    EXPECT_EQ(written(valueOfObject(&context, Inspector::self()->createObject(QRect(1, 2, 3, 4)))),
              "QRect(1, 2, 3, 4)");

    context.setObjectPropertiesResult(button);
    EXPECT_EQ(
        written(context.result),
        "{both: bool true, end: right, geometry: QRect(1, 2, 30, 40), text: OK, width: int 7}");
}

TEST_F(ObjectValues, GoAsValuesOfTheType) {
    const struct {
        SharedPtr<ScriptArgument> value;
        const char* typeName;
        QVariant variant;
    } rows[] = {
        {number(2.0), "int", 2},
        {number(2.7), "int", 2.7},
        {number(1e19), "int", 1e19},
        {integer(2), "double", 2.0},
        {integer(2), "QString", "2"},
        {integer(2), "Colour", 2},
        {text("2"), "int", "2"},
        {boolean(true), "int", true},
        {list({text("a"), list({})}), "", QVariantList{"a", QVariantList{}}},
        {map({{"k", number(1)}}), "", QVariantMap{{"k", 1.0}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(objectOfValue(row.value, row.typeName).value()->toVariant(), row.variant)
            << row.typeName;
    EXPECT_EQ(objectOfValue(object(button), "int").value(), button);
    EXPECT_EQ(failureText(objectOfValue(list({callable({})}))),
              "A value of type 'list' can't be passed to an application");
}

}  // namespace
}  // namespace Tamrix
