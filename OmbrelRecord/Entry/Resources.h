#pragma once

#include <filesystem>
#include <string_view>

namespace OmbrelRecord {

/// A file or folder that the application brings along, wherever it was installed or built; empty when this
/// build has none of that name. Any thread.
std::filesystem::path resource(std::string_view name);

} // namespace OmbrelRecord
