#pragma once

#include <cstdint>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "ImgProcess/FeaturePoint.h"
#include "ImgProcess/Kernel1D.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

// An image that an operation makes where it is null, or writes into.
using ResultImage = std::unique_ptr<ErdasImg>;

// Operations on whole images: convolution with one-dimensional kernels, smoothing, gradients, zero crossings,
// corners and their descriptors. Bytes, floats and doubles are filtered, band by band; results are floats or
// doubles. Images of other types are left as they are.
class ImgProcess {
 public:
  virtual ~ImgProcess() = default;

  // The pack type of intermediate images.
  void SetOutPack(std::uint16_t pack) { m_outPack = pack; }

  // Of kernels, convolution, filters and zero crossings the status is 1 for success and, unless told
  // otherwise, -1 if an image has no pixels, its shape (columns, rows, bands) is not the other's, or an
  // argument is none that the operation takes; -2 without memory. A result that is null is made; one that is
  // there keeps its shape and its pixel type, and may be the image itself.

  // Kernels (ImgProcess_kernels.cpp).

  // The widest Gaussian that is made, in pixels: its kernel has 60001 weights.
  static constexpr double kMaxSigma = 10000.0;

  // Whether there is a Gaussian with this sigma: not with one that is negative, above kMaxSigma or not a
  // number.
  static bool HasGaussian(double sigma);

  // exp(-x^2 / (2 sigma^2)), with x the distance from the centre in pixels, over the sum of these values; of
  // 2 * ceil(3 * sigma) + 1 weights. A sigma of 0 gives the one weight 0 / 0, which is not a number. -1, with
  // an empty kernel, for a sigma that HasGaussian does not take.
  static int MakeGaussian(double sigma, Kernel1D& kernel);

  // The Gaussian's values times (x^2 - sigma^2) / sigma^4, less their mean, so that they sum to 0: its second
  // derivative. Results as MakeGaussian.
  static int MakeGaussian2nd(double sigma, Kernel1D& kernel);

  // -0.5, 0, 0.5: half the difference of the pixels on both sides.
  static void MakeCentralDifference(Kernel1D& kernel);

  // Convolution (ImgProcess_convolve.cpp). The output at i of a line is the sum of line[i + j - size / 2] *
  // values[j], j rising from 0, the line being continued at both ends with its end pixel: the kernel is not
  // reversed. Sums start at 0 and are built in the type of the output, float or double, which pixels and
  // weights are converted to; every product and every sum is rounded by itself. Only doubles are not narrowed
  // for sums of floats: products and additions are then those of doubles, and the sum is rounded to a float
  // after each. Input pixels are bytes, floats or doubles. Where there is no filter from the one type to the
  // other, nothing happens: that is no failure.

  // Direction 1 is along rows, 2 along columns. A null result becomes a new image of the input's header with
  // this pack type.
  int Convolve(const ErdasImg& image, const Kernel1D& kernel, int direction, std::uint16_t pack,
               ResultImage& result);

  // Along rows, then along columns of what comes out.
  int Convolve2D(const ErdasImg& image, const Kernel1D& kernel, std::uint16_t pack, ResultImage& result);

  int ConvolveRows(const ErdasImg& image, const Kernel1D& kernel, ErdasImg& result);
  int ConvolveColumns(const ErdasImg& image, const Kernel1D& kernel, ErdasImg& result);
  int ConvolveColumnsInPlace(ErdasImg& result, const Kernel1D& kernel);

  // Convolve into a .lan, whatever its name's extension, row by row: there is never more in memory than the
  // rows that the kernel spans. -3, after the composed write text with the warning icon, if the file can't be
  // written; one that was there is as it was then.
  int ConvolveToFile(const ErdasImg& image, const Kernel1D& kernel, int direction, std::uint16_t pack,
                     const std::string& path);

  // Filters (ImgProcess_filters.cpp).

