// The arc tangent every phase model takes, in double precision: a rational approximation after
// reduction to |x| <= 0.66 (Cody and Waite's scheme as the Cephes library has it), within two
// units in the last place of the standard library's, so equal to it once a phase is rounded to
// single precision. It is branch-free and inline so that a pass over the grid can run in the
// processor's vector units, and it raises no floating-point exception for a finite argument
// (the passes read those flags to find faults).
#pragma once

#include <cmath>

// On x86-64 Linux the grid loops are also built for AVX2 (four values a step; without fused
// multiply-add, so with the same roundings) and the loader picks the build the processor runs.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__)
#define TALVEX_GRID_LOOPS __attribute__((target_clones("avx2", "default")))
#else
#define TALVEX_GRID_LOOPS
#endif

namespace talvex::graph {

inline double ArcTan(double x) {
  constexpr double kTan3PiOver8 = 2.41421356237309504880;
  constexpr double kMoreBits = 6.123233995736765886130e-17;
  constexpr double kPiOver2 = 1.57079632679489661923;
  constexpr double kPiOver4 = 0.78539816339744830962;
  const double ax = std::fabs(x);
  const bool large = ax > kTan3PiOver8;
  const bool middle = !large && ax > 0.66;
  // One division for all three reductions: -1/ax, (ax-1)/(ax+1) or ax/1.
  const double below = ax - 1.0;
  const double above = ax + 1.0;
  const double numerator = large ? -1.0 : (middle ? below : ax);
  const double denominator = large ? ax : (middle ? above : 1.0);
  const double r = numerator / denominator;
  const double base = large ? kPiOver2 : (middle ? kPiOver4 : 0.0);
  const double extra = large ? kMoreBits : (middle ? 0.5 * kMoreBits : 0.0);
  const double z = r * r;
  const double p = (((-8.750608600031904122785e-1 * z - 1.615753718733365076637e1) * z -
                     7.500855792314704667340e1) *
                        z -
                    1.228866684490136173410e2) *
                       z -
                   6.485021904942025371773e1;
  const double q = ((((z + 2.485846490142306297962e1) * z + 1.650270098316988542046e2) * z +
                     4.328810604912902668951e2) *
                        z +
                    4.853903996359136964868e2) *
                       z +
                   1.945506571482613964425e2;
  const double y = base + (r * (z * p / q) + r + extra);
  return std::copysign(y, x);
}

// ArcTan of n tangents at once, in the vector units. Its file is compiled without the
// assumption that floating-point operations may trap, which the compiler needs before it turns
// the reductions' choices into vector selects; it may then divide for every reduction and raise
// flags the scalar form never would. An arc tangent itself is no fault (a NaN or infinite
// tangent has raised its flag before), so the exception flags are put back as they were.
void ArcTanOfEach(const double* tangents, double* angles, int n);

}  // namespace talvex::graph
