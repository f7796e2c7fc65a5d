#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "StereoPair/DenseMaps.h"
#include "StereoPair/LeftGrid.h"
#include "StereoPair/MatchPair.h"
#include "StereoPair/WindowSearch.h"
#include "TIN/TINPoints.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Point3.h"

namespace corvane {

class Feedback;
class InputFile;
class MatchInput;
struct PairLines;

// Two oriented photographs of one ground, and what the matching methods keep from one run to the next: the
// window, the thresholds and ranges of the last form, the pairs of the last method, the ground points of all.
//
// Three spaces are in play.
//   ground  X, Y, Z in the block's units.
//   image   column and row of an image of the pair, as held in memory. The images normally are epipolar ones,
//           so that corresponding points share a row, up to maxRowDisparity of the right photo.
//   search  to a left place (col, row) the right one is looked for around column col + columnOffset, within
//           maxDisparity to either side, in the rows row -+ maxRowDisparity.
// Disparity is left minus right.
//
// A method asks for its inputs, loads the photos and, if one is named, the approximate DEM, matches, writes
// its files and lets the photos go. It returns kDone, or why it has not done its work, which has been told
// but for kCancelled.
class StereoPair {
 public:
  static constexpr int kDone = 1;
  static constexpr int kCancelled = -1;
  static constexpr int kNotLoaded = -2;   // LoadPair
  static constexpr int kNoGeometry = -3;  // InitGeometry
  static constexpr int kNoExtent = -4;    // InitGroundExtent
  static constexpr int kNotWritten = -5;  // a result
  static constexpr int kNoInput = -6;     // a further file that the method needs, or memory

  // The value of a disparity map where there is none.
  static constexpr double kNoDisparity = -128.0;

  static constexpr const char* kGroundLog = "GroundPts.log";

  StereoPair();
  // The photos stay their owner's.
  StereoPair(AerialPhoto& left, AerialPhoto& right);
  ~StereoPair();
  StereoPair(const StereoPair&) = delete;
  StereoPair& operator=(const StereoPair&) = delete;

  // Inputs (StereoPair.cpp).

  // Shows MatchInput, with a test pair of the current folder in a new object, later with the images and the
  // points path of the last form; without a DEM; the numbers are the object's own. On OK takes everything
  // over: the orientation paths are the images' with ".ORN", or ".orn" if only that is there, and "" for an
  // image path without an extension. 1; -1 on Cancel.
  int RunMatchDialog();
  // The same for photos that are there: it shows the paths as they are, the DEM's, too.
  int RunMatchDialogForPhotos();

  // Makes both photos anew from the paths, and the DEM if there is a path of one. 1; -1 at the first that
  // does not open, with "Open Left Orientation Parameters File error!" or the like; what was loaded stays.
  // The orientations come first, then the images, the DEM last.
  int LoadPair();
  // The images of photos that are there, from the image paths, in LoadPair's words. 1 or -1.
  int LoadImagesOfPhotos();
  // The DEM in place of the one before; nothing without a path. 1 or -1.
  int LoadDem();
  // Lets the pixels of the images go.
  void FreeImages(bool left, bool right);
  // The photos stay their owner's.
  void SetPhotos(AerialPhoto* left, AerialPhoto* right);
  void SetImagePaths(const std::string& left, const std::string& right);
  void SetMatchPointsPath(const std::string& path) { matchPointsPath = path; }
  // Lets photos and DEM go.
  void FreePair();

  // Model geometry: overlap 0.6, the base, meanGroundZ = Zs - sqrt(baseX^2 + baseY^2) f / ((1 - overlap) w),
  // w being the left photo's frame width; and the shortcuts to the images. 1; -1 without a photo.
  int InitGeometry();
  // The model's rectangle on the ground, snapped to whole multiples of the spacing. Always 1.
  // Kept: maxY may lie below minY; who walks it orders the corners first.
  int InitGroundExtent();
  // The DEM's rectangle in its place, grown to whole multiples of the spacing. 1; -1, with the rectangle as
  // it was, without a DEM, or if it is empty.
  int ExtentFromDem();

