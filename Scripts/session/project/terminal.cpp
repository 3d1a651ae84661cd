#include "terminal.h"
#include <iostream>
#include <sstream>

namespace {
void color(std::ostream& out, int layer, const Color& c)
{
    out << "\033[" << layer << ";2;" << int(c.r * 255) << ';' << int(c.g * 255) << ';' << int(c.b * 255) << 'm';
}
} // namespace

void show(const Picture& picture, const Palette& palette)
{
    for (int y = 0; y + 1 < picture.height; y += 2) {
        std::ostringstream line;
        for (int x = 0; x < picture.width; ++x) {
            color(line, 38, pick(palette, picture.depth[y * picture.width + x]));
            color(line, 48, pick(palette, picture.depth[(y + 1) * picture.width + x]));
            line << "▀";
        }
        std::cout << line.str() << "\033[0m\n" << std::flush;
    }
}
