#pragma once

#include "base/export.h"

// Which processes are applications under test, and which toolkit wrappers may attach to them.
//
// All of this runs very early in every process that starts below the tool. It uses nothing but the
// C runtime, fixed buffers and the environment, and allocates nothing except in strSplit(). The
// functions read or change the environment: not for use while another thread changes it.
//
//     TAMRIX_PREFIX        the installation; its etc/ignoredauts.txt names programs to leave alone
//     TAMRIX_AUT_PATHS     directories separated by ":"; programs that lie in one are allowed
//     TAMRIX_AUTS          names separated by ":"; these programs are allowed
//     TAMRIX_AUT_WRAPPERS  entries "program=wrapper,wrapper" separated by ":"

extern "C" {

/// 1 if the program, given by its base name, may be hooked: it isn't ignored, and TAMRIX_AUTS or
/// TAMRIX_AUT_PATHS name it, or neither is set. 1 for no name, with a message to standard error.
TAMRIX_EXPORT int isAllowedProgram(const char* program);

/// 1 if the program must be left alone: it is one of a built-in list of shells and tools, the
/// installation's file has a line with exactly its name, or TAMRIX_PREFIX isn't set. The last, and
/// a file that can't be read to its end, are told to standard error.
TAMRIX_EXPORT int isIgnoredProgram(const char* program);

/// 1 if the wrapper may attach to the program: TAMRIX_AUT_WRAPPERS has no entry for the program, or
/// its first one names the wrapper. That entry having no "=" ends the process, on purpose: the
/// variable comes from the tool's own set-up.
TAMRIX_EXPORT int matchWrapper(const char* program, const char* wrapper);

/// Cuts the first place at which `entry` stands in the environment variable `name`, be it part of a
/// longer entry, with the separator behind it or, at the end, before it. Nothing left unsets the
/// variable. Without such a place nothing changes, nor for values above 128 KiB, the longest that a
/// program can be given.
TAMRIX_EXPORT void removePathEnv(const char* entry, const char* name);

/// The parts of the text, empty ones too, as an array that ends with null. To be freed with
/// freeStrSplit(). Null for no text or when memory runs out.
TAMRIX_EXPORT char** strSplit(const char* text, char separator);
/// Frees what strSplit() returned, null too.
TAMRIX_EXPORT void freeStrSplit(char** parts);

/// What follows the last "/" in the path, the path itself without one. Null for null.
TAMRIX_EXPORT const char* tamrix_basename(const char* path);

/// The base name under which this process was started.
TAMRIX_EXPORT const char* progname();

/// The short names of all toolkits, a constant array that ends with null.
TAMRIX_EXPORT const char* const* allToolkits();

}  // extern "C"
