#include "zr/ndarray/array_nd_abs.h"

#include <cstdint>
#include <utility>

namespace {

[[noreturn]] void ThrowDifferentDimension() { throw BadParameters("Different dimension"); }

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
    result[0] = 0;
    for (int k = 0; k < n; ++k) result[0] += low[k] * tab[k];
    // Each further dimension repeats the table built so far once per extra step.
    int built = 1;
    for (int k = 0; k < n; ++k) {
      for (int d = 1; d < count[k]; ++d)
        for (int i = 0; i < built; ++i) result[d * built + i] = result[i] + d * tab[k];
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

zrArrayNDAbs::zrArrayNDAbs(const zrArray<int>& range)
    : range_(range), tab_(MkTabFromRange(range, 1)) {
  MakeAux();
}

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
  zrArray<int> tab = MkTabFromRange(range, 1);
  Set(range, tab);
}

void zrArrayNDAbs::Set(const zrArray<int>& range, const zrArray<int>& tab) {
  if (range.Len() != tab.Len()) ThrowDifferentDimension();
  zrArray<int> r(range);
  zrArray<int> t(tab);
  zrArray<int> f = MakeForTab(r, t);
  range_.Move(r);
  tab_.Move(t);
  for_tab_.Move(f);
  MakeAux();
}

zrArray<int> zrArrayNDAbs::MkTabFromRange(const zrArray<int>& range, int first) {
  const int n = range.Len();
  if (n == 0) throw BadParameters("zrArrayNDAbs:MkTabFromRange:Array length is zero.");
  zrArray<int> tab(n);
  tab[0] = first;
  for (int k = 1; k < n; ++k) tab[k] = range[k - 1] * tab[k - 1];
  return tab;
}

zrArray<int> zrArrayNDAbs::MakeForTab(const zrArray<int>& range, const zrArray<int>& tab) {
  const int n = range.Len();
  if (tab.Len() != n) ThrowDifferentDimension();
  zrArray<int> out;
  if (n == 0) return out;
  out.Set(n);
  out[0] = tab[0];
  if (n > 1) out[1] = tab[1] - range[0] * tab[0];
  for (int k = 2; k < n; ++k) out[k] = out[k - 1] - range[k - 1] * tab[k - 1] + tab[k];
  return out;
}

void zrArrayNDAbs::MakeAux() {
  zrArray<int> for_tab = MakeForTab(range_, tab_);
  for_tab_.Move(for_tab);
  con_ = true;
  const int n = range_.Len();
  if (n == 0) {
    end_pos_ = 0;
    size_ = 0;
    return;
  }
  std::int64_t end = tab_[0];
  std::int64_t size = 1;
  for (int k = 0; k < n; ++k) {
    if (k >= 1 && for_tab_[k] != 0) con_ = false;
    end += static_cast<std::int64_t>(range_[k] - 1) * tab_[k];
    size *= range_[k];
  }
  end_pos_ = static_cast<int>(end);
  size_ = static_cast<int>(size);
}

int zrArrayNDAbs::PositiveLength() const {
  std::int64_t length = 1;
  for (int k = 0; k < range_.Len(); ++k) {
    const std::int64_t reach = static_cast<std::int64_t>(range_[k] - 1) * tab_[k];
    if (reach > 0) length += reach;
  }
  return static_cast<int>(length);
}

int zrArrayNDAbs::NegativeLength() const {
  std::int64_t length = 0;
  for (int k = 0; k < range_.Len(); ++k) {
    const std::int64_t reach = static_cast<std::int64_t>(range_[k] - 1) * tab_[k];
    if (reach < 0) length += reach;
  }
  return static_cast<int>(length);
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
  // The segment is classed once, from the endpoints as passed.
  const bool vertical = a[0] == b[0];
  const double slope =
      vertical ? 0.0 : static_cast<double>(b[1] - a[1]) / static_cast<double>(b[0] - a[0]);
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
      a[1] += static_cast<int>(static_cast<double>(edge - a[0]) * slope);
      a[0] = edge;
    } else {
      const int edge = (ca & 8) != 0 ? 0 : ymax;
      a[0] += static_cast<int>(static_cast<double>(edge - a[1]) / slope);
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
