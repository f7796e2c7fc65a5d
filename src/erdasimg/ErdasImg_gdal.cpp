// Images of other formats, through GDAL.

#include <gdal_priv.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "erdasimg/ErdasImg.h"
#include "erdasimg/GdalScope.h"
#include "io/MachineMemory.h"
#include "io/StagedFiles.h"
#include "numerics/Truncate.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr const char* kGeoTiff = "GTiff";
constexpr std::int64_t kWriteBlock = std::int64_t{1} << 23;  // bytes of all bands

struct DatasetCloser {
  void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};
using OpenDataset = std::unique_ptr<GDALDataset, DatasetCloser>;

bool IsSharedType(int type) {
  return type >= GDT_UInt16 && type <= GDT_Float64;
}

std::uint16_t PackTypeOf(GDALDataType type) {
  if (type == GDT_Byte) return kPackByte;
  if (type == GDT_Unknown) return 0xFFFF;
  return IsSharedType(type) ? static_cast<std::uint16_t>(type) : 0xFFFE;
}

// The type of the pixels in memory, which are bytes for all other pack types.
GDALDataType GdalTypeOf(std::uint16_t packType) {
  return IsSharedType(packType) ? static_cast<GDALDataType>(packType) : GDT_Byte;
}

void PrintDriver(GDALDriver* driver) {
  const char* const name = driver ? driver->GetMetadataItem(GDAL_DMD_LONGNAME) : nullptr;
  Ui().Print(std::string("Driver: ") + (driver ? driver->GetDescription() : "") + "/" + (name ? name : "") +
             "\n");
}

void PrintProjection(const GDALDataset& dataset) {
  const std::string projection = dataset.GetProjectionRef();
  if (!projection.empty()) Ui().Print("Projection is `" + projection + "'\n");
}

// Place and cell size on the ground; a dataset without them leaves the header as it is.
void TakePlace(GDALDataset& dataset, ErdasHeader& header) {
  double transform[6] = {};
  if (dataset.GetGeoTransform(transform) != CE_None) return;
  header.xMap = static_cast<float>(transform[0]);
  header.yMap = static_cast<float>(transform[3]);
  header.xCell = static_cast<float>(transform[1]);
  header.yCell = static_cast<float>(transform[5]);
  header.xStart = TruncateSaturated(header.xMap);
  header.yStart = TruncateSaturated(header.yMap);
}

std::int64_t LineBytes(const ErdasImg& image) {
  return std::int64_t{image.GetSize().cx} * BytesOfPackType(image.GetPackType());
}

// Whether there are bands for all that the header says.
bool HasAllPixels(const ErdasImg& image) {
  const auto [cols, rows] = image.GetSize();
  const BandArray& bands = image.GetBands();
  return cols > 0 && rows > 0 && image.GetBandCount() > 0 &&
         bands.size() >= static_cast<std::size_t>(image.GetBandCount()) &&
         static_cast<std::int64_t>(bands.GetBandBytes()) / LineBytes(image) >= rows;
}

// Some lines of all bands at a time, because the bands share the blocks of the file.
CPLErr WritePixels(GDALDataset& dataset, const ErdasImg& image) {
  const auto [cols, rows] = image.GetSize();
  const GDALDataType type = GdalTypeOf(image.GetPackType());
  const std::int64_t lineBytes = LineBytes(image);
  const std::int64_t nTogether = std::max<std::int64_t>(kWriteBlock / (lineBytes * image.GetBandCount()), 1);
  for (std::int64_t row = 0; row < rows; row += nTogether) {
    const auto nRows = static_cast<int>(std::min(nTogether, rows - row));
    for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
      std::uint8_t* const first = image.GetBands()[band] + row * lineBytes;
      const CPLErr error = dataset.GetRasterBand(band + 1)->RasterIO(
          GF_Write, 0, static_cast<int>(row), cols, nRows, first, cols, nRows, type, 0, 0, nullptr);
      if (error != CE_None) return error;
    }
  }
  return CE_None;
}

// Overviews, statistics and place of the image that stood there before do not belong to the new one.
void RemoveSideFiles(const std::string& path) {
  std::error_code ignored;
  for (const char* const suffix : {".aux.xml", ".ovr", ".msk"})
    std::filesystem::remove(path + suffix, ignored);
}

// False if what was still to write could not be written.
bool Close(OpenDataset& dataset) {
  CPLErrorReset();
  dataset.reset();
  return CPLGetLastErrorType() < CE_Failure;
}

}  // namespace

int ErdasImg::ReadForeign(const std::string& path) {
  const GdalScope scope;
  GDALAllRegister();
  const OpenDataset dataset(GDALDataset::FromHandle(GDALOpen(path.c_str(), GA_ReadOnly)));
  return dataset ? ReadGdal(dataset.get()) : 0;
}

int ErdasImg::ReadGdal(GDALDataset* dataset) {
  if (!dataset) return -1;
  const GdalScope scope;
  PrintDriver(dataset->GetDriver());
  PrintProjection(*dataset);

  GDALRasterBand* const first = dataset->GetRasterCount() > 0 ? dataset->GetRasterBand(1) : nullptr;
  m_header.cols = dataset->GetRasterXSize();
  m_header.rows = dataset->GetRasterYSize();
  m_header.bandCount = static_cast<std::uint16_t>(dataset->GetRasterCount());
  m_header.packType = PackTypeOf(first ? first->GetRasterDataType() : GDT_Unknown);
  TakePlace(*dataset, m_header);

  // Compressed and virtual files may hold any number of pixels, so that only the machine limits them.
  if (!AllocateUpTo(BytesOfMachine(), true)) return -3;
  const CPLErr error =
      dataset->RasterIO(GF_Read, 0, 0, m_header.cols, m_header.rows, m_bands[0], m_header.cols, m_header.rows,
                        GdalTypeOf(m_header.packType), GetBandCount(), nullptr, 0, 0, 0, nullptr);
  return error != CE_None ? error : 1;
}

int ErdasImg::WriteGeoTiff(const std::string& path) {
  const GdalScope scope;
  GDALAllRegister();
  GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName(kGeoTiff);
  if (!driver) std::exit(-1);
  const auto tell = [&](const char* capability, const char* method) {
    if (!CPLFetchBool(driver->GetMetadata(), capability, false)) return;
    Ui().Print("Driver " + std::string(kGeoTiff) + " supports " + method + " method.\n");
  };
  tell(GDAL_DCAP_CREATE, "Create()");
  tell(GDAL_DCAP_CREATECOPY, "CreateCopy()");
  return WriteGdal(path, driver, nullptr);
}

int ErdasImg::WriteGdal(const std::string& path, GDALDriver* driver, char** options) {
  if (!driver) return -1;
  const GdalScope scope;
  PrintDriver(driver);
  if (!HasAllPixels(*this)) return -2;
  StagedFiles stage(path);
  if (!stage.IsOpen()) return -2;
  OpenDataset dataset(driver->Create(stage.GetPath().c_str(), m_header.cols, m_header.rows, GetBandCount(),
                                     GdalTypeOf(m_header.packType), options));
  if (!dataset) return -2;
  const CPLErr error = WritePixels(*dataset, *this);
  if (error != CE_None) return error;
  if (!Close(dataset) || !stage.Commit()) return -2;
  RemoveSideFiles(path);
  return 1;
}

}  // namespace corvane
