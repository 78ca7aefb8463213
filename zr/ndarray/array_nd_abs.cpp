#include "zr/ndarray/array_nd_abs.h"

#include <cmath>
#include <cstdint>
#include <utility>

namespace {

const char kRangeText[] = "CheckPointer : Invalid pointer or range.";
const char kNegativeText[] = "zrArrayNDAbs : Negative size.";
const char kSizesText[] = "zrArrayNDAbs : Sizes beyond 32 bits.";
const char kOffsetsText[] = "zrArrayNDAbs : Offsets beyond 32 bits.";
const char kPointText[] = "Point out of range in GetLine.";

[[noreturn]] void ThrowDifferentDimension() { throw BadParameters("Different dimension"); }

constexpr std::int64_t kSumLimit = std::int64_t{1} << 62;

bool Fits(std::int64_t v) { return v >= INT32_MIN && v <= INT32_MAX; }

// The sizes must be >= 0 and their product must fit the 32-bit count.
void CheckSizes(const zrArray<int>& range) {
  const int n = range.Len();
  bool empty = false;
  for (int k = 0; k < n; ++k) {
    if (range[k] < 0) throw BadParameters(kNegativeText);
    if (range[k] == 0) empty = true;
  }
  if (empty) return;
  std::int64_t size = 1;
  for (int k = 0; k < n; ++k) {
    size *= range[k];  // both factors below 2^31: no overflow
    if (size > INT32_MAX) throw BadParameters(kSizesText);
  }
}

// The reach of the geometry around its origin element in elements: positive counts the
// origin element, negative is zero or below; both 0 when there are no elements. False
// when an element lies more than INT32_MAX elements from another (or from the origin):
// no block holds such an array and no 32-bit offset reaches across it.
bool Reach(const zrArray<int>& range, const zrArray<int>& tab, std::int64_t& positive,
           std::int64_t& negative) {
  const int n = range.Len();
  positive = 0;
  negative = 0;
  for (int k = 0; k < n; ++k)
    if (range[k] <= 0) return true;
  positive = 1;
  for (int k = 0; k < n; ++k) {
    const std::int64_t reach = static_cast<std::int64_t>(range[k] - 1) * tab[k];
    if (reach > 0) positive += reach;
    if (reach < 0) negative += reach;
    // Each reach is below 2^62 in size, so the sums cannot overflow before this stops them.
    if (positive - negative > INT32_MAX) return false;
  }
  return true;
}

// The carry increments in 64 bits; false when one leaves the 32-bit range.
bool ForTab(const zrArray<int>& range, const zrArray<int>& tab, zrArray<int>& out) {
  const int n = range.Len();
  zrArray<int> result;
  if (n > 0) result.Set(n);
  std::int64_t carry = n > 0 ? tab[0] : 0;
  for (int k = 0; k < n; ++k) {
    if (k == 1) carry = tab[1] - static_cast<std::int64_t>(range[0]) * tab[0];
    if (k >= 2) carry = carry - static_cast<std::int64_t>(range[k - 1]) * tab[k - 1] + tab[k];
    if (!Fits(carry)) return false;
    result[k] = static_cast<int>(carry);
  }
  out.Move(result);
  return true;
}

// EndPos, Size and Con for the sizes, strides and carries (sizes checked by CheckSizes);
// false when EndPos leaves the 32-bit range.
bool Derive(const zrArray<int>& range, const zrArray<int>& tab, const zrArray<int>& for_tab,
            int& end_pos, int& size, bool& con) {
  const int n = range.Len();
  con = true;
  if (n == 0) {
    end_pos = 0;
    size = 0;
    return true;
  }
  std::int64_t end = tab[0];
  std::int64_t count = 1;
  for (int k = 0; k < n; ++k) {
    if (k >= 1 && for_tab[k] != 0) con = false;
    // Each term is below 2^62 in size: a sum kept within 2^62 cannot overflow.
    end += static_cast<std::int64_t>(range[k] - 1) * tab[k];
    if (end > kSumLimit || end < -kSumLimit) return false;
    if (range[k] == 0) count = 0;
  }
  if (!Fits(end)) return false;
  for (int k = 0; k < n && count > 0; ++k) count *= range[k];
  end_pos = static_cast<int>(end);
  size = static_cast<int>(count);
  return true;
}

// The offsets sum(dk * tab[k]) for dk in [low, low + count[k]), dimension 0 fastest.
void BoxOffsets(const zrArray<int>& tab, const int* low, const int* count, zrArray<int>& out) {
  const int n = tab.Len();
  // A count below 1 empties the table; otherwise the product is refused as soon as it
  // passes the 32-bit length, before it can overflow.
  std::int64_t total = 1;
  for (int k = 0; k < n; ++k) {
    if (count[k] < 1) total = 0;
  }
  for (int k = 0; k < n && total > 0; ++k)
    total = zr::detail::GrownLength(total * count[k], sizeof(int));
  zrArray<int> result;
  if (total > 0) result.Set(static_cast<int>(total));
  if (total > 0) {
    // Every offset is formed in 64 bits and refused when it leaves the 32-bit range.
    std::int64_t first = 0;
    for (int k = 0; k < n; ++k) {
      first += static_cast<std::int64_t>(low[k]) * tab[k];
      if (!Fits(first)) throw BadParameters(kOffsetsText);
    }
    result[0] = static_cast<int>(first);
    // Each further dimension repeats the table built so far once per extra step.
    int built = 1;
    for (int k = 0; k < n; ++k) {
      for (int d = 1; d < count[k]; ++d)
        for (int i = 0; i < built; ++i) {
          const std::int64_t offset = result[i] + static_cast<std::int64_t>(d) * tab[k];
          if (!Fits(offset)) throw BadParameters(kOffsetsText);
          result[d * built + i] = static_cast<int>(offset);
        }
      built *= count[k];
    }
  }
  out.Move(result);
}

}  // namespace