  // What all methods begin with after the form: LoadPair, InitGeometry, InitGroundExtent, and matchPairs
  // emptied. kDone or their codes.
  int OpenPair();

  // What a method says last, in the message pane: its own sentence, and what the person should know of the
  // inputs: files cut short, pixels wider than bytes, numbers that make no orientation.
  void TellOutcome(const std::string& sentence) const;

  // The grid over the left image: steps of groundSpacingX and groundSpacingY over the left photo's pixel
  // size, and as many places as the windows, and maxRowDisparity above and below, leave. No places if spacing
  // or pixel size are no positive numbers, or for more places than the 2^31 - 1 that ids can number; the grid
  // says why. InitGeometry must have run.
  LeftGrid GetLeftGrid() const;

  // "Done %d%% ..." in the message pane of progressWindow, if there is one.
  void TellDone(std::int64_t nDone, std::int64_t nAll) const;

  // Ground points (StereoPair_ground.cpp). What intersects needs both photos.

  // The middle of the shortest line between the rays of two places of the whole scans. Always 1; rays that
  // are parallel leave numbers that are not finite.
  int IntersectImagePoints(const Point2& left, const Point2& right, Point3& out) const;
  // The same for places of images that begin at their headers' xStart, yStart.
  int IntersectSubsetPoints(const Point2& left, const Point2& right, const ErdasHeader& leftHeader,
                            const ErdasHeader& rightHeader, Point3& out) const;
  // Appends the pairs' ground points; ids count on from the points that are there, scores are the pairs'. The
  // coordinates are taken as they are. 1; -1 without memory.
  int AddPairsToGround(std::span<const MatchPair> pairs, TINPoints& points) const;
  // Appends the ground points of two lists of image points, the first of one with the first of the other, and
  // so on, under the left points' ids and values. Where either id is negative there is none. 1; -1 for a null
  // list or without memory; -2 for lists of different lengths.
  int AddPointListsToGround(const TINPoints* left, const TINPoints* right, TINPoints& points) const;
  // Appends the ground point of a pair in these images, with their origins added, under its id. -1: no
  // memory.
  int AddGroundPoint(const MatchPair& pair, TINPoints& points) const;
  // groundPoints, made if there are none.
  TINPoints& GetGroundPoints();

  // The command "Space Intersection": the ground points of a pair file that is asked for, whose coordinates
  // are those of the whole scans, join groundPoints, which are written beside it as ".pts".
  int IntersectPairFile();

  // Files (StereoPair_files.cpp).

  // A pair file has a line "id, left row, left column, right row, right column, score" a pair. Readers scan
  // each line as sscanf does. The first one decides between commas and blanks, and on the number of columns,
  // beyond which nothing is read: without a sixth the scores are -1.0, with fewer than five there is no pair.
  // A line of fewer than five numbers is left out. Columns beyond the sixth have no meaning.
  // Kept: the row stands before the column.

  // In place of the pairs that were there. 1; -1, with the pairs as they were, if the file does not open or
  // read, or does not fit the memory.
  static int ReadPairs(const std::string& path, std::vector<MatchPair>& pairs);
  // Every `step`-th pair from `start` on: 0 for a negative one. Of a step below 1 there is one pair. 1; -1 if
  // the file can't be written, which then is as it was.
  static int WritePairs(const std::string& path, std::span<const MatchPair> pairs, std::int64_t start,
                        std::int64_t step);
  // As two lists of points of equal length, x being the column, y the row, the ids running from 0 and the
  // values the scores. Ends at a line that does not begin with a number, such as an empty one. `lines`, if
  // given, gets what was left out. 1; -1 as ReadPairs.
  static int ReadPairsAsPoints(const std::string& path, TINPoints& left, TINPoints& right,
                               PairLines* lines = nullptr);

