#include "graph/curve.h"

#include <string>

#include "protocol/frame.h"

namespace talvex::graph {

float Curve::AtHz(int hz) const {
  const std::optional<int> point = GridIndexOfHz(hz);
  if (!point) throw IndexError(std::to_string(hz) + " Hz is not a point of the response grid");
  return (*this)[*point];
}

}  // namespace talvex::graph
