// Draws a part of the Mandelbrot set in a terminal.

#include "fractal.h"
#include "options.h"
#include "palette.h"
#include "terminal.h"

int main(int argc, char** argv)
{
    const Options options = parse(argc, argv);
    Picture picture(options.columns, options.rows * 2);

    // The valley of the sea horses, near -0.744 + 0.132i.
    picture.compute({-0.7436, 0.1318}, 0.012);

    show(picture, ocean);
    return 0;
}