  // Every `step`-th ground point, a line "X Y Z score" each with 15 significant digits; of a step below 1 the
  // first one. 1, also for the empty file of no groundPoints; -1, with a warning, if it can't be written.
  int WriteGroundLog(const std::string& path = kGroundLog, std::int64_t step = 1) const;
  // Sorts groundPoints by y, then x, takes their extents anew and writes them as a points file. 1; 0, with
  // nothing written, without points or path; -1, with a warning, if it can't be written.
  int SaveGroundPoints(const std::string& path);
  // WritePairs of all pairs; -1 with a warning.
  static int StorePairs(const std::string& path, std::span<const MatchPair> pairs);
  // The file beside the left image: "a/left.lan" with "_MatchPair.txt" gives "a/left_MatchPair.txt".
  std::string GetLeftName(const std::string& suffix) const;
  // The first of these paths that is one of the files that the form names, or their orientation; "" if none.
  std::string FindInputAmong(const std::vector<std::string>& paths) const;

  // Windows and searches (StereoPair_search.cpp). A window of width x height pixels around (x, y) begins at
  // truncate(x - width / 2), truncate(y - height / 2), with integer halves. Pixels are the bytes of band 0;
  // those outside of an image are 0.

  // The correlation coefficient of the windows around `left` and `right`. With `extractsLeft` the left window
  // is kept, without it the one kept last is taken, whatever `left` says. With `checksDiff` it is -1.0 if the
  // standard deviation of the differences exceeds maxDiffStdev, and a line goes to the debug stream. -1.0
  // without images, a positive size, memory, or a left window of that size, too. A left window without a
  // positive size is none: the one kept before is gone then, so that no window is compared in its stead.
  // Kept: where the left place is (272, 866) both windows are written to "leftSubImg.txt", "rightSubImg.txt".
  double CompareWindows(const Point2& left, const Point2& right, bool extractsLeft, int width, int height,
                        bool checksDiff);
  // The best CompareWindows of the places of the rectangle, all edges included, and of the right position
  // given, which counts only if it lies in the rectangle, whose right and bottom edge do not belong to it
  // then. Ties go to the position given, then to the first row by row. The position becomes the best place.
  // Where no place is above the position given, or above 0.0 if that does not count, the position stays, and
  // its value, or 0.0, comes back. The left window is kept.
  double SearchCorrelation(const Point2& left, Point2& right, int width, int height, const ImageRect& rect,
                           bool checksDiff);
  // The same over the offsets -rowRange to rowRange and -colRange to colRange from the right position, which
  // comes first whatever its value; windows of targetWidth x targetHeight, no check of differences.
  double SearchCorrelationInWindow(const Point2& left, Point2& right, int rowRange, int colRange);
  // As SearchCorrelation without a check of differences; `ratio` is best / second best if the best is above
  // matchThreshold, else 0. The 0.0 that a place has to be above where the position does not count can be the
  // second best; if there is none, it is the lowest double.
  double SearchCorrelationRatio(const Point2& left, Point2& right, int width, int height,
                                const ImageRect& rect, double& ratio);

  // Appends the entropy of the window, in nats, a value a band (ErdasImg::GetWindowEntropy).
  static void WindowEntropy(ErdasImg& image, const Point2& place, int width, int height,
                            std::vector<double>& values);

  // The rectangle truncate(c.x - hx), truncate(c.y - hy), truncate(hx + c.x), truncate(hy + c.y), cut by
  // ClipRect to the places of an image of this size.
  static ImageRect BuildSearchRect(const Point2& centre, double hx, double hy, const ImageSize& size,
                                   int width, int height);
  // Cuts to the places that lie at least half a window within columns 0 to cols - 1 and rows 0 to rows - 1.
  static void ClipRect(ImageRect& rect, const ImageSize& size, int width, int height);

  // Grid methods (StereoPair_area.cpp, StereoPair_feature.cpp, StereoPair_twoWay.cpp).

  // They match the places of GetLeftGrid. The partner of a left column col is looked for in the columns
  // col + columnOffset - maxDisparity to col + columnOffset + maxDisparity, cut to halfW to nCols - halfW of
  // the right image, and in the rows within maxRowDisparity of its photo; first at col + columnOffset of the
  // same row. It counts if its score exceeds matchThreshold. The column offset is asked for, -10 to begin
  // with, which Cancel leaves. Results: kGroundLog, and matchPointsPath if there is a path and a point.

