#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "Segmentation/SegmentImage.h"

namespace corvane {

// The segmentation step by step as it is defined, with all edges and colours in tables.
class PlainSegmentation {
 public:
  // Planes of one or three colours, pixel (x, y) at y * width + x.
  PlainSegmentation(std::vector<std::vector<float>> planes, int width, int height, float sigma, float c,
                    int minSize)
      : planes_(std::move(planes)), width_(width), height_(height), sets_(width * height) {
    for (int i = 0; i < width * height; ++i) sets_[static_cast<std::size_t>(i)] = {0, i, 1, c};
    for (auto& plane : planes_)
      plane = Convolved(Convolved(plane, width, height, sigma), height, width, sigma);
    MakeEdges();
    std::stable_sort(edges_.begin(), edges_.end(), [](const Edge& a, const Edge& b) { return a.w < b.w; });
    for (const Edge& edge : edges_) Merge(edge, c);
    for (const Edge& edge : edges_) {
      const int a = Find(edge.a);
      const int b = Find(edge.b);
      if (a != b && (At(a).size < minSize || At(b).size < minSize)) Join(a, b);
    }
  }

  std::vector<int> Roots() {
    std::vector<int> roots;
    for (int i = 0; i < width_ * height_; ++i) roots.push_back(Find(i));
    return roots;
  }

  int Count() {
    std::vector<int> roots = Roots();
    std::sort(roots.begin(), roots.end());
    return static_cast<int>(std::unique(roots.begin(), roots.end()) - roots.begin());
  }

  std::vector<Rgb> Picture() {
    std::srand(55);
    std::vector<Rgb> table;
    for (int i = 0; i < width_ * height_; ++i) {
      const auto r = static_cast<std::uint8_t>(std::rand());
      const auto g = static_cast<std::uint8_t>(std::rand());
      const auto b = static_cast<std::uint8_t>(std::rand());
      table.push_back({r, g, b});
    }
    std::vector<Rgb> picture;
    for (const int root : Roots()) picture.push_back(table[static_cast<std::size_t>(root)]);
    return picture;
  }

  // One pass of the smoothing over the rows; columns and rows change places in the result.
  static std::vector<float> Convolved(const std::vector<float>& in, int width, int height, float sigma) {
    sigma = std::max(sigma, 0.01f);
    std::vector<float> mask(static_cast<std::size_t>(std::ceil(sigma * 4.0)) + 1);
    float sum = 0.0f;
    for (std::size_t i = 0; i < mask.size(); ++i) {
      const float d = static_cast<float>(i) / sigma;
      mask[i] = static_cast<float>(std::exp(-0.5 * (d * d)));
      if (i > 0) sum += mask[i];
    }
    sum = 2 * sum + mask[0];
    for (float& weight : mask) weight /= sum;
    std::vector<float> out(in.size());
    for (int y = 0; y < height; ++y) {
      const float* const row = &in[static_cast<std::size_t>(y * width)];
      for (int x = 0; x < width; ++x) {
        float value = mask[0] * row[x];
        for (int i = 1; i < static_cast<int>(mask.size()); ++i) {
          value +=
              mask[static_cast<std::size_t>(i)] * (row[std::max(x - i, 0)] + row[std::min(x + i, width - 1)]);
        }
        out[static_cast<std::size_t>(x * height + y)] = value;
      }
    }
    return out;
  }

 private:
  struct Edge {
    float w;
    int a, b;
  };
  struct Node {
    int rank, parent, size;
    float threshold;
  };

  void MakeEdges() {
    const auto add = [&](int x, int y, int toX, int toY) {
      if (toX >= width_ || toY < 0 || toY >= height_) return;
      const auto a = static_cast<std::size_t>(y * width_ + x);
      const auto b = static_cast<std::size_t>(toY * width_ + toX);
      float square = 0.0f;
      for (std::size_t k = 0; k < 3; ++k) {
        const std::vector<float>& plane = planes_[planes_.size() == 3 ? k : 0];
        const float d = plane[a] - plane[b];
        square += d * d;
      }
      edges_.push_back({std::sqrt(square), static_cast<int>(a), static_cast<int>(b)});
    };
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) {
        add(x, y, x + 1, y);
        add(x, y, x, y + 1);
        add(x, y, x + 1, y + 1);
        add(x, y, x + 1, y - 1);
      }
    }
  }

  void Merge(const Edge& edge, float c) {
    int a = Find(edge.a);
    const int b = Find(edge.b);
    if (a == b || edge.w > At(a).threshold || edge.w > At(b).threshold) return;
    Join(a, b);
    a = Find(a);
    At(a).threshold = edge.w + c / static_cast<float>(At(a).size);
  }

  int Find(int x) {
    while (At(x).parent != x) x = At(x).parent;
    return x;
  }

  void Join(int x, int y) {
    if (At(x).rank > At(y).rank) std::swap(x, y);
    const bool tie = At(x).rank == At(y).rank;
    At(x).parent = y;
    At(y).size += At(x).size;
    if (tie) At(y).rank += 1;
  }

  Node& At(int i) { return sets_[static_cast<std::size_t>(i)]; }

  std::vector<std::vector<float>> planes_;
  int width_;
  int height_;
  std::vector<Node> sets_;
  std::vector<Edge> edges_;
};

}  // namespace corvane
