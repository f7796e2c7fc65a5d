#include "qt/Icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace corvane {

namespace {

// Pictures are drawn on a square of kGrid units, at several sizes.
constexpr double kGrid = 24.0;
constexpr int kSizes[] = {16, 24, 32, 48, 64};

const QColor kInk(0x3b, 0x47, 0x54);
const QColor kPaper(0xff, 0xff, 0xff);
const QColor kBlue(0x4a, 0x86, 0xc5);
const QColor kYellow(0xf0, 0xc4, 0x59);
const QColor kGrey(0xc9, 0xd1, 0xd9);

QPolygonF Polygon(std::initializer_list<QPointF> points) {
  return QPolygonF(QList<QPointF>(points));
}

void DrawSheet(QPainter& painter, QRectF sheet) {
  const double fold = sheet.width() * 0.35;
  painter.setBrush(kPaper);
  painter.drawPolygon(
      Polygon({sheet.topLeft(), sheet.topRight() - QPointF(fold, 0), sheet.topRight() + QPointF(0, fold),
               sheet.bottomRight(), sheet.bottomLeft()}));
  painter.setBrush(kGrey);
  painter.drawPolygon(Polygon({sheet.topRight() - QPointF(fold, 0), sheet.topRight() + QPointF(-fold, fold),
                               sheet.topRight() + QPointF(0, fold)}));
}

void DrawNew(QPainter& painter) {
  DrawSheet(painter, {5, 3, 14, 18});
}

void DrawOpen(QPainter& painter) {
  painter.setBrush(kYellow);
  painter.drawPolygon(Polygon({{3, 20}, {3, 5}, {9, 5}, {11, 8}, {19, 8}, {19, 20}}));
  painter.setBrush(kYellow.lighter(120));
  painter.drawPolygon(Polygon({{3, 20}, {6.5, 11}, {22, 11}, {19, 20}}));
}

void DrawSave(QPainter& painter) {
  painter.setBrush(kBlue);
  painter.drawPolygon(Polygon({{3, 3}, {18, 3}, {21, 6}, {21, 21}, {3, 21}}));
  painter.setBrush(kPaper);
  painter.drawRect(QRectF(7, 13, 10, 8));
  painter.setBrush(kGrey);
  painter.drawRect(QRectF(8, 3, 8, 6));
}

void DrawCut(QPainter& painter) {
  painter.drawLine(QPointF(7, 3), QPointF(15.5, 16));
  painter.drawLine(QPointF(17, 3), QPointF(8.5, 16));
  painter.setPen(QPen(kBlue, 2));
  painter.drawEllipse(QPointF(7, 18), 2.8, 2.8);
  painter.drawEllipse(QPointF(17, 18), 2.8, 2.8);
}

void DrawCopy(QPainter& painter) {
  DrawSheet(painter, {3, 2, 12, 15});
  DrawSheet(painter, {9, 7, 12, 15});
}

void DrawPaste(QPainter& painter) {
  painter.setBrush(kYellow);
  painter.drawRoundedRect(QRectF(3, 4, 15, 17), 1.5, 1.5);
  painter.setBrush(kGrey);
  painter.drawRect(QRectF(7, 2, 7, 4));
  DrawSheet(painter, {9, 9, 12, 13});
}

void DrawPrint(QPainter& painter) {
  painter.setBrush(kPaper);
  painter.drawRect(QRectF(7, 3, 10, 7));
  painter.setBrush(kGrey);
  painter.drawRoundedRect(QRectF(3, 9, 18, 8), 1.5, 1.5);
  painter.setBrush(kPaper);
  painter.drawRect(QRectF(7, 14, 10, 7));
  painter.drawLine(QPointF(9.5, 17.5), QPointF(14.5, 17.5));
}

void DrawAbout(QPainter& painter) {
  painter.setBrush(kBlue);
  painter.drawEllipse(QPointF(12, 12), 9.5, 9.5);
  painter.setPen(QPen(kPaper, 2.6, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(QPointF(12, 11), QPointF(12, 17));
  painter.drawPoint(QPointF(12, 7));
}

void DrawProgram(QPainter& painter) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0xea, 0xf2, 0xf8));
  painter.drawRoundedRect(QRectF(0.5, 0.5, 23, 23), 4, 4);
  const QPointF peak(14, 4), left(2, 20), right(22, 20), middle(11, 13), foot(13, 20), shoulder(18, 12);
  const struct {
    QPointF a, b, c;
    QColor colour;
  } kFaces[] = {{left, peak, middle, QColor(0x8f, 0xbc, 0x6b)},
                {left, middle, foot, QColor(0x6f, 0xa3, 0x52)},
                {middle, peak, shoulder, QColor(0xd8, 0xb2, 0x6e)},
                {middle, shoulder, foot, QColor(0xb9, 0x8d, 0x4d)},
                {foot, shoulder, right, QColor(0x93, 0x6c, 0x3a)}};
  painter.setPen(QPen(QColor(0xc0, 0x2a, 0x2a), 0.9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  for (const auto& face : kFaces) {
    painter.setBrush(face.colour);
    painter.drawPolygon(Polygon({face.a, face.b, face.c}));
  }
}

QIcon MakeIcon(void (*draw)(QPainter&)) {
  QIcon icon;
  for (const int size : kSizes) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / kGrid, size / kGrid);
    painter.setPen(QPen(kInk, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    draw(painter);
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace

QIcon ItemIcon(const std::string& itemName) {
  static const struct {
    const char* name;
    void (*draw)(QPainter&);
  } kPictures[] = {{"File > New", DrawNew},     {"File > Open", DrawOpen},  {"File > Save", DrawSave},
                   {"Edit > Cut", DrawCut},     {"Edit > Copy", DrawCopy},  {"Edit > Paste", DrawPaste},
                   {"File > Print", DrawPrint}, {"Help > About", DrawAbout}};
  for (const auto& picture : kPictures) {
    if (itemName == picture.name) return MakeIcon(picture.draw);
  }
  return {};
}

QIcon ProgramIcon() {
  return MakeIcon(DrawProgram);
}

}  // namespace corvane
