#pragma once

#include <QMap>
#include <QString>

namespace Tamrix {

/// The start of the names of variables that hand passwords to a run; the key of the password is
/// behind it.
inline constexpr char passwordVariablePrefix[] = "TAMRIX_PASSWORD_";

/// The passwords in the environment of this process, by key. They are taken out of it, so that
/// neither scripts nor programs find them there. Not while another thread uses the environment.
QMap<QString, QString> takePasswords();

}  // namespace Tamrix
