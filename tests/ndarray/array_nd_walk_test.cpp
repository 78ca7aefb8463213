// zrArrayND<T> element walks against a plain loop over the index space: every view
// geometry (flips, axis exchanges, odd sub-windows, sizes around the block edge of the
// vector kernels) and every kernel level must give each element exactly its own result.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <initializer_list>
#include <vector>

#include "zr/zr.h"

namespace {

zrArray<int> I(std::initializer_list<int> values) {
  zrArray<int> a;
  for (int v : values) a.push_back(v);
  return a;
}

zrArray<int> I(const std::vector<int>& values) {
  zrArray<int> a;
  for (int v : values) a.push_back(v);
  return a;
}

// A view of `base` (shape `shape`, dense) by name: "" the array itself, "fK" flipped along
// K, "sKL" axes K and L exchanged, "w" a window one element in from each side (where
// the size allows it); steps apply left to right.
template <class T>
void MakeView(zrArrayND<T>& base, zrArrayND<T>& view, const std::vector<int>& shape,
              const std::vector<const char*>& steps, T (*value)(int)) {
  base.Set(I(shape));
  for (int k = 0; k < base.GetSize(); ++k) base.GetPointer()[k] = value(k);
  view.Set(base);
  for (const char* s : steps) {
    if (s[0] == 'f') view.Flip(s[1] - '0');
    if (s[0] == 's') view.SwapAxis(s[1] - '0', s[2] - '0');
    if (s[0] == 'w') {
      std::vector<int> start(shape.size());
      std::vector<int> range(shape.size());
      for (int k = 0; k < view.GetDim(); ++k) {
        const int n = view.Range()[k];
        start[k] = n > 2 ? 1 : 0;
        range[k] = n > 2 ? n - 2 : n;
      }
      zrArrayND<T> whole;
      whole.Set(view);
      view.SetSubWindow(whole, I(start), I(range));
    }
  }
}

// The offset of every multi-index of `a`, dimension 0 fastest, by multiplication.
template <class T>
std::vector<std::ptrdiff_t> Offsets(const zrArrayND<T>& a, const T* block) {
  std::vector<std::ptrdiff_t> out;
  std::vector<int> idx(a.GetDim(), 0);
  for (int e = 0; e < a.GetSize(); ++e) {
    std::ptrdiff_t off = a.GetPointer() - block;
    for (int k = 0; k < a.GetDim(); ++k) off += static_cast<std::ptrdiff_t>(idx[k]) * a.Tab()[k];
    out.push_back(off);
    for (int k = 0; k < a.GetDim() && ++idx[k] == a.Range()[k]; ++k) idx[k] = 0;
  }
  return out;
}

double Dest(int k) { return 1.0 + k / 7.0; }
double Source(int k) { return 3.0 - k / 3.0; }
// Integer values repeat every 1000 elements, so that products of the large cases fit.
int DestInt(int k) { return 1000 + 3 * (k % 1000); }
int SourceInt(int k) { return 7 * (k % 1000) - 5; }

// The operations under test: the array's own and the plain element form.
template <class T>
struct Op {
  const char* name;
  std::function<void(zrArrayND<T>&, const zrArrayND<T>&)> array;
  std::function<T(T, T)> plain;
};

template <class T>
std::vector<Op<T>> Ops() {
  return {{"+=", [](zrArrayND<T>& x, const zrArrayND<T>& y) { x += y; },
           [](T x, T y) { return T(x + y); }},
          {"-=", [](zrArrayND<T>& x, const zrArrayND<T>& y) { x -= y; },
           [](T x, T y) { return T(x - y); }},
          {"*=", [](zrArrayND<T>& x, const zrArrayND<T>& y) { x *= y; },
           [](T x, T y) { return T(x * y); }},
          {"/=", [](zrArrayND<T>& x, const zrArrayND<T>& y) { x /= y; },
           [](T x, T y) { return T(x / y); }},
          {"=", [](zrArrayND<T>& x, const zrArrayND<T>& y) { x = y; }, [](T, T y) { return y; }}};
}

// Target and source views of the same sizes, each from its own block: the whole target
// block afterwards must match the plain loop bit for bit (elements outside the view
// untouched), and a deep copy of the source must list its elements in storage order.
template <class T>
void Check(const std::vector<int>& shape, const std::vector<const char*>& dest,
           const std::vector<const char*>& source, T (*dv)(int), T (*sv)(int)) {
  for (const Op<T>& op : Ops<T>()) {
    zrArrayND<T> dbase;
    zrArrayND<T> sbase;
    zrArrayND<T> d;
    zrArrayND<T> s;
    MakeView(dbase, d, shape, dest, dv);
    MakeView(sbase, s, shape, source, sv);
    // Views of other sizes than the target cannot meet it.
    ASSERT_EQ(d.Range() == s.Range(), true);
    std::vector<T> expect(dbase.GetPointer(), dbase.GetPointer() + dbase.GetSize());
    const std::vector<std::ptrdiff_t> od = Offsets(d, dbase.GetPointer());
    const std::vector<std::ptrdiff_t> os = Offsets(s, sbase.GetPointer());
    for (std::size_t e = 0; e < od.size(); ++e)
      expect[od[e]] = op.plain(expect[od[e]], sbase.GetPointer()[os[e]]);
    op.array(d, s);
    EXPECT_EQ(std::memcmp(expect.data(), dbase.GetPointer(), expect.size() * sizeof(T)), 0)
        << op.name << " sizes " << shape.size();

    const zrArrayND<T> copy(s);
    std::vector<T> listed;
    for (std::ptrdiff_t o : os) listed.push_back(sbase.GetPointer()[o]);
    EXPECT_EQ(std::memcmp(listed.data(), copy.GetPointer(), listed.size() * sizeof(T)), 0);
    // The iterators walk the same storage order, line by line.
    const zrArrayND<T>& view = s;
    EXPECT_EQ(std::vector<T>(view.begin(), view.end()), listed);
  }
}

// Exchanged axes need equal sizes on both operands: the shapes below are symmetric in
// the axes they exchange.
struct Case {
  std::vector<int> shape;
  std::vector<const char*> dest;
  std::vector<const char*> source;
};

std::vector<Case> Cases() {
  std::vector<Case> out;
  // Sizes 1, the kernels' block edge of 8 and either side of it, 16 +- 1, and lines long
  // enough to be cut into prefetched chunks.
  for (int n : {1, 7, 8, 9, 15, 17}) {
    out.push_back({{n}, {}, {"f0"}});
    out.push_back({{n, n}, {}, {"s01"}});
    out.push_back({{n, n}, {"f1"}, {"s01", "f0"}});
    out.push_back({{n, 3, n}, {}, {"s02"}});
    out.push_back({{n, 3, n}, {"s02"}, {}});
    out.push_back({{n, 3, n}, {}, {"f0"}});
    out.push_back({{n, 3, n}, {"f2"}, {"s02", "f1"}});
    out.push_back({{n, n, 2}, {"w"}, {"s01", "w"}});
  }
  // Planes longer than the prefetch distance of 32 lines, with short blocks at either end
  // (a window moves the 64-byte boundaries); 185 x 185 goes in block rows of 32 lines.
  for (int n : {41, 57, 185}) {
    out.push_back({{n, n}, {}, {"s01"}});
    out.push_back({{n, 2, n}, {}, {"s02"}});
    out.push_back({{n, n, 2}, {"w"}, {"s01", "w"}});
  }
  out.push_back({{130, 3}, {}, {"f0"}});
  out.push_back({{130, 3}, {"f0"}, {}});
  out.push_back({{200, 2, 2}, {"f0", "f2"}, {"f0"}});
  out.push_back({{300, 3}, {"f0"}, {"f0"}});
  out.push_back({{33, 5, 33}, {"w"}, {"s02", "w"}});
  out.push_back({{33, 5, 33}, {"s02", "w"}, {"w"}});
  out.push_back({{24, 4, 24}, {"f1"}, {"s02"}});
  out.push_back({{16, 3, 16}, {}, {"s02", "f2"}});
  out.push_back({{9, 5, 9, 2}, {}, {"s02"}});
  out.push_back({{9, 2, 3, 9}, {"f3"}, {"s03", "f1"}});
  out.push_back({{9, 5, 3, 9}, {"w"}, {"s03", "w", "f0"}});
  out.push_back({{10, 10, 10}, {"s12"}, {"s01"}});
  return out;
}

class NDWalk : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override { previous_ = zr::detail::NDVectorLevel(GetParam()); }
  void TearDown() override { zr::detail::NDVectorLevel(previous_); }

