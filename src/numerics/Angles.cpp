#include "numerics/Angles.h"

#include <mpfr.h>

namespace corvane {

namespace {

constexpr mpfr_prec_t kDoubleBits = 53;

// A number of the library with the precision of a double.
class Number {
 public:
  explicit Number(double value) {
    mpfr_init2(number_, kDoubleBits);
    mpfr_set_d(number_, value, MPFR_RNDN);
  }
  ~Number() { mpfr_clear(number_); }
  Number(const Number&) = delete;
  Number& operator=(const Number&) = delete;

  mpfr_ptr Get() { return number_; }
  double ToDouble() const { return mpfr_get_d(number_, MPFR_RNDN); }

 private:
  mpfr_t number_;
};

using Function = int(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

double Rounded(Function function, double argument) {
  Number number(argument);
  function(number.Get(), number.Get(), MPFR_RNDN);
  return number.ToDouble();
}

}  // namespace

double Sin(double angle) {
  return Rounded(mpfr_sin, angle);
}

double Cos(double angle) {
  return Rounded(mpfr_cos, angle);
}

double Asin(double sine) {
  return Rounded(mpfr_asin, sine);
}

double Atan2(double y, double x) {
  Number number(y);
  Number other(x);
  mpfr_atan2(number.Get(), number.Get(), other.Get(), MPFR_RNDN);
  return number.ToDouble();
}

}  // namespace corvane
