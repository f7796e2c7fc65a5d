#include "forms/MatchInput.h"

#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Kept: the prompt stands in the place of the default extension, so that it is appended to a typed name
// without extension.
const FileChooser kImageChooser{.filter = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|",
                                .defaultExtension = "Choose a Image."};
const FileChooser kDemChooser{
    .filter = "Lan Files (*.lan)|*.lan|DEM Files (*.dem)|*.dem|All Files (*.*)|*.*|",
    .defaultExtension = ".dem"};
const FileChooser kPointsChooser{.filter = "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|",
                                 .defaultExtension = ".pts"};

}  // namespace

bool MatchInput::Ask() {
  Form form;
  form.name = "MatchInput";
  form.title = "Inputs for matching";
  form.fields = {
      FileField("leftImage", "Left Image:", leftImage, kImageChooser),
      FileField("rightImage", "Right Image:", rightImage, kImageChooser),
      FileField("demFile", "DEM(As Approx):", demFile, kDemChooser),
      FileField("matchedPoints", "Matched Points:", matchedPoints, kPointsChooser),
      RealField("demAccuracy", "Accuracy of DEM:", demAccuracy, FieldLimits{0.0, 1000.0}),
      IntegerField("windowWidth", "Target Window Width:", windowWidth, FieldLimits{3.0, 10000.0}),
      IntegerField("windowHeight", "Target Window Height:", windowHeight, FieldLimits{3.0, 10000.0}),
      RealField("groundSpacing", "Ground Spacing:", groundSpacing),
      RealField("matchThreshold", "Match Threshold:", matchThreshold, FieldLimits{0.0, 1e9}),
      IntegerField("maxDisparity", "Max Disparity:", maxDisparity),
  };
  if (!Ui().AskForm(form)) return false;
  leftImage = form.GetText("leftImage");
  rightImage = form.GetText("rightImage");
  demFile = form.GetText("demFile");
  matchedPoints = form.GetText("matchedPoints");
  demAccuracy = form.GetReal("demAccuracy");
  windowWidth = static_cast<std::int32_t>(form.GetInteger("windowWidth"));
  windowHeight = static_cast<std::int32_t>(form.GetInteger("windowHeight"));
  groundSpacing = form.GetReal("groundSpacing");
  matchThreshold = form.GetReal("matchThreshold");
  maxDisparity = static_cast<std::int32_t>(form.GetInteger("maxDisparity"));
  return true;
}

}  // namespace corvane
