// N-dimensional view geometry: offsets, sizes and strides of Set, SetSubWindow, Flip and
// SwapAxis on a small dense block, then the walks over the views that were accepted.
//
// The first byte picks the element type, the next ones the block's sizes (one to four
// dimensions of one to six elements); the rest is a program of steps on two views, a and
// b, of that block. Numbers are one byte each, small and signed, or one of a table of far
// values (65536, 2^30, INT_MAX, INT_MIN, ...) behind a marker byte. A refusal
// (BadParameters) leaves the view as it was; every accepted view must lie inside the
// block, hold at most INT_MAX elements, and walk them all in storage order (iteration,
// Fill, Median, the flat form, a copy and a comparison). Assigning one view to the other
// and adding one to the other are checked against a plain model of the block: both read
// the source as it was before (even when the two overlap), except that a view added to
// itself reads each element as the walk finds it.
#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <vector>

#include "check.h"
#include "zr/ndarray/ndarray.h"

namespace {

class Reader {
 public:
  Reader(const std::uint8_t* data, std::size_t size) : p_(data), end_(data + size) {}
  bool more() const { return p_ < end_; }
  std::uint8_t byte() { return p_ < end_ ? *p_++ : 0; }
  // Mostly small signed numbers; a byte of 0x80 brings one of the far values.
  int number() {
    const std::uint8_t b = byte();
    if (b != 0x80) return static_cast<std::int8_t>(b);
    static const int kFar[] = {0,       1,           -1,          65535,   65536,      65537,
                               32768,   46341,       1 << 29,     1 << 30, -(1 << 30), INT_MAX,
                               INT_MIN, INT_MIN + 1, INT_MAX - 1, -65536};
    return kFar[byte() % (sizeof kFar / sizeof kFar[0])];
  }
  // A list of n numbers.
  zrArray<int> numbers(int n) {
    zrArray<int> out;
    for (int k = 0; k < n; ++k) out.push_back(number());
    return out;
  }

 private:
  const std::uint8_t* p_;
  const std::uint8_t* end_;
};

// Walks that visit every element are run only on views this small: a stride of 0 lets a
// view of a few elements hold up to INT_MAX indices.
constexpr std::int64_t kWalkLimit = 4096;

template <class T>
class Run {
 public:
  explicit Run(const zrArray<int>& sizes) : base_(sizes) {
    T* p = base_.GetPointer();
    for (int k = 0; k < base_.GetSize(); ++k) p[k] = Value(k);
  }

  void Program(Reader& in) {
    a_.Set(base_);
    b_.Set(base_);
    int steps = 0;
    while (in.more() && steps++ < 24) {
      const std::uint8_t op = in.byte();
      zrArrayND<T>& v = (op & 0x80) != 0 ? b_ : a_;
      const zrArrayND<T>& other = (op & 0x80) != 0 ? a_ : b_;
      const zrArrayND<T>& source = (op & 0x40) != 0 ? base_ : other;
      try {
        switch (op & 0x0F) {
          case 0: {
            const int offset = in.number();
            const int n = 1 + in.byte() % 4;
            const zrArray<int> sizes = in.numbers(n);
            const zrArray<int> strides = in.numbers(n);
            v.Set(source, offset, sizes, strides);
            break;
          }
          case 1: {
            const int offset = in.number();
            v.Set(source, offset, in.numbers(source.GetDim()));
            break;
          }
          case 2: {
            const zrArray<int> start = in.numbers(source.GetDim());
            v.SetSubWindow(source, start, in.numbers(source.GetDim()));
            break;
          }
          case 3:
            v.Flip(in.byte() % 5 - 1);
            break;
          case 4: {
            const int x = in.byte() % 5 - 1;
            v.SwapAxis(x, in.byte() % 5 - 1);
            break;
          }
          case 5:
            v.Set(source);
            break;
          case 6:
            Assign(v, other);
            break;
          case 7:
            Add(v, other);
            break;
          case 8:
            Clip(v, in);
            break;
          default:
            break;
        }
      } catch (const BadParameters&) {
        // Refused: the view is whatever it was before, and is checked as such.
      }
      Check(v);
    }
  }

 private:
  static T Value(int k) { return static_cast<T>(k % 97 + 1); }

  std::int64_t Origin(const zrArrayND<T>& v) const {
    return zr_fuzz::Offset(reinterpret_cast<const char*>(v.GetPointer()),
                           reinterpret_cast<const char*>(base_.GetPointer())) /
           static_cast<std::int64_t>(sizeof(T));
  }

  // The element offsets of every multi-index in storage order, from the block's start,
  // each checked to lie in the block.
  std::vector<std::int64_t> Offsets(const zrArrayND<T>& v) const {
    std::vector<std::int64_t> out;
    const int n = v.GetDim();
    std::vector<int> idx(static_cast<std::size_t>(n), 0);
    const std::int64_t origin = Origin(v);
    for (int e = 0; e < v.GetSize(); ++e) {
      std::int64_t off = origin;
      for (int k = 0; k < n; ++k) off += static_cast<std::int64_t>(idx[k]) * v.Tab()[k];
      ZR_FUZZ_CHECK(off >= 0 && off < base_.GetSize());
      out.push_back(off);
      for (int k = 0; k < n && ++idx[k] == v.Range()[k]; ++k) idx[k] = 0;
    }
    return out;
  }

