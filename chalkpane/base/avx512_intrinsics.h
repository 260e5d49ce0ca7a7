#pragma once

// For files whose functions are compiled for AVX-512, on machines that may have it.
#include <immintrin.h>

// g++ 12 takes what its own functions deliberately leave open for forgotten.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
