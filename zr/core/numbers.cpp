#include "zr/core/numbers.h"

#include <cmath>
#include <cstdint>

namespace {
std::int32_t random_state = 7531;
}  // namespace

int zrIntLog2(int n) {
  if (n < 1) return -1;
  int log = 0;
  while (n > 1) {
    n >>= 1;
    ++log;
  }
  return log;
}

double rnd() {
  // From the initial state x stays within 1..12703, far from 32-bit overflow.
  const std::int32_t q = random_state / 113;
  random_state = 113 * random_state - 12703 * q;
  if (random_state > 12703) random_state -= 12703;
  return random_state / 12703.0;
}

double randab(double a, double b) { return a + rnd() * (b - a); }

double Normal(double mean, double sd) {
  double sum = 0.0;
  for (int i = 0; i < 12; ++i) sum += rnd();
  return (sum - 6.0) * sd + mean;
}

double NegExp(double lambda) { return -std::log(rnd()) / lambda; }
