#include "OmbrelRecord/Entry/Entry.h"

#include "OmbrelRecord/Entry/Backends.h"
#include "OmbrelRecord/Entry/CaptureServices.h"
#include "OmbrelRecord/Entry/CommandLine.h"
#include "OmbrelRecord/Entry/Jobs.h"
#include "OmbrelRecord/Entry/SelfTest.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>

#include <malloc.h>

namespace OmbrelRecord::Entry {

namespace {

/// The arguments after the first occurrence of a switch.
class Arguments {
public:
    Arguments(int argc, char** argv) : begin(argv), end(argv + argc) {}

    bool has(std::string_view name) const { return std::find(begin, end, name) != end; }
    /// How many arguments follow the switch; −1 when it is not there.
    int after(std::string_view name) const { return static_cast<int>(end - std::find(begin, end, name)) - 1; }
    std::filesystem::path path(std::string_view name, int place) const {
        return std::filesystem::absolute(*(std::find(begin, end, name) + place));
    }

private:
    char** begin;
    char** end;
};

/// From this size on a block is the system's again as soon as it is freed. Left alone, the library raises
/// this bound with every larger block that is freed, and what was needed to load an hour stays for the whole
/// export.
constexpr int returnedAtOnce = 1 << 20; // bytes

} // namespace

int main(int argc, char** argv) {
    mallopt(M_MMAP_THRESHOLD, returnedAtOnce);
    const Arguments arguments(argc, argv);
    if (constexpr auto name = "--selftest"; arguments.after(name) >= 1)
        return headless(argc, argv, [&] {
            SelfTest::run(arguments.path(name, 1), arguments.has("--window"), *makeMediaBackend(),
                          makeCaptureServices());
        });
    if (constexpr auto name = "--snapshot"; arguments.after(name) >= 2)
        return headless(argc, argv,
                        [&] { Jobs::snapshot(arguments.path(name, 1), arguments.path(name, 2)); });
    if (constexpr auto name = "--update-test"; arguments.after(name) >= 1)
        return headless(argc, argv, [&] { Jobs::updateTest(arguments.path(name, 1)); });
    if (constexpr auto name = "--film"; arguments.after(name) >= 2)
        return headless(argc, argv, [&] {
            Jobs::film(arguments.path(name, 1), arguments.path(name, 2),
                       arguments.after(name) >= 3 ? std::optional(arguments.path(name, 3)) : std::nullopt);
        });
    if (const auto status = CommandLine::run(argc, argv)) return *status;
    return Jobs::application(argc, argv, CommandLine::file(argc, argv));
}

} // namespace OmbrelRecord::Entry
