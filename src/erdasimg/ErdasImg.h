#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "erdasimg/BandArray.h"
#include "erdasimg/ErdasHeader.h"
#include "erdasimg/PackType.h"
#include "erdasimg/ScanRegion.h"

class GDALDataset;
class GDALDriver;

namespace corvane {

class InputFile;
class OutputFile;

struct ImageSize {
  std::int32_t cx = 0;  // columns
  std::int32_t cy = 0;  // rows

  friend bool operator==(const ImageSize&, const ImageSize&) = default;
};

// Image-file coordinates of pixel (0, 0).
struct ImageStart {
  std::int32_t x = 0;
  std::int32_t y = 0;

  friend bool operator==(const ImageStart&, const ImageStart&) = default;
};

// Pixels: columns left to right, rows top to bottom, all ends included.
struct ImageRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;

  friend bool operator==(const ImageRect&, const ImageRect&) = default;
};

// A rectangle on the ground, in ground units.
struct GroundExtent {
  double minX = 0.0;
  double minY = 0.0;
  double maxX = 0.0;
  double maxY = 0.0;

  friend bool operator==(const GroundExtent&, const GroundExtent&) = default;
};

// A raster image: a header of 128 bytes, one pixel buffer a band, and a second buffer in which windows of
// the image are cut out (the subset).
//
// Row 0 is at the top. A pixel stands at (row * cols + col) * bytesPerPixel in its band, in the type that
// `packType` says. Pixel values cross the interface as doubles, whatever their type.
//
// A path with the extension "lan" is read and written here; any other is read through GDAL, and written as
// GeoTIFF. Of the status results only 1 is success: failures are negative, and those that GDAL tells of
// itself are above 1.
//
// Bands and pixels that are not there read as 0, and what is stored into them is dropped.
//
// GetPixel and SetPixel look the pixel's type up at each call. Hot loops use the forms for rows and for many
// places, or BandPixels.h, which knows the type outside of the loop.
//
// An image that was moved from keeps its header and has no bands.
class ErdasImg {
 public:
  // A file may promise this many bytes of pixels more than it holds; they are zero then.
  static constexpr std::int64_t kMaxMissingBytes = std::int64_t{1} << 31;

  // The same where what is missing has to be filled in: ASCII grids, and ReadInterleaved.
  static constexpr std::int64_t kMaxFilledBytes = std::int64_t{1} << 26;

  static constexpr const char* kNoMemoryText = "Allocate Memory for Image Fails";

  ErdasImg();
  virtual ~ErdasImg();
  ErdasImg(const ErdasImg&) = delete;
  ErdasImg& operator=(const ErdasImg&) = delete;
  ErdasImg(ErdasImg&&) = default;
  ErdasImg& operator=(ErdasImg&&) = default;

  // Memory (ErdasImg.cpp).

  // Takes the header, and zeroed bands for its size and type in place of those that were there. 1; -1 for a
  // size that is not positive, with the header taken; -2 without memory.
  int Create(const ErdasHeader& header, bool contiguous);

  // Zeroed buffers, one allocation for all bands if `contiguous`, which is recorded in m_bandsContiguous.
  // Without buffers if there is no memory.
  BandArray AllocateBands(std::int32_t bands, std::int32_t rows, std::int32_t cols,
                          std::int32_t bytesPerPixel, bool contiguous);
  static void FreeBands(BandArray& bands);

  // Lets bands and subset go.
  void Free();

  // Makes the other image a copy of this one, with its bands in single allocations. As Create.
  int CopyTo(ErdasImg& other) const;

  // Files (ErdasImg_files.cpp, ErdasImg_gdal.cpp, ErdasImg_grids.cpp, ErdasImg_text.cpp).

  // Whether the path's extension is "lan", in any case.
  static bool IsLan(const std::string& path);

  // Reads an image: a .lan with ReadLan, any other with ReadGdal, and what GDAL cannot open again as .lan.
  // Their results; -1, with a warning, if the file does not open; -1 alone for an empty path.
  // Kept: only a path that ReadLan took is stored in m_fileName.
  int Read(const std::string& path);

  // Reads header and pixels of an open .lan: the one band, or for each row a line of each band. Nothing is
  // checked; pixels that the file lacks are zero. Always 1: without memory for the pixels it shows
  // kNoMemoryText and the image has none; without a word if the header is cut short or a size negative.
  int ReadLan(InputFile& file);

  // Bytes of header and pixels that a .lan or a float grid lacked when it was read last; 0 for other files.
  std::int64_t GetMissingBytes() const { return missingBytes_; }

