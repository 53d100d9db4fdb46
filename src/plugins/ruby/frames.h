#pragma once

#include <QString>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "platform/testresult/lineinfo.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

// Frames that run code of scripts. Ruby's library, installed gems and code that is in no file are
// passed over, as they are in the stacks of exceptions.

/// Whether a file, by the path that Ruby has for it, is a script.
bool isScriptFile(const QByteArray& path);
/// The path as results show it, with links resolved.
QString scriptPath(const QByteArray& path);

/// The position of the frame `level` levels outwards from the innermost one; false without one.
bool scriptFrameAt(int level, LineInfo* position);
/// How many frames of scripts there are.
int scriptDepth();
/// All frames of scripts, the innermost first; each keeps its variables.
std::vector<ScriptFrame> scriptFrames();
/// What a frame's variables are asked of: a Binding.
VALUE bindingOf(const ScriptFrame& frame);

/// From now on it is noted where exceptions are raised that don't tell it themselves.
void noteRaises();

/// Where a Proc or Method is defined; invalid for anything else. Never raises.
LineInfo definitionOf(VALUE callable);

/// The lines of scripts in the backtrace of an exception, the innermost first; the innermost line
/// of all when none is in a script.
std::vector<LineInfo> scriptLinesOf(VALUE exception);
/// The line of the outermost code; 0 without.
int outermostLineOf(VALUE exception);

}  // namespace Tamrix::RubyPlugin
