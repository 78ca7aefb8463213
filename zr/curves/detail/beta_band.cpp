#include "zr/curves/detail/beta_band.h"

#include <algorithm>
#include <cmath>

#include "zr/core/detail/allocator.h"
#include "zr/core/detail/machine.h"
#include "zr/linalg/matrix.h"

namespace zr::detail {
namespace {

using V3 = zrTVec3<double>;

// Systems below this size go to the dense elimination: nothing to gain, and the windows
// and the tail could overlap.
constexpr int kMinSize = 16;
// More rows under way at once than the band can produce: decline.
constexpr int kMaxActive = 64;

class Band {
 public:
  Band(int n, int tail) : n_(n), tail_(tail), first_tail_(n - tail) {}

  // Entry (row w, column c).
  double At(const BandRow& w, int c) const {
    if (c >= first_tail_) return w.tail[c - first_tail_];
    if (c >= w.lo && c < w.lo + w.count) return w.v[c - w.lo];
    return w.fill;
  }

  // The last column of w's window (lo - 1 for an empty one).
  static int Hi(const BandRow& w) { return w.lo + w.count - 1; }

  int FirstTail() const { return first_tail_; }
  int Tail() const { return tail_; }
  int Size() const { return n_; }

 private:
  int n_;
  int tail_;
  int first_tail_;
};

bool IsZeroSigned(double z) { return z == 0.0; }

}  // namespace

bool SolveBand(int n, int tail, BandRow* rows, const V3* rhs, V3* x) {
  if (CurrentLevel() == Level::kPlain || n < kMinSize) return false;
  const Band band(n, tail);
  const int first_tail = band.FirstTail();

  BandRow* const a = rows;
  Vector<V3> b(rhs, rhs + n);
  Vector<int> perm(n), place(n), order(n), start(n + 1, 0);
  for (int r = 0; r < n; ++r) {
    a[r].fill = 0.0;
    perm[r] = place[r] = r;
    ++start[a[r].lo + 1];
  }
  // Rows join the elimination when it reaches their first column: ordered by it.
  for (int c = 0; c < n; ++c) start[c + 1] += start[c];
  for (int r = 0; r < n; ++r) order[start[a[r].lo]++] = r;

  Vector<int> active, cand;
  int joined = 0;
  for (int k = 0; k < n; ++k) {
    while (joined < n && a[order[joined]].lo <= k) active.push_back(order[joined++]);
    if (static_cast<int>(active.size()) > kMaxActive) return false;

    // The pivot scan over the places below k, exchanging during the scan. Rows outside
    // the active set hold a zero in column k, which never beats the running maximum.
    cand.clear();
    for (int r : active)
      if (place[r] > k) cand.push_back(r);
    std::sort(cand.begin(), cand.end(), [&](int p, int q) { return place[p] < place[q]; });
    double best = std::fabs(band.At(a[perm[k]], k));
    for (int r : cand) {
      const double v = std::fabs(band.At(a[r], k));
      if (v > best) {
        const int i = place[r];
        const int old = perm[k];
        perm[k] = r;
        perm[i] = old;
        place[r] = k;
        place[old] = i;
        best = v;
      }
    }

    const int pk = perm[k];
    BandRow& pw = a[pk];
    const double p = band.At(pw, k);
    if (p == 0.0) throw BadParameters(zr::text::kSystemNotUnique);
    const double inv = 1.0 / p;
    for (int j = 0; j < pw.count; ++j)
      if (pw.lo + j > k) pw.v[j] = pw.v[j] * inv;
    for (int t = 0; t < tail; ++t)
      if (first_tail + t > k) pw.tail[t] = pw.tail[t] * inv;
    // Once only tail columns are left, the other entries are never read again.
    const bool fill_read = k < first_tail - 1;
    pw.fill = pw.fill * inv;
    if (fill_read && !IsZeroSigned(pw.fill)) return false;
    b[pk] = b[pk] * V3(inv, inv, inv);

    for (int r : active) {
      if (r == pk) continue;
      BandRow& w = a[r];
      const double l = band.At(w, k);
      if (l == 0.0) continue;
      const double linv = 1.0 / l;
      const int lo = k + 1;
      int hi = std::max(Band::Hi(w), Band::Hi(pw));
      if (hi > first_tail - 1) hi = first_tail - 1;
      const int count = hi >= lo ? hi - lo + 1 : 0;
      if (count > BandRow::kWidth) return false;
      double v[BandRow::kWidth];
      for (int c = lo; c <= hi; ++c) v[c - lo] = linv * band.At(w, c) - band.At(pw, c);
      std::copy(v, v + count, w.v);
      w.lo = lo;
      w.count = count;
      for (int t = 0; t < tail; ++t)
        if (first_tail + t > k) w.tail[t] = linv * w.tail[t] - pw.tail[t];
      w.fill = linv * w.fill - pw.fill;
      if (fill_read && !IsZeroSigned(w.fill)) return false;
      for (int c = 0; c < 3; ++c) b[r][c] = linv * b[r][c] - b[pk][c];
    }
    active.erase(std::find(active.begin(), active.end(), pk));
  }

  // Back substitution. A product with a zero entry is a zero whose sign is that of the
  // solution's coordinate times the entry's; subtracting it changes only a zero, which
  // stays -0 when every such product was +0 and is +0 otherwise. neg[c][m] counts the
  // solution coordinates c with the sign bit set among columns m ... first_tail - 1, and
  // bad[c] is the highest of those columns whose coordinate c is not finite (-1 if none):
  // its product is NaN, which the later products leave as it is.
  Vector<V3> r(n);
  Vector<int> neg[3];
  for (auto& cnt : neg) cnt.assign(first_tail + 1, 0);
  int bad[3] = {-1, -1, -1};
  for (int i = n - 1; i >= 0; --i) {
    const BandRow& w = a[perm[i]];
    V3 xi = b[perm[i]];
    for (int m = n - 1; m > i && m >= first_tail; --m) {
      const double e = w.tail[m - first_tail];
      xi = xi - r[m] * V3(e, e, e);
    }
    const int hi = std::max(Band::Hi(w), i);
    const int from = hi + 1, to = first_tail - 1;  // the columns that hold w.fill
    if (from <= to) {
      const bool fill_neg = std::signbit(w.fill);
      for (int c = 0; c < 3; ++c) {
        const int top = bad[c] >= from ? bad[c] : -1;
        const int zeros = top >= 0 ? top + 1 : from;  // the first column of finite products
        if (xi[c] == 0.0 && zeros <= to) {
          const int count = neg[c][zeros] - neg[c][to + 1];
          const bool all_plus = fill_neg ? count == to - zeros + 1 : count == 0;
          xi[c] = std::signbit(xi[c]) && all_plus ? -0.0 : 0.0;
        }
        if (top >= 0) xi[c] = xi[c] - r[top][c] * w.fill;
      }
    }
    for (int m = std::min(hi, first_tail - 1); m > i; --m) {
      const double e = band.At(w, m);
      xi = xi - r[m] * V3(e, e, e);
    }
    if (i < first_tail) {
      for (int c = 0; c < 3; ++c) {
        neg[c][i] = neg[c][i + 1] + (std::signbit(xi[c]) ? 1 : 0);
        if (bad[c] < 0 && !std::isfinite(xi[c])) bad[c] = i;
      }
    }
    r[i] = xi;
  }
  std::copy(r.begin(), r.end(), x);
  return true;
}

}  // namespace zr::detail
