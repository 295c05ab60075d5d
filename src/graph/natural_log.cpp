#include "graph/natural_log.h"

#include <cfenv>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "graph/arc_tangent.h"  // TALVEX_GRID_LOOPS

namespace talvex::graph {

namespace {

inline double BranchFreeLog(double x) {
  constexpr double kLn2Hi = 6.93147180369123816490e-01;
  constexpr double kLn2Lo = 1.90821492927058770002e-10;
  constexpr double kLg1 = 6.666666666666735130e-01, kLg2 = 3.999999999940941908e-01;
  constexpr double kLg3 = 2.857142874366239149e-01, kLg4 = 2.222219843214978396e-01;
  constexpr double kLg5 = 1.818357216161805012e-01, kLg6 = 1.531383769920937332e-01;
  constexpr double kLg7 = 1.479819860511658591e-01;
  std::uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  // Put the mantissa between sqrt(1/2) and sqrt(2): those above sqrt(2) take one more power of 2.
  const std::uint64_t mantissa = bits & 0x000FFFFFFFFFFFFFull;
  const bool high = mantissa > 0x6A09E667F3BCCull;  // sqrt(2) = 1.6A09E667F3BCD p0
  const std::uint64_t mBits = mantissa | (high ? 0x3FE0000000000000ull : 0x3FF0000000000000ull);
  double m;
  std::memcpy(&m, &mBits, sizeof m);
  // The exponent as a double without an integer conversion (which the vector units lack for
  // 64-bit integers): its bits under those of 2^52 give exactly 2^52 + exponent.
  const std::uint64_t exponentBits = ((bits >> 52) & 0x7FF) + (high ? 1 : 0);
  const std::uint64_t shiftedBits = 0x4330000000000000ull | exponentBits;
  double shifted;
  std::memcpy(&shifted, &shiftedBits, sizeof shifted);
  const double k = shifted - (4503599627370496.0 + 1023.0);
  const double f = m - 1.0;
  const double s = f / (2.0 + f);
  const double z = s * s;
  const double w = z * z;
  const double t1 = w * (kLg2 + w * (kLg4 + w * kLg6));
  const double t2 = z * (kLg1 + w * (kLg3 + w * (kLg5 + w * kLg7)));
  const double r = t2 + t1;
  const double halfSquare = 0.5 * f * f;
  return k * kLn2Hi - ((halfSquare - (s * (halfSquare + r) + k * kLn2Lo)) - f);
}

}  // namespace

TALVEX_GRID_LOOPS void LogOfEach(const double* values, double* logs, int n) {
  std::fexcept_t flags;
  std::fegetexceptflag(&flags, FE_ALL_EXCEPT);
  for (int i = 0; i < n; ++i)
    logs[i] = BranchFreeLog(values[i]);
  std::fesetexceptflag(&flags, FE_ALL_EXCEPT);
  for (int i = 0; i < n; ++i) {
    if (!(values[i] >= DBL_MIN && values[i] <= DBL_MAX)) logs[i] = std::log(values[i]);
  }
}

}  // namespace talvex::graph
