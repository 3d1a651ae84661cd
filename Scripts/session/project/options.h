#pragma once

struct Options {
    int columns = 80;
    int rows = 24;
};

// "fractal 100x40"; without it as large as the terminal.
Options parse(int argc, char** argv);
