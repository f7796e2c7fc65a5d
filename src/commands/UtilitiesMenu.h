#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// Turn text points into a points file: "x y z value" and "id, x, y, z, value".
CommandResult OnTextPointsXyzToBin(CCorvaneView& view);
CommandResult OnTextPointsIdxyzToBin(CCorvaneView& view);

// Leaves out the points in the areas of a mask.
CommandResult OnCropOutPoints(CCorvaneView& view);

// Write as text the points in a rectangle that have a least score, or those in the areas of a mask.
CommandResult OnSubsetPoints(CCorvaneView& view);
CommandResult OnSubsetPoints2(CCorvaneView& view);

// Takes one point for each node of a regular grid.
CommandResult OnResamplePoints(CCorvaneView& view);

// Merges grids of points, the highest score first, and puts points of one grid in the place of another's.
CommandResult OnMergeGridPoints(CCorvaneView& view);
CommandResult OnReplaceGridPoints(CCorvaneView& view);

// Turn a raster of heights into an ASCII grid and into points of a grid, and either into a raster.
CommandResult OnDemToAsciiGrid(CCorvaneView& view);
CommandResult OnAsciiGridToDem(CCorvaneView& view);
CommandResult OnDemToPoints(CCorvaneView& view);
CommandResult OnPointsToDem(CCorvaneView& view);

// Writes the cells of an ASCII grid, one a line.
CommandResult OnAsciiGridToTopaz(CCorvaneView& view);

// Makes a raster of one height.
CommandResult OnGenerateFlatDem(CCorvaneView& view);

// Reads a .lan or a grid of raw floats and writes it in the format of another name.
CommandResult OnImageConversion(CCorvaneView& view);

// Cut a window out of an image, as an image or as text.
CommandResult OnSubset(CCorvaneView& view);
CommandResult OnSubsetToText(CCorvaneView& view);

// Takes each Nth pixel of each Nth row.
CommandResult OnSampleImage(CCorvaneView& view);

// Kept: divides by the factor, whatever the item says.
CommandResult OnScalePixelValue(CCorvaneView& view);

// Takes one image from the other, pixel by pixel.
CommandResult OnDifferenceImage(CCorvaneView& view);

// Reads an image and writes it again under another name.
CommandResult OnImageIoTest(CCorvaneView& view);

// Turns match pairs of two photos into points on the ground.
CommandResult OnSpaceIntersection(CCorvaneView& view);

// Shows the header of a points file and changes its spacing.
CommandResult OnPointsHead(CCorvaneView& view);

// Samples a TIN into a raster of heights; or turns text points into a TIN first, in two commands of their
// own.
CommandResult OnCreateDem(CCorvaneView& view);
CommandResult OnCreateDemFromPoints(CCorvaneView& view);

// Writes the triangles as polygons of a shape file.
CommandResult OnTinToShape(CCorvaneView& view);
CommandResult OnMaskToShape(CCorvaneView& view);

// A place for trying routines out; it serves no general use.
CommandResult OnTest(CCorvaneView& view);

// Reads a block of photos, writes their orientation files, and forms and solves the first system.
CommandResult OnImportProject(CCorvaneView& view);

}  // namespace corvane
