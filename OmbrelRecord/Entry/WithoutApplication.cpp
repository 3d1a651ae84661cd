#include "OmbrelRecord/Entry/Entry.h"
#include "OmbrelRecord/Entry/Jobs.h"
#include "OmbrelRecord/Entry/Tell.h"

#include <cstdio>
#include <fmt/format.h>

// What stands in for the application in a build of the command line alone.

namespace OmbrelRecord {

namespace {

void say(const char* what) {
    tell("this build has no {}", what);
}

} // namespace

int Entry::headless(int, char**, const std::function<void()>& job) {
    job();
    return 0;
}

void Jobs::snapshot(const std::filesystem::path&, const std::filesystem::path&) {
    say("windows");
}

void Jobs::updateTest(const std::filesystem::path&) {
    say("search for updates");
}

void Jobs::film(const std::filesystem::path&, const std::filesystem::path&,
                const std::optional<std::filesystem::path>&) {
    say("windows");
}

int Jobs::application(int, char**, const std::filesystem::path&) {
    say("windows; see ombrel-record --help");
    return 2;
}

} // namespace OmbrelRecord
