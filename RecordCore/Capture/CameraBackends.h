#pragma once

#include "RecordCore/Capture/CameraStream.h"

#include <memory>
#include <vector>

namespace RecordCore {

/// Several ways to the cameras, in order of preference: the first that has any is the one that counts.
class CameraBackends : public CameraBackend {
public:
    explicit CameraBackends(std::vector<std::unique_ptr<CameraBackend>> ways) : ways(std::move(ways)) {}

    std::vector<CameraDevice> cameras() const override;
    std::unique_ptr<CameraStream> openCamera(const std::string& id) const override;

private:
    std::vector<std::unique_ptr<CameraBackend>> ways;
};

} // namespace RecordCore
