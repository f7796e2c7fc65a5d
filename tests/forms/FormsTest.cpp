#include <gtest/gtest.h>

#include <cmath>

#include "OpenGL/Stereo_2Cursor/3DCoordInput.h"
#include "forms/ChosenPath.h"
#include "forms/ExtentInput.h"
#include "forms/FieldText.h"
#include "forms/MatchInput.h"
#include "forms/ModelSelect.h"
#include "forms/ParamInput.h"
#include "forms/ValueInput.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

const auto kAccept = [](Form&) { return true; };

TEST(ValueInput, StartsAtOneWithItsTitle) {
  TestFrontEnd ui;
  ValueInput input;
  EXPECT_FALSE(input.Ask());
  EXPECT_EQ(ui.events, std::vector<std::string>{"value: Please input a value. 1"});
  EXPECT_EQ(input.value, 1.0);
}

TEST(ValueInput, TakesTheValueOver) {
  TestFrontEnd ui;
  ui.values = {2.5};
  ValueInput input;
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.value, 2.5);
}

TEST(ValueInput, EmptyTextIsAFormatError) {
  FormField field = RealField("value", "", 1.0);
  EXPECT_EQ(SetFieldFromText(field, ""), "Please enter a number.");
  EXPECT_EQ(SetFieldFromText(field, "  "), "Please enter a number.");
  EXPECT_EQ(std::get<double>(field.value), 1.0);
}

TEST(FieldText, RefusesWhatIsNoFiniteNumber) {
  FormField field = RealField("value", "", 1.0);
  for (const char* text : {"abc", "1,5", "1.5x", "nan", "inf", "1e999", "--1", "0x10"}) {
    EXPECT_EQ(SetFieldFromText(field, text), "Please enter a number.") << text;
  }
  EXPECT_EQ(SetFieldFromText(field, " -10 "), std::nullopt);
  EXPECT_EQ(std::get<double>(field.value), -10.0);
  EXPECT_EQ(SetFieldFromText(field, "+2.5e1"), std::nullopt);
  EXPECT_EQ(std::get<double>(field.value), 25.0);
}

TEST(FieldText, NarrowsFloatFields) {
  FormField field = FloatField("cellSize", "", 1.0f);
  EXPECT_EQ(SetFieldFromText(field, "0.1"), std::nullopt);
  EXPECT_EQ(std::get<double>(field.value), static_cast<double>(0.1f));
  EXPECT_EQ(FieldText(field), "0.1");
  EXPECT_EQ(SetFieldFromText(field, "1e300"), "Please enter a number.");
}

TEST(FieldText, ChecksIntegers) {
  FormField field = IntegerField("windowWidth", "", 9, FieldLimits{3, 10000});
  EXPECT_EQ(SetFieldFromText(field, "2"), "Please enter an integer between 3 and 10000.");
  EXPECT_EQ(SetFieldFromText(field, "10001"), "Please enter an integer between 3 and 10000.");
  EXPECT_EQ(SetFieldFromText(field, "9.5"), "Please enter an integer.");
  EXPECT_EQ(SetFieldFromText(field, "99999999999"), "Please enter an integer.");
  EXPECT_EQ(SetFieldFromText(field, "3"), std::nullopt);
  EXPECT_EQ(FieldText(field), "3");
}

TEST(FieldText, SelectsPositions) {
  FormField field{.name = "models",
                  .label = "",
                  .type = FieldType::Selection,
                  .value = std::vector<int>{},
                  .items = {"a", "b", "c"}};
  EXPECT_EQ(SetFieldFromText(field, "2, 0,2"), std::nullopt);
  EXPECT_EQ(FieldText(field), "0,2");
  EXPECT_EQ(SetFieldFromText(field, "3"), "Please select from the list.");
  EXPECT_EQ(SetFieldFromText(field, ""), std::nullopt);
  EXPECT_EQ(FieldText(field), "");
}

TEST(ParamInput, ShowsTheCallersValuesAndItsOwnInterval) {
  TestFrontEnd ui;
  ui.forms = {kAccept};
  ParamInput input;
  double slope = 30.0;
  double elevation = 1.0;
  EXPECT_EQ(input.Ask(&slope, &elevation), 0);
  const Form& form = ui.shownForms.at(0);
  EXPECT_EQ(form.title, "Input Slope Filter Parameters");
  ASSERT_EQ(form.fields.size(), 3u);
  EXPECT_EQ(form.fields[0].label, "Maximum Slope:");
  EXPECT_EQ(form.fields[0].hint, "(eg. 30 degree)");
  EXPECT_EQ(form.fields[1].label, "Minimum Elevation:");
  EXPECT_EQ(form.fields[1].hint, "(eg. 1m)");
  EXPECT_EQ(form.fields[2].label, "(For Points Output) Points Interval:");
  EXPECT_EQ(form.GetReal("maxSlope"), 30.0);
  EXPECT_EQ(form.GetReal("pointsInterval"), 1.0);
}

