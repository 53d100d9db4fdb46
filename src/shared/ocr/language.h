#pragma once

#include <json/forwards.h>

#include <QString>

#include "base/export.h"

namespace Tamrix::OCR {

/// A language that an engine can read. A value.
struct TAMRIX_EXPORT Language {
    Language(const QString& languageCode, const QString& nameInScripts,
             const QString& nameForPeople)
        : code(languageCode), recordedName(nameInScripts), displayName(nameForPeople) {}
    /// With one text for everything.
    explicit Language(const QString& name) : Language(name, name, name) {}

    /// What the engine calls it.
    QString code;
    /// What scripts call it.
    QString recordedName;
    QString displayName;

    /// An object with the three texts.
    Json::Value toJson() const;
};

}  // namespace Tamrix::OCR
