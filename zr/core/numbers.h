/// \file
/// Integer logarithm and the library's pseudo-random numbers.
///
/// The generator has one process-wide state, 7531 when the library is loaded, and no
/// seeding function: every run of a program draws the same sequence. It is a plain
/// global, so it must not be used from two threads at once.
#pragma once

#include "zr/core/export.h"

/// The floor of the base-2 logarithm: how many times n can be halved before it is 1.
/// -1 for n < 1.
ZR_API int zrIntLog2(int n);

/// Uniform in (0, 1). Each call advances the state x by
///   q = x / 113 (truncated);  x = 113 * x - 12703 * q;  if x > 12703: x -= 12703
/// and returns x / 12703.0. The 113 in the division fixes the sequence and is kept.
/// From the load-time state the sequence runs through 1..12702 with period 12702, so a
/// draw is never 0 and never 1.
ZR_API double rnd();
/// a + rnd() * (b - a).
ZR_API double randab(double a, double b);
/// Approximately normal: (sum of 12 draws - 6.0) * sd + mean.
ZR_API double Normal(double mean, double sd);
/// Exponential: -ln(rnd()) / lambda; always finite and positive for lambda > 0.
ZR_API double NegExp(double lambda);
