#pragma once

#include <QImage>
#include <QString>
#include <vector>

#include "base/export.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

class RunnerInterface;

/// What helps to understand a failure, beside what it says.
struct ResultDetails {
    struct Picture {
        /// What it shows, for the reader.
        QString title;
        /// What the file's name starts with.
        QString fileName;
        QImage image;
    };

    /// Lines, see ResultAdded::explanation.
    QString explanation;
    std::vector<Picture> pictures;
};

/// Stores the pictures beside the report and attaches them to the result that comes next; without
/// results or a folder for pictures there is nothing to do. Both pointers may be null.
TAMRIX_EXPORT void attachPictures(TestResult* result, RunnerInterface* runner,
                                  const ResultDetails& details);

}  // namespace Tamrix
