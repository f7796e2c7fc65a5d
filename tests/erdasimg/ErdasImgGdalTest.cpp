// Images of other formats. GDAL makes and checks the files.

#include <gdal_priv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <filesystem>
#include <memory>

#include "erdasimg/ImageBytes.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Events = std::vector<std::string>;

constexpr const char* kGeoTiffDriver = "print: Driver: GTiff/GeoTIFF\n";

struct Closer {
  void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};
using Dataset = std::unique_ptr<GDALDataset, Closer>;

GDALDriver* GeoTiff() {
  GDALAllRegister();
  return GetGDALDriverManager()->GetDriverByName("GTiff");
}

Dataset MakeTiff(const std::string& path, int cols, int rows, int nBands, GDALDataType type,
                 const char* option = nullptr) {
  char* options[] = {const_cast<char*>(option), nullptr};
  return Dataset(GeoTiff()->Create(path.c_str(), cols, rows, nBands, type, options));
}

Dataset Open(const std::string& path) {
  GDALAllRegister();
  return Dataset(GDALDataset::FromHandle(GDALOpen(path.c_str(), GA_ReadOnly)));
}

// Writes the numbers into a band, whatever its type.
void Fill(const Dataset& dataset, int band, std::vector<double> numbers) {
  const int cols = dataset->GetRasterXSize();
  const int rows = dataset->GetRasterYSize();
  ASSERT_EQ(numbers.size(), static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows));
  ASSERT_EQ(dataset->GetRasterBand(band)->RasterIO(GF_Write, 0, 0, cols, rows, numbers.data(), cols, rows,
                                                   GDT_Float64, 0, 0, nullptr),
            CE_None);
}

std::vector<double> NumbersOf(const Dataset& dataset, int band) {
  const int cols = dataset->GetRasterXSize();
  const int rows = dataset->GetRasterYSize();
  std::vector<double> numbers(static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows));
  EXPECT_EQ(dataset->GetRasterBand(band)->RasterIO(GF_Read, 0, 0, cols, rows, numbers.data(), cols, rows,
                                                   GDT_Float64, 0, 0, nullptr),
            CE_None);
  return numbers;
}

std::vector<std::string> FilesHere() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(".")) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

struct TypePair {
  std::uint16_t packType;
  GDALDataType type;
};

constexpr TypePair kTypes[] = {
    {kPackByte, GDT_Byte},   {kPackUInt16, GDT_UInt16}, {kPackInt16, GDT_Int16},   {kPackUInt32, GDT_UInt32},
    {kPackInt32, GDT_Int32}, {kPackFloat, GDT_Float32}, {kPackDouble, GDT_Float64}};

TEST(ErdasImgGdal, ReadsAllTypes) {
  const TempFolder folder;
  for (const auto& [packType, type] : kTypes) {
    Fill(MakeTiff("a.tif", 3, 2, 1, type), 1, {1, 2, 3, 40, 50, 200});
    ErdasImg image;
    ASSERT_EQ(image.Read("a.tif"), 1);
    EXPECT_EQ(image.GetPackType(), packType);
    EXPECT_EQ(image.GetSize(), (ImageSize{3, 2}));
    EXPECT_EQ(image.GetBytesPerPixel(), GDALGetDataTypeSizeBytes(type));
    WithPixelType(packType, [&](auto pixel) {
      using Pixel = decltype(pixel);
      EXPECT_EQ(BandPixelsOf<Pixel>(image, 0), (std::vector<Pixel>{1, 2, 3, 40, 50, 200}));
    });
  }
}

TEST(ErdasImgGdal, ThreeBandsAreContiguous) {
  const TempFolder folder;
  for (const char* order : {"INTERLEAVE=BAND", "INTERLEAVE=PIXEL"}) {
    {
      const Dataset made = MakeTiff("a.tif", 2, 2, 3, GDT_Byte, order);
      for (int band = 1; band <= 3; ++band)
        Fill(made, band, {10.0 * band, 10.0 * band + 1, 10.0 * band + 2, 10.0 * band + 3});
    }
    ErdasImg image;
    ASSERT_EQ(image.Read("a.tif"), 1);
    EXPECT_EQ(image.m_bandsContiguous, 1);
    ASSERT_EQ(image.GetBands().size(), 3u);
    const auto block = image.GetBands().GetBlock();
    EXPECT_EQ(std::vector<int>(block.begin(), block.end()),
              (std::vector<int>{10, 11, 12, 13, 20, 21, 22, 23, 30, 31, 32, 33}));
    image.Free();
    EXPECT_FALSE(image.GetBands());
  }
}

