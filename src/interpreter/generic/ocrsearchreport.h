#pragma once

#include <QRect>
#include <QSharedPointer>
#include <QString>

#include "base/export.h"
#include "interpreter/generic/searchregionsource.h"
#include "platform/testresult/resultdetails.h"
#include "shared/ocr/options.h"
#include "shared/ocr/result.h"

namespace Tamrix {

/// A search for text, with what was read last.
struct TAMRIX_EXPORT TextSearchRecord {
    QString text;
    int occurrence = 1;
    OCR::Options options;
    Vision::SearchArea area;
    QSharedPointer<OCR::Result> result;
};

// What a report shows of a failed search.

/// The text was not there: what was read instead, and where.
TAMRIX_EXPORT ResultDetails describeMissingText(const TextSearchRecord& search);
/// The text was there, though it should not have been.
TAMRIX_EXPORT ResultDetails describePresentText(const TextSearchRecord& search, const QRect& place);

}  // namespace Tamrix
