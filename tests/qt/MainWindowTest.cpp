#include "qt/MainWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QImage>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QMimeData>
#include <QPrinter>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>
#include <QWindow>

#include "qt/ModalScript.h"
#include "qt/Printing.h"
#include "qt/Workbench.h"

namespace corvane {

namespace {

QMdiSubWindow* SubWindow(Workbench& bench, int position) {
  return bench.window.GetArea().subWindowList(QMdiArea::CreationOrder).at(position);
}

TEST(MainWindow, StartsWithOneEmptyTinDocument) {
  Workbench bench;
  EXPECT_EQ(bench.WindowCount(), 1);
  EXPECT_EQ(bench.window.windowTitle(), "Corvane1[*] - Corvane");
  EXPECT_EQ(bench.app.GetDocuments().size(), 1u);
}

TEST(MainWindow, TitleFollowsTheActiveWindow) {
  Workbench bench;
  WriteSquareTin("square.tin", 100.0);
  bench.Open("square.tin");
  EXPECT_EQ(bench.window.windowTitle(), "square.tin[*] - Corvane");
  bench.window.GetArea().setActiveSubWindow(SubWindow(bench, 0));
  EXPECT_EQ(bench.window.windowTitle(), "Corvane1[*] - Corvane");
  EXPECT_EQ(bench.ActiveView().GetTitle(), "Corvane1");
  bench.Run("File > Close");
  bench.Run("File > Close");
  EXPECT_EQ(bench.window.windowTitle(), "Corvane");
  EXPECT_EQ(bench.app.GetMainFrame().GetActiveView(), nullptr);
}

TEST(MainWindow, MaximisedWindowIsNamedAsAnyOther) {
  Workbench bench;
  SubWindow(bench, 0)->showMaximized();
  QApplication::processEvents();
  bench.ActiveView().GetDocument().SetTitle("other");
  EXPECT_EQ(bench.window.windowTitle(), "other[*] - Corvane");
  bench.ActiveView().GetDocument().SetTitle("Corvane1");
  EXPECT_EQ(bench.window.windowTitle(), "Corvane1[*] - Corvane");
  SubWindow(bench, 0)->showNormal();
  QApplication::processEvents();
  EXPECT_EQ(bench.window.windowTitle(), "Corvane1[*] - Corvane");
}

TEST(MainWindow, ChangedDocumentIsMarked) {
  Workbench bench;
  EXPECT_EQ(SubWindow(bench, 0)->windowTitle(), "Corvane1[*]");
  EXPECT_FALSE(SubWindow(bench, 0)->isWindowModified());
  bench.ActiveView().GetDocument().SetModifiedFlag(true);
  bench.window.Refresh();
  EXPECT_TRUE(SubWindow(bench, 0)->isWindowModified());
  EXPECT_TRUE(bench.window.isWindowModified());
}

TEST(MainWindow, NewWindowNumbersTheWindowsOfADocument) {
  Workbench bench;
  bench.Choose("Window > New Window");
  EXPECT_EQ(SubWindow(bench, 0)->windowTitle(), "Corvane1:1[*]");
  EXPECT_EQ(SubWindow(bench, 1)->windowTitle(), "Corvane1:2[*]");
  SubWindow(bench, 1)->close();
  QApplication::processEvents();
  EXPECT_EQ(bench.WindowCount(), 1);
  EXPECT_EQ(SubWindow(bench, 0)->windowTitle(), "Corvane1[*]");
  EXPECT_EQ(bench.app.GetDocuments().size(), 1u);
}

TEST(MainWindow, ClosingTheLastWindowClosesTheDocument) {
  Workbench bench;
  SubWindow(bench, 0)->close();
  QApplication::processEvents();
  EXPECT_EQ(bench.WindowCount(), 0);
  EXPECT_TRUE(bench.app.GetDocuments().empty());
  EXPECT_EQ(bench.window.windowTitle(), "Corvane");
}

TEST(MainWindow, ClosingAChangedDocumentAsks) {
  Workbench bench;
  bench.ActiveView().GetDocument().SetModifiedFlag(true);
  {
    ModalScript script({Press("Cancel")});
    SubWindow(bench, 0)->close();
    EXPECT_EQ(bench.WindowCount(), 1);
  }
  ModalScript script({Press("Don't Save")});
  SubWindow(bench, 0)->close();
  EXPECT_EQ(bench.WindowCount(), 0);
}

// Sends a key with Ctrl as the desktop does: shortcuts have it first.
void PressWithCtrl(Workbench& bench, Qt::Key key) {
  bench.window.activateWindow();
  QApplication::processEvents();
  QWidget* focus = QApplication::focusWidget();
  QTest::keyClick(focus ? focus : &bench.window, key, Qt::ControlModifier);
  QApplication::processEvents();
}

TEST(MainWindow, KeysCloseTheActiveWindowAlsoAMaximisedOne) {
  for (const Qt::Key key : {Qt::Key_W, Qt::Key_F4}) {
    for (const bool maximised : {false, true}) {
      Workbench bench;
      bench.Run("File > New");
      if (maximised) SubWindow(bench, 1)->showMaximized();
      QApplication::processEvents();
      bench.ActiveView().GetDocument().SetModifiedFlag(true);
      {
        ModalScript script({Press("Cancel")});
        PressWithCtrl(bench, key);
        EXPECT_EQ(bench.WindowCount(), 2);
      }
      {
        ModalScript script({Press("Don't Save")});
        PressWithCtrl(bench, key);
      }
      EXPECT_EQ(bench.WindowCount(), 1);
      EXPECT_EQ(bench.ActiveView().GetTitle(), "Corvane1");
      PressWithCtrl(bench, key);
      EXPECT_EQ(bench.WindowCount(), 0);
      PressWithCtrl(bench, key);  // nothing is left to close
      EXPECT_TRUE(bench.window.isVisible());
    }
  }
}

// A key of two actions would do nothing.
TEST(MainWindow, NoKeysBelongToTwoActions) {
  Workbench bench;
  bench.Run("File > New");
  SubWindow(bench, 1)->showMaximized();
  QStringList keys;
  for (const QAction* action : bench.window.findChildren<QAction*>()) {
    for (const QKeySequence& sequence : action->shortcuts()) keys.append(sequence.toString());
  }
  EXPECT_EQ(keys.removeDuplicates(), 0);
  EXPECT_TRUE(keys.contains("Ctrl+W"));
  EXPECT_TRUE(keys.contains("Ctrl+F4"));
}

TEST(MainWindow, KeysCloseOneMaximisedWindowAfterTheOther) {
  for (const Qt::Key key : {Qt::Key_W, Qt::Key_F4}) {
    Workbench bench;
    SubWindow(bench, 0)->showMaximized();
    bench.Run("File > New");
    bench.Choose("Window > New Window");
    for (int i = 0; i < 3; ++i) SubWindow(bench, i)->showMaximized();
    bench.Choose("Window > Next Pane");
    bench.Choose("Window > Previous Pane");
    for (int nLeft = 2; nLeft >= 0; --nLeft) {
      PressWithCtrl(bench, key);
      EXPECT_EQ(bench.WindowCount(), nLeft);
    }
  }
}

TEST(MainWindow, KeysCloseOneOfTwoWindowsOfADocument) {
  Workbench bench;
  bench.Choose("Window > New Window");
  SubWindow(bench, 1)->showMaximized();
  bench.ActiveView().GetDocument().SetModifiedFlag(true);
  PressWithCtrl(bench, Qt::Key_W);
  EXPECT_EQ(bench.WindowCount(), 1);
  EXPECT_EQ(bench.app.GetDocuments().size(), 1u);
}

TEST(MainWindow, LeavingTheProgramAsksForEveryChangedDocument) {
  Workbench bench;
  bench.ActiveView().GetDocument().SetModifiedFlag(true);
  bench.Run("File > New");
  bench.Run("File > New");
  bench.ActiveView().GetDocument().SetModifiedFlag(true);
  {
    ModalScript script({[](QWidget& box) {
                          EXPECT_EQ(BoxText(box), "Save changes to Corvane1?");
                          PressButton(box, "Don't Save");
                        },
                        [](QWidget& box) {
                          EXPECT_EQ(BoxText(box), "Save changes to Corvane3?");
                          PressButton(box, "Cancel");
                        }});
    EXPECT_FALSE(bench.window.close());
    EXPECT_EQ(bench.WindowCount(), 3);
  }
  ModalScript script({Press("Don't Save"), Press("Don't Save")});
  bench.Choose("File > Exit");
  EXPECT_FALSE(bench.window.isVisible());
}

TEST(MainWindow, LeavingTheProgramSavesWhatIsToBeSaved) {
  Workbench bench;
  WriteSquareTin("square.tin", 100.0);
  bench.Open("square.tin");
  bench.ActiveView().GetDocument().SetModifiedFlag(true);
  ModalScript script({Press("Save")});
  EXPECT_TRUE(bench.window.close());
  EXPECT_FALSE(bench.ActiveView().GetDocument().IsModified());
  EXPECT_FALSE(ReadFileBytes("square_filted.pts").empty());
}

TEST(MainWindow, WindowWithoutItsFilesContentIsReportedByTitleAlone) {
  Workbench bench;
  bench.Open("missing.tin");
  bench.Run("File > New");
  std::vector<std::string> reported;
  bench.window.onActivation = [&](const std::string& path, const std::string& title) {
    reported.push_back(path + "|" + title);
  };
  bench.window.GetArea().setActiveSubWindow(SubWindow(bench, 1));
  EXPECT_EQ(reported, std::vector<std::string>{"|missing.tin"});
}

TEST(MainWindow, APersonsChangeOfWindowIsReported) {
  Workbench bench;
  std::vector<std::string> reported;
  bench.window.onActivation = [&](const std::string& path, const std::string& title) {
    reported.push_back(path + "|" + title);
  };
  WriteSquareTin("square.tin", 100.0);
  bench.Open("square.tin");
  bench.Run("File > New");
  EXPECT_EQ(reported, std::vector<std::string>{});
  bench.window.GetArea().setActiveSubWindow(SubWindow(bench, 1));
  bench.window.GetArea().setActiveSubWindow(SubWindow(bench, 0));
  EXPECT_EQ(reported, (std::vector<std::string>{"square.tin|square.tin", "|Corvane1"}));
}

TEST(MainWindow, OpeningAnOpenFileGoesToItsWindow) {
  Workbench bench;
  WriteSquareTin("square.tin", 100.0);
  bench.Open("square.tin");
  bench.Run("File > New");
  bench.window.OpenPath("square.tin");
  EXPECT_EQ(bench.WindowCount(), 3);
  EXPECT_EQ(bench.ActiveView().GetTitle(), "square.tin");
  EXPECT_EQ(bench.window.GetArea().currentSubWindow(), SubWindow(bench, 1));
}

TEST(MainWindow, F6GoesToTheNextWindow) {
  Workbench bench;
  bench.Run("File > New");
  bench.Choose("Window > Next Pane");
  EXPECT_EQ(bench.ActiveView().GetTitle(), "Corvane1");
  bench.Choose("Window > Previous Pane");
  EXPECT_EQ(bench.ActiveView().GetTitle(), "Corvane2");
}

TEST(MainWindow, WindowMenuListsTheWindows) {
  Workbench bench;
  bench.Run("File > New");
  emit bench.window.GetMenus().GetWindowMenu()->aboutToShow();
  const QList<QAction*> actions = bench.window.GetMenus().GetWindowMenu()->actions();
  ASSERT_EQ(actions.size(), 7);
  EXPECT_TRUE(actions[4]->isSeparator());
  EXPECT_EQ(actions[5]->text(), "&1 Corvane1");
  EXPECT_EQ(actions[6]->text(), "&2 Corvane2");
  EXPECT_FALSE(actions[5]->isChecked());
  EXPECT_TRUE(actions[6]->isChecked());
  actions[5]->trigger();
  EXPECT_EQ(bench.ActiveView().GetTitle(), "Corvane1");
}

TEST(MainWindow, CascadeTileAndArrangeIcons) {
  Workbench bench;
  bench.Run("File > New");
  bench.Choose("Window > Tile");
  EXPECT_FALSE(SubWindow(bench, 0)->geometry().intersects(SubWindow(bench, 1)->geometry()));
  bench.Choose("Window > Cascade");
  EXPECT_TRUE(SubWindow(bench, 0)->geometry().intersects(SubWindow(bench, 1)->geometry()));
  SubWindow(bench, 0)->showMinimized();
  SubWindow(bench, 0)->move(50, 50);
  bench.Choose("Window > Arrange Icons");
  EXPECT_EQ(SubWindow(bench, 0)->geometry().left(), 0);
  EXPECT_EQ(SubWindow(bench, 0)->geometry().bottom() + 1, bench.window.GetArea().viewport()->height());
}

TEST(MainWindow, ViewItemsShowAndHideTheBars) {
  Workbench bench;
  auto* toolBar = bench.window.findChild<QToolBar*>();
  bench.Choose("View > Toolbar");
  EXPECT_FALSE(toolBar->isVisible());
  bench.Choose("View > Toolbar");
  EXPECT_TRUE(toolBar->isVisible());
  bench.Choose("View > Status Bar");
  EXPECT_FALSE(bench.window.statusBar()->isVisible());
  bench.Choose("View > Status Bar");
  EXPECT_TRUE(bench.window.statusBar()->isVisible());
}

TEST(MainWindow, ToolBarHoldsTheStandardButtonsAndDocksOnAllSides) {
  Workbench bench;
  const auto* toolBar = bench.window.findChild<QToolBar*>();
  QStringList texts;
  for (const QAction* action : toolBar->actions()) {
    texts.append(action->isSeparator() ? "|" : action->text().remove('&'));
    EXPECT_TRUE(action->isSeparator() || !action->icon().isNull()) << action->text().toStdString();
  }
  EXPECT_EQ(texts,
            QStringList({"New", "Open", "Save", "|", "Cut", "Copy", "Paste", "|", "Print", "|", "About"}));
  EXPECT_TRUE(toolBar->isMovable());
  EXPECT_EQ(toolBar->allowedAreas(), Qt::AllToolBarAreas);
}

TEST(MainWindow, StatusTextsGoToTheirPanes) {
  Workbench bench;
  EXPECT_EQ(bench.window.GetStatusPanes().GetText(0), "Ready");
  bench.app.GetMainFrame().GetStatusBar().SetPaneText(0, "Row 5 of 10");
  EXPECT_EQ(bench.window.GetStatusPanes().GetText(0), "Row 5 of 10");
  bench.window.SetStatusText(9, "nowhere");
}

TEST(MainWindow, MessagePaneTellsHowACommandEnded) {
  Workbench bench;
  const auto shown = [&] { return bench.window.GetStatusPanes().GetText(0); };
  const auto run = [&](const char* text, CommandResult result) {
    bench.window.CommandStarted();
    EXPECT_EQ(shown(), "");
    if (text) bench.window.SetStatusText(0, text);
    bench.window.CommandEnded(result);
    return shown();
  };
  EXPECT_EQ(run("Done reading TIN.", CommandResult::Done), "Done reading TIN.");
  EXPECT_EQ(run(nullptr, CommandResult::Done), "Done.");
  EXPECT_EQ(run(nullptr, CommandResult::Failed), "Failed.");
  EXPECT_EQ(run(nullptr, CommandResult::Cancelled), "Cancelled.");
  EXPECT_EQ(run("Reading TIN from a.tin", CommandResult::Failed), "Failed: Reading TIN from a.tin");
  EXPECT_EQ(run("Reading TIN from a.tin", CommandResult::Cancelled), "Cancelled.");
}

TEST(MainWindow, OtherFilesCanNotBeDropped) {
  Workbench bench;
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile("/data/a.pts"), QUrl("http://host/a.tin")});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&bench.window, &enter);
  EXPECT_FALSE(enter.isAccepted());
}

