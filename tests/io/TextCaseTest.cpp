#include "io/TextCase.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(TextCase, OnlyLettersAreEqualInBothCases) {
  EXPECT_TRUE(EqualIgnoringCase("NODATA_value", "nodata_VALUE"));
  EXPECT_TRUE(EqualIgnoringCase("", ""));
  EXPECT_FALSE(EqualIgnoringCase("lan", "lan "));
  EXPECT_FALSE(EqualIgnoringCase("lan", "la"));
  EXPECT_FALSE(EqualIgnoringCase("[", "{"));
  EXPECT_FALSE(EqualIgnoringCase("\xC4", "\xE4"));
}

}  // namespace
}  // namespace corvane
