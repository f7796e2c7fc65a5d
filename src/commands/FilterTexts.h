#pragma once

#include <string>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// What the commands that filter images say alike.

// Whether there is a Gaussian with the sigma that the person has entered; if not, it is told.
bool CheckSigma(double sigma);

// What a command's last status text ends with: that the image has been cut short, that there is no filter for
// its pixels, or that the sigma makes no numbers.
std::string FilterNotes(const ErdasImg& image);
std::string FilterNotes(const ErdasImg& image, double sigma);

}  // namespace corvane
