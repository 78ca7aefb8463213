/// \file
/// The banded solve of the Beta-spline interpolation systems. The library's own header,
/// never installed.
///
/// The open curve's system (three coefficients around the diagonal) and the contour's
/// cyclic one (three below it, with a wrap-around into the last two columns) are mostly
/// zeros, and the Gaussian elimination of zrMatrix<zrTVec3<double>> spends quadratic time
/// and memory on them. This kernel replays that elimination step for step on the entries
/// that can be nonzero: a short window per row around the diagonal, the last `tail`
/// columns of every row, and one value for all the others, which stays a zero of a known
/// sign. Partial pivoting (exchanges made during the scan), the 1/p normalisation, the
/// rows scaled by 1/l, the zero-pivot stop and back substitution in the same order are all
/// the class's, so every result has its bits, signed zeros included: the sign a product
/// with a zero entry would give is counted rather than computed.
///
/// Infinities and NaNs keep their bits too: those in the band, the tail and the right-hand
/// side are computed as the class computes them (a large contour's elimination overflows
/// its tail columns, and its solution is NaN, as it always was), and a product of a zero
/// entry with a coordinate that is not finite is formed where the class forms it. The
/// kernel declines (returns false, having written nothing) at the plain level, for small
/// systems, and when anything leaves the pattern it replays: a zero entry that turns into
/// NaN while it can still be read (a NaN or infinite multiplier, as from NaN parameters),
/// or a window wider than its room. The class's dense elimination then runs as before. A
/// zero pivot throws the solver's "not unique" text, as the class does.
#pragma once

#include "zr/values/values.h"

namespace zr::detail {

/// One row of a banded system: the coefficients in columns lo ... lo + count - 1 and in
/// the last two columns (tail[0] in column n - 2, tail[1] in n - 1; ignored when the
/// system has no tail). Every other coefficient is +0. During the solve fill holds the
/// value of those others, a zero of one sign.
struct BandRow {
  static constexpr int kWidth = 8;
  int lo = 0;
  int count = 0;
  double v[kWidth] = {};
  double tail[2] = {};
  double fill = 0.0;
};

/// Solves the n x n system of rows (coefficients the same in the three coordinates) for
/// the right-hand side rhs, writing n points to x, with tail = 0 or 2 explicit last columns
/// (each row's window must end before them). The rows are worked on in place. Returns
/// false when it declines; throws BadParameters(zr::text::kSystemNotUnique) at a zero
/// pivot.
bool SolveBand(int n, int tail, BandRow* rows, const zrTVec3<double>* rhs, zrTVec3<double>* x);

}  // namespace zr::detail