  // "Area (Correlation Coeff)": SearchCorrelation, from a threshold of 0.75 and a range of 55 columns on.
  // Also writes the pairs, "_GridMatchPair.txt".
  int MatchAreaCC();
  // Its grid on a pair that is open, with columnOffset as it is: appends to matchPairs, and to groundPoints
  // if they are wanted. 1; -1 without memory.
  int CorrelateGrid(bool addsGroundPoints);
  // "Area (Difference)": the place is that of the smallest sum of absolute differences (DifferenceSearch),
  // the score its CompareWindows. From 0.5 and 55 on. There are no pairs.
  int MatchAreaDifference();
  // "Area (Feature CC)": SearchCorrelation at the pixels above 0 of the left "_0X.lan" in every tenth row,
  // from 1 % to 99 % of the height; only the column to begin with is cut to the right image. From 55 columns
  // on. The pairs are not written.
  int MatchAreaFeatureCC();
  // "Structural Descriptor CC": the best correlation of structural descriptors of windows of targetWidth x
  // targetWidth pixels (DescriptorSearch). From 0.5 and 55 on. Writes the pairs as MatchAreaCC. With an even
  // width nothing is compared, which is told.
  int MatchStructuralDescriptor();
  // "Two-Way Match": MatchAreaCC without ground points, then SearchCorrelation back from the right places.
  // Those pairs are left whose left window has an entropy of 3.0 nats or more, and which lead back to its
  // column, or the next one. Their ground points take the coordinates as they are. Writes what MatchAreaCC
  // writes and, if pairs are left, "_GridMatchPair2Way.txt". Without a matchPointsPath the points go to
  // "_TwoWay.pts".
  int MatchTwoWay();

  // Dense methods (StereoPair_dense.cpp, StereoPair_truth.cpp, StereoPair_entropy.cpp). Their maps lie pixel
  // by pixel over the left image, under its header, but with one band, however many it has.

  // "Area Correlation": "_DispMap.lan" and "_MeasureMap.lan" beside the left image.
  int DenseAreaCorrelation();
  // Its maps of a pair that is open, with columnOffset as it is. It visits the rows from targetHeight / 2 + 1
  // to before rows - targetHeight / 2 - 1, groundSpacingY apart, and the columns likewise (DensePlaces). The
  // search begins at the disparity -columnOffset, or the DEM's at the pixel if that is finite, and reaches
  // maxDisparity, with a DEM demAccuracy columns to either side. disparityMap becomes the disparity, cut to
  // 16 bits as PixelFrom says, or kNoDisparity for a score below matchThreshold, measureMap the score; both
  // are 0 at pixels that are not visited. 1; -1, with a warning, without memory.
  // Kept: row r of the left image is compared with row r - 1 of the right one, and the place that the search
  // begins with is never compared, as it lies on the rectangle's bottom edge.
  int CorrelateDense(DenseCounts* counts = nullptr);
  // disparityMap (16-bit) and measureMap (float) of zeros. 1; -1, with a warning, without memory.
  int MakeMaps();
  // "Exam Truth", with the true disparities for a DEM: searches around them in the same rows, then smooths
  // the disparities found where that gives better scores. "MeasureMap.lan", "DispTrueNew.lan" after the
  // search, "MeasureMap200.lan", "DispTrueNew200.lan" and so on after every 200th pass of smoothing, so that
  // the maps of fewer passes are not written, and "MeasureMap_Disp.lan", the scores of the truth itself, in
  // the current folder. A pixel without a truth, that is one that is not finite or kNoDisparity, has no
  // disparity and the score 0.
  int ExamTruth();
  // `scores` becomes a float map of what the windows around the pixels score if each of their pixels has the
  // disparity that this map says (MaskedWindows): 0 where the pixel itself has none, and at pixels that
  // CorrelateDense does not visit at a spacing of 1. 1; -1 without memory.
  int ScoreOfDisparityMap(const ErdasImg& disparities, ErdasImg& scores) const;
  // "Entropy Map": the entropies of the windows around all places half a window or more from the border of an
  // image, 0 elsewhere, in "_EntropyMap.lan" beside it. It needs neither form nor photos. Tells its progress
  // whenever another percent is done.
  static int MakeEntropyMap();