TEST(ErdasImgGdal, TakesThePlaceOnTheGround) {
  const TempFolder folder;
  TestFrontEnd ui;
  double transform[] = {500000.75, 0.5, 0, 4000000.25, 0, -0.25};
  MakeTiff("a.tif", 2, 2, 1, GDT_Byte)->SetGeoTransform(transform);
  ErdasImg image;
  image.SetFileName("before");
  ASSERT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(image.GetHeader()->xMap, 500000.75f);
  EXPECT_EQ(image.GetHeader()->yMap, 4000000.25f);
  EXPECT_EQ(image.GetHeader()->xCell, 0.5f);
  EXPECT_EQ(image.GetHeader()->yCell, -0.25f);
  EXPECT_EQ(image.GetStart(), (ImageStart{500000, 4000000}));
  EXPECT_EQ(image.GetFileName(), "before");
  EXPECT_EQ(ui.events, Events{kGeoTiffDriver});
}

TEST(ErdasImgGdal, PlacesBeyondAnIntegerAreHeld) {
  const TempFolder folder;
  double transform[] = {1e20, 1, 0, -1e20, 0, -1};
  MakeTiff("a.tif", 1, 1, 1, GDT_Byte)->SetGeoTransform(transform);
  ErdasImg image;
  ASSERT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(image.GetStart(), (ImageStart{INT32_MAX, INT32_MIN}));
}

TEST(ErdasImgGdal, PrintsTheProjection) {
  const TempFolder folder;
  TestFrontEnd ui;
  {
    OGRSpatialReference utm;
    utm.importFromEPSG(32633);
    const Dataset made = MakeTiff("a.tif", 1, 1, 1, GDT_Byte);
    made->SetSpatialRef(&utm);
  }
  ErdasImg image;
  ASSERT_EQ(image.Read("a.tif"), 1);
  ASSERT_EQ(ui.events.size(), 2u);
  EXPECT_TRUE(ui.events[1].starts_with("print: Projection is `PROJCS[\"WGS 84 / UTM zone 33N\""));
  EXPECT_TRUE(ui.events[1].ends_with("'\n"));
}

TEST(ErdasImgGdal, ComplexImagesAreReadAsBytesOfTheirRealPart) {
  const TempFolder folder;
  for (const GDALDataType type : {GDT_CInt16, GDT_CInt32, GDT_CFloat32, GDT_CFloat64}) {
    Fill(MakeTiff("a.tif", 3, 1, 1, type), 1, {1, 200, 3000});
    ErdasImg image;
    ASSERT_EQ(image.Read("a.tif"), 1);
    EXPECT_EQ(image.GetPackType(), 0xFFFE);
    EXPECT_EQ(image.GetBytesPerPixel(), 1);
    EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (std::vector<std::uint8_t>{1, 200, 255}));
    ASSERT_EQ(image.Write("b.tif"), 1);
    EXPECT_EQ(NumbersOf(Open("b.tif"), 1), (std::vector<double>{1, 200, 255}));
  }
}

TEST(ErdasImgGdal, OneBitImagesAreReadAsBytes) {
  const TempFolder folder;
  Fill(MakeTiff("a.tif", 9, 1, 1, GDT_Byte, "NBITS=1"), 1, {1, 0, 1, 1, 0, 0, 0, 0, 1});
  ErdasImg image;
  ASSERT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(image.GetPackType(), kPackByte);
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (std::vector<std::uint8_t>{1, 0, 1, 1, 0, 0, 0, 0, 1}));
}

