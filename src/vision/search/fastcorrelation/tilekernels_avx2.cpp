#include "vision/search/fastcorrelation/tilekernelsimpl.h"  // compiled with AVX2 and FMA
