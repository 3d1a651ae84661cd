#include "OmbrelRecord/Entry/Module.h"

#include "OmbrelRecord/Entry/Modules/Modules.h"
#include "RecordCore/Model/RecordingError.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <string>
#include <string_view>

namespace OmbrelRecord {

namespace {

[[noreturn]] void fail(const char* file, std::string_view cause) {
    // The linker's causes name the file themselves.
    const std::string what =
        cause.find(file) == std::string_view::npos ? fmt::format("{}: {}", file, cause) : std::string(cause);
    throw RecordCore::RecordingError(
        fmt::format("a part of Ombrel Record can't be used ({}); install it again", what));
}

} // namespace

const void* loadModule(const char* file) {
    // The program's own search path leads to its modules. Whatever they need is bound when it is called: most
    // of it never is.
    void* library = dlopen(file, RTLD_LAZY | RTLD_LOCAL);
    if (!library) {
        const char* cause = dlerror();
        fail(file, cause ? cause : "not loaded");
    }
    const auto* offer = static_cast<const Modules::Head*>(dlsym(library, "ombrelModule"));
    if (!offer || std::string_view(offer->name) != file) fail(file, "not one of its modules");
    if (std::string_view(offer->version) != OMBREL_VERSION)
        fail(file, fmt::format("of version {}, not {}", offer->version, OMBREL_VERSION));
    return offer;
}

} // namespace OmbrelRecord
