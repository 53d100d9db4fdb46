#pragma once

/// Marks what a shared library of ours offers to others; everything else stays hidden.
#define TAMRIX_EXPORT __attribute__((visibility("default")))
