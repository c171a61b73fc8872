#include "bench/session/Heap.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

struct Counts {
    std::atomic<bool> counting{false};
    std::atomic<bool> apart{false};
    std::atomic<std::size_t> allocations{0};
    std::atomic<std::size_t> allocationsApart{0};
    std::atomic<std::ptrdiff_t> bytes{0};
    std::atomic<std::ptrdiff_t> peak{0};
};

constinit Counts counts;

std::ptrdiff_t sizeOf(void* block) {
    return static_cast<std::ptrdiff_t>(malloc_usable_size(block) + sizeof(std::size_t));
}

void countTaken(void* block) {
    ++(counts.apart ? counts.allocationsApart : counts.allocations);
    const std::ptrdiff_t bytes = counts.bytes += sizeOf(block);
    std::ptrdiff_t peak = counts.peak;
    while (bytes > peak && !counts.peak.compare_exchange_weak(peak, bytes)) {
    }
}

} // namespace

void* operator new(std::size_t size) {
    void* const block = std::malloc(size > 0 ? size : 1);
    if (!block) {
        throw std::bad_alloc();
    }
    if (counts.counting.load(std::memory_order_relaxed)) {
        countTaken(block);
    }
    return block;
}

void operator delete(void* block) noexcept {
    if (block && counts.counting.load(std::memory_order_relaxed)) {
        counts.bytes -= sizeOf(block);
    }
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

namespace bench {

HeapMeter::HeapMeter() {
    counts.bytes = 0;
    restart();
    counts.counting = true;
}

HeapMeter::~HeapMeter() {
    counts.counting = false;
}

HeapCount HeapMeter::count() const {
    return {counts.allocations, counts.allocationsApart, counts.bytes, counts.peak};
}

void HeapMeter::restart() {
    counts.allocations = 0;
    counts.allocationsApart = 0;
    counts.peak = counts.bytes.load();
}

void HeapMeter::setApart(bool apart) {
    counts.apart = apart;
}

} // namespace bench
