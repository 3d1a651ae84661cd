#pragma once

#include <stdexcept>
#include <string>

namespace RecordCore {

/// The one error type of the engine. The message is short, starts in lower case and, where a file is
/// involved, names the file and the cause. Never thrown across a thread or a C callback boundary:
/// there it is carried as a value (std::exception_ptr or a copy) and thrown by the owner.
class RecordingError : public std::runtime_error {
public:
    explicit RecordingError(const std::string& message) : std::runtime_error(message) {}
};

} // namespace RecordCore
