#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>

// The windows of these tests need no display.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  QApplication application(argc, argv);
  std::setlocale(LC_ALL, "C");
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
