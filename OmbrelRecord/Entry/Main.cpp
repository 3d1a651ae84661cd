#include "OmbrelRecord/Entry/Backends.h"
#include "OmbrelRecord/Entry/CommandLine.h"
#include "OmbrelRecord/Entry/SelfTest.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

int main(int argc, char** argv) {
    // The switches come before everything else; one that lacks its arguments counts as absent.
    const auto place = [&](std::string_view name) { return std::find(argv, argv + argc, name) - argv; };
    if (const auto at = place("--selftest"); at + 1 < argc) {
        OmbrelRecord::SelfTest::run(argv[at + 1], place("--window") < argc, *OmbrelRecord::makeMediaBackend(),
                                    OmbrelRecord::makeCaptureServices());
        return 0;
    }
    if (const auto status = OmbrelRecord::CommandLine::run(argc, argv)) return *status;
    fmt::print(stderr, "ombrel-record: no such verb; see ombrel-record --help\n");
    return 2;
}
