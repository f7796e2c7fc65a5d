#include "qt/FormDialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "forms/MatchInput.h"
#include "forms/ModelSelect.h"
#include "forms/ParamInput.h"
#include "forms/ValueInput.h"
#include "qt/ModalScript.h"
#include "qt/QtFrontEnd.h"

namespace corvane {

namespace {

class FormDialogTest : public testing::Test {
 protected:
  QtFrontEnd frontEnd_;
  InstalledFrontEnd installed_{frontEnd_};
};

QString Problem(QWidget& dialog, const char* field) {
  const auto* label = dialog.findChild<QLabel*>(QString(field) + " problem");
  return label && label->isVisible() ? label->text() : QString();
}

QString EditText(QWidget& dialog, const char* field) {
  return dialog.findChild<QLineEdit*>(field)->text();
}

TEST_F(FormDialogTest, ShowsLabelsHintsAndValues) {
  double slope = 30.0;
  double elevation = 1.5;
  ModalScript script({[](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Input Slope Filter Parameters");
    QStringList labels;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) labels.append(label->text());
    for (const char* text : {"Maximum Slope:", "(eg. 30 degree)", "Minimum Elevation:", "(eg. 1m)",
                             "(For Points Output) Points Interval:"}) {
      EXPECT_TRUE(labels.contains(text)) << text;
    }
    EXPECT_EQ(EditText(dialog, "maxSlope"), "30");
    EXPECT_EQ(EditText(dialog, "minElevation"), "1.5");
    EXPECT_EQ(EditText(dialog, "pointsInterval"), "1");
    PressButton(dialog, "OK");
  }});
  ParamInput input;
  EXPECT_EQ(input.Ask(&slope, &elevation), 0);
  EXPECT_EQ(slope, 30.0);
  EXPECT_EQ(elevation, 1.5);
}

TEST_F(FormDialogTest, SlopeOf91IsRefusedInPlace) {
  double slope = 30.0;
  double elevation = 1.0;
  ModalScript script({[](QWidget& dialog) {
                        TypeInto(dialog, "maxSlope", "91");
                        PressButton(dialog, "OK");
                      },
                      [](QWidget& dialog) {
                        EXPECT_TRUE(dialog.isVisible());
                        EXPECT_EQ(Problem(dialog, "maxSlope"), "Please enter a number between 0 and 90.");
                        EXPECT_EQ(dialog.focusWidget()->objectName(), "maxSlope");
                        EXPECT_EQ(dialog.findChild<QLineEdit*>("maxSlope")->selectedText(), "91");
                        TypeInto(dialog, "maxSlope", "90");
                        PressButton(dialog, "OK");
                      }});
  ParamInput input;
  EXPECT_EQ(input.Ask(&slope, &elevation), 0);
  EXPECT_EQ(slope, 90.0);
}

TEST_F(FormDialogTest, TypingTakesTheProblemAway) {
  double slope = 30.0;
  double elevation = 1.0;
  ModalScript script({[](QWidget& dialog) {
                        TypeInto(dialog, "minElevation", "high");
                        PressButton(dialog, "OK");
                      },
                      [](QWidget& dialog) {
                        EXPECT_EQ(Problem(dialog, "minElevation"), "Please enter a number.");
                        PressKey(*dialog.findChild<QLineEdit*>("minElevation"), Qt::Key_Backspace);
                        EXPECT_EQ(Problem(dialog, "minElevation"), "");
                        PressButton(dialog, "Cancel");
                      }});
  ParamInput input;
  EXPECT_EQ(input.Ask(&slope, &elevation), -1);
  EXPECT_EQ(slope, 30.0);
}

TEST_F(FormDialogTest, CancelLeavesEveryValue) {
  double slope = 30.0;
  double elevation = 1.0;
  ModalScript script({[](QWidget& dialog) {
    TypeInto(dialog, "maxSlope", "45");
    PressKey(dialog, Qt::Key_Escape);
  }});
  ParamInput input;
  EXPECT_EQ(input.Ask(&slope, &elevation), -1);
  EXPECT_EQ(slope, 30.0);
}

TEST_F(FormDialogTest, TabOrderIsTheOrderOfTheFields) {
  MatchInput input;
  ModalScript script({[](QWidget& dialog) {
    QStringList order;
    for (QWidget* widget = dialog.nextInFocusChain(); widget != &dialog;
         widget = widget->nextInFocusChain()) {
      if (dynamic_cast<QLineEdit*>(widget)) order.append(widget->objectName());
    }
    EXPECT_EQ(order, QStringList({"leftImage", "rightImage", "demFile", "matchedPoints", "demAccuracy",
                                  "windowWidth", "windowHeight", "groundSpacing", "matchThreshold",
                                  "maxDisparity"}));
    PressKey(dialog, Qt::Key_Escape);
  }});
  EXPECT_FALSE(input.Ask());
}

TEST_F(FormDialogTest, BrowseFillsItsField) {
  MatchInput input;
  ModalScript script({[](QWidget& dialog) {
                        auto* button = dialog.findChild<QPushButton*>("demFile browse");
                        EXPECT_EQ(button->text(), "Browse");
                        button->click();
                      },
                      [](QWidget& chooser) {
                        TypeInto(chooser, "fileNameEdit", "/no-such-folder-here.dem");
                        PressButton(chooser, "Open");
                      },
                      [](QWidget& dialog) {
                        EXPECT_EQ(EditText(dialog, "demFile"), "/no-such-folder-here.dem");
                        PressButton(dialog, "OK");
                      }});
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.demFile, "/no-such-folder-here.dem");
}

