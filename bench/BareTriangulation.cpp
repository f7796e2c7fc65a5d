#include "BareTriangulation.h"

extern "C" {
#include <triangle.h>
}

namespace corvane {

std::int64_t BareTriangulation(std::vector<double>& coordinates, std::vector<std::int32_t>* corners) {
  triangulateio in = {};
  triangulateio out = {};
  in.pointlist = coordinates.data();
  in.numberofpoints = static_cast<int>(coordinates.size() / 2);
  char switches[] = "znOQ";
  triangulate(switches, &in, &out, nullptr);
  if (corners) corners->assign(out.trianglelist, out.trianglelist + 3 * std::int64_t{out.numberoftriangles});
  trifree(out.pointlist);
  trifree(out.pointmarkerlist);
  trifree(out.trianglelist);
  trifree(out.neighborlist);
  return out.numberoftriangles;
}

}  // namespace corvane
