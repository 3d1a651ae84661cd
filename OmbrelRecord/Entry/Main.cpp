#include "OmbrelRecord/Entry/CommandLine.h"

#include <fmt/format.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (const auto status = OmbrelRecord::CommandLine::run(argc, argv)) return *status;
    fmt::print(stderr, "ombrel-record: no such verb; see ombrel-record --help\n");
    return 2;
}
