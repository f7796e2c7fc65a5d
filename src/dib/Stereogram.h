#pragma once

#include "dib/Dib.h"

namespace corvane {

// The bitmap for the stereogram of a depth image: of its size and kind, black, with 256 colours where it has
// a palette, as many as the dots take: those of the depth image, and greys behind them. Empty without memory.
Dib MakeStereogramCanvas(const Dib& source);

// Draws a random-dot stereogram of a depth image, 255 being nearest, for eyes that look behind the picture.
// Each row links the two places at which a point of the scene is seen by the eyes, unless something nearer
// hides it, and linked places take one colour.
//
// `source` holds the depths, the first byte of each pixel; `target`, a bitmap of the same size, gets the
// picture. Both have 8 or 24 bits a pixel: -1 for others, with the target as it was; 1 else. The colours come
// from std::rand().
int MakeStereogram(const Dib& source, Dib& target);

}  // namespace corvane