  // Least squares with a disparity a pixel (StereoPair_disparity.cpp, StereoPair_disparityGrid.cpp). See
  // DisparityPasses.h for when the passes end.

  // Matches a window of width x height pixels around `left`, each pixel of which has a column disparity of
  // its own; the row disparity is that of `left` and `right`. The unknowns are the corrections to the
  // disparities. The observations are, with the weight 1, for each pixel its grey value less the bilinear
  // sample of the right image at column - disparity, and, with the weight 100, that the disparities' second
  // differences along the row, then down the column, are 0.
  //
  // The disparities start from `startMap`, where it has finite ones, or from left.x - right.x. The passes run
  // from 1 to before `iterationLimit`, 19 being the last in any case; the match diverges with a disparity
  // beyond `disparityLimit` in magnitude. The arrays become the final disparities, row by row. At the end
  // AddDisparityWindow makes pairs, whatever the outcome, which goes to the debug stream. A window may leave
  // the left image: pixels outside have the grey value 0, and pairs that lie off the image.
  //
  // Returns the score, the correlation coefficient of window and samples in the last pass, or 0.0. Where the
  // iteration limit ends the passes it belongs to the disparities before the last corrections; with a limit
  // below 2 there is no pass, so it is 0.0, and arrays and pairs have the disparities of the start.
  // -1.0, with nothing changed, without a window or images, for places outside of them as in
  // LeastSquaresMatch, and for a window whose equations take more than half of the machine's memory. -1.0,
  // too, without memory for what comes up later, the pairs at the end among it.
  //
  // Cost: n (2 width)^2 operations a pass for n pixels, and 4 n width numbers of memory.
  double LeastSquaresDisparity(const Point2& left, const Point2& right, int width, int height,
                               double disparityLimit, int iterationLimit, std::vector<double>& disparities,
                               std::vector<double>& rowDisparities, const ErdasImg* startMap);
  // The same with two unknowns more: shift and gain of the right image's grey values, from 0 and 1 on. -1.0
  // for more than 4094 pixels, too. Cost: n^3 operations a pass, and 4 n^2 numbers of memory.
  double LeastSquaresDisparityGain(const Point2& left, const Point2& right, int width, int height,
                                   double disparityLimit, int iterationLimit,
                                   std::vector<double>& disparities, std::vector<double>& rowDisparities,
                                   const ErdasImg* startMap);
  // The same for a window of targetWidth x targetHeight with the disparities at nodes: every `width` columns
  // and `height` rows from the window's first pixel on, up to the first that is not before the last pixel.
  // Between the nodes disparities are bilinear. Grey values of both images are bilinear samples, gradients
  // those of GetGradientBilinearFore, and the solution is by WeightedLeastSquares. The arrays become those of
  // the nodes, and AddDisparityNodes makes pairs; the last nodes may lie behind the window. -1.0, with
  // nothing changed, for fewer than 3 columns of nodes and more than 4096 nodes, too. Cost: n^3 operations a
  // pass for n nodes, and n a pixel.
  double LeastSquaresDisparityGrid(const Point2& left, const Point2& right, int width, int height,
                                   double disparityLimit, int iterationLimit,
                                   std::vector<double>& disparities, std::vector<double>& rowDisparities,
                                   const ErdasImg* startMap);
  // Appends each pixel of the window to matchPairs, under the next number, and to groundPoints: `left` as its
  // place in the left image, which it may be off, and that less the disparities in the right. 1; 0 without
  // photos; -1 without a window, disparities for it or memory, of which pairs and points may take a quarter
  // of the machine's. Pairs that have been added before memory ran out stay.
  int AddDisparityWindow(const Point2& left, int width, int height, std::span<const double> disparities,
                         std::span<const double> rowDisparities, double score);
  // The same for nodes in rows of `nCols`, the first one at `first` and the others at these steps, in pixels.
  int AddDisparityNodes(const Point2& first, int nCols, int stepX, int stepY,
                        std::span<const double> disparities, std::span<const double> rowDisparities,
                        double score);
  // Stores the window's disparities, plus 0.5, in disparityMap, but for the margins on each side.
  void StoreDisparityWindow(const Point2& left, int width, int height, std::span<const double> disparities,
                            int marginX, int marginY);