  // A Gaussian along rows, then along columns. The result takes the input's header, with floats unless the
  // input has floats or doubles; one that is there and does not fit is made anew. A sigma of 0 gives pixels
  // that are not numbers. -1 for a sigma that MakeGaussian does not take, too.
  int GaussianSmooth(const ErdasImg& image, double sigma, ResultImage& result);

  // The magnitude of the gradient, by central differences: sqrt(gx^2 + gy^2) in the type of `pack`. gx goes
  // to "GradientX.lan" in the current folder, gy to "GradientY.lan"; they are not kept in memory. -1 also if
  // a result that is there has another type. -3 if one of these can't be written, as ConvolveToFile tells;
  // the result is made all the same.
  int Gradient(const ErdasImg& image, std::uint16_t pack, ResultImage& result);

  // sqrt(gx^2 + gy^2) for each pixel of floats or doubles, in their type, which both images and the result
  // have in common.
  int Magnitude(const ErdasImg& gx, const ErdasImg& gy, ResultImage& result);

  // The sum of two filters, with g the Gaussian and d its second derivative: g along rows and d along
  // columns, and d along rows and g along columns. The result has the shape of the image. -1 for a sigma that
  // MakeGaussian does not take, too.
  int LaplacianOfGaussian(const ErdasImg& image, double sigma, ErdasImg& result);

  // The same, with the first filter's output in a file, which is added to the second's and removed: its name
  // is the image's file name with "_temp" in front of its last four characters. Besides the images there are
  // only the rows that a kernel spans in memory. -3, after the composed text with the warning icon, if the
  // file can't be written or read back.
  int LaplacianOfGaussianLowMemory(const ErdasImg& image, double sigma, ErdasImg& result);

  // Squares the pixels in place, floats and doubles only.
  int Square(ErdasImg& image);

  // a * b for each pixel of two images of the same geometry, floats and doubles only. A null result becomes a
  // new image of their header.
  int Multiply(const ErdasImg& a, const ErdasImg& b, ResultImage& result);

  // Zero crossings (ImgProcess_zeroCrossing.cpp).

  // Marks the zero crossings of band 0 of floats or doubles in band 0 of the result, which is cleared: with
  // 255, as SetPixel stores it. Rows and columns outside repeat those at the edge. A pixel c above 0 is
  // marked if any of its 8 neighbours is below min(c - threshold, 0); one equal to 0 if, of one of the four
  // pairs of opposite neighbours a (the upper, or left one) and b, a is below 0 and a + 2 * threshold below
  // b, or a is above 0 and a - 2 * threshold above b; one below 0, or not a number, never. Comparisons are
  // those of doubles. An image of another type leaves the result as it was.
  //
  // With threshold 2, the 0 between 5 and -5 is marked: 5 - 4 is above -5.
  int ZeroCrossing(const ErdasImg& image, double threshold, ErdasImg& result);

  // Writes a line "index, column, row" for each pixel above 0, band by band and row by row, with the index
  // counting from 0 through all of them; bytes, floats and doubles only. `nMarked` takes their number. -1 if
  // the file does not open, -3 if it can't be written: after the composed texts with the warning icon.
  int WriteMarkedPixels(const ErdasImg& image, const std::string& path, std::int64_t* nMarked = nullptr);

  // Corners (ImgProcess_corners.cpp, ..._files.cpp, ..._extract.cpp).

  // Finds Harris corners of band 0: CornerResponse, or CornerResponseFromFiles for an image whose response
  // would be as large as kLargeResponse as floats; the response goes to "cornerResponse.lan" in the current
  // folder; ExtractCorners. The list is replaced. 1; the negative statuses of these steps, with an empty
  // list; -5, after the composed write text with the warning icon, if the response can't be written, with the
  // corners all the same.
  int HarrisCorners(const ErdasImg& image, std::vector<Point2>& points, const HarrisParam& param);

  // The same as features with ids from 0 and no values.
  int HarrisFeatures(const ErdasImg& image, FeaturePointList& features, const HarrisParam& param);

  static constexpr std::int64_t kLargeResponse = 524288000;  // bytes: 500 MiB

