#include "vision/correlation/tilekernelsimpl.h"  // compiled with AVX2 and FMA
