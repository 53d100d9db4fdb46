#pragma once

#include <QList>
#include <QPair>
#include <QString>

#include "base/export.h"
#include "shared/ocr/language.h"
#include "shared/ocr/options.h"
#include "shared/settings/settings.h"

// The folders of engine data: each has "tessdata", the data itself, and "languageNames.xml", which
// says what it is for.

namespace Tamrix::Tesseract {

/// The languages of a folder and the engine modes that its data can be used in.
using LanguageData = QPair<QList<OCR::Language>, QList<OCR::TesseractOptions::Mode>>;

/// The folder of the installation that the build made of what the system has: what counts for users
/// who set none. Empty when there is no such folder.
TAMRIX_EXPORT QString defaultInstallPath();

/// The folder that the settings name, or the default one.
TAMRIX_EXPORT QString installPathOf(const Settings& settings);

/// The folder of a set of engine data, for an empty name that of the engine itself. Throws
/// InvalidInputs for a name that the settings don't have.
TAMRIX_EXPORT QString tesseractFlavorDir(const Settings& settings, const QString& flavor);

/// Where Tesseract finds its data files in such a folder.
TAMRIX_EXPORT QString tessdataOf(const QString& dir);

/// What "languageNames.xml" says. Throws InitializationError, with its path, when it isn't there or
/// can't be read.
TAMRIX_EXPORT LanguageData loadLanguagesFile(const QString& dir);

/// The same. Of a folder without a usable file the codes themselves are the names, English first;
/// standard error tells so. Needs the libraries then.
TAMRIX_EXPORT LanguageData loadLanguages(const QString& dir);

}  // namespace Tamrix::Tesseract