  // The Harris measure of every pixel of every band. With gx, gy the central differences along rows and
  // columns, and A, B, C the squares of gx, of gy and the products gx * gy, each smoothed with a Gaussian:
  //   R = A * B - C * C - k * ((A + B) * (A + B))
  // from left to right; everything in the type of m_outPack, floats or doubles, to which k is narrowed. A
  // null result becomes a new image of the input's header with that type; one that is there has the image's
  // shape and that type. It is 0 where Convolve filters nothing. 1; -1 for a sigma that MakeGaussian does not
  // take, an image without pixels, or a result that does not fit; -2 without memory.
  // Cost: besides the two images, only the rows that the Gaussian spans are in memory.
  int CornerResponse(const ErdasImg& image, ResultImage& result, const HarrisParam& param);

  // The same numbers with what lies between the steps in files, which go to where the image is: its name with
  // a suffix in front of its last four characters, _GradX and _GradY, _SmoothX2, _SmoothY2 and
  // _SmoothProduct. They are removed at the end, and by a failure. The statuses of CornerResponse; -3, after
  // the composed text with the warning icon, if a file can't be written or read back; -4 if the files differ
  // in geometry.
  int CornerResponseFromFiles(const ErdasImg& image, ResultImage& result, const HarrisParam& param);

  // The pixels of band 0 whose response exceeds the threshold and all of its neighbours (IsLocalMax), row by
  // row. The list is replaced. 1; -2, with an empty list, without memory.
  int ExtractCorners(const ErdasImg& response, const HarrisParam& param, std::vector<Point2>& points);
  int ExtractCornerFeatures(const ErdasImg& response, const HarrisParam& param, FeaturePointList& features);

  // The prominent pixels of band 0 (IsProminent) but for its outermost rows and columns, row by row: x and y
  // in turn, as overlays hold them. The list is replaced. 1; -2, with an empty list, without memory. They are
  // counted before they are stored, so that the list takes no more than it holds.
  int ProminentPixels(const ErdasImg& image, double threshold, std::vector<double>& places);

  // Descriptors (ImgProcess_descriptors.cpp). They are taken from a window of bytes of band 0 around the
  // pixel trunc(y), trunc(x), which becomes the image's subset. With `normalize` each value is divided by the
  // window's mean. A feature keeps the point as it is given, and its id.

  // The steps of the pixel values towards the middle: for each ring around it, from the innermost one to
  // windowSize / 2, 8 a pixel of distance, each a pixel less the one next to it inwards. A window of 7 x 7
  // gives 8 + 16 + 24 values. 1; -1, with the feature as it was, if the window is even, empty or not all in
  // the image.
  int StructuralFeature(ErdasImg& image, double x, double y, std::int32_t windowSize, FeaturePoint& feature,
                        bool normalize);

  // 41 samples in a window of 17 x 17, whatever `windowSize`: the middle, its eight neighbours, and four
  // rings of eight blocks, whose means are cut to whole numbers; each ring is clockwise from the top. 1; -1,
  // with the feature as it was, if the window is not all in the image.
  int SpiralFeature(ErdasImg& image, double x, double y, std::int32_t windowSize, FeaturePoint& feature,
                    bool normalize);

  // The features of the points that have one and lie at least `windowSize` pixels within the outermost pixels
  // of the image: with a size of 7 in 20 columns, from column 7 to 12. Ids count from 0. The list is
  // replaced. 1; -2, with an empty list, without memory.
  int StructuralFeatures(ErdasImg& image, const std::vector<Point2>& points, std::int32_t windowSize,
                         FeaturePointList& features, bool normalize);
  int SpiralFeatures(ErdasImg& image, const std::vector<Point2>& points, std::int32_t windowSize,
                     FeaturePointList& features, bool normalize);

  // Of the shape analysis; the list of its results will join them there.
  double m_parallelTolerance = 10.0 * std::numbers::pi / 180.0;       // radians
  double m_perpendicularTolerance = 10.0 * std::numbers::pi / 180.0;  // radians
  std::uint16_t m_outPack = kPackFloat;
};

}  // namespace corvane