 private:
  int previous_ = 0;
};

TEST_P(NDWalk, DoublesMatchThePlainLoopForEveryGeometry) {
  for (const Case& c : Cases()) {
    SCOPED_TRACE(::testing::Message()
                 << "shape[0] " << c.shape[0] << " dim " << c.shape.size() << " dest steps "
                 << c.dest.size() << " source steps " << c.source.size());
    Check<double>(c.shape, c.dest, c.source, Dest, Source);
  }
}

TEST_P(NDWalk, IntegersMatchThePlainLoopForEveryGeometry) {
  for (const Case& c : Cases()) Check<int>(c.shape, c.dest, c.source, DestInt, SourceInt);
}

// A source that overlaps its target is read as it stood, whatever the kernels.
TEST_P(NDWalk, OverlappingOperandsAreReadBeforeTheyAreWritten) {
  zrArrayND<double> base(I({8, 8}));
  for (int k = 0; k < 64; ++k) base.GetPointer()[k] = Dest(k);
  std::vector<double> expect(base.GetPointer(), base.GetPointer() + 64);
  zrArrayND<double> view;
  view.Set(base);
  view.SwapAxis(0, 1);
  const std::vector<double> before = expect;
  for (int j = 0; j < 8; ++j)
    for (int i = 0; i < 8; ++i) expect[i + 8 * j] += before[j + 8 * i];
  base += view;
  EXPECT_EQ(std::memcmp(expect.data(), base.GetPointer(), sizeof(double) * 64), 0);
}

INSTANTIATE_TEST_SUITE_P(Levels, NDWalk, ::testing::Values(0, 1, 2));

}  // namespace
