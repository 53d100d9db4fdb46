#pragma once

#include <QString>
#include <tl/expected.hpp>

namespace Tamrix {

/// Why a script's use of an object failed. Each kind is an exception of its own where a language
/// has them.
struct ObjectError {
    enum class Kind {
        NoMember,     ///< the object has no such member, or it can't be used in this way
        BadArgument,  ///< the number, names or types of the arguments
        NotFound,     ///< something was not there, or not ready, in time
        Failed        ///< everything else, told by the application or the connection to it
    };

    Kind kind = Kind::Failed;
    /// For the tester. Never empty.
    QString text;
};

/// What a use of an object gives the script, or why it failed.
template <typename T>
using ObjectResult = tl::expected<T, ObjectError>;

[[nodiscard]] inline tl::unexpected<ObjectError> objectError(ObjectError::Kind kind,
                                                             const QString& text) {
    return tl::unexpected<ObjectError>(ObjectError{kind, text});
}

}  // namespace Tamrix
