#include "commands/CommandRows.h"

#include "commands/FeaturesMenu.h"
#include "commands/FileMenu.h"
#include "commands/FrameMenu.h"
#include "commands/ImageMenu.h"
#include "commands/MatchingMenu.h"
#include "commands/NotBuilt.h"
#include "commands/TinMenu.h"
#include "commands/UtilitiesMenu.h"

namespace corvane {

namespace {

using enum MenuPlace;

// Items and prompts are the program's own words, misspellings included. An item without
// handler stands disabled.
// clang-format off
const CommandRow kRows[] = {
    {Standard, "File", "&New", "Create a new document", OnFileNew},
    {Standard, "File", "&Open", "Open an existing document", OnFileOpen},
    {Standard, "File", "&Close", "Close the active document", OnFileClose},
    {Standard, "File", "&Save", "Save the active document", OnFileSave},
    {Standard, "File", "Save &As", "Save the active document with a new name", OnFileSaveAs},

    {Working, "Features", "Points", "Detect prominent points based on contrast.", OnPoints},
    {Working, "Features", "Harris Corner", "Detect Harris Corner.", OnHarrisCorner},
    {Working, "Features", "Canny Edge", "Extracr Canny egde", {}},
    {Working, "Features", "Structural Feature", "Extract and describe feature structurally", OnStructuralFeature},
    {Working, "Features", "Spiral Descriptor", "Spiral arranged pixel value descriptor (by Tavrin)", OnSpiralDescriptor},
    {Working, "Matching", "Create Epipolar Images", "Create Epipolar Images from a Stereo Photo Pair.", OnCreateEpipolarImages},
    {Working, "Matching > Exams", "Check Plate", "Check the plate orientation, ect.", OnNotBuilt},
    {Working, "Matching > Exams", "Entropy Map", "Calculate the entropy map for the image.", OnEntropyMap},
    {Working, "Matching > Exams", "Exam Truth", "Given true disparity map, evaluate the matching score (CCC here) for each point.", OnExamTruth},
    {Working, "Matching > Exams", "Matching Exam", "Exam the steps of matching. Press \"g\" to start with a 3D point.Using arrow to change X,Y,Z.", OnNotBuilt},
    {Working, "Matching > Exams", "Filter Object Pts", "Delete the points in objects and filter remain points.", OnNotBuilt},
    {Working, "Matching > Exams", "Remove NonGround Object Pts", "Remove the match points lie in the non-ground object regions.", OnNotBuilt},
    {Working, "Matching > Exams", "Show Ground Pts", "Show the ground points (.pts).", OnShowGroundPoints},
    {Working, "Matching", "Match Muiti-Models", "Match multi-model sequentially, and a points file for all models might be created.", OnNotBuilt},
    {Working, "Matching > Area Matching", "Area (Correlation Coeff)", "Match by searching for max Correlation Coeffecient.", OnAreaCorrelationCoeff},
    {Working, "Matching > Area Matching", "Area (Difference)", "Match by searching for min difference of the sum of the pixels in windows.", OnAreaDifference},
    {Working, "Matching > Area Matching", "Area (Feature Difference)", "Area Difference for Feature Image", OnNotBuilt},
    {Working, "Matching > Area Matching", "Area (Feature CC)", "Match zero-crossing feature point by correlation", OnAreaFeatureCC},
    {Working, "Matching > Area Matching", "Structural Descriptor CC", "Cross-correlation on structural descriptor.", OnStructuralDescriptorCC},
    {Working, "Matching > Area Matching", "Two-Way Match", "Match back and forth. Area based.", OnTwoWayMatch},
    {Working, "Matching > Dense Match", "Area Correlation", "Area based correlation dense disparity match.", OnAreaCorrelation},
    {Working, "Matching > Dense Match", "Dynamic Programming", "Use dynamic programming technology for matching.", OnNotBuilt},
    {Working, "Matching > Dense Match", "Dynamic Programming Max", "Use dynamic programming technology for matching (max cost).", OnNotBuilt},
    {Working, "Matching > Dense Match", "Longest Common SubString", "Using Longest Common SubString algorithm for matching.", OnNotBuilt},
    {Working, "Matching > Dense Match", "Iterative", "Iterative", OnNotBuilt},
    {Working, "Matching", "Relaxation Match", "Relaxation match based on the probabilty of disparity (and matching score).", OnNotBuilt},
    {Working, "Matching", "Segments", "Match along epipolar line to find conjugate segments.", OnNotBuilt},
    {Working, "Matching", "Template Matching", "Looking for a specific template in a image.", OnNotBuilt},
    {Working, "Matching > Vertical Line Locus", "Vertical Line Locus", "Do Vertical Line Locus Matching.", OnNotBuilt},
    {Working, "Matching > Vertical Line Locus", "VLL Test (Sequence Fnt)", "For test matching function(s).", OnNotBuilt},
    {Working, "Matching > Feature Point", "One Image Points", "Match feature points in one image to that in another image", OnNotBuilt},
    {Working, "Matching > Feature Point", "Two Image Points", "", OnNotBuilt},
    {Working, "Matching > Feature Point", "Two Image Invariant", "Match by computing the invariant value.", OnNotBuilt},
    {Working, "Matching > Feature Point", "Ground-Based Matching", "Match on a virtual grid on ground using prominent feature points.", OnNotBuilt},
    {Working, "Matching > Feature Point", "Wavelet Analysis Based", "Use wavelet to approximate the epipolar image profile and match on extrema or segments.", OnNotBuilt},
    {Working, "Matching > Feature Point", "Zero_Crossing Point", "Match using detected point features.", OnNotBuilt},
    {Working, "Matching > Feature Point", "Zero_Crossing Pt Invariant", "Match zero-crossing feature points directly from zero_crossing images.", OnNotBuilt},
    {Working, "Matching > Feature Point", "RANSAC", "Do RANdom SAmple Consensus.", OnNotBuilt},
    {Working, "Matching > Feature Point", "Invariant Fit", "Do invariant fit between two set of feature points.", OnNotBuilt},
    {Working, "Matching > Feature Point", "Invariant Random Fit", "Randomly pick correspondent points and check consensus.", OnNotBuilt},
    {Working, "Matching", "Structural Feature Point", "Match invariant feature read from files", OnNotBuilt},
    {Working, "Matching", "Struct Point Extract + Match", "Extract structural feature from image and match the features", OnNotBuilt},
    {Working, "Matching > Estimate Region Disparity", "Transform", "Calculate transform using reliable points in the region.", OnNotBuilt},
    {Working, "Matching > Estimate Region Disparity", "Weighted Average", "Calculate the average disparity using reliable points in the region.", OnNotBuilt},
    {Working, "Matching", "Feature Point + Object", "Match point features, with matched objects/points as control.", OnNotBuilt},
    {Working, "Matching", "Edges ( of Regions) ", "Match using the polygon edges.", OnNotBuilt},
    {Working, "Matching", "Edges (Fitted) ", "Match using the fitted region edges.", OnNotBuilt},
    {Working, "Matching", "Regions", "Matching by comparing the left regions' properies to the right regions' properties (e.g. area).", OnNotBuilt},
    {Working, "Matching", "Region Area", "Match segmented regions in left image to area in right image.", OnNotBuilt},
    {Working, "Matching", "Object", "Matching based on the segmented regions or recognized objects.", OnNotBuilt},
    {Working, "Matching", "Multi-Scale", "Match using regions and polyline, from the largest scale to the smallest scale", OnNotBuilt},
    {Working, "TIN", "Create TIN", "Create TIN from points (.pts).", OnCreateTin},
    {Working, "TIN", "Point Value Histgram", "Show the histogram of the points values.", OnPointValueHistogram},
    {Working, "TIN", "&Slope Filter", "", OnSlopeFilter},
    {Working, "TIN", "Smooth", "smooth the whole TIN.", OnSmooth},
    {Working, "TIN", "TIN/Points Comparing", "", OnTinPointsComparing},
    {Working, "TIN", "TIN/Points Comparing2", "Read compare area from a file.", OnTinPointsComparing2},
    {Working, "TIN", "Filter (Batch)", "Do slope/smooth filtering in batch.", OnFilterBatch},
    {Working, "TIN", "TIN/Pts Compare(Batch)", "Do TIN/Points comparison in batch.", OnTinPtsCompareBatch},
    {Working, "TIN", "TIN Segmentation", "Segment the TIN into groups by plane cut.", OnTinSegmentation},
    {Working, "TIN", "TIN Classification", "Classify the TIN points into different object types (grnd,bldg, ...).", OnTinClassification},
    {Working, "TIN", "TIN Points Z Histgram", "Create and show the hist of points' elevation.", OnTinZHistogram},
    {Working, "TIN", "TIN Differential", "Create a differential TIN.", OnTinDifferential},
    {Working, "TIN", "Surface Fitting (RBF)", "Fit surface using Radial Basis Functions.", OnSurfaceFitting},
    {Working, "TIN", "Surface Reduction", "Filtering non-ground points from TIN surface.", OnSurfaceReduction},
    {Working, "TIN", "Surface Smooth", "Fitting a surface to points and then remove points above/below the  surface >threshold.", OnSurfaceSmooth},
    {Working, "Image", "Space Resection", "Single Aerial Photo Space Resection.", OnSpaceResection},
    {Working, "Image", "Bundle Adjustment", "Do Bundle Adjustment.", OnBundleAdjustment},
    {Working, "Image", "Create Orthophoto", "Create ortho photo.", OnCreateOrthophoto},
    {Working, "Image", "Histogram", "Create hostogram for image.", OnImageHistogram},
    {Working, "Image", "ISODATA", "Do ISODATA classification (my own fast implement).", OnIsodata},
    {Working, "Image", "Wavelet Transform", "Conduct one level 1-D wavelet decomposition/reconstruction(For Alg. Test).", OnWaveletTransform},
    {Working, "Image", "Segmention", "Segment Classified Image Using Graph Cut.", OnSegmention},
    {Working, "Image", "Vectorization", "Vectorize the classified image.", OnNotBuilt},
    {Working, "Image", "Shape Analysis", "Analyze the shape of vectorized segments.", OnNotBuilt},
    {Working, "Image", "Shape Analysis (Test)", "", OnNotBuilt},
    {Working, "Image", "Zero Crossing", "Apply Zero Crossing to Image.", OnZeroCrossing},
    {Working, "Image", "Gaussian Smooth", "Gaussian smooth with given sigma.", OnGaussianSmooth},
    {Working, "Image", "Gradient Image", "Create gradient image.", OnGradientImage},
    {Working, "Image", "Image Profile", "Draw image profile along row or column.", OnImageProfile},
    {Working, "Image", "Show Image", "Display an image.", OnShowImage},
    {Working, "Image", "Show Vector", "Display the vector (polygons).", OnNotBuilt},
    {Working, "Image", "Show Points", "Display points (on image)", OnShowPoints},
    {Working, "Image", "I/O Test", "", OnImageIoTest},
    {Working, "Vector", "Douglas Poly Simplify", "", OnNotBuilt},
    {Working, "Vector", "Rectangular Fitting", "Fit polygons with rectangles.", OnNotBuilt},
    {Working, "Vector", "Show Vector", "Display the vector (polygons).", OnNotBuilt},
    {Working, "Utilities", "Create TIN", "Create TIN from points (.pts).", OnCreateTin},
    {Working, "Utilities > DEM", "Create DEM", "Create a DEM from TIN.", OnCreateDem},
    {Working, "Utilities > DEM", "Create DEM(from points)", "Create a DEM from text format points.", OnCreateDemFromPoints},
    {Working, "Utilities > DEM", "Generate Flat DEM", "Generate a flat DEM.", OnGenerateFlatDem},
    {Working, "Utilities > DEM", "DEM to ASCII Grid", "", OnDemToAsciiGrid},
    {Working, "Utilities > DEM", "ASCII Grid to DEM", "", OnAsciiGridToDem},
    {Working, "Utilities > DEM", "ASCII Grid to TOPAZ", "Export the ASCII grid file to TOPAZ format which has only one column.", OnAsciiGridToTopaz},
    {Working, "Utilities > DEM", "DEM to Points(.pts)", "Convert (subset of ) DEM to points file (.pts).", OnDemToPoints},
    {Working, "Utilities > DEM", "Points(.pts) to DEM", "Convert a regular grid points into DEM.", OnPointsToDem},
    {Working, "Utilities > Exams", "Check Plate", "Check the plate orientation, ect.", OnNotBuilt},
    {Working, "Utilities > Exams", "Matching Exam", "Exam the steps of matching. Press \"g\" to start with a 3D point.Using arrow to change X,Y,Z.", OnNotBuilt},
    {Working, "Utilities > Exams", "Exam Truth", "Given true disparity map, evaluate the matching score (CCC here) for each point.", OnExamTruth},
    {Working, "Utilities > Image", "Difference Image", "Calculate the difference between two images.", OnDifferenceImage},
    {Working, "Utilities > Image", "Sample Image", "Sample Image By Taking Nth Row and Column Pixels. N is the skip factor.", OnSampleImage},
    {Working, "Utilities > Image", "Scale Pixel Value", "Scale up or down the image pixel values.", OnScalePixelValue},
    {Working, "Utilities > Image", "Image conversion", "Convert image from one format to another.", OnImageConversion},
    {Working, "Utilities > Image", "Subset", "Extract part of the image.", OnSubset},
    {Working, "Utilities > Image", "Subset (to Text)", "Export subset image to a text file.", OnSubsetToText},
    {Working, "Utilities > Points", "Crop Out Points", "Take out points located in given region.", OnCropOutPoints},
    {Working, "Utilities > Points", "Resample Points", "", OnResamplePoints},
    {Working, "Utilities > Points", "Subset Points", "Export a subset of points in user defined area.", OnSubsetPoints},
    {Working, "Utilities > Points", "Subset Points 2", "Subset points in a polygon.", OnSubsetPoints2},
    {Working, "Utilities > Points", "Text Points(XYZ) to Bin", "Convert points in text(X, Y, Z) to binary.", OnTextPointsXyzToBin},
    {Working, "Utilities > Points", "Text Points(IDXYZ) to Bin", "Convert points in text (ID X Y Z) to binary.", OnTextPointsIdxyzToBin},
    {Working, "Utilities > Points", "Merge Grid Points", "Merge smaller regular grid points into a bigger file.", OnMergeGridPoints},
    {Working, "Utilities > Points", "Replace Grid Points", "Replace points in the first file by points from second file.", OnReplaceGridPoints},
    {Working, "Utilities", "Space Intersection", "Convert match points pair to 3D points.", OnSpaceIntersection},
    {Working, "Utilities", "Generate Cross Template", "", OnNotBuilt},
    {Working, "Utilities", "Import Project", "Read the project (.pj).", OnImportProject},
    {Working, "Utilities", "Mask to Shape", "", OnMaskToShape},
    {Working, "Utilities", "TIN to Shape", "Convet TIN file to shape files.", OnTinToShape},
    {Working, "Utilities", "View/Change Points Head", "View points file header and change spacing size.", OnPointsHead},
    {Working, "Utilities", "Test", "This menu is dedicated for function test.", OnTest},

    {Frame, "View", "StereoGram", "Create a random dots stereogram from a depth image.", OnStereoGram},
    {Frame, "LiDAR", "Bare Earth", "Extract Bare Earth from Raw LiDAR Data.", OnBareEarth},

    {None, "", "", "Matching based on a grid on ground.", OnNotBuilt},  // shares the handler of "Ground-Based Matching"
};
// clang-format on

}  // namespace

std::span<const CommandRow> CommandRows() {
  return kRows;
}

}  // namespace corvane
