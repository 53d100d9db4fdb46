#pragma once

namespace Tamrix {

/// Makes the process read and write file names and texts as UTF-8 where the environment asks for
/// plain ASCII, as on machines without a configured language: names with umlauts could not be
/// opened otherwise. Programs that are started get the same. Call it before a QCoreApplication is
/// made; it sets LC_ALL or LC_CTYPE.
void useUnicodeLocale();

/// Sets TAMRIX_PREFIX to this program's own installation, the folder above the one that holds the
/// program or its folder of helpers, unless the variable names another one. Makes a relative one
/// absolute. Needs a QCoreApplication.
void setInstallationPrefix();

}  // namespace Tamrix
