#pragma once
#include "fractal.h"
#include "palette.h"

// Two pixels a letter, one above the other.
void show(const Picture& picture, const Palette& palette);
