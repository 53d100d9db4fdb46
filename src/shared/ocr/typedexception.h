#pragma once

#include <json/forwards.h>

#include <QString>
#include <stdexcept>

#include "base/export.h"

namespace Tamrix {

/// What text recognition throws: a failure that names its type, so that tools outside the process
/// can tell one from another. The text is in UTF-8.
class TAMRIX_EXPORT TypedException : public std::runtime_error {
public:
    /// `type` is the name of the derived class.
    TypedException(const QString& type, const QString& message);

    QString type() const { return m_type; }
    /// An object with the member "message".
    virtual Json::Value toJson() const;

private:
    QString m_type;
};

/// An option or an argument is wrong.
class TAMRIX_EXPORT InvalidInputs : public TypedException {
public:
    explicit InvalidInputs(const QString& message);
};

}  // namespace Tamrix
