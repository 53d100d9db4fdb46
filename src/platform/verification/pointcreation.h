#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/object.h"
#include "platform/verification/verificationpoint.h"

namespace Tamrix {

// Verification points made of what an application shows now. Script thread only.

/// Expects the properties of the object to stay what they are; without names those that tell what
/// a user sees. Fails when the object does not have one that is named.
TAMRIX_EXPORT Outcome<VerificationPoint> propertiesPointOf(const SharedPtr<Object>& object,
                                                           const QString& name,
                                                           const QStringList& properties);
/// Expects the cells of an item view, with their backgrounds if wanted.
enum class CellContent { Texts, TextsAndBackgrounds };
TAMRIX_EXPORT Outcome<VerificationPoint> tablePointOf(const SharedPtr<Object>& object,
                                                      const QString& name, CellContent content);
/// Expects an object to look as it does; `name` may be empty for the name that the application
/// gives it.
TAMRIX_EXPORT Outcome<VerificationPoint> visualPointOf(const QByteArray& snapshot,
                                                       const QString& name);

/// Writes a new file for a point, of a visual one with its picture, which is named like it. Fails
/// when one of the files exists.
TAMRIX_EXPORT Outcome<> createVerificationPointFile(const QString& path, VerificationPoint point);

/// Writes the visual verification point of a snapshot (see requestObjectSnapshotForVisualVP).
/// Returns an error text, empty on success. Existing files stay as they are.
TAMRIX_EXPORT QString createVisualVPFile(const QString& path, const QByteArray& snapshot);

}  // namespace Tamrix
