#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QListView>

#include "qt/ChooserDialog.h"
#include "qt/ModalScript.h"
#include "qt/QtFrontEnd.h"
#include "support/TempFolder.h"

namespace corvane {

namespace {

class ChooserTest : public testing::Test {
 protected:
  std::string InFolder(const std::string& name) const {
    return QFileInfo(QString::fromStdString(folder_.GetPath())).canonicalFilePath().toStdString() + "/" +
           name;
  }

  TempFolder folder_;
  QtFrontEnd frontEnd_;
};

FileChooser OpenTin() {
  FileChooser chooser;
  chooser.filter = "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|";
  chooser.defaultExtension = ".tin";
  return chooser;
}

FileChooser SaveTin() {
  FileChooser chooser = OpenTin();
  chooser.mode = FileChooser::Mode::Save;
  return chooser;
}

// Types a name and presses the button.
ModalScript::Step Enter(const char* name, const char* button) {
  return [=](QWidget& dialog) {
    TypeInto(dialog, "fileNameEdit", name);
    PressButton(dialog, button);
  };
}

// Types a name without selecting what stands in the box, as a person would.
ModalScript::Step EnterOver(const char* name, const char* button) {
  return [=](QWidget& dialog) {
    auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
    EXPECT_EQ(edit->selectedText(), edit->text());
    edit->insert(name);
    PressButton(dialog, button);
  };
}

// Types several names, in quotes. Without the focus, which a test can't count on, Qt writes what it finds of
// them back into the box: it must not hear of them.
ModalScript::Step EnterSeveral(const char* names) {
  return [=](QWidget& dialog) {
    TypeInto(dialog, "fileNameEdit", "x");
    auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
    {
      const QSignalBlocker blocker(edit);
      edit->setText(names);
    }
    PressButton(dialog, "Open");
  };
}

using Paths = std::vector<std::string>;

TEST(NameFilters, OnePerPair) {
  EXPECT_EQ(NameFilters("TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|"),
            QStringList({"TIN Files (*.tin)(*.tin)", "All Files (*.*)(*)"}));
  EXPECT_EQ(NameFilters("Files(*.tin)|*.TIN|"), QStringList({"Files(*.tin)(*.TIN)"}));
  EXPECT_EQ(NameFilters("Bitmaps|*.bmp;*.dib|"), QStringList({"Bitmaps(*.bmp *.dib)"}));
  EXPECT_EQ(NameFilters(""), QStringList());
}

TEST_F(ChooserTest, TitleFilterAndDefaultName) {
  FileChooser chooser = SaveTin();
  chooser.title = "Output TIN";
  chooser.defaultName = "result.tin";
  ModalScript script({[](QWidget& widget) {
    auto& dialog = dynamic_cast<QFileDialog&>(widget);
    EXPECT_EQ(dialog.windowTitle(), "Output TIN");
    const auto* filters = dialog.findChild<QComboBox*>("fileTypeCombo");
    EXPECT_EQ(filters->itemText(0), "TIN Files (*.tin)");
    EXPECT_EQ(filters->itemText(1), "All Files (*.*)");
    EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), "result.tin");
    PressButton(dialog, "Save");
  }});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), Paths{InFolder("result.tin")});
}

TEST_F(ChooserTest, DefaultExtensionIsAppended) {
  ModalScript script({Enter("result", "Save")});
  EXPECT_EQ(frontEnd_.ChooseFiles(SaveTin()), Paths{InFolder("result.tin")});
}

TEST_F(ChooserTest, MistypedNameReachesTheCommand) {
  ModalScript script({Enter("missing.tin", "Open")});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenTin()), Paths{InFolder("missing.tin")});
}

TEST_F(ChooserTest, MustExistKeepsTheChooserOpen) {
  WriteFileBytes("list.txt", "x");
  FileChooser chooser = OpenTin();
  chooser.mustExist = true;
  ModalScript script({Enter("missing.txt", "Open"),
                      [](QWidget& box) {
                        EXPECT_EQ(BoxText(box),
                                  "missing.txt\nFile not found.\nCheck the file name and try again.");
                        PressButton(box, "OK");
                      },
                      EnterOver("list.txt", "Open")});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), Paths{InFolder("list.txt")});
}

TEST_F(ChooserTest, TypedFolderIsEnteredAndItsNameReplaced) {
  ASSERT_TRUE(QDir().mkdir("inner"));
  ModalScript script({Enter("inner", "Open"), EnterOver("x.tin", "Open")});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenTin()), Paths{InFolder("inner/x.tin")});
}

TEST_F(ChooserTest, TypedPatternBecomesTheFilter) {
  ModalScript script({Enter("*.pts", "Open"), [](QWidget& dialog) {
                        EXPECT_EQ(dialog.findChild<QComboBox*>("fileTypeCombo")->currentText(), "*.pts");
                        EnterOver("a.pts", "Open")(dialog);
                      }});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenTin()), Paths{InFolder("a.pts")});
}