  void Check(zrArrayND<T>& v) {
    const int n = v.GetDim();
    std::int64_t count = n > 0 ? 1 : 0;
    for (int k = 0; k < n; ++k) {
      ZR_FUZZ_CHECK(v.Range()[k] >= 0);
      if (v.Range()[k] == 0) count = 0;
    }
    for (int k = 0; k < n && count > 0; ++k) {
      count *= v.Range()[k];
      ZR_FUZZ_CHECK(count <= INT_MAX);
    }
    ZR_FUZZ_CHECK(count == v.GetSize());
    ZR_FUZZ_CHECK(v.empty() == (count == 0));
    if (count == 0 || count > kWalkLimit) return;
    ZR_FUZZ_CHECK(v.GetMem() == base_.GetMem());
    const std::vector<std::int64_t> offsets = Offsets(v);
    const T* const block = base_.GetPointer();

    // Iteration visits the same elements in the same order.
    std::size_t e = 0;
    for (const T& x : static_cast<const zrArrayND<T>&>(v)) {
      ZR_FUZZ_CHECK(e < offsets.size() && &x == block + offsets[e]);
      ++e;
    }
    ZR_FUZZ_CHECK(e == offsets.size());

    // A dense copy lists them in storage order and compares equal.
    const zrArrayND<T> copy(v);
    for (e = 0; e < offsets.size(); ++e) ZR_FUZZ_CHECK(copy.GetPointer()[e] == block[offsets[e]]);
    ZR_FUZZ_CHECK(copy == v);

    // The flat form: the sizes, then the elements in storage order.
    std::vector<unsigned char> flat(static_cast<std::size_t>(v.MemSize()));
    ZR_FUZZ_CHECK(v.ToMem(flat.data()) == static_cast<int>(flat.size()));
    const std::size_t head = flat.size() - offsets.size() * sizeof(T);
    ZR_FUZZ_CHECK(std::memcmp(flat.data() + head, copy.GetPointer(), offsets.size() * sizeof(T)) ==
                  0);

    // The lower median of the values.
    std::vector<T> values(copy.GetPointer(), copy.GetPointer() + copy.GetSize());
    std::sort(values.begin(), values.end());
    ZR_FUZZ_CHECK(v.Median() == values[(values.size() - 1) / 2]);

    // Fill reaches every element and nothing else; the block is then restored.
    const std::vector<T> before(block, block + base_.GetSize());
    std::vector<T> expect(before);
    for (std::int64_t o : offsets) expect[static_cast<std::size_t>(o)] = T(0);
    v.Fill(T(0));
    ZR_FUZZ_CHECK(std::equal(expect.begin(), expect.end(), block));
    std::copy(before.begin(), before.end(), base_.GetPointer());
  }

  bool Matching(const zrArrayND<T>& x, const zrArrayND<T>& y) const {
    return x.GetDim() == y.GetDim() && x.Range() == y.Range() && x.GetSize() > 0 &&
           x.GetSize() <= kWalkLimit;
  }

  // x = y reads y as it was before any element is written.
  void Assign(zrArrayND<T>& x, const zrArrayND<T>& y) {
    if (!Matching(x, y)) return;
    T* const block = base_.GetPointer();
    std::vector<T> expect(block, block + base_.GetSize());
    const std::vector<T> before(expect);
    const std::vector<std::int64_t> ox = Offsets(x);
    const std::vector<std::int64_t> oy = Offsets(y);
    for (std::size_t e = 0; e < ox.size(); ++e)
      expect[static_cast<std::size_t>(ox[e])] = before[static_cast<std::size_t>(oy[e])];
    x = y;
    ZR_FUZZ_CHECK(std::equal(expect.begin(), expect.end(), block));
  }

  // x += y in storage order, reading y as it was before, or as the walk finds it when y is
  // x itself.
  void Add(zrArrayND<T>& x, const zrArrayND<T>& y) {
    if (!Matching(x, y)) return;
    // An element added to itself doubles once per index: few enough for int not to
    // overflow (the element types wrap only below int).
    if (std::is_same_v<T, int> && x.GetSize() > 16) return;
    T* const block = base_.GetPointer();
    std::vector<T> expect(block, block + base_.GetSize());
    const std::vector<T> before(expect);
    const bool itself = x.GetPointer() == y.GetPointer() && x.Tab() == y.Tab();
    const std::vector<std::int64_t> ox = Offsets(x);
    const std::vector<std::int64_t> oy = Offsets(y);
    for (std::size_t e = 0; e < ox.size(); ++e) {
      T& t = expect[static_cast<std::size_t>(ox[e])];
      const auto s = static_cast<std::size_t>(oy[e]);
      t = static_cast<T>(t + (itself ? expect[s] : before[s]));
    }
    x += y;
    ZR_FUZZ_CHECK(std::equal(expect.begin(), expect.end(), block));
    for (int k = 0; k < base_.GetSize(); ++k) block[k] = Value(k);  // keep values small
  }

  // Clipping a segment of far end points to a two-dimensional view's box.
  static void Clip(const zrArrayND<T>& v, Reader& in) {
    zrArray<int> p1 = in.numbers(2);
    zrArray<int> p2 = in.numbers(2);
    if (v.GetDim() == 2) v.GetLineWithin(p1, p2);
  }

  zrArrayND<T> base_;
  zrArrayND<T> a_;
  zrArrayND<T> b_;
};

template <class T>
void Go(Reader& in) {
  const int n = 1 + in.byte() % 4;
  zrArray<int> sizes;
  for (int k = 0; k < n; ++k) sizes.push_back(1 + in.byte() % 6);
  Run<T> run(sizes);
  run.Program(in);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Reader in(data, size);
  switch (in.byte() % 3) {
    case 0:
      Go<unsigned char>(in);
      break;
    case 1:
      Go<int>(in);
      break;
    default:
      Go<double>(in);
      break;
  }
  return 0;
}
