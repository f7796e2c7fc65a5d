#include "OpenGL/Stereo_2Cursor/Collinearity.h"

#include "numerics/Angles.h"

namespace corvane {

namespace {

// A ground point as a photo sees it.
struct Sight {
  double dX;  // D, from the perspective centre to the point
  double dY;
  double dZ;
  double u;  // (U, V, W) = R D
  double v;
  double w;
};

Sight SightOf(const ObservationRecord& record, const ExteriorElements& exterior, ConstMatrix r) {
  Sight s = {};
  s.dX = record.groundX - exterior.x;
  s.dY = record.groundY - exterior.y;
  s.dZ = record.groundZ - exterior.z;
  s.u = r[0][0] * s.dX + r[0][1] * s.dY + r[0][2] * s.dZ;
  s.v = r[1][0] * s.dX + r[1][1] * s.dY + r[1][2] * s.dZ;
  s.w = r[2][0] * s.dX + r[2][1] * s.dY + r[2][2] * s.dZ;
  return s;
}

// Three derivatives in each of the two rows, by the angles.
void WriteAngles(const Sight& s, double f, const ExteriorElements& exterior, ConstMatrix r, double* xRow,
                 double* yRow) {
  const double sw = Sin(exterior.omega);
  const double cw = Cos(exterior.omega);
  const double sp = Sin(exterior.phi);
  const double cp = Cos(exterior.phi);
  const double sk = Sin(exterior.kappa);
  const double ck = Cos(exterior.kappa);
  const double square = s.w * s.w;

  const double wOmega = -r[2][2] * s.dY + r[2][1] * s.dZ;  // of W by omega; likewise the others
  const double uOmega = -r[0][2] * s.dY + r[0][1] * s.dZ;
  const double vOmega = -r[1][2] * s.dY + r[1][1] * s.dZ;
  xRow[0] = f * (wOmega * s.u - uOmega * s.w) / square;
  yRow[0] = f * (wOmega * s.v - vOmega * s.w) / square;

  const double wPhi = cp * s.dX + sw * sp * s.dY - cw * sp * s.dZ;
  const double uPhi = -sp * ck * s.dX + sw * cp * ck * s.dY - cw * cp * ck * s.dZ;
  const double vPhi = sp * sk * s.dX - sw * cp * sk * s.dY + cw * cp * sk * s.dZ;
  xRow[1] = f * (wPhi * s.u - uPhi * s.w) / square;
  yRow[1] = f * (wPhi * s.v - vPhi * s.w) / square;

  xRow[2] = -f * s.v / s.w;
  yRow[2] = f * s.u / s.w;
}

// Three derivatives in each of the two rows: by the perspective centre with f, by the ground point, which are
// the negatives, with -f.
void WritePosition(const Sight& s, double f, ConstMatrix r, double* xRow, double* yRow) {
  const double square = s.w * s.w;
  for (int i = 0; i < 3; ++i) {
    xRow[i] = -f * (s.u * r[2][i] - s.w * r[0][i]) / square;
    yRow[i] = -f * (s.v * r[2][i] - s.w * r[1][i]) / square;
  }
}

void WriteObservation(const ObservationRecord& record, const InteriorElements& interior, const Sight& s,
                      double* l) {
  const double f = interior.focalLength;
  l[0] = record.x - interior.principalX + f * s.u / s.w;
  l[1] = record.y - interior.principalY + f * s.v / s.w;
}

}  // namespace

void CollinearityRow(const ObservationRecord& record, const InteriorElements& interior,
                     const ExteriorElements& exterior, ConstMatrix rotation, Matrix rows, double* l,
                     int photoColumn, int pointColumn) {
  const double f = interior.focalLength;
  const Sight sight = SightOf(record, exterior, rotation);
  WriteAngles(sight, f, exterior, rotation, rows[0] + photoColumn, rows[1] + photoColumn);
  WritePosition(sight, f, rotation, rows[0] + photoColumn + 3, rows[1] + photoColumn + 3);
  if (record.type == ObservationRecord::kPass) {
    WritePosition(sight, -f, rotation, rows[0] + pointColumn, rows[1] + pointColumn);
  }
  WriteObservation(record, interior, sight, l);
}

void CollinearityPointRow(const ObservationRecord& record, const InteriorElements& interior,
                          const ExteriorElements& exterior, ConstMatrix rotation, Matrix rows, double* l,
                          int pointColumn) {
  const Sight sight = SightOf(record, exterior, rotation);
  WritePosition(sight, -interior.focalLength, rotation, rows[0] + pointColumn, rows[1] + pointColumn);
  WriteObservation(record, interior, sight, l);
}

}  // namespace corvane
