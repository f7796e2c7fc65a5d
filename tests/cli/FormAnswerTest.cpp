#include "cli/FormAnswer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace corvane {
namespace {

Form SampleForm() {
  Form form;
  form.name = "SampleInput";
  form.title = "Sample";
  const FormField text = FileField("image", "Image:", "a.lan", {});
  const FormField slope = RealField("slope", "Slope:", 30.0, FieldLimits{0.0, 90.0});
  const FormField width = IntegerField("width", "Width:", 9, FieldLimits{3.0, 10000.0});
  const FormField cell = FloatField("cell", "Cell", 0.5f);
  const FormField models{.name = "models",
                         .label = "",
                         .type = FieldType::Selection,
                         .value = std::vector<int>{},
                         .items = {"one", "two", "three"}};
  form.fields = {text, slope, width, cell, models};
  return form;
}

TEST(FormAnswer, NamedFieldsAreSetAndOthersStay) {
  Form form = SampleForm();
  EXPECT_EQ(ApplyFormAnswer(form, "slope=45.5; models=0,2 ;"), std::nullopt);
  EXPECT_EQ(form.GetReal("slope"), 45.5);
  EXPECT_EQ(form.GetSelection("models"), (std::vector<int>{0, 2}));
  EXPECT_EQ(form.GetText("image"), "a.lan");
  EXPECT_EQ(form.GetInteger("width"), 9);
}

TEST(FormAnswer, EmptyAnswerAcceptsTheFormAsShown) {
  Form form = SampleForm();
  EXPECT_EQ(ApplyFormAnswer(form, ""), std::nullopt);
  EXPECT_EQ(form.GetReal("slope"), 30.0);
}

TEST(FormAnswer, EmptyValueClearsATextField) {
  Form form = SampleForm();
  EXPECT_EQ(ApplyFormAnswer(form, "image=;width=11"), std::nullopt);
  EXPECT_EQ(form.GetText("image"), "");
  EXPECT_EQ(form.GetInteger("width"), 11);
}

TEST(FormAnswer, ValueOutsideTheLimitsIsRefusedInTheFormsWords) {
  Form form = SampleForm();
  EXPECT_EQ(ApplyFormAnswer(form, "width=11;slope=91"), "slope: Please enter a number between 0 and 90.");
  EXPECT_EQ(form.GetInteger("width"), 9) << "a refused answer changes nothing";
  EXPECT_EQ(ApplyFormAnswer(form, "slope=steep"), "slope: Please enter a number.");
}

TEST(FormAnswer, UnknownFieldAndMissingValueAreRefused) {
  Form form = SampleForm();
  EXPECT_EQ(ApplyFormAnswer(form, "Slope=3"),
            "SampleInput has no field \"Slope\", only image, slope, width, cell, models.");
  EXPECT_EQ(ApplyFormAnswer(form, "45"), "\"45\" is no field=value.");
  EXPECT_EQ(ApplyFormAnswer(form, "image=\"x"), "The value of image has a quote that is not closed.");
}

TEST(FormAnswer, ShownValueThatCouldNotBeEnteredIsRefused) {
  Form form = SampleForm();
  form.Find("slope")->value = 95.0;
  EXPECT_EQ(ApplyFormAnswer(form, "width=5"), "slope: Please enter a number between 0 and 90.");
  EXPECT_EQ(ApplyFormAnswer(form, "slope=90"), std::nullopt);
}

TEST(FormAnswer, QuotedValueKeepsSemicolonsQuotesAndBlanks) {
  Form form = SampleForm();
  EXPECT_EQ(ApplyFormAnswer(form, R"(image=" a;b=\"c\\d ";slope=1)"), std::nullopt);
  EXPECT_EQ(form.GetText("image"), " a;b=\"c\\d ");
  EXPECT_EQ(form.GetReal("slope"), 1.0);
}

TEST(FormAnswer, WritesAllFieldsInOrder) {
  EXPECT_EQ(FormAnswer(SampleForm()), "image=a.lan;slope=30;width=9;cell=0.5;models=");
}

TEST(FormAnswer, EveryFormComesBackExactly) {
  std::mt19937_64 random(2);
  const std::string characters = "ab ;=\"\\|\t";
  std::uniform_real_distribution<double> uniform(0.0, 90.0);
  for (int round = 0; round < 5000; ++round) {
    Form written = SampleForm();
    std::string text;
    for (std::size_t n = random() % 8; n > 0; --n) text += characters[random() % characters.size()];
    written.Find("image")->value = text;
    written.Find("slope")->value = uniform(random);
    written.Find("cell")->value = static_cast<double>(static_cast<float>(uniform(random) / 7.0));
    if (round % 2) written.Find("models")->value = std::vector<int>{1, 2};
    Form read = SampleForm();
    ASSERT_EQ(ApplyFormAnswer(read, FormAnswer(written)), std::nullopt) << FormAnswer(written);
    for (std::size_t i = 0; i < read.fields.size(); ++i) {
      ASSERT_EQ(read.fields[i].value, written.fields[i].value) << FormAnswer(written);
    }
  }
}

}  // namespace
}  // namespace corvane
