#include "options.h"
#include <regex>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

Options parse(int argc, char** argv)
{
    Options options;
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        options = {size.ws_col - 1, size.ws_row - 12};
    std::cmatch match;
    if (argc > 1 && std::regex_match(argv[1], match, std::regex("(\\d+)x(\\d+)")))
        options = {std::stoi(match[1]), std::stoi(match[2])};
    return options;
}
