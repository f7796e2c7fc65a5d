#include "picture/Picture.h"

#include <QApplication>
#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <clocale>
#include <cstdio>

#include "io/OutputFile.h"
#include "picture/QtCanvas.h"
#include "plot/GraphPlot.h"

namespace corvane {

namespace {

// Qt's scale of 0 to 100 for a PNG's compression: four times as fast as its default, files half as large
// again.
constexpr int kPngQuality = 80;

// The view's picture, or a null image if it does not fit into memory.
QImage DrawImage(WindowView& view, PixelSize size) {
  QImage image(size.width, size.height, QImage::Format_RGB32);
  if (image.isNull()) return image;
  image.fill(Qt::white);
  QPainter painter(&image);
  QtCanvas canvas(painter, {0, 0, size.width, size.height});
  view.DrawPicture(canvas);
  return image;
}

// Qt's remarks about the machine, such as a missing desktop folder, do not concern a program without a
// display.
void ShowOnlyFaults(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type == QtCriticalMsg || type == QtFatalMsg) std::fprintf(stderr, "%s\n", qPrintable(text));
}

}  // namespace

// Qt works on the arguments for as long as it runs.
struct OffscreenGui::Application {
  char name[8] = "corvane";
  char option[10] = "-platform";
  char platform[10] = "offscreen";
  char* arguments[4] = {name, option, platform, nullptr};
  int nArguments = 3;
  QApplication gui{nArguments, arguments};
};

OffscreenGui::OffscreenGui() = default;
OffscreenGui::~OffscreenGui() {
  if (!application_) return;
  application_.reset();
  qInstallMessageHandler(nullptr);
}

void OffscreenGui::Start() {
  if (QCoreApplication::instance()) return;
  qInstallMessageHandler(ShowOnlyFaults);
  application_ = std::make_unique<Application>();
  // Qt takes the desktop's language over; numbers in text stay in the C locale.
  std::setlocale(LC_ALL, "C");
}

bool SavePicture(WindowView& view, const std::string& path) {
  const PixelSize size = view.GetPictureSize();
  if (!view.HasPicture() || size.width <= 0 || size.height <= 0) return false;
  return WritePng(DrawImage(view, size), path);
}

bool SavePicture(const GraphView& graph, const std::string& path) {
  const PixelSize size = graph.GetSize();
  if (size.width <= 0 || size.height <= 0) return false;
  GraphPlot plot;
  plot.Plot(graph, -1);
  return WritePng(plot.DrawPicture({size.width, size.height}, 1.0), path);
}

bool WritePng(const QImage& image, const std::string& path) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (image.isNull() || !image.save(&buffer, "PNG", kPngQuality)) return false;

  OutputFile file(path);
  return file.Write(bytes.constData(), static_cast<std::size_t>(bytes.size())) && file.Commit();
}

}  // namespace corvane