  // Whether a result of a least-squares method counts.
  bool IsMatched(double score) const { return score > matchThreshold; }

  std::shared_ptr<AerialPhoto> leftPhoto;
  std::shared_ptr<AerialPhoto> rightPhoto;
  std::unique_ptr<ErdasImg> disparityMap;     // columns, left minus right; under construction
  std::unique_ptr<ErdasImg> rowDisparityMap;  // may stay null
  std::unique_ptr<ErdasImg> measureMap;       // the score of each pixel of disparityMap
  bool ownsPhotos = false;
  bool ownsDem = false;
  Point3 testPoint{666964.0, 201572.0, 241.0};  // of a test block; nothing reads it
  std::int32_t targetWidth = 19;                // of the correlation window, pixels
  std::int32_t targetHeight = 19;
  double groundSpacingX = 1.0;  // grid step in ground units, and pixel step of image grids
  double groundSpacingY = 1.0;
  double demAccuracy = 2.0;  // half height of the range around the DEM; in dense matching pixels of disparity
  double matchThreshold = 0.75;
  double invariantFactor = 1.6666666666666667;
  bool useDiffCheck = false;
  double maxDiffStdev = 25.5;      // 10 % of 255
  std::int32_t maxDisparity = 10;  // columns to either side
  std::int32_t maxRowDisparityFeature = 0;
  std::int32_t columnOffset = 0;  // as typed last
  std::int32_t regionGridStep = 10;
  double regionStepFactor = 1.5;
  std::string method = "CC";  // a label of the similarity in use
  std::string leftImagePath;
  std::string rightImagePath;
  std::string leftOrientationPath;
  std::string rightOrientationPath;
  std::string demPath;
  std::string matchPointsPath;
  std::vector<MatchPair> matchPairs;        // of the last method
  std::unique_ptr<TINPoints> groundPoints;  // of all methods; null before the first
  std::unique_ptr<ErdasImg> dem;
  double groundMinX = 0.0;
  double groundMinY = 0.0;
  double groundMaxX = 0.0;
  double groundMaxY = 0.0;
  double lsmStepLimit = 0.06;  // nothing reads it
  ErdasImg* leftImage = nullptr;
  ErdasImg* rightImage = nullptr;
  std::unique_ptr<InputFile> leftFeatureFile;  // "_0X.lan", open while features are matched
  std::unique_ptr<InputFile> rightFeatureFile;
  std::int32_t disparityScale = 1;  // divides disparities of the approximation
  bool multiScaleActive = false;
  double polygonTolerance = 0.07;
  // a0, a1, a2, b0, b1, b2: the affine transformation that predicts a right position
  std::optional<std::array<double, 6>> offsetTransform;
  Feedback* progressWindow = nullptr;  // null: no progress is told
  double overlap = 0.6;
  double baseX = 0.0;  // right perspective centre minus left
  double baseY = 0.0;
  double baseZ = 0.0;
  double meanGroundZ = 0.0;

 private:
  MatchInput MakeForm() const;
  int AskForm(MatchInput& form);

  SearchResult Search(const Point2& left, int width, int height, const SearchField& field, bool checksDiff);
  std::optional<double> LimitOfDiff(bool checksDiff) const;

  WindowSearch search_;     // holds the left window that is kept
  bool hasForm_ = false;    // whether a form has been confirmed
  std::string inputNotes_;  // what the last status text says of the files that OpenPair has loaded
};

}  // namespace corvane