TEST(ParamInput, RefusesASlopeOf91) {
  TestFrontEnd ui;
  ui.forms = {[](Form& form) {
    EXPECT_EQ(SetFieldFromText(*form.Find("maxSlope"), "91"), "Please enter a number between 0 and 90.");
    EXPECT_EQ(SetFieldFromText(*form.Find("maxSlope"), "90"), std::nullopt);
    EXPECT_EQ(SetFieldFromText(*form.Find("minElevation"), "-0.5"),
              "Please enter a number between 0 and 100.");
    EXPECT_EQ(SetFieldFromText(*form.Find("pointsInterval"), "0"),
              "Please enter a number between 1e-10 and 1e+10.");
    return true;
  }};
  ParamInput input;
  double slope = 30.0;
  double elevation = 1.0;
  EXPECT_EQ(input.Ask(&slope, &elevation), 0);
  EXPECT_EQ(slope, 90.0);
  EXPECT_EQ(elevation, 1.0);
}

TEST(ParamInput, CancelChangesNothing) {
  TestFrontEnd ui;
  ParamInput input;
  double slope = 12.0;
  double elevation = 3.0;
  EXPECT_EQ(input.Ask(&slope, &elevation), -1);
  EXPECT_EQ(slope, 12.0);
  EXPECT_EQ(elevation, 3.0);
}

TEST(ExtentInput, TruncatesBeforeItWidens) {
  TestFrontEnd ui;
  ui.forms = {kAccept};
  ExtentInput input;
  const double extent4[4] = {10.7, 20.2, -3.5, -0.5};  // minX, maxX, minY, maxY
  ExtentWindow window;
  float cellSize = 2.5f;
  EXPECT_EQ(input.Ask(extent4, window, &cellSize), 0);
  EXPECT_EQ(window.xStart, 9.0);  // 10 - 1
  EXPECT_EQ(window.xEnd, 21.0);
  EXPECT_EQ(window.yStart, -4.0);  // -3 - 1
  EXPECT_EQ(window.yEnd, 1.0);     // 0 + 1
  EXPECT_EQ(cellSize, 2.5f);
  EXPECT_EQ(ui.shownForms.at(0).title, "Input the extent for the image");
}

TEST(ExtentInput, LabelsAndOrder) {
  TestFrontEnd ui;
  ui.forms = {kAccept};
  ExtentInput input;
  input.minCorrCoeffLabel = "Approximate Z:";
  const double extent4[4] = {0, 1, 0, 1};
  ExtentWindow window;
  float cellSize = 1.0f;
  input.Ask(extent4, window, &cellSize);
  std::vector<std::string> labels;
  for (const FormField& field : ui.shownForms.at(0).fields) labels.push_back(field.name + " " + field.label);
  EXPECT_EQ(labels, (std::vector<std::string>{"xStart XStart:", "yStart YStart:", "xEnd XEnd", "yEnd YEnd:",
                                              "cellSize Cell Size", "minCorrCoeff Approximate Z:"}));
}

TEST(ExtentInput, SetsItsOwnCellSizeAndCorrelation) {
  TestFrontEnd ui;
  ui.forms = {kAccept, kAccept};
  ExtentInput input;
  ExtentWindow window;
  float cellSize = 7.0f;
  float minCorr = 0.1f;
  EXPECT_EQ(input.AskWithCorrelation(1.5, 9.5, 8.5, 2.5, window, &cellSize, &minCorr), 0);
  EXPECT_EQ(window.xStart, 0.0);
  EXPECT_EQ(window.yStart, 1.0);
  EXPECT_EQ(window.xEnd, 9.0);
  EXPECT_EQ(window.yEnd, 10.0);
  EXPECT_EQ(cellSize, 1.0f);
  EXPECT_EQ(minCorr, 0.5f);
  EXPECT_EQ(input.AskPoints(1.5, 9.5, 8.5, 2.5, 0.25, window, &cellSize, &minCorr), 0);
  EXPECT_EQ(cellSize, 0.25f);
  EXPECT_EQ(minCorr, 0.5f);
}

TEST(ExtentInput, ShowsAWindowAsItIs) {
  TestFrontEnd ui;
  ui.forms = {[](Form& form) { return !SetFieldFromText(*form.Find("xEnd"), "99.5"); }};
  ExtentInput input;
  input.minCorrCoeffLabel = "No-Data Value:";
  ExtentWindow window{10.7, -3.5, INFINITY, -0.5};
  float cellSize = 2.5f;
  EXPECT_EQ(input.AskAsShown(window, &cellSize), 0);
  const Form& shown = ui.shownForms.at(0);
  EXPECT_EQ(shown.fields.at(5).label, "No-Data Value:");
  EXPECT_EQ(std::get<double>(shown.fields.at(2).value), 0.0);  // no form could accept an infinity
  EXPECT_EQ(window.xStart, 10.7);
  EXPECT_EQ(window.yStart, -3.5);
  EXPECT_EQ(window.xEnd, 99.5);
  EXPECT_EQ(window.yEnd, -0.5);
  EXPECT_EQ(cellSize, 2.5f);
  EXPECT_EQ(input.AskAsShown(window, &cellSize), -1);
  EXPECT_EQ(window.xEnd, 99.5);
}

