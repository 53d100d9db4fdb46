#include "wire/callarguments.h"

#include <cmath>

#include "base/boundedgeometry.h"

namespace Tamrix::Wire {

namespace {

bool isNumber(const QVariant& value) {
    switch (value.userType()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
            return true;
        default:
            return false;
    }
}

bool isText(const QVariant& value) {
    return value.userType() == QMetaType::QString;
}

/// The largest number that an argument can be, the highest of the modifiers.
constexpr double mostNumber = Qt::GroupSwitchModifier;

}  // namespace

Failure withUsage(const Failure& failure, const QString& function, const char* parameters) {
    if (failure.kind != FailureKind::BadArgument)
        return failure;
    return {failure.kind, QStringLiteral("%1: %2; usage: %1(%3)")
                              .arg(function, failure.text, QLatin1String(parameters))};
}

void CallArguments::failArgument(const QString& text) {
    throw CallError(FailureKind::BadArgument, text);
}

bool CallArguments::isTextual(const QVariant& value) {
    return isText(value) || isNumber(value);
}

QVariant CallArguments::take(const char* name) {
    if (isAtEnd())
        failArgument(QStringLiteral("the argument %1 is missing").arg(QLatin1String(name)));
    return m_arguments.at(m_next++);
}

bool CallArguments::hasNumber(int ahead) const {
    return m_next + ahead < m_arguments.size() && isNumber(m_arguments.at(m_next + ahead));
}

bool CallArguments::hasText() const {
    return !isAtEnd() && isText(m_arguments.at(m_next));
}

int CallArguments::takeNumber(const char* name) {
    const QVariant value = take(name);
    if (!isNumber(value))
        failArgument(QStringLiteral("the argument %1 is no number").arg(QLatin1String(name)));
    // Also false for what is no number.
    const double real = value.toDouble();
    if (!(std::abs(real) <= mostNumber))
        failArgument(QStringLiteral("the argument %1 is out of range: %2")
                         .arg(QLatin1String(name), value.toString()));
    return qRound(real);
}

QPoint CallArguments::takePoint(const char* x, const char* y) {
    const int left = takeNumber(x);
    return boundedPoint(QPointF(left, takeNumber(y)));
}

QString CallArguments::takeText(const char* name) {
    const QVariant value = take(name);
    if (!isTextual(value))
        failArgument(QStringLiteral("the argument %1 is no text").arg(QLatin1String(name)));
    return value.toString();
}

void CallArguments::takeEnd() const {
    if (!isAtEnd())
        failArgument(QStringLiteral("%1 arguments are too many, %2 were used")
                         .arg(QString::number(m_arguments.size()), QString::number(m_next)));
}

}  // namespace Tamrix::Wire