ZR_DEFINE_TYPE_IDENTITY(zrArrayNDAbs)
ZR_DEFINE_TYPE_IDENTITY_WITH(, zrArrayNDAbs::Index, "zrArrayNDAbs::Index")

zrArrayNDAbs::Index::Index(const Index& other) : zrArray<int>(other) {
  sizes_.SetSubWindow(other.sizes_, 0, other.sizes_.Len());
}

zrArrayNDAbs::Index& zrArrayNDAbs::Index::operator=(const Index& other) {
  if (this == &other) return *this;
  zrArray<int>::operator=(other);
  sizes_.SetSubWindow(other.sizes_, 0, other.sizes_.Len());
  return *this;
}

zrArrayNDAbs::Index::~Index() = default;

void zrArrayNDAbs::Index::Set(const zrArrayNDAbs* array, bool atEnd) {
  const zrArray<int>& range = array->Range();
  const int n = range.Len();
  Init(n);
  for (int k = 0; k < n; ++k) (*this)[k] = atEnd ? range[k] - 1 : 0;
  sizes_.SetSubWindow(range, 0, n);
}

int zrArrayNDAbs::Index::Inc(const int* range) {
  const int n = Len();
  int* const c = GetPointer();
  if (n < 1) return 0;
  c[0] = 0;
  for (int k = 1; k < n; ++k) {
    if (++c[k] < range[k]) return k;
    c[k] = 0;
  }
  return 0;
}

int zrArrayNDAbs::Index::Dec(const int* range) {
  const int n = Len();
  int* const c = GetPointer();
  if (n < 1) return 0;
  c[0] = range[0] - 1;
  for (int k = 1; k < n; ++k) {
    if (--c[k] >= 0) return k;
    c[k] = range[k] - 1;
  }
  return 0;
}

zrArrayNDAbs::zrArrayNDAbs(const zrArray<int>& range) { zrArrayNDAbs::Set(range); }

zrArrayNDAbs::zrArrayNDAbs(const zrArray<int>& range, const zrArray<int>& tab) { Set(range, tab); }

// The block is not taken over: the derived class shares or copies it.
// NOLINTNEXTLINE(bugprone-copy-constructor-init)
zrArrayNDAbs::zrArrayNDAbs(const zrArrayNDAbs& other)
    : zrPArray(),
      range_(other.range_),
      tab_(other.tab_),
      for_tab_(other.for_tab_),
      end_pos_(other.end_pos_),
      size_(other.size_),
      con_(other.con_) {}

zrArrayNDAbs& zrArrayNDAbs::operator=(const zrArrayNDAbs& other) {
  if (this == &other) return *this;
  // Built aside first, so that a failed allocation leaves the geometry whole.
  zrArray<int> range(other.range_);
  zrArray<int> tab(other.tab_);
  zrArray<int> for_tab(other.for_tab_);
  range_.Move(range);
  tab_.Move(tab);
  for_tab_.Move(for_tab);
  end_pos_ = other.end_pos_;
  size_ = other.size_;
  con_ = other.con_;
  return *this;
}

