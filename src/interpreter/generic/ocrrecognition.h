#pragma once

#include <QSharedPointer>
#include <QStringList>

#include "interpreter/generic/searchregionsource.h"
#include "shared/ocr/implementation.h"

namespace Tamrix {

class RunnerInterface;
class ScriptContext;

// What all script functions that read text have in common.

/// Where files are looked for that the options of an engine name.
QStringList ocrSearchPaths(RunnerInterface* runner);

/// Reads the text of the area, and tells the front end of the debugger, if it wants that, how far
/// this is. Throws what the engine throws.
QSharedPointer<OCR::Result> recognizeText(OCR::Implementation& engine,
                                          const Vision::SearchArea& area,
                                          const QStringList& searchPaths,
                                          const OCR::Options& options);

/// Calls `work` and sets the script's error to what it throws; of a service's reply that can't be
/// used, the reply goes to the results. Returns what `work` returns, false for an exception.
bool withOcrErrors(ScriptContext* context, RunnerInterface* runner,
                   bool (*work)(ScriptContext*, RunnerInterface*));

}  // namespace Tamrix
