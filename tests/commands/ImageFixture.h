#pragma once

#include "commands/CommandsFixture.h"
#include "erdasimg/ImageBytes.h"
#include "forms/FieldText.h"

namespace corvane {

// Commands from images to images.
class ImageCommandsTest : public CommandsTest {
 protected:
  static constexpr auto kOpen = FileChooser::Mode::Open;
  static constexpr auto kSave = FileChooser::Mode::Save;

  struct Chooser {
    FileChooser::Mode mode;
    std::string filter;
    std::string title = {};
  };

  static bool Accept(Form&) { return true; }

  // An answer that sets fields: "xStart" "2", ...
  static std::function<bool(Form&)> Enter(const std::vector<std::pair<std::string, std::string>>& fields) {
    return [fields](Form& form) {
      for (const auto& [name, text] : fields) EXPECT_FALSE(SetFieldFromText(*form.Find(name), text)) << name;
      return true;
    };
  }

  // "XStart: 2", "XEnd 4", ...: labels and values of a form.
  static std::vector<std::string> FieldsOf(const Form& form) {
    std::vector<std::string> fields;
    for (const FormField& field : form.fields) fields.push_back(field.label + " " + FieldText(field));
    return fields;
  }

  // A .lan of one band.
  template <typename Pixel>
  static std::string LanOf(std::uint16_t packType, std::int32_t cols, std::int32_t rows,
                           std::initializer_list<Pixel> pixels) {
    return BytesOf(HeaderOf(packType, 1, cols, rows)) + PixelBytes<Pixel>(pixels);
  }

  // The choosers since the start, which have no default extension or name.
  void ExpectChoosers(const std::vector<Chooser>& expected) const {
    ASSERT_EQ(ui.choosers.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const FileChooser& chooser = ui.choosers[i];
      EXPECT_EQ(chooser.mode, expected[i].mode) << i;
      EXPECT_EQ(chooser.filter, expected[i].filter) << i;
      EXPECT_EQ(chooser.title, expected[i].title) << i;
      EXPECT_EQ(chooser.defaultExtension + chooser.defaultName, "") << i;
      EXPECT_FALSE(chooser.mustExist || chooser.multiple) << i;
    }
  }

  // Cancelling each of the prompts leaves nothing. `prompts` has a letter for each in their order: f(ile),
  // e(xtent) or v(alue), which is answered with 2.
  void ExpectCancelAtEach(const std::string& command, const std::string& prompts,
                          const std::vector<std::string>& paths) {
    const auto before = Files();
    for (std::size_t n = 0; n < prompts.size(); ++n) {
      ui.events.clear();
      ui.files.clear();
      for (std::size_t i = 0; i < n; ++i) {
        if (prompts[i] == 'f') ui.files.push_back({paths[ui.files.size()]});
        if (prompts[i] == 'e') ui.forms.push_back(Accept);
        if (prompts[i] == 'v') ui.values.push_back(2.0);
      }
      EXPECT_EQ(Run(command), CommandResult::Cancelled) << n;
      EXPECT_THAT(Messages(), testing::IsEmpty());
      EXPECT_EQ(Files(), before);
      EXPECT_EQ(ui.waitDepth, 0);
    }
  }
};

}  // namespace corvane