zrArrayNDAbs::~zrArrayNDAbs() = default;

void zrArrayNDAbs::Set(const zrArray<int>& range) {
  if (range.Len() == 0) MkTabFromRange(range, 1);  // refuses no dimensions
  CheckSizes(range);
  zrArray<int> tab = MkTabFromRange(range, 1);
  Set(range, tab);
}

void zrArrayNDAbs::Set(const zrArray<int>& range, const zrArray<int>& tab) {
  if (range.Len() != tab.Len()) ThrowDifferentDimension();
  CheckSizes(range);
  std::int64_t positive = 0;
  std::int64_t negative = 0;
  zrArray<int> f;
  if (!Reach(range, tab, positive, negative) || !ForTab(range, tab, f))
    throw BadParameters(kRangeText);
  int end = 0;
  int size = 0;
  bool con = true;
  if (!Derive(range, tab, f, end, size, con)) throw BadParameters(kRangeText);
  zrArray<int> r(range);
  zrArray<int> t(tab);
  // The new geometry must keep the array inside its block (an array without one passes);
  // otherwise the old geometry comes back and the array is as it was.
  const auto exchange = [&] {
    range_.swap(r);
    tab_.swap(t);
    for_tab_.swap(f);
    std::swap(end_pos_, end);
    std::swap(size_, size);
    std::swap(con_, con);
  };
  exchange();
  if (!CheckPointer()) {
    exchange();
    throw BadParameters(kRangeText);
  }
}

zrArray<int> zrArrayNDAbs::MkTabFromRange(const zrArray<int>& range, int first) {
  const int n = range.Len();
  if (n == 0) throw BadParameters("zrArrayNDAbs:MkTabFromRange:Array length is zero.");
  zrArray<int> tab(n);
  std::int64_t stride = first;
  tab[0] = first;
  for (int k = 1; k < n; ++k) {
    stride *= range[k - 1];
    if (!Fits(stride)) throw BadParameters(kSizesText);
    tab[k] = static_cast<int>(stride);
  }
  return tab;
}

zrArray<int> zrArrayNDAbs::MakeForTab(const zrArray<int>& range, const zrArray<int>& tab) {
  if (tab.Len() != range.Len()) ThrowDifferentDimension();
  zrArray<int> out;
  if (!ForTab(range, tab, out)) throw BadParameters(kOffsetsText);
  return out;
}

// Range and Tab passed the checks of Set: every quantity fits in 32 bits.
void zrArrayNDAbs::MakeAux() {
  zrArray<int> for_tab = MakeForTab(range_, tab_);
  for_tab_.Move(for_tab);
  Derive(range_, tab_, for_tab_, end_pos_, size_, con_);
}

int zrArrayNDAbs::PositiveLength() const {
  std::int64_t positive = 0;
  std::int64_t negative = 0;
  Reach(range_, tab_, positive, negative);
  return static_cast<int>(positive);
}

int zrArrayNDAbs::NegativeLength() const {
  std::int64_t positive = 0;
  std::int64_t negative = 0;
  Reach(range_, tab_, positive, negative);
  return static_cast<int>(negative);
}

int zrArrayNDAbs::MemSize() const { return range_.MemSize(); }

int zrArrayNDAbs::ToMem(unsigned char* buffer) const { return range_.ToMem(buffer); }

int zrArrayNDAbs::FromMem(const unsigned char* buffer) {
  zrArray<int> range;
  const int bytes = range.FromMem(buffer);
  Init(range);
  return bytes;
}

zrArrayNDAbs* zrArrayNDAbs::New() const { return nullptr; }
int zrArrayNDAbs::IsArrayND() const { return 1; }
bool zrArrayNDAbs::IsInheritFromPictureND() const { return false; }
int zrArrayNDAbs::IsSegm() const { return 0; }
void* zrArrayNDAbs::GetSegm() const { return nullptr; }
int zrArrayNDAbs::GetCurMask() const { return -1; }
void zrArrayNDAbs::SetCurMask(int) {}
bool zrArrayNDAbs::IsEqualCurMask(const void*, int) const { return true; }

void zrArrayNDAbs::Rotate90(int a, int b) {
  SwapAxis(a, b);
  Flip(b);
}

void zrArrayNDAbs::Rotate180(int a, int b) {
  Flip(a);
  Flip(b);
}