TEST(ErdasImgGdal, PaletteImagesAreReadAsTheirEntries) {
  const TempFolder folder;
  {
    const Dataset made = MakeTiff("a.tif", 2, 1, 1, GDT_Byte);
    GDALColorTable colours;
    const GDALColorEntry red = {255, 0, 0, 255};
    colours.SetColorEntry(7, &red);
    made->GetRasterBand(1)->SetColorTable(&colours);
    Fill(made, 1, {7, 0});
  }
  ErdasImg image;
  ASSERT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(image.GetBandCount(), 1);
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (std::vector<std::uint8_t>{7, 0}));
}

TEST(ErdasImgGdal, ACutTiffGivesTheCodeOfTheReading) {
  const TempFolder folder;
  TestFrontEnd ui;
  MakeTiff("a.tif", 100, 100, 1, GDT_Byte)->GetRasterBand(1)->Fill(9);
  const std::string bytes = ReadFileBytes("a.tif");
  WriteFileBytes("a.tif", bytes.substr(0, bytes.size() - 5000));
  testing::internal::CaptureStderr();
  ErdasImg image;
  EXPECT_EQ(image.Read("a.tif"), CE_Failure);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(image.GetSize(), (ImageSize{100, 100}));
  EXPECT_EQ(ui.EventsWith("message"), Events{});
  EXPECT_FALSE(ui.EventsWith("trace: GDAL: ").empty());
  MakeTiff("b.tif", 2, 1, 1, GDT_Byte)->GetRasterBand(1)->Fill(9);
  EXPECT_EQ(image.Read("b.tif"), 1);
  EXPECT_EQ(BandBytes(image, 0), "\t\t");
}

TEST(ErdasImgGdal, ADamagedTiffIsReadAsALan) {
  const TempFolder folder;
  TestFrontEnd ui;
  MakeTiff("a.tif", 100, 100, 1, GDT_Byte)->GetRasterBand(1)->Fill(9);
  std::string bytes = ReadFileBytes("a.tif");
  bytes[4] = bytes[5] = bytes[6] = '\x7F';  // the directory lies far behind the end
  WriteFileBytes("a.tif", bytes);
  testing::internal::CaptureStderr();
  ErdasImg image;
  EXPECT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(image.GetFileName(), "a.tif");
  EXPECT_EQ(BytesOf(*image.GetHeader()), bytes.substr(0, 128));
  EXPECT_FALSE(ui.EventsWith("trace: GDAL: ").empty());
}

// Its file says nothing of how many pixels it stands for.
TEST(ErdasImgGdal, AVirtualImageBeyondTheMemoryFails) {
  const TempFolder folder;
  WriteFileBytes("a.vrt",
                 "<VRTDataset rasterXSize=\"2000000000\" rasterYSize=\"2000000000\">"
                 "<VRTRasterBand dataType=\"Byte\" band=\"1\"/></VRTDataset>");
  ErdasImg image;
  EXPECT_EQ(image.Read("a.vrt"), -3);
  EXPECT_FALSE(image.GetBands());
  EXPECT_EQ(image.Write("b.tif"), -2);
  EXPECT_EQ(FilesHere(), (std::vector<std::string>{"a.vrt"}));
}

TEST(ErdasImgGdal, ADatasetWithoutBandsGivesTheCodeOfTheReading) {
  GDALAllRegister();
  GDALDriver* const memory = GetGDALDriverManager()->GetDriverByName("MEM");
  const Dataset dataset(memory->Create("", 3, 2, 0, GDT_Byte, nullptr));
  ASSERT_TRUE(dataset);
  ErdasImg image;
  EXPECT_EQ(image.ReadGdal(dataset.get()), CE_Failure);
  EXPECT_EQ(image.GetPackType(), 0xFFFF);
  EXPECT_EQ(image.GetBandCount(), 0);
}

TEST(ErdasImgGdal, NoDatasetAndNoDriverGiveMinusOne) {
  ErdasImg image;
  EXPECT_EQ(image.ReadGdal(nullptr), -1);
  EXPECT_EQ(image.WriteGdal("a.tif", nullptr, nullptr), -1);
}