  // Reads all bands in the type of the first one, as bytes if that is none of ours (packType 0xFFFE; 0xFFFF
  // for an unknown type). A dataset without a place on the ground leaves the header's. Prints driver and
  // projection. 1; -1 for null; -3 without memory; GDAL's own code, which is above 1, if reading fails.
  int ReadGdal(GDALDataset* dataset);

  // Writes a .lan, or a GeoTIFF under any other extension, whole or not at all. 1; -1, with a warning, if a
  // .lan can't be written; the results of WriteGdal.
  int Write(const std::string& path);

  // Writes header and pixels in the layout that ReadLan reads. An image without bands is written as the
  // header alone. 1; -1 if a write fails.
  int WriteLan(OutputFile& file) const;

  // Writes the pixels with that driver; place, cell and projection are lost. 1; -1 without a driver; -2,
  // without a message, if the file can't be made or finished, or the image has no pixels; GDAL's own code,
  // which is above 1, if writing pixels fails.
  int WriteGdal(const std::string& path, GDALDriver* driver, char** options);

  // Reads the 128 bytes alone. 1; -1, with a warning, if the file does not open.
  int ReadHeader(const std::string& path);

  // Reads raw floats, with their size and place from the text file of the same name and ".hdr". 1; -1: that
  // file, or -2: the data file does not open; -3: no memory. Pixels that the file lacks are zero.
  // Kept: the lower left corner becomes xMap and yMap, the upper left elsewhere.
  int ReadFloatGrid(const std::string& path);

  // Reads an ASCII grid into doubles (AsciiGrid.h). 1; -1: it does not open; -3: no memory. Cells that it
  // lacks or that are no numbers get its no-data value; `nUnread`, if given, gets how many those are.
  // Kept: the corner as in ReadFloatGrid.
  int ReadAsciiGrid(const std::string& path, std::int64_t* nUnread = nullptr);

  // Writes the pixels as text, band by band: each followed by a blank, a line a row, and an empty line behind
  // each band. Integers are plain, others "%f". A type that is not ours, 4-bit packing included, or an image
  // without bands gives no text. 1; -1 if it can't be written, which WriteText tells with a warning.
  int WriteText(const std::string& path) const;
  int WriteTextTo(OutputFile& file) const;

  // The header (ErdasImg.cpp).

  ImageSize GetSize() const { return {m_header.cols, m_header.rows}; }
  void SetSize(std::int32_t cols, std::int32_t rows) {
    m_header.cols = cols;
    m_header.rows = rows;
  }
  std::int32_t GetBandCount() const { return m_header.bandCount; }
  std::uint16_t GetPackType() const { return m_header.packType; }
  std::int32_t GetBytesPerPixel() const { return m_bytesPerPixel; }
  void SetBytesPerPixel(std::int32_t n) { m_bytesPerPixel = n; }

  // The bytes of a pixel of this type; they become the image's own. The header stays.
  std::int32_t BytesPerPixelOf(std::uint16_t packType);

  // Whether there is anything in the image: a positive size, and buffers of bands.
  bool HasPixels() const {
    return m_bands && m_header.cols > 0 && m_header.rows > 0 && m_header.bandCount > 0;
  }

  // Bytes of one band: cols * rows * bytesPerPixel.
  std::int64_t GetImageBytes() const { return std::int64_t{m_header.cols} * m_header.rows * m_bytesPerPixel; }
  ImageStart GetStart() const { return {m_header.xStart, m_header.yStart}; }
  ErdasHeader* GetHeader() { return &m_header; }
  const ErdasHeader* GetHeader() const { return &m_header; }
  void CopyHeader(ErdasHeader& dest) const { dest = m_header; }
  const BandArray& GetBands() const { return m_bands; }

  // Takes the buffers, which it then shares with whoever has them; the header stays.
  void SetBands(const BandArray& bands) {
    m_bands = bands;
    m_bandsContiguous = bands.IsContiguous() ? 1 : 0;
  }
  const BandArray& GetSubsetBands() const { return m_subset; }
  const std::string& GetFileName() const { return m_fileName; }
  void SetFileName(const std::string& name) { m_fileName = name; }

  // Whether bands, size, pixel type, place and cell are all equal.
  bool SameGeometry(const ErdasImg& other) const;

  // Pixels (ErdasImg_pixels.cpp). The order is always band, row, col.

  // False outside of the image, with the value as it was. A band that is not there reads as 0.
  bool GetPixel(std::int32_t band, std::int32_t row, std::int32_t col, double& value) const;

