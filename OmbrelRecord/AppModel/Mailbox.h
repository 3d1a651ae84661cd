#pragma once

#include <functional>
#include <memory>

namespace OmbrelRecord {

/// Brings work from other threads to the main thread. Made, and ended, on the main thread: what has not been
/// done when it goes is never done, so the work may use what lives as long as the mailbox.
class Mailbox {
public:
    /// To post to, from any thread and also when the mailbox is gone.
    class Address {
    public:
        void post(std::function<void()> work) const;

    private:
        friend class Mailbox;
        explicit Address(std::weak_ptr<bool> watch) : watch(std::move(watch)) {}
        std::weak_ptr<bool> watch;
    };

    Address address() const { return Address(there); }

private:
    std::shared_ptr<bool> there = std::make_shared<bool>(true);
};

} // namespace OmbrelRecord
