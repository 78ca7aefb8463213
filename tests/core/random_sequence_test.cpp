// The generator's sequence from its load-time state, 7531, and the distributions drawn
// from it. Nothing else in this program may draw a number before these tests.
#include <gtest/gtest.h>

#include <cmath>

#include "zr/zr.h"

TEST(RandomSequence, StartsFromTheLoadTimeStateAndRunsAFullPeriod) {
  // The first draw: q = 7531 / 113 = 66, x = 113 * 7531 - 12703 * 66 = 12605.
  for (int x : {12605, 1629, 6235, 5890, 5014}) EXPECT_EQ(rnd(), x / 12703.0);

  // 113 generates the nonzero residues of the prime 12703: after 12702 draws the
  // sequence is back at 7531.
  int x = 0;
  for (int draw = 6; draw <= 12702; ++draw) x = static_cast<int>(std::lround(rnd() * 12703));
  EXPECT_EQ(x, 7531);

  // From 7531 again: one draw for randab, twelve summed in order for Normal, one for
  // NegExp, and nothing more.
  EXPECT_EQ(randab(-3.0, 5.0), 4.938282295520743);
  EXPECT_EQ(Normal(10.0, 2.0), 8.417854050224356);
  EXPECT_DOUBLE_EQ(NegExp(0.5), 1.2770746841607223);
  EXPECT_EQ(rnd(), 8527 / 12703.0);
}
