#include "OmbrelRecord/Entry/Resources.h"

#include <system_error>
#include <vector>

namespace OmbrelRecord {

namespace fs = std::filesystem;

fs::path resource(std::string_view name) {
    std::error_code ignored;
    fs::path up = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    std::vector<fs::path> places{up / "../share/ombrel-record"};
    for (int level = 0; level < 8 && up.has_relative_path(); ++level, up = up.parent_path())
        places.push_back(up / "OmbrelRecord/Resources"); // a program that was built and not installed
    places.emplace_back("/usr/local/share/ombrel-record");
    places.emplace_back("/usr/share/ombrel-record");
    for (const fs::path& place : places)
        if (fs::exists(place / name, ignored)) return place / name;
    return {};
}

} // namespace OmbrelRecord