TEST(MainWindow, LockIndicatorsFollowTheKeys) {
  Workbench bench;
  const auto press = [&](int key, quint32 modifiers) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, 0, 0, modifiers);
    QApplication::sendEvent(bench.window.windowHandle(), &event);
    CStatusPanes& panes = bench.window.GetStatusPanes();
    return (panes.GetText(1) + "," + panes.GetText(2) + "," + panes.GetText(3)).toStdString();
  };
  EXPECT_EQ(press(Qt::Key_F12, 0x00), ",,");
  EXPECT_EQ(press(Qt::Key_CapsLock, 0x00), "CAP,,");
  EXPECT_EQ(press(Qt::Key_F12, 0x12), "CAP,NUM,");
  EXPECT_EQ(press(Qt::Key_CapsLock, 0x12), ",NUM,");
  EXPECT_EQ(press(Qt::Key_ScrollLock, 0x10), ",NUM,SCRL");
  EXPECT_EQ(press(Qt::Key_F12, 0x00), ",,SCRL");
  EXPECT_EQ(press(Qt::Key_ScrollLock, 0x00), ",,");
}

TEST(MainWindow, DroppedTinFilesAreOpened) {
  Workbench bench;
  WriteSquareTin("square.tin", 100.0);
  WriteFileBytes("notes.txt", "x");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile("notes.txt"),
                QUrl::fromLocalFile(QString::fromStdString(bench.folder.GetPath()) + "/square.tin")});
  ModalScript script({Press("OK")});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&bench.window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&bench.window, &drop);
  EXPECT_TRUE(drop.isAccepted());
  EXPECT_EQ(bench.app.GetDocuments().size(), 1u);  // the opening follows the event
  QApplication::processEvents();
  EXPECT_EQ(bench.ActiveView().GetTitle(), "square.tin");
  EXPECT_EQ(bench.app.GetDocuments().size(), 2u);
}

