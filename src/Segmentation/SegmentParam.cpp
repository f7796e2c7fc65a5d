#include "Segmentation/SegmentParam.h"

#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr const char* kImageFilter = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|";

const FileChooser kInputChooser{.filter = kImageFilter, .title = "Choose a Image."};
const FileChooser kOutputChooser{
    .mode = FileChooser::Mode::Save, .filter = kImageFilter, .defaultExtension = ".lan"};

}  // namespace

bool SegmentParam::Ask() {
  Form form;
  form.name = "SegmentParam";
  form.title = "Segmentation Parameters";
  form.fields = {
      IntegerField("minRegionSize", "Min Region Size:", m_minRegionSize, FieldLimits{1.0, 32767.0}),
      IntegerField("scale", "Segmentation Scale:", m_scale, FieldLimits{1.0, 32767.0}),
      FileField("inputPath", "Input Image:", m_inputPath, kInputChooser),
      FileField("outputPath", "Output Image:", m_outputPath, kOutputChooser),
      FloatField("sigma", "Sigma of Gaussian:", m_sigma),
  };
  form.fields.back().limits = FieldLimits{0.0, 10000.0};
  if (!Ui().AskForm(form)) return false;
  m_minRegionSize = static_cast<std::int32_t>(form.GetInteger("minRegionSize"));
  m_scale = static_cast<std::int16_t>(form.GetInteger("scale"));
  m_inputPath = form.GetText("inputPath");
  m_outputPath = form.GetText("outputPath");
  m_sigma = static_cast<float>(form.GetReal("sigma"));
  return true;
}

}  // namespace corvane
