#include "vision/correlation/tilekernelsimpl.h"  // compiled with AVX-512
