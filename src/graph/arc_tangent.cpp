#include "graph/arc_tangent.h"

namespace talvex::graph {

void ArcTanOfEach(const double* tangents, double* angles, int n) {
  for (int i = 0; i < n; ++i)
    angles[i] = ArcTan(tangents[i]);
}

}  // namespace talvex::graph