  // The pixel in every band: as many values as there are. False outside, with the values as they were.
  bool GetPixels(std::int32_t row, std::int32_t col, double* values) const;

  // The pixel at a place on the ground: col = trunc((x - xMap) / xCell), row = -trunc((yMap - y) / yCell).
  // False outside, and for places that are no numbers.
  bool GetPixelXY(std::int32_t band, double x, double y, double& value) const;

  // Stores the value as PixelFrom says; outside of the image it is dropped. Always true. SetPixels stores one
  // value a band, Fill the value in every pixel of every band.
  bool SetPixel(std::int32_t band, std::int32_t row, std::int32_t col, double value);
  bool SetPixels(std::int32_t row, std::int32_t col, const double* values);
  void Fill(double value);

  // GetPixel and SetPixel for consecutive pixels of a row. Pixels outside keep what `values` holds.
  void GetPixelRow(std::int32_t band, std::int32_t row, std::int32_t firstCol,
                   std::span<double> values) const;
  void SetPixelRow(std::int32_t band, std::int32_t row, std::int32_t firstCol,
                   std::span<const double> values);

  // Samples between pixels (ErdasImg_samples.cpp). Whole numbers are the pixels' centres. A place that is not
  // a number is outside for the nearest pixel; bilinear and bicubic samples are not a number there.

  // The pixel at trunc(row + 0.5), trunc(col + 0.5), so that the first one reaches up to -1.5; false outside,
  // and for a band that is not there.
  bool GetPixelNearest(std::int32_t band, double row, double col, double& value) const;

  // Between the four pixels around the place: (1 - fc)(1 - fr) a + (1 - fc) fr b + fc (1 - fr) c + fc fr d, a
  // being the pixel at trunc(row), trunc(col), b the one below it, c the one to its right, d the one across,
  // and fr, fc the fractions above the floor. Always true. Kept: pixels outside of the image, of a band that
  // is not there, too, count as 215, a light grey. As rows and columns are cut towards zero, the first pixel
  // is also that from behind -1 on.
  bool GetPixelBilinear(std::int32_t band, double row, double col, double& value) const;

  // Cubic convolution over 4 x 4 pixels, held to 0 .. 255 whatever the pixel type. Always true.
  // Kept: pixels outside count as 215, those of row and column -1 as the first ones; and here pixel k has its
  // centre at k + 0.5, where the sample is the pixel itself.
  bool GetPixelBicubic(std::int32_t band, double row, double col, double& value) const;

  // The same samples, bit for bit, for many places at once: as many as the shortest of the three spans has.
  // GetPixelsNearest leaves the values of places outside as they were. Faster, as the type is looked up once.
  void GetPixelsNearest(std::int32_t band, std::span<const double> rows, std::span<const double> cols,
                        std::span<double> values) const;
  void GetPixelsBilinear(std::int32_t band, std::span<const double> rows, std::span<const double> cols,
                         std::span<double> values) const;
  void GetPixelsBicubic(std::int32_t band, std::span<const double> rows, std::span<const double> cols,
                        std::span<double> values) const;

  // Central differences (v(col + 1) - v(col - 1)) / 2, the same by rows. A sample that fails counts as the
  // centre. False if the centre fails, with both as they were: only the nearest pixel can.
  bool GetGradientNearest(std::int32_t band, double row, double col, double& gCol, double& gRow) const;
  bool GetGradientBilinear(std::int32_t band, double row, double col, double& gCol, double& gRow) const;
  bool GetGradientBicubic(std::int32_t band, double row, double col, double& gCol, double& gRow) const;

  // One-sided differences: (v(col) - v(col - 1)) / 2, or (v(col + 1) - v(col)) / 2, the same by rows. Always
  // true.
  // Kept: halved, though the step is one pixel.
  bool GetGradientBilinearBack(std::int32_t band, double row, double col, double& gCol, double& gRow) const;
  bool GetGradientBilinearFore(std::int32_t band, double row, double col, double& gCol, double& gRow) const;

  // Rows and columns as raw bytes of the pixel type (ErdasImg_pixels.cpp).

  // Rows, pixels and bands that are not there read as 0.

  // Copies the row, or as much of it as the buffer has room for; an empty one is given the row's size.
  void GetRow(std::int32_t row, std::int32_t band, std::vector<std::uint8_t>& buffer) const;

  // Does nothing with a null buffer; it holds cols * bytesPerPixel bytes.
  void CopyRow(std::int32_t row, std::int32_t band, std::uint8_t* buffer) const;

  // Null for a row that is not there, or not whole.
  void GetRowPointer(std::int32_t row, std::int32_t band, std::uint8_t*& pointer) const;

