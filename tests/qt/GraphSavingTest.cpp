// Saving the graph of a window as a picture and as a text.

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <filesystem>

#include "cli/ScriptRecorder.h"
#include "qt/GraphBench.h"
#include "qt/ModalScript.h"

namespace corvane {

namespace {

using GraphSavingTest = GraphBench;

TEST_F(GraphSavingTest, SavesWhatShowsAsPng) {
  Plot();
  ModalScript script({[](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Save Graph");
    TypeInto(dialog, "fileNameEdit", "curve");
    PressButton(dialog, "Save");
  }});
  ChooseItem("Save as PNG...");
  const QImage image("curve.png");
  EXPECT_EQ(image.size(), Pane().size() * 2);
  EXPECT_EQ(bench_.window.GetStatusPanes().GetText(0), "Saved " + QFileInfo("curve.png").absoluteFilePath());
  EXPECT_EQ(image.pixelColor(PlaceOf(30, 300) * 2), QColor(Qt::red));
}

TEST_F(GraphSavingTest, SavesThePointsAsCsv) {
  Plot();
  bench_.ActiveView().PlotValues(-1, std::vector<double>{0.1}, kCurveColour, 1);
  ModalScript script({[](QWidget& dialog) {
    TypeInto(dialog, "fileNameEdit", "curve");
    PressButton(dialog, "Save");
  }});
  ChooseItem("Save as CSV...");
  EXPECT_EQ(ReadFileBytes("curve.csv"), "element,x,y\n0,0,0\n0,100,1000\n1,0,0.1\n");
  EXPECT_EQ(bench_.window.GetStatusPanes().GetText(0), "Saved " + QFileInfo("curve.csv").absoluteFilePath());
}

TEST_F(GraphSavingTest, CancelledSavingWritesNothing) {
  Plot();
  ModalScript script({[](QWidget& dialog) { PressKey(dialog, Qt::Key_Escape); }});
  ChooseItem("Save as CSV...");
  EXPECT_FALSE(std::filesystem::exists("Data Graph.csv"));
}

TEST_F(GraphSavingTest, FileThatCanNotBeWrittenIsTold) {
  Plot();
  for (const char* item : {"Save as PNG...", "Save as CSV..."}) {
    ModalScript script({[](QWidget& dialog) {
                          TypeInto(dialog, "fileNameEdit", "missing/graph.out");
                          PressButton(dialog, "Save");
                        },
                        [](QWidget& box) {
                          EXPECT_TRUE(BoxText(box).startsWith("Write file "));
                          EXPECT_TRUE(BoxText(box).endsWith("missing/graph.out error!"));
                          PressButton(box, "OK");
                        }});
    ChooseItem(item);
  }
}

TEST_F(GraphSavingTest, FailedSavingOffersItsNameAgain) {
  Plot();
  const auto offered = [](QWidget& dialog) { return dialog.findChild<QLineEdit*>("fileNameEdit")->text(); };
  {
    ModalScript script({[](QWidget& dialog) {
                          TypeInto(dialog, "fileNameEdit", "missing/graph.csv");
                          PressButton(dialog, "Save");
                        },
                        Press("OK")});
    ChooseItem("Save as CSV...");
  }
  {
    ModalScript script({[&](QWidget& dialog) {
      EXPECT_EQ(offered(dialog), "Data Graph.png") << "the other kind has its own name";
      PressKey(dialog, Qt::Key_Escape);
    }});
    ChooseItem("Save as PNG...");
  }
  std::filesystem::create_directory("missing");
  {
    ModalScript script({[&](QWidget& dialog) {
      EXPECT_TRUE(offered(dialog).endsWith("graph.csv")) << offered(dialog).toStdString();
      PressButton(dialog, "Save");
    }});
    ChooseItem("Save as CSV...");
  }
  EXPECT_TRUE(std::filesystem::exists("missing/graph.csv"));
  ModalScript script({[&](QWidget& dialog) {
    EXPECT_EQ(offered(dialog), "Data Graph.csv");
    PressKey(dialog, Qt::Key_Escape);
  }});
  ChooseItem("Save as CSV...");
}

TEST_F(GraphSavingTest, SavingIsNoCommandOfARecord) {
  ScriptRecorder recorder(bench_.frontEnd, "day.txt");
  const InstalledFrontEnd installed(recorder);
  // A window that was closed by hand with its changes saved: answers might still be taken for the saving's.
  {
    ModalScript script({Press("Save")});
    recorder.AskSaveChanges("a.tin");
  }
  const std::string before = ReadFileBytes("day.txt");
  Plot();
  ModalScript script({[](QWidget& dialog) {
    TypeInto(dialog, "fileNameEdit", "curve");
    PressButton(dialog, "Save");
  }});
  ChooseItem("Save as CSV...");
  EXPECT_EQ(ReadFileBytes("day.txt"), before);
}

}  // namespace

}  // namespace corvane
