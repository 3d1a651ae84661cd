#include "RecordCore/Model/Styles.h"

#include "RecordCore/Model/Project.h"

namespace RecordCore {

std::optional<CameraStyle> CameraStyle::of(const Project& project) {
    if (!project.cameraShow) return std::nullopt;
    return CameraStyle{project.cameraShape, project.cameraSize, project.cameraCorner, project.cameraMirror,
                       project.cameraBorder};
}

PointerStyle PointerStyle::of(const Project& project) {
    return {project.cursorStyle, project.clickEffect};
}

Cards Cards::of(const Project& project) {
    return {project.title, project.subtitle, project.endTitle, project.endSubtitle,
            project.showTitle && !project.title.empty()};
}

} // namespace RecordCore