TEST(ErdasImgGdal, WrittenPixelsAreTheSameForGdal) {
  const TempFolder folder;
  for (const auto& [packType, type] : kTypes) {
    for (const std::uint16_t nBands : {1, 3}) {
      ErdasImg image;
      ASSERT_EQ(image.Create(HeaderOf(packType, nBands, 5, 3), false), 1);
      FillWithPattern(image);
      ASSERT_EQ(image.Write("a.tif"), 1);
      const Dataset back = Open("a.tif");
      ASSERT_TRUE(back);
      ASSERT_EQ(back->GetRasterCount(), nBands);
      EXPECT_EQ(back->GetRasterXSize(), 5);
      EXPECT_EQ(back->GetRasterYSize(), 3);
      for (int band = 1; band <= nBands; ++band) {
        EXPECT_EQ(back->GetRasterBand(band)->GetRasterDataType(), type);
        WithPixelType(packType, [&](auto pixel) {
          const auto pixels = BandPixelsOf<decltype(pixel)>(image, band - 1);
          EXPECT_EQ(NumbersOf(back, band), std::vector<double>(pixels.begin(), pixels.end()));
        });
      }
    }
  }
}

TEST(ErdasImgGdal, RoundTripOfManyBlocks) {
  const TempFolder folder;
  for (const std::uint16_t nBands : {1, 3}) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(kPackUInt16, nBands, 3001, 2003), nBands == 3), 1);
    FillWithPattern(image);
    ASSERT_EQ(image.Write("a.tif"), 1);
    ErdasImg back;
    ASSERT_EQ(back.Read("a.tif"), 1);
    for (int band = 0; band < nBands; ++band) EXPECT_TRUE(BandBytes(back, band) == BandBytes(image, band));
  }
}

TEST(ErdasImgGdal, AnyOtherExtensionIsAGeoTiffAndTellsItsDriver) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  for (const char* name : {"a.jpeg", "b.dem", "c", "d.lanqvo"}) {
    EXPECT_EQ(image.Write(name), 1);
    EXPECT_EQ(Open(name)->GetDriverName(), std::string("GTiff"));
  }
  EXPECT_EQ(FilesHere(), (std::vector<std::string>{"a.jpeg", "b.dem", "c", "d.lanqvo"}));
  ASSERT_EQ(ui.events.size(), 12u);
  EXPECT_EQ(Events(ui.events.begin(), ui.events.begin() + 3),
            (Events{"print: Driver GTiff supports Create() method.\n",
                    "print: Driver GTiff supports CreateCopy() method.\n", kGeoTiffDriver}));
}

TEST(ErdasImgGdal, AGeoTiffLosesThePlaceAndReadingItKeepsTheObjects) {
  const TempFolder folder;
  ErdasImg image;
  ErdasHeader header = HeaderOf(kPackFloat, 1, 2, 2);
  header.xMap = 11.0f;
  header.yMap = 22.0f;
  header.xCell = 3.0f;
  header.yCell = -4.0f;
  header.xStart = 5;
  ASSERT_EQ(image.Create(header, false), 1);
  ASSERT_EQ(image.Write("a.tif"), 1);
  double transform[6] = {};
  EXPECT_NE(Open("a.tif")->GetGeoTransform(transform), CE_None);
  ErdasImg fresh;
  ASSERT_EQ(fresh.Read("a.tif"), 1);
  EXPECT_EQ(fresh.GetHeader()->xMap, 0.0f);
  EXPECT_EQ(fresh.GetHeader()->xCell, 1.0f);
  ASSERT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(image.GetHeader()->xMap, 11.0f);
  EXPECT_EQ(image.GetHeader()->yMap, 22.0f);
  EXPECT_EQ(image.GetHeader()->xCell, 3.0f);
  EXPECT_EQ(image.GetHeader()->yCell, -4.0f);
  EXPECT_EQ(image.GetHeader()->xStart, 5);
}

