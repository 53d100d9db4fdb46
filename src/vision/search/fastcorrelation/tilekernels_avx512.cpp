#include "vision/search/fastcorrelation/tilekernelsimpl.h"  // compiled with AVX-512
