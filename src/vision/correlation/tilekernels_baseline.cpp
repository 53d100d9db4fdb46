#include "vision/correlation/tilekernelsimpl.h"  // for plain x86-64
