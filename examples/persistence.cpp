// Persistence: several different objects written back to back into one buffer and read
// back into fresh objects of the same classes.
//
// The flat form carries no tags and no lengths of its own beyond each object's, so the
// reader must read the same classes in the same order; each call returns the bytes it
// handled, and the buffer position advances by that.

#include <cstdio>
#include <vector>

#include "zr/zr.h"

int main() {
  zrArray<double> samples(4);
  for (int i = 0; i < samples.Len(); ++i) samples[i] = 0.5 * i * i;
  zrMatrix<double> rotation(2, 2);
  rotation(0, 0) = 0.0;
  rotation(0, 1) = -1.0;
  rotation(1, 0) = 1.0;
  rotation(1, 1) = 0.0;
  const zrString literal("quarter turn");  // views the literal's characters
  const zrString name(literal);            // the copy has a block of its own
  const zrVec2 origin(1.5, -2.0);
  const zrComplex gain(0.25, 4.0);

  std::vector<unsigned char> buffer(zrMemSize(samples) + zrMemSize(rotation) + zrMemSize(name) +
                                    zrMemSize(origin) + zrMemSize(gain));
  unsigned char* out = buffer.data();
  out += zrToMem(out, samples);
  out += zrToMem(out, rotation);
  out += zrToMem(out, name);
  out += zrToMem(out, origin);
  out += zrToMem(out, gain);
  std::printf("wrote %d bytes for five objects\n", static_cast<int>(out - buffer.data()));

  zrArray<double> samples2;
  zrMatrix<double> rotation2;
  zrString name2;
  zrVec2 origin2;
  zrComplex gain2;
  const unsigned char* in = buffer.data();
  in += zrFromMem(in, samples2);
  in += zrFromMem(in, rotation2);
  in += zrFromMem(in, name2);
  in += zrFromMem(in, origin2);
  in += zrFromMem(in, gain2);

  bool same = in == out && samples2.Len() == samples.Len() && name2 == name &&
              rotation2.ColumnLen() == 2 && rotation2.LineLen() == 2 && origin2.X() == origin.X() &&
              origin2.Y() == origin.Y() && gain2 == gain;
  for (int i = 0; same && i < samples.Len(); ++i) same = samples2[i] == samples[i];
  for (int r = 0; same && r < 2; ++r)
    for (int c = 0; same && c < 2; ++c) same = rotation2(r, c) == rotation(r, c);

  std::printf("read back: samples[3] = %g, rotation(0, 1) = %g, name \"%s\", origin (%g, %g)\n",
              samples2[3], rotation2(0, 1), name2.GetCString(), origin2.X(), origin2.Y());
  std::printf(same ? "every object came back unchanged\n" : "MISMATCH\n");
  return same ? 0 : 1;
}
