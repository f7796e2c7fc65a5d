#pragma once

#include <cstddef>

namespace corvane {

constexpr std::size_t kPlainGeneralRoom = 48;  // 24 for the text; it is written in blocks that reach further

// Writes printf's "%.<precision>g" of an everyday number to `to`, which has kPlainGeneralRoom bytes, and
// returns the end of the text. Null, with nothing written, for any other number or precision.
//
// Everyday is a precision P from 1 to 17 and a magnitude from about 2 * 10^(P - 28) to 10^P: of 15 digits,
// all between 1.2e-13 and 1e15. For these the digits are exact without any care for errors: with m * 2^e the
// number, the integer to print is m * 5^q * 2^(e + q) rounded, where 10^q moves the last wanted digit in
// front of the point, and 0 <= q <= 27. m has 53 bits and 5^27 has 63, so that the product fits 128 bits with
// nothing lost, and what is shifted out of it tells on which side of a half the number lies, ties included
// (they go to the even digit).
//
//   2.5 at one digit: m = 5 * 2^50, e = -51, q = 0; 5 * 2^50 >> 51 is 2, the rest is one half, 2 is even: "2"
//
// Cost: about a third of std::to_chars, which finds the same digits for all numbers in any number of them.
char* WritePlainGeneral(char* to, double value, int precision);

}  // namespace corvane
