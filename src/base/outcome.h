#pragma once

#include <QList>
#include <QString>
#include <tl/expected.hpp>
#include <utility>

namespace Tamrix {

/// Why an operation gave no result, as far as a caller may want to act on it.
enum class FailureKind {
    NotFound,     ///< what was looked for is not there
    NotReady,     ///< it is there, but did not become what was wanted in time
    Gone,         ///< the object of the call has been deleted meanwhile
    Refused,      ///< what was asked can't be done with it
    TimedOut,     ///< no answer in time; a later attempt may get one
    Ended,        ///< the application, or the connection to it, has ended
    BadArgument,  ///< an argument that the operation can't take
    Failed        ///< everything else
};

/// One object that nearly was the one that was looked for.
struct NearMiss {
    struct Difference {
        QString property;
        QString wanted;
        /// Null when the object has no such property.
        QString actual;
    };

    /// A name for people: type and text.
    QString object;
    /// The object's handle in its application, 0 when there is none.
    quint64 handle = 0;
    QList<Difference> differences;
};

struct Failure {
    FailureKind kind = FailureKind::Failed;
    /// A whole sentence for the tester, without full stop at its end. Never empty.
    QString text;
    /// Of a look-up that found nothing: what was nearest, the nearest first.
    QList<NearMiss> nearMisses = {};
};

/// The result of an operation that can fail and whose caller decides what then: a T or the Failure.
///
///     if (const Outcome<int> count = countOf(name))
///         use(*count);
///     else
///         report(count.error().text);
///
/// A function gives its value back as it is, and `return fail(FailureKind::NotFound, text);` when
/// it has none. `Outcome<>` is that of an operation without result; `return {};` is its success.
template <typename T = void>
class [[nodiscard]] Outcome : public tl::expected<T, Failure> {
public:
    using tl::expected<T, Failure>::expected;
};

/// What a failing function returns, whatever its Outcome would hold.
[[nodiscard]] inline tl::unexpected<Failure> fail(Failure failure) {
    return tl::unexpected<Failure>(std::move(failure));
}
[[nodiscard]] inline tl::unexpected<Failure> fail(FailureKind kind, QString text) {
    return fail(Failure{kind, std::move(text)});
}

}  // namespace Tamrix
