#pragma once

#include <string>
#include <vector>

#include "erdasimg/ErdasImg.h"
#include "sample_survey/PhotoBlock.h"

namespace corvane {

// The sample survey's block of photos, made once for all tests of a program.
const PhotoBlock& SampleBlock();

// The signal of that name.
const SignalPoint& SignalOf(const std::string& name);

// Writes its files into the current folder.
void WriteSampleBlock();

// A line of "signals_image.txt".
struct SignalPlace {
  std::string point;
  std::string photo;
  PhotoPlace place;
};
std::vector<SignalPlace> ReadSignalPlaces();

// The middle of a signal's white disc near a place; not a number if there is none.
PhotoPlace DiscMiddle(const ErdasImg& image, const PhotoPlace& place);

}  // namespace corvane
