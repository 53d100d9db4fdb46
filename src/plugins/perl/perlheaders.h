#pragma once

// The headers of Perl's runtime. They define hundreds of short names as macros, so they come behind
// all other headers, in the files that need them, and what clashes is taken away again.

#define PERL_NO_GET_CONTEXT
#include <EXTERN.h>
#include <perl.h>
// The order matters.
#include <XSUB.h>

#undef bind
#undef do_close
#undef do_open
#undef form
#undef list
#undef ref
#undef scalar
#undef scope
#undef seed
#undef warn