int zrArrayNDAbs::GetLineWithin(zrArray<int>& p1, zrArray<int>& p2) const {
  if (GetDim() != 2 || p1.Len() != 2 || p2.Len() != 2)
    throw BadParameters("Dimension must equal 2 in GetLine.");
  const int xmax = range_[0] - 1;
  const int ymax = range_[1] - 1;
  int a[2] = {p1[0], p1[1]};
  int b[2] = {p2[0], p2[1]};
  const auto code = [xmax, ymax](const int* p) {
    int c = 0;
    if (p[0] < 0) c |= 1;
    if (p[0] > xmax) c |= 2;
    if (p[1] < 0) c |= 8;
    if (p[1] > ymax) c |= 4;
    return c;
  };
  // The segment is classed once, from the endpoints as passed. Differences of two 32-bit
  // coordinates are exact in double; a moved coordinate that would leave the 32-bit
  // range is refused.
  const auto diff = [](int to, int from) {
    return static_cast<double>(to) - static_cast<double>(from);
  };
  const auto moved = [](int at, double step) {
    const double by = std::trunc(step);
    const double to = static_cast<double>(at) + by;
    if (!(to >= INT32_MIN && to <= INT32_MAX)) throw BadParameters(kPointText);
    return static_cast<int>(to);
  };
  const bool vertical = a[0] == b[0];
  const double slope = vertical ? 0.0 : diff(b[1], a[1]) / diff(b[0], a[0]);
  const bool horizontal = !vertical && slope == 0.0;
  const auto store = [&p1, &p2, &a, &b]() {
    p1[0] = a[0];
    p1[1] = a[1];
    p2[0] = b[0];
    p2[1] = b[1];
  };
  bool swapped = false;
  int moves = 0;
  for (;;) {
    int ca = code(a);
    const int cb = code(b);
    if ((ca | cb) == 0) break;
    if ((ca & cb) != 0) return 0;
    if (ca == 0) {  // the point moved is always an outside one
      std::swap(a, b);
      swapped = !swapped;
      ca = cb;
    }
    if (vertical) {
      a[1] = ca > 7 ? 0 : ymax;
    } else if (horizontal) {
      a[0] = (ca & 1) != 0 ? 0 : xmax;
    } else if ((ca & 3) != 0) {
      const int edge = (ca & 1) != 0 ? 0 : xmax;
      a[1] = moved(a[1], diff(edge, a[0]) * slope);
      a[0] = edge;
    } else {
      const int edge = (ca & 8) != 0 ? 0 : ymax;
      a[0] = moved(a[0], diff(edge, a[1]) / slope);
      a[1] = edge;
    }
    if (++moves > 4) {
      store();
      return 1;
    }
  }
  if (swapped) std::swap(a, b);
  store();
  return 1;
}

void zrArrayNDAbs::MkTabFor4Link(const zrArray<int>& tab, zrArray<int>& out) {
  const int n = tab.Len();
  zrArray<int> result;
  if (n > 0) result.Set(zr::detail::GrownLength(2 * std::int64_t{n}, sizeof(int)));
  for (int k = 0; k < n; ++k) {
    if (tab[k] == INT32_MIN) throw BadParameters(kOffsetsText);
    result[2 * k] = tab[k];
    result[2 * k + 1] = -tab[k];
  }
  out.Move(result);
}

void zrArrayNDAbs::Rcurs2(const zrArray<int>& tab, zrArray<int>& out) {
  const int n = tab.Len();
  zrArray<int> low(n > 0 ? n : 1, -1);
  zrArray<int> count(n > 0 ? n : 1, 3);
  BoxOffsets(tab, low.GetPointer(), count.GetPointer(), out);
}

void zrArrayNDAbs::MkTabFor8Link(const zrArray<int>& tab, zrArray<int>& out) {
  zrArray<int> cube;
  Rcurs2(tab, cube);
  out.Move(cube);
  out.Remove((out.Len() - 1) / 2);
}

void zrArrayNDAbs::MkTabForAp(const zrArray<int>& tab, const zrArray<int>& aperture,
                              zrArray<int>& out) {
  const int n = tab.Len();
  if (aperture.Len() != n) ThrowDifferentDimension();
  zrArray<int> low(n > 0 ? n : 1, 0);
  BoxOffsets(tab, low.GetPointer(), aperture.GetPointer(), out);
}

void zrArrayNDAbs::MkTabForVertexLink(const zrArray<int>& tab, zrArray<int>& out) {
  zrArray<int> aperture(tab.Len() > 0 ? tab.Len() : 1, 2);
  if (tab.Len() == 0) aperture.Clear();
  MkTabForAp(tab, aperture, out);
}
