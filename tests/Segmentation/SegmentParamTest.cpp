#include "Segmentation/SegmentParam.h"

#include <gtest/gtest.h>

#include "forms/FieldText.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

class SegmentParamTest : public testing::Test {
 protected:
  const Form& Show() {
    ui.forms = {[](Form&) { return true; }};
    EXPECT_TRUE(param.Ask());
    return ui.shownForms.back();
  }

  TestFrontEnd ui;
  SegmentParam param;
};

TEST_F(SegmentParamTest, ShowsItsFieldsWithLabelsAndDefaults) {
  const Form& form = Show();
  EXPECT_EQ(form.name, "SegmentParam");
  EXPECT_EQ(form.title, "Segmentation Parameters");
  const char* const expected[][3] = {{"minRegionSize", "Min Region Size:", "150"},
                                     {"scale", "Segmentation Scale:", "350"},
                                     {"inputPath", "Input Image:", ""},
                                     {"outputPath", "Output Image:", ""},
                                     {"sigma", "Sigma of Gaussian:", "1"}};
  ASSERT_EQ(form.fields.size(), std::size(expected));
  for (std::size_t i = 0; i < form.fields.size(); ++i) {
    EXPECT_EQ(form.fields[i].name, expected[i][0]);
    EXPECT_EQ(form.fields[i].label, expected[i][1]);
    EXPECT_EQ(FieldText(form.fields[i]), expected[i][2]);
  }
}

TEST_F(SegmentParamTest, BrowsesForImages) {
  Form form = Show();
  const FileChooser& input = *form.Find("inputPath")->browse;
  const FileChooser& output = *form.Find("outputPath")->browse;
  for (const FileChooser& chooser : {input, output}) {
    EXPECT_EQ(chooser.filter, "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|");
  }
  EXPECT_EQ(input.mode, FileChooser::Mode::Open);
  EXPECT_EQ(input.title, "Choose a Image.");
  EXPECT_EQ(input.defaultExtension, "");
  EXPECT_EQ(output.mode, FileChooser::Mode::Save);
  EXPECT_EQ(output.defaultExtension, ".lan");
}

TEST_F(SegmentParamTest, LimitsItsNumbers) {
  Form form = Show();
  for (const char* name : {"minRegionSize", "scale"}) {
    FormField& field = *form.Find(name);
    for (const char* good : {"1", "32767"}) EXPECT_FALSE(SetFieldFromText(field, good)) << name;
    for (const char* bad : {"0", "32768", "-1", "1.5", ""}) {
      EXPECT_EQ(SetFieldFromText(field, bad).has_value(), true) << name << bad;
    }
  }
  EXPECT_EQ(SetFieldFromText(*form.Find("scale"), "0"), "Please enter an integer between 1 and 32767.");
  for (const char* good : {"0", "10000", "0.8"}) EXPECT_FALSE(SetFieldFromText(*form.Find("sigma"), good));
  for (const char* bad : {"-0.1", "10000.1", "inf", "nan"}) {
    EXPECT_TRUE(SetFieldFromText(*form.Find("sigma"), bad)) << bad;
  }
}

TEST_F(SegmentParamTest, TakesOverWhatIsEntered) {
  ui.forms = {[](Form& form) {
    SetFieldFromText(*form.Find("minRegionSize"), "20");
    SetFieldFromText(*form.Find("scale"), "32767");
    SetFieldFromText(*form.Find("inputPath"), "a.lan");
    SetFieldFromText(*form.Find("outputPath"), "b.lan");
    SetFieldFromText(*form.Find("sigma"), "0.1");
    return true;
  }};
  EXPECT_TRUE(param.Ask());
  EXPECT_EQ(param.m_minRegionSize, 20);
  EXPECT_EQ(param.m_scale, 32767);
  EXPECT_EQ(param.m_inputPath, "a.lan");
  EXPECT_EQ(param.m_outputPath, "b.lan");
  EXPECT_EQ(param.m_sigma, 0.1f);
}

TEST_F(SegmentParamTest, CancelLeavesTheFields) {
  ui.forms = {[](Form& form) {
    SetFieldFromText(*form.Find("minRegionSize"), "20");
    return false;
  }};
  EXPECT_FALSE(param.Ask());
  EXPECT_EQ(param.m_minRegionSize, 150);
}

}  // namespace
}  // namespace corvane