  // One pixel a row: rows * bytesPerPixel bytes. Nothing happens with a null buffer.
  void GetColumn(std::int32_t col, std::int32_t band, std::uint8_t* buffer) const;
  void SetColumn(std::int32_t col, std::int32_t band, const std::uint8_t* buffer);

  // Subsets (ErdasImg_subset.cpp). Windows are x0, x1, y0, y1, all included; what lies outside of the image
  // is zero. Without a positive size nothing happens, and the subset is the one before. Its buffers are used
  // again while their number and size stay the same and nobody shares them. Without memory there is none, and
  // kNoMemoryText is shown.

  // Cuts the window out, top row first. Unlike ClipToImage it takes pixel indices, which count from 0
  // whatever the image's start: see there.
  const BandArray& GetSubset(std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1);

  // Rows counted from the bottom: the subset runs from image row rows - y0 - 1 to rows - y1 - 1, and
  // m_subsetRect counts from the bottom, too: its top, y0, is the lowest row. With `interleaved` and several
  // bands its samples stand pixel by pixel in one buffer: BandArray::GetBlock() has them, not GetBand().
  const BandArray& GetSubsetFlipped(std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1,
                                    bool interleaved);

  // One row that holds the pixels of the region's runs, from trunc(x[2k]) to before trunc(x[2k + 1]), end to
  // end: `area` of them. A row with an odd number of crossings ends it; what is not reached is zero.
  const BandArray& GetSubsetRegion(const ScanRegion& region);

  // Clears what lies outside of the region's runs in a subset that GetSubset cut over m_subsetRect. Only
  // after GetSubset: others do not lie row by row as m_subsetRect says.
  void ClearSubsetRegion(const ScanRegion& region);

  // Cuts the window with GetSubset, or, not `straight`, GetSubsetFlipped, and makes `dest` an image of it,
  // which shares the subset's pixels with this one. Its start grows by x0 and y0.
  void ExtractTo(std::int32_t x0, std::int32_t x1, std::int32_t y0, std::int32_t y1, bool straight,
                 ErdasImg& dest);

  // Cuts a rectangle of image-file coordinates to the image. 1; -1 if nothing is left, which the rectangle
  // tells, too. The start of the image makes pixel indices of it: in an image of 10 columns and 8 rows that
  // starts at (100, 50), {95, 48, 104, 52} becomes {100, 50, 104, 52}, and GetSubset(0, 4, 0, 2) cuts it out.
  int ClipToImage(ImageRect& rect) const;

  // Cuts a rectangle on the ground to the image's, from xMap to cols * xCell + xMap and between yMap and
  // rows * yCell + yMap.
  void ClipToExtent(GroundExtent& rect) const;

  // Display and interleaving (ErdasImg_interleave.cpp). Samples are bytes, whatever the pixel type.

  // A packed device-independent bitmap: header of 40 bytes, grey palette with one band, rows bottom-up, as
  // wide as a multiple of 4 and padded with 0xFF. MakeDib8 is band 0 alone; MakeDib has 8 bits a pixel for
  // each of up to three bands. Empty without memory, bands or a positive size, and beyond 4 GB. Kept: with
  // two bands the pixels are all zero.
  std::vector<std::uint8_t> MakeDib8() const;
  std::vector<std::uint8_t> MakeDib() const;

  // The first three bands at most, pixel by pixel: cols * rows * min(bands, 3) bytes.
  void GetInterleaved(std::uint8_t* buffer) const;

  // The same from an open .lan of bytes, whose header is taken; m_bands stays. `buffer` gets its size.
  // Samples that the file lacks are 0. 1; -1, with an empty buffer, without a positive size or memory, and
  // for more samples than the bytes that the file holds and kMaxFilledBytes.
  int ReadInterleaved(InputFile& file, std::vector<std::uint8_t>& buffer);

  // The reverse of GetInterleaved, with all bands and any pixel size: cols * rows * bands * bytesPerPixel
  // bytes.
  // Kept: pixel (0, 0) stays as it was.
  void SetFromInterleaved(const std::uint8_t* buffer);

  // Writes the pixels of the buffer: WriteInterleavedLan for a path that ends in ".lan", in any case;
  // SetFromInterleaved and Write for any other.
  int WriteInterleaved(const std::string& path, const std::uint8_t* buffer);

  // A .lan of three bands of bytes, which bandCount becomes: cols * rows * 3 bytes, or null for the header
  // alone. 1; -1, without a message, if it can't be written.
  // Kept: the header's pixel type is written as it is, so that only one of bytes makes a file that reads
  // back.
  int WriteInterleavedLan(const std::string& path, const std::uint8_t* buffer);

