#include "OmbrelRecord/AppModel/Desktop.h"
#include "OmbrelRecord/Application/Snapshot.h"
#include "OmbrelRecord/Entry/Jobs.h"

#include <cstdio>
#include <exception>
#include <fmt/format.h>

namespace OmbrelRecord {

void Jobs::snapshot(const std::filesystem::path& folder, const std::filesystem::path&) {
    Snapshot::View controls;
    controls.name = QStringLiteral("controls");
    controls.size = QSize(1320, 788);
    controls.type = QStringLiteral("ControlGallery");
    try {
        for (const std::string& problem : Snapshot::write({controls}, folder))
            fmt::print(stderr, "ombrel-record: {}\n", problem);
    } catch (const std::exception& error) {
        fmt::print(stderr, "ombrel-record: {}\n", error.what());
    }
}

} // namespace OmbrelRecord
