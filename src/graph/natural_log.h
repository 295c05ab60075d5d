// The natural logarithm of a whole grid of values at once, in the vector units: fdlibm's
// reduction x = 2^k * m (m within sqrt(1/2) .. sqrt(2)) and its polynomial in s = (m-1)/(m+1),
// within one unit in the last place of the standard library's, so equal to it once a magnitude
// is rounded to single precision. Values that are not positive normal numbers (zero, negative,
// subnormal, infinite, NaN) are taken by std::log itself, so they raise the same
// floating-point exceptions a pass reads to find faults.
#pragma once

namespace talvex::graph {

void LogOfEach(const double* values, double* logs, int n);

}  // namespace talvex::graph