TEST(MainWindow, AboutBox) {
  Workbench bench;
  ModalScript script({[](QWidget& box) {
    EXPECT_EQ(box.windowTitle(), "About Corvane");
    EXPECT_EQ(BoxText(box), "Corvane Version 1.0");
    EXPECT_FALSE(dynamic_cast<QMessageBox&>(box).iconPixmap().isNull());
    PressButton(box, "OK");
  }});
  bench.Choose("Help > About");
}

TEST(MainWindow, HelpTopicsListsTheKeys) {
  Workbench bench;
  ModalScript script({[](QWidget& box) {
    EXPECT_TRUE(BoxText(box).contains("zoom in"));
    PressButton(box, "OK");
  }});
  bench.Choose("Help > Help Topics");
}

TEST(MainWindow, OnlyAPictureCanBePrinted) {
  Workbench bench;
  EXPECT_FALSE(bench.window.GetMenus().Find("File > Print")->isEnabled());
  WriteSquareTin("square.tin", 100.0);
  bench.Open("square.tin");
  EXPECT_TRUE(bench.window.GetMenus().Find("File > Print")->isEnabled());
  QPrinter printer;
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName("page.pdf");
  EXPECT_TRUE(DrawPage(bench.ActiveView(), printer));
  EXPECT_EQ(ReadFileBytes("page.pdf").substr(0, 5), "%PDF-");
  printer.setOutputFileName("no/such/folder/page.pdf");
  EXPECT_FALSE(DrawPage(bench.ActiveView(), printer));
}

}  // namespace

}  // namespace corvane
