#include "graph/arc_tangent.h"

#include <cfenv>

namespace talvex::graph {

TALVEX_GRID_LOOPS void ArcTanOfEach(const double* tangents, double* angles, int n) {
  std::fexcept_t flags;
  std::fegetexceptflag(&flags, FE_ALL_EXCEPT);
  for (int i = 0; i < n; ++i)
    angles[i] = ArcTan(tangents[i]);
  std::fesetexceptflag(&flags, FE_ALL_EXCEPT);
}

}  // namespace talvex::graph
