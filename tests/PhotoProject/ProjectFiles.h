#pragma once

#include <string>
#include <vector>

#include "support/TempFolder.h"

namespace corvane {

// A block of two strips, of two photos and of one, as its three files; a test replaces the parts it is about.
// Pass point "A" lies in all photos, "B" in none of the ground point file, "C1" is a control point.
struct ProjectFiles {
  std::string ground =
      "GROUND\n"
      "1\n"
      "C1 3\n 500 600 70\n 0.1 0.2 0.3\n"
      "1\n"
      "A 2\n 510.5 610.25 71\n 1 1 1\n";
  std::string camera =
      "CAMERA calibration\n"
      "Focal 99\n"
      "Fiducials 2\n"
      "1 0.5 -0.25\n"
      "1 106 -106.5\n"
      "2 -107 107.5\n"
      "9 1 2 3 4 5\n";
  std::string head = "PROJECT Hills cam.txt\n100 1.5 2.5 3.5 4.5\n";
  std::string strips = "2\n2 North\n1 South\n";
  std::string photos = "n1.lan N1\nn2.lan N2\ns1.lan S1\n";
  std::vector<std::string> interiors = {
      "1 1 1 n1\n3 10 20\n0.1 0 -5 0 -0.1 4\n1 1\nA 10 20\nC1 30 40\n",
      "0 2 1 s1\n0.3 0 -7 0 -0.3 6\n1 0\nA 13 23\n",
      "0 1 2 n2\n0.2 0.01 -6 0.02 -0.2 5\n2 0\nB 12.5 22.125\nA 11 21\n",
  };
  std::vector<std::string> exteriors = {
      "0 1 2 n2\n0 0 0 0 0 0\n0 0 180 2000 200 1000\n",
      "0 1 1 n1\n9 9 9 9 9 9\n90 -45 18 1000.5 200.25 1000\n",
      "0 2 1 s1\n0 0 0 0 0 0\n0 0 0 1000 100 1000\n",
  };

  std::string Project() const {
    std::string text = head + strips + photos;
    for (const std::string& block : interiors) text += block;
    for (const std::string& block : exteriors) text += block;
    return text;
  }

  // Writes block.pj, block.gpt and cam.txt into the current folder.
  void Write() const {
    WriteFileBytes("block.gpt", ground);
    WriteFileBytes("cam.txt", camera);
    WriteFileBytes("block.pj", Project());
  }
};

}  // namespace corvane
