#pragma once

#include <deque>

#include "platform/spreadsheet/bytes.h"
#include "platform/spreadsheet/sheet.h"
#include "platform/spreadsheet/stringpool.h"

namespace Swinder {

/// What a workbook stream tells. The sheets' texts are in the pool.
struct BiffContents {
    StringPool pool;
    std::deque<Sheet> sheets;
    bool isPasswordProtected = false;
};

/// Reads a BIFF8 workbook stream into `contents`, which must be empty. Time and memory follow from
/// the stream's size, whatever is in it. Throws FormatError when it is damaged or of another
/// version; `contents` is of no use then.
void readBiff(Bytes stream, BiffContents& contents);

}  // namespace Swinder
