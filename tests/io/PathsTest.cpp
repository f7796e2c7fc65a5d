#include "io/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/TempFolder.h"

namespace corvane {
namespace {

TEST(Paths, FileNameCutsAtBothSeparators) {
  EXPECT_EQ(FileName("a/b/x.y.tin"), "x.y.tin");
  EXPECT_EQ(FileName("C:\\b\\x.tin"), "x.tin");
  EXPECT_EQ(FileName("x.tin"), "x.tin");
  EXPECT_EQ(FileName("a/"), "");
}

TEST(Paths, TitleAndExtensionLookAtTheNameOnly) {
  EXPECT_EQ(FileTitle("a.b/x.y.tin"), "x.y");
  EXPECT_EQ(FileTitle("a.b/x"), "x");
  EXPECT_EQ(FileExtension("a.b/x"), "");
  EXPECT_EQ(FileExtension("x.y.tin"), ".tin");
}

TEST(Paths, DerivedNameCutsAtTheLastDot) {
  EXPECT_EQ(DerivedName("x.y.tin", "_filted.pts"), "x.y_filted.pts");
  EXPECT_EQ(DerivedName("a/b.c/x.tin", "_filted.pts"), "a/b.c/x_filted.pts");
}

TEST(Paths, DerivedNameOfANameWithoutDotIsTheSuffixAlone) {
  EXPECT_EQ(DerivedName("survey", "_filted.pts"), "_filted.pts");
  EXPECT_EQ(DerivedName("a.b/survey", "_filted.pts"), "_filted.pts");
  EXPECT_EQ(DerivedName("a.b\\survey", "_filted.pts"), "_filted.pts");
}

TEST(Paths, DefaultExtensionGoesToNamesWithoutOne) {
  EXPECT_EQ(WithDefaultExtension("a/x", "tin"), "a/x.tin");
  EXPECT_EQ(WithDefaultExtension("a/x", ".TIN"), "a/x.TIN");
  EXPECT_EQ(WithDefaultExtension("a/x", "*.lan"), "a/x.lan");
  EXPECT_EQ(WithDefaultExtension("a.b/x", "tin"), "a.b/x.tin");
  EXPECT_EQ(WithDefaultExtension("x.pts", "tin"), "x.pts");
  EXPECT_EQ(WithDefaultExtension("x", ""), "x");
  EXPECT_EQ(WithDefaultExtension("", "tin"), "");
}

TEST(Paths, FirstCharacterIsAWholeCodePoint) {
  EXPECT_EQ(FirstCharacter("survey.tin"), "s");
  EXPECT_EQ(FirstCharacter("/data/x"), "/");
  EXPECT_EQ(FirstCharacter("\xC3\xBC"
                           "ber.tin"),
            "\xC3\xBC");
  EXPECT_EQ(FirstCharacter("\xE5\x9C\xB0.tin"), "\xE5\x9C\xB0");
  EXPECT_EQ(FirstCharacter(""), "");
}

TEST(Paths, AbsolutePathResolvesDots) {
  const TempFolder folder;
  EXPECT_EQ(AbsolutePath("x.tin"), AbsolutePath("./a/../x.tin"));
  EXPECT_EQ(AbsolutePath("/a/b/../x.tin"), "/a/x.tin");
}

TEST(Paths, SameFileByWhateverNameOrLink) {
  const TempFolder folder;
  WriteFileBytes("a", "");
  WriteFileBytes("b", "");
  std::filesystem::create_symlink("a", "link");
  std::filesystem::create_hard_link("a", "twin");
  for (const char* path : {"a", "./a", "link", "twin"}) EXPECT_TRUE(IsSameFile(path, "a"));
  for (const char* path : {"b", "none", ""}) EXPECT_FALSE(IsSameFile(path, "a"));
  EXPECT_FALSE(IsSameFile("none", "none"));
  EXPECT_TRUE(IsOneOfFiles("link", {"b", "none", "a"}));
  EXPECT_FALSE(IsOneOfFiles("link", {"b", "none"}));
}

}  // namespace
}  // namespace corvane
