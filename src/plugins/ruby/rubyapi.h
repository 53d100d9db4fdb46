#pragma once

// Ruby's C interface. Its macros take names of the C library, so it comes behind the headers of
// others.

#include <ruby.h>
#include <ruby/debug.h>
#include <ruby/encoding.h>
#include <ruby/thread.h>

#undef snprintf
#undef vsnprintf
