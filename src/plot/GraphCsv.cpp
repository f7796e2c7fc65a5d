#include "plot/GraphCsv.h"

#include "io/NumberText.h"
#include "io/OutputFile.h"

namespace corvane {

bool WriteGraphCsv(std::span<const GraphElement> elements, const std::string& path) {
  OutputFile file(path);
  if (!file.IsOpen() || !file.Write("element,x,y\n")) return false;
  std::string line;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const std::string number = std::to_string(i);
    for (const GraphPoint& point : elements[i].points) {
      line = number;
      line += ',';
      line += ShortestText(point.x);
      line += ',';
      line += ShortestText(point.y);
      line += '\n';
      if (!file.Write(line)) return false;
    }
  }
  return file.Commit();
}

}  // namespace corvane
