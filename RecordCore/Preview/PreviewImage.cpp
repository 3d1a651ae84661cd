#include "RecordCore/Preview/PreviewImage.h"

#include <mutex>

namespace RecordCore {

struct PreviewImages::Idle {
    std::mutex mutex;
    std::vector<std::unique_ptr<PreviewImage>> images; ///< guarded by the mutex
};

PreviewImages::PreviewImages() : idle(std::make_shared<Idle>()) {}

std::shared_ptr<PreviewImage> PreviewImages::get(int width, int height) {
    std::unique_ptr<PreviewImage> image;
    {
        const std::lock_guard lock(idle->mutex);
        // Those of another size are not wanted any more.
        std::erase_if(idle->images, [&](const std::unique_ptr<PreviewImage>& one) {
            return one->width != width || one->height != height;
        });
        if (!idle->images.empty()) {
            image = std::move(idle->images.back());
            idle->images.pop_back();
        }
    }
    if (!image) image = std::make_unique<PreviewImage>(width, height);
    return {image.release(), [keep = idle](PreviewImage* freed) {
                std::unique_ptr<PreviewImage> owned(freed);
                const std::lock_guard lock(keep->mutex);
                keep->images.push_back(std::move(owned));
            }};
}

} // namespace RecordCore