  // Sums and tests (ErdasImg_statistics.cpp).

  // Sum and sum of squares of band 0, as bytes, into m_pixelSum and m_pixelSumSq.
  void ComputeSums();

  // The same without the pixels that equal `value`; m_pixelCount is the number taken.
  void ComputeSumsExcept(std::uint8_t value);

  // Adds an image of the same geometry pixel by pixel, if its pixels are floats or doubles. The path form
  // takes a .lan alone, whatever its name, and holds a block of it at a time. 1; -1 if the geometry differs,
  // the file does not open, or it ends before its last pixel, when what it holds has been added; the latter
  // two with a warning.
  int AddImage(const ErdasImg& other);
  int AddImage(const std::string& path);

  // Whether the 3 x 3 block that begins at the pixel, as far as it is in the image, has one value. False for
  // a pixel outside. Kept: the pixel is the block's first corner, not its middle.
  bool IsUniform3x3(std::int32_t band, std::int32_t row, std::int32_t col) const;

  // Whether none of the pixel's eight neighbours, as far as they are in the image, is greater or equal.
  bool IsLocalMax(std::int32_t band, std::int32_t row, std::int32_t col) const;

  // The correlation coefficient of the pattern with the window of its size in `other` that is centred on the
  // pixel, its first column being col - cols / 2; both are band 0 as bytes. With S, Q the sum and sum of
  // squares of the pattern, s, q those of the window, p the sum of products and n = cols * rows of the
  // pattern: (p - s S / n) / sqrt((Q - S^2 / n) (q - s^2 / n)). 1.0 if both are flat, 0.0 if one is, and for
  // a pattern without pixels. What of the window is outside of the image counts as 0, and n stays.
  // pattern.ComputeSums() comes first, which makes S and Q. They are -1.0 each where it was not called, and
  // the result is then not a number, or 0.0 for a flat window.
  static double CorrelateWindow(const ErdasImg& pattern, std::int32_t col, std::int32_t row,
                                const ErdasImg& other);

  // How far the pixel, a byte of band 0, stands out of its 3 x 3 block: 1 if a neighbour w is greater and
  // (w - v) / w exceeds the threshold, 2 if one is less and (v - w) / v does; the first such neighbour, row
  // by row, decides. 0 if there is none, and outside of the image. Neighbours outside do not count.
  int IsProminent(std::int32_t col, std::int32_t row, double threshold) const;

  // Looks for a prominent pixel on circles around the pixel, of the radius 1 first, `radius` last, and on
  // each from left to right, above before below. The first one goes to `col` and `row`. Its IsProminent; 0 if
  // there is none. The start may be outside of the image. No radius takes longer than a walk over the image.
  int FindProminent(std::int32_t& col, std::int32_t& row, std::int32_t radius, double threshold) const;

  // Minimum and maximum, or entropy in nats over 256 bins from 0 on, of each band of a window centred on
  // the pixel, which becomes the subset; they are appended to `values`. The window begins at col - width / 2,
  // row - height / 2. Nothing comes without a positive size, without memory, or if the window's corners are
  // no 32-bit numbers. Not-a-number does not count for minimum and maximum.
  void GetWindowStatistics(std::int32_t col, std::int32_t row, std::int32_t width, std::int32_t height,
                           std::vector<double>& values);
  void GetWindowEntropy(std::int32_t col, std::int32_t row, std::int32_t width, std::int32_t height,
                        std::vector<double>& values);

  std::uint8_t m_subsetContiguous = 0;
  double m_pixelSum = -1.0;  // of ComputeSums; -1.0 before, the squares too
  double m_pixelSumSq = -1.0;
  std::int32_t m_pixelCount = 0;
  BandArray m_bands;
  ErdasHeader m_header;
  std::int32_t m_bytesPerPixel = 1;
  std::string m_fileName;
  std::uint8_t m_bandsContiguous = 0;
  BandArray m_subset;
  ImageSize m_subsetSize;
  ImageRect m_subsetRect;  // the window that the subset was cut from, its rows as GetSubset... counted them

 private:
  // Bands for the header's size and type in place of the old ones. False, with no bands, if they need more
  // than `maxBytes` or there is no memory.
  bool AllocateUpTo(std::int64_t maxBytes, bool contiguous);

  int ReadForeign(const std::string& path);  // 0 if GDAL cannot open it
  int WriteGeoTiff(const std::string& path);

  std::int64_t missingBytes_ = 0;
};

}  // namespace corvane