TEST(ExtentInput, CancelFillsNothing) {
  TestFrontEnd ui;
  ExtentInput input;
  const double extent4[4] = {0, NAN, 0, INFINITY};
  ExtentWindow window{1, 2, 3, 4};
  float cellSize = 7.0f;
  EXPECT_EQ(input.Ask(extent4, window, &cellSize), -1);
  EXPECT_EQ(window.xEnd, 3.0);
  EXPECT_EQ(cellSize, 7.0f);
}

TEST(CoordInput3D, ShowsAndTakesThePoint) {
  TestFrontEnd ui;
  ui.forms = {[](Form& form) {
    EXPECT_EQ(form.title, "Please Input XYZ");
    EXPECT_EQ(form.fields[2].label, "Z:");
    return !SetFieldFromText(*form.Find("z"), "250.5");
  }};
  C3DCoordInput input;
  input.x = 1.0;
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.x, 1.0);
  EXPECT_EQ(input.z, 250.5);
}

TEST(MatchInput, HasItsFieldsAndLimits) {
  TestFrontEnd ui;
  ui.forms = {[](Form& form) {
    EXPECT_EQ(form.title, "Inputs for matching");
    EXPECT_EQ(form.fields.size(), 10u);
    EXPECT_EQ(form.Find("leftImage")->browse->filter, "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|");
    EXPECT_EQ(form.Find("leftImage")->browse->defaultExtension, "Choose a Image.");
    EXPECT_EQ(form.Find("demFile")->browse->defaultExtension, ".dem");
    EXPECT_EQ(form.Find("matchedPoints")->browse->defaultExtension, ".pts");
    EXPECT_TRUE(SetFieldFromText(*form.Find("demAccuracy"), "1001"));
    EXPECT_TRUE(SetFieldFromText(*form.Find("matchThreshold"), "-1"));
    SetFieldFromText(*form.Find("leftImage"), "l.lan");
    return !SetFieldFromText(*form.Find("windowWidth"), "21");
  }};
  MatchInput input;
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.leftImage, "l.lan");
  EXPECT_EQ(input.windowWidth, 21);
  EXPECT_EQ(input.windowHeight, 9);
  EXPECT_EQ(input.matchThreshold, 0.75);
  EXPECT_EQ(input.demAccuracy, 2.0);
}

TEST(ModelSelect, ReturnsPositions) {
  TestFrontEnd ui;
  ui.forms = {[](Form& form) {
    EXPECT_EQ(form.title, "Select Model(s) to Match");
    return !SetFieldFromText(form.fields[0], "0,2");
  }};
  ModelSelect input;
  input.items = {"1-2", "2-3", "3-4"};
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.models, (std::vector<int>{0, 2}));
}

TEST(ChosenPath, AppendsTheDefaultExtension) {
  const TempFolder folder;
  FileChooser save{.mode = FileChooser::Mode::Save, .filter = "", .defaultExtension = "BIN"};
  EXPECT_EQ(ChosenPath(save, "survey"), "survey.BIN");
  EXPECT_EQ(ChosenPath(save, "survey.pts"), "survey.pts");
  FileChooser open{.filter = "", .defaultExtension = "Choose a Points Set."};
  EXPECT_EQ(ChosenPath(open, "survey"), "survey.Choose a Points Set.");
}

TEST(ChosenPath, ASaveChooserMeansTheFileThatIsThere) {
  const TempFolder folder;
  const FileChooser save{.mode = FileChooser::Mode::Save, .filter = "", .defaultExtension = ".TIN"};
  WriteFileBytes("survey.tin", "");
  WriteFileBytes("survey", "");
  EXPECT_EQ(ChosenPath(save, "survey"), "survey.tin");
  EXPECT_EQ(ChosenPath(save, "other"), "other.TIN");
  EXPECT_EQ(ChosenPath(save, "/dev/full"), "/dev/full");
}

TEST(ChosenPath, AnOpenChooserFindsTheFileThatIsThere) {
  const TempFolder folder;
  const FileChooser open{.filter = "", .defaultExtension = "TXT"};
  EXPECT_EQ(ChosenPath(open, "survey"), "survey.TXT");
  WriteFileBytes("survey.txt", "");
  EXPECT_EQ(ChosenPath(open, "survey"), "survey.txt");
  WriteFileBytes("survey", "");
  EXPECT_EQ(ChosenPath(open, "survey"), "survey");
}

}  // namespace
}  // namespace corvane
