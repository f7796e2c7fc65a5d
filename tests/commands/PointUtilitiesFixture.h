#pragma once

#include <cmath>
#include <limits>

#include "TIN/TINPoints.h"
#include "commands/CommandsFixture.h"
#include "forms/FieldText.h"
#include "support/PointsBytes.h"

namespace corvane {
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr const char* kPointsFiles = "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|";
inline constexpr const char* kMaskFiles = "Mask Files (*.msk)|*.msk|All Files (*.*)|*.*|";
inline constexpr const char* kTextFiles = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*|";
inline const std::string kExtensionBox = "message warning: There is error in points extension!!";

inline bool Accept(Form&) {
  return true;
}

// An answer that sets fields: "xStart" "2", ...
inline std::function<bool(Form&)> Enter(const std::vector<std::pair<std::string, std::string>>& fields) {
  return [fields](Form& form) {
    for (const auto& [name, text] : fields) EXPECT_FALSE(SetFieldFromText(*form.Find(name), text)) << name;
    return true;
  };
}

class PointUtilitiesTest : public CommandsTest {
 protected:
  // Four points at the corners of (0, 0) to (4, 4) and one in the middle, each with its own height and value.
  const std::vector<double> header = {0, 4, 4, 0, 1, 1};
  const std::vector<double> a = {0, 0, 10, 0.1};
  const std::vector<double> b = {4, 0, 11, 0.2};
  const std::vector<double> c = {4, 4, 12, 0.3};
  const std::vector<double> d = {0, 4, 13, 0.4};
  const std::vector<double> e = {2, 2, 14, 0.5};

  static std::string File(const std::vector<double>& header,
                          const std::vector<std::vector<double>>& records) {
    std::vector<double> numbers;
    for (const auto& record : records) numbers.insert(numbers.end(), record.begin(), record.end());
    return PointsBytes(static_cast<std::int32_t>(records.size()), header, numbers);
  }

  void SetUp() override {
    CommandsTest::SetUp();
    WriteFileBytes("p.pts", File(header, {a, b, c, d, e}));
  }

  void ExpectChooser(std::size_t i, FileChooser::Mode mode, const std::string& filter,
                     const std::string& defaultExtension, bool mustExist = false, bool multiple = false) {
    ASSERT_LT(i, ui.choosers.size());
    const FileChooser& chooser = ui.choosers[i];
    EXPECT_EQ(chooser.mode, mode);
    EXPECT_EQ(chooser.filter, filter);
    EXPECT_EQ(chooser.defaultExtension, defaultExtension);
    EXPECT_EQ(chooser.defaultName, "");
    EXPECT_EQ(chooser.title, "");
    EXPECT_EQ(chooser.mustExist, mustExist);
    EXPECT_EQ(chooser.multiple, multiple);
  }

  // Cancelling each of the choosers leaves nothing.
  void ExpectCancelAtEachChooser(const std::string& command,
                                 const std::deque<std::vector<std::string>>& answers) {
    const auto before = Files();
    for (std::size_t n = 0; n < answers.size(); ++n) {
      ui.events.clear();
      ui.files.assign(answers.begin(), answers.begin() + static_cast<std::ptrdiff_t>(n));
      EXPECT_EQ(Run(command), CommandResult::Cancelled) << n;
      EXPECT_THAT(Messages(), testing::IsEmpty());
      EXPECT_EQ(Files(), before);
      EXPECT_EQ(ui.waitDepth, 0);
    }
  }

  static constexpr auto kOpen = FileChooser::Mode::Open;
  static constexpr auto kSave = FileChooser::Mode::Save;
};

}  // namespace corvane