TEST_F(ChooserTest, FileWithAPatternForANameCanBeChosen) {
  WriteFileBytes("odd*.tin", "x");
  ModalScript script({Enter("odd*.tin", "Open")});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenTin()), Paths{InFolder("odd*.tin")});
}

TEST_F(ChooserTest, TitleNamesTheRunningCommand) {
  frontEnd_.CommandStarted("TIN > Create TIN");
  {
    ModalScript script({[](QWidget& dialog) {
      EXPECT_EQ(dialog.windowTitle(), "Create TIN: Open");
      PressButton(dialog, "Cancel");
    }});
    frontEnd_.ChooseFiles(OpenTin());
  }
  frontEnd_.CommandEnded("TIN > Create TIN", CommandResult::Cancelled);
  ModalScript script({[](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Open");
    PressButton(dialog, "Cancel");
  }});
  frontEnd_.ChooseFiles(OpenTin());
}

TEST_F(ChooserTest, SaveAsksBeforeItReplaces) {
  WriteFileBytes("old.tin", "x");
  ModalScript script({Enter("old", "Save"),
                      [](QWidget& box) {
                        EXPECT_EQ(BoxText(box), "old.tin already exists.\nDo you want to replace it?");
                        PressButton(box, "No");
                      },
                      EnterOver("old.tin", "Save"), Press("Yes")});
  EXPECT_EQ(frontEnd_.ChooseFiles(SaveTin()), Paths{InFolder("old.tin")});
}

TEST_F(ChooserTest, PatternsMatchInEitherCase) {
  WriteFileBytes("low.tin", "x");
  WriteFileBytes("HIGH.TIN", "x");
  WriteFileBytes("other.txt", "x");
  ModalScript script({[](QWidget& dialog) {
    const QAbstractItemView& list = *dialog.findChild<QListView*>("listView");
    QElapsedTimer patience;  // the folder is read in the background
    patience.start();
    while (list.model()->rowCount(list.rootIndex()) < 2 && patience.elapsed() < 5000) {
      QApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 20);
    }
    QStringList names;
    for (int row = 0; row < list.model()->rowCount(list.rootIndex()); ++row) {
      names.append(list.model()->index(row, 0, list.rootIndex()).data().toString());
    }
    names.sort();
    EXPECT_EQ(names, QStringList({"HIGH.TIN", "low.tin"}));
    PressButton(dialog, "Cancel");
  }});
  frontEnd_.ChooseFiles(OpenTin());
}

TEST_F(ChooserTest, PatternAsDefaultNameIsNoName) {
  FileChooser chooser = OpenTin();
  chooser.defaultName = "*.tin";
  ModalScript script({[](QWidget& dialog) {
                        EXPECT_EQ(dialog.findChild<QLineEdit*>("fileNameEdit")->text(), "*.tin");
                        PressButton(dialog, "Open");
                      },
                      [](QWidget& dialog) {
                        EXPECT_TRUE(dialog.isVisible());
                        TypeInto(dialog, "fileNameEdit", "a.tin");
                        PressButton(dialog, "Open");
                      }});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), Paths{InFolder("a.tin")});
}

TEST_F(ChooserTest, CancelGivesNothing) {
  ModalScript script({Press("Cancel")});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenTin()), std::nullopt);
}

TEST_F(ChooserTest, SeveralFiles) {
  WriteFileBytes("a.tin", "x");
  WriteFileBytes("b.tin", "x");
  FileChooser chooser = OpenTin();
  chooser.multiple = true;
  ModalScript script({EnterSeveral("\"a.tin\" \"b.tin\"")});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), (Paths{InFolder("a.tin"), InFolder("b.tin")}));
}

TEST_F(ChooserTest, SeveralFilesNeedNotExistUnlessTheyMust) {
  WriteFileBytes("a.tin", "x");
  FileChooser chooser = OpenTin();
  chooser.multiple = true;
  {
    ModalScript script({EnterSeveral("\"a.tin\" \"missing.tin\"")});
    EXPECT_EQ(frontEnd_.ChooseFiles(chooser), (Paths{InFolder("a.tin"), InFolder("missing.tin")}));
  }
  chooser.mustExist = true;
  ModalScript script({EnterSeveral("\"a.tin\" \"missing.tin\""), Press("OK"), EnterOver("a.tin", "Open")});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), Paths{InFolder("a.tin")});
}

TEST_F(ChooserTest, TheNextChooserOpensInTheSameFolder) {
  ASSERT_TRUE(QDir().mkdir("inner"));
  {
    ModalScript script({[this](QWidget& dialog) {
      TypeInto(dialog, "fileNameEdit", InFolder("inner/x.tin").c_str());
      PressButton(dialog, "Open");
    }});
    EXPECT_EQ(frontEnd_.ChooseFiles(OpenTin()), Paths{InFolder("inner/x.tin")});
  }
  ModalScript script({Enter("y.tin", "Open")});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenTin()), Paths{InFolder("inner/y.tin")});
}

}  // namespace

}  // namespace corvane