TEST_F(FormDialogTest, SelectionGivesThePositionsOfTheChosenItems) {
  ModelSelect input;
  input.items = {"one", "two", "three"};
  input.models = {1};
  ModalScript script({[](QWidget& dialog) {
    auto* list = dialog.findChild<QListWidget*>("models");
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(list->item(1)->isSelected());
    list->item(1)->setSelected(false);
    list->item(0)->setSelected(true);
    list->item(2)->setSelected(true);
    PressButton(dialog, "OK");
  }});
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.models, (std::vector<int>{0, 2}));
}

TEST_F(FormDialogTest, ValueInputHasNoButtonsAndEnterConfirms) {
  ValueInput input;
  input.title = "Spacing";
  ModalScript script({[](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Spacing");
    EXPECT_TRUE(dialog.findChildren<QPushButton*>().empty());
    EXPECT_EQ(EditText(dialog, "value"), "1");
    TypeInto(dialog, "value", "2.5");
    PressKey(*dialog.findChild<QLineEdit*>("value"), Qt::Key_Return);
  }});
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.value, 2.5);
}

TEST_F(FormDialogTest, EmptyValueInputStaysOpen) {
  ValueInput input;
  ModalScript script({[](QWidget& dialog) {
                        TypeInto(dialog, "value", "");
                        PressKey(*dialog.findChild<QLineEdit*>("value"), Qt::Key_Return);
                      },
                      [](QWidget& dialog) {
                        EXPECT_TRUE(dialog.isVisible());
                        EXPECT_EQ(Problem(dialog, "value"), "Please enter a number.");
                        TypeInto(dialog, "value", "-10");
                        PressKey(*dialog.findChild<QLineEdit*>("value"), Qt::Key_Enter);
                      }});
  EXPECT_TRUE(input.Ask());
  EXPECT_EQ(input.value, -10.0);
}

TEST_F(FormDialogTest, EscCancelsValueInput) {
  ValueInput input;
  ModalScript script({[](QWidget& dialog) {
    TypeInto(dialog, "value", "7");
    PressKey(*dialog.findChild<QLineEdit*>("value"), Qt::Key_Escape);
  }});
  EXPECT_FALSE(input.Ask());
  EXPECT_EQ(input.value, 1.0);
}

}  // namespace

}  // namespace corvane