TEST(ErdasImgGdal, AByteLanOpensInGdal) {
  const TempFolder folder;
  for (const std::uint16_t nBands : {1, 3}) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(kPackByte, nBands, 20, 10), false), 1);
    FillWithPattern(image);
    ASSERT_EQ(image.Write("a.lan"), 1);
    const Dataset back = Open("a.lan");
    ASSERT_TRUE(back);
    EXPECT_EQ(back->GetDriverName(), std::string("LAN"));
    ASSERT_EQ(back->GetRasterCount(), nBands);
    for (int band = 1; band <= nBands; ++band) {
      const auto pixels = BandPixelsOf<std::uint8_t>(image, band - 1);
      EXPECT_EQ(NumbersOf(back, band), std::vector<double>(pixels.begin(), pixels.end()));
    }
  }
}

TEST(ErdasImgGdal, AFileThatCannotBeMadeFailsInSilence) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  std::filesystem::create_directory("folder.tif");
  testing::internal::CaptureStderr();
  EXPECT_EQ(image.Write("missing/a.tif"), -2);
  EXPECT_EQ(image.Write("folder.tif"), -2);
  EXPECT_EQ(image.Write(""), -2);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(ui.EventsWith("message"), Events{});
  EXPECT_EQ(FilesHere(), std::vector<std::string>{"folder.tif"});
}

TEST(ErdasImgGdal, AFailedWriteLeavesTheOldFile) {
  const TempFolder folder;
  WriteFileBytes("a.tif", "old");
  ErdasImg image;  // has no pixels
  EXPECT_EQ(image.Write("a.tif"), -2);
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  image.SetSize(200, 200);
  EXPECT_EQ(image.Write("a.tif"), -2);
  char wrong[] = "BLOCKXSIZE=17";
  char tiled[] = "TILED=YES";
  char* options[] = {tiled, wrong, nullptr};
  image.SetSize(2, 2);
  EXPECT_EQ(image.WriteGdal("a.tif", GeoTiff(), options), -2);
  EXPECT_EQ(ReadFileBytes("a.tif"), "old");
  EXPECT_EQ(FilesHere(), std::vector<std::string>{"a.tif"});
}

TEST(ErdasImgGdal, AFullDiskLeavesTheOldFile) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("a.tif", "old");
  for (const std::int32_t rows : {100, 20000}) {
    for (const std::uint16_t nBands : {1, 3}) {
      ErdasImg image;
      ASSERT_EQ(image.Create(HeaderOf(kPackByte, nBands, 1000, rows), false), 1);
      testing::internal::CaptureStderr();
      const FileSizeLimit limit(65536);
      const int status = image.Write("a.tif");
      EXPECT_TRUE(status == -2 || status == CE_Failure) << status;
      EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
  }
  EXPECT_EQ(ReadFileBytes("a.tif"), "old");
  EXPECT_EQ(FilesHere(), std::vector<std::string>{"a.tif"});
  EXPECT_EQ(ui.EventsWith("message"), Events{});
}

TEST(ErdasImgGdal, ReadingLeavesNoSideFilesAndNoSettings) {
  const TempFolder folder;
  GeoTiff();
  const GIntBig cacheBytes = GDALGetCacheMax64();
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  ASSERT_EQ(image.Write("a.tif"), 1);
  ASSERT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(FilesHere(), std::vector<std::string>{"a.tif"});
  EXPECT_EQ(GDALGetCacheMax64(), cacheBytes);
}

TEST(GeoTiff, SideFilesOfTheImageThatWasThereGo) {
  const TempFolder folder;
  ErdasImg image;
  ASSERT_EQ(image.Create(ErdasHeader(), false), 1);
  for (const char* name : {"a.tif.aux.xml", "a.tif.ovr", "a.tif.msk", "b.tif.aux.xml"})
    WriteFileBytes(name, "old");
  ASSERT_EQ(image.Write("a.tif"), 1);
  for (const char* name : {"a.tif.aux.xml", "a.tif.ovr", "a.tif.msk"})
    EXPECT_EQ(ReadFileBytes(name), "") << name;
  EXPECT_EQ(ReadFileBytes("b.tif.aux.xml"), "old");
}

}  // namespace
}  // namespace corvane
