#include "platform/TrackedMemory.h"

#include "host/kernel/TrackedBlocks.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>

namespace host {

namespace {

struct Site {
    const char* file;
    int line;
};

struct Registry {
    std::mutex mutex;
    std::unordered_map<const void*, Site> blocks; // guarded by mutex
    std::atomic<std::size_t> failIn{0};           // allocations until the one that fails; 0: none does
};

// Never destroyed: objects that outlive main still give their memory back.
Registry& registry() {
    static Registry& instance = *std::make_unique<Registry>().release();
    return instance;
}

bool failsNow(std::atomic<std::size_t>& failIn) {
    std::size_t left = failIn.load(std::memory_order_relaxed);
    while (left > 0 && !failIn.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1;
}

} // namespace

void failTrackedAllocation(std::size_t nth) {
    registry().failIn = nth;
}

std::vector<TrackedBlocks> trackedBlocks() {
    std::map<std::pair<std::string, int>, std::size_t> counts;
    {
        const std::lock_guard lock(registry().mutex);
        for (const auto& [block, site] : registry().blocks) {
            ++counts[{site.file, site.line}];
        }
    }
    std::vector<TrackedBlocks> result;
    for (const auto& [site, count] : counts) {
        result.push_back({site.first, site.second, count});
    }
    return result;
}

} // namespace host

void* operator new(std::size_t uSize, const char* pszFile, int iLine) noexcept {
    host::Registry& registry = host::registry();
    if (host::failsNow(registry.failIn)) {
        return nullptr;
    }
    void* block = std::malloc(uSize > 0 ? uSize : 1);
    if (!block) {
        return nullptr;
    }
    try {
        const std::lock_guard lock(registry.mutex);
        registry.blocks.emplace(block, host::Site{pszFile ? pszFile : "?", iLine});
    } catch (const std::bad_alloc&) {
        std::free(block);
        return nullptr;
    }
    return block;
}

void operator delete(void* pBlock, const char* pszFile, int iLine) noexcept {
    if (!pBlock) {
        return;
    }
    host::Registry& registry = host::registry();
    std::size_t known = 0;
    {
        const std::lock_guard lock(registry.mutex);
        known = registry.blocks.erase(pBlock);
    }
    if (known == 0) {
        std::fprintf(stderr,
                     "%s:%d: gives back the block %p, which no tracking operator new handed out or which was "
                     "given back before\n",
                     pszFile ? pszFile : "?", iLine, pBlock);
        std::abort();
    }
    std::free(pBlock);
}
