#include "cli/Console.h"

#include <gtest/gtest.h>

#include <sstream>

namespace corvane {
namespace {

TEST(Console, AStatusTextThatRepeatsTheLineBeforeIsNotPrintedAgain) {
  std::ostringstream out;
  std::ostringstream err;
  Console console(out, err, false);
  console.Status("Done 0% ...");
  console.Status("Done 0% ...");
  console.Status("Done 1% ...");
  console.Status("");
  console.Status("Done 1% ...");
  console.ErrorLine("message: box");
  console.Status("Done 1% ...");
  EXPECT_EQ(err.str(), "Done 0% ...\nDone 1% ...\nDone 1% ...\nmessage: box\nDone 1% ...\n");
  EXPECT_EQ(out.str(), "");
}

TEST(Console, ATerminalsLineIsWrittenAnew) {
  std::ostringstream out;
  std::ostringstream err;
  {
    Console console(out, err, true);
    console.Status("Done 0% ...");
    console.Status("Done 1% ...");
  }
  EXPECT_EQ(err.str(), "\r\033[KDone 0% ...\r\033[KDone 1% ...\n");
}

}  // namespace
}  // namespace corvane
