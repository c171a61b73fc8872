// A value that one thread may replace while others take copies of it, such as a shared pointer to what answers next.
#pragma once

#include <mutex>
#include <utility>

namespace host {

template <typename Value> class Slot {
public:
    Value get() const {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

    // What was there before is let go of without the lock.
    void set(Value value) {
        const std::lock_guard lock(m_mutex);
        std::swap(m_value, value);
    }

private:
    mutable std::mutex m_mutex; // a leaf
    Value m_value{};            // guarded by m_mutex
};

} // namespace host
