#include "vision/search/fastcorrelation/tilekernelsimpl.h"  // for plain x86-64
