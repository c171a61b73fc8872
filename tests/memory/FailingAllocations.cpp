#include "tests/memory/FailingAllocations.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <pugixml.hpp>

namespace test {

thread_local AllocatedBytes allocatedBytes;

namespace {

const auto xmlIsCounted = [] {
    pugi::set_memory_management_functions([](std::size_t size) { return ::operator new(size, std::nothrow); },
                                          [](void* block) { ::operator delete(block); });
    return true;
}();

bool fails() {
    AllocationFault& fault = allocationFault;
    if (fault.until == 0 || --fault.until > 0) {
        return false;
    }
    fault.until = fault.lasts ? 1 : 0;
    ++fault.failed;
    return true;
}

void* allocated(void* block) {
    AllocatedBytes& bytes = allocatedBytes;
    bytes.now += malloc_usable_size(block);
    bytes.peak = std::max(bytes.peak, bytes.now);
    return block;
}

void release(void* block) {
    allocatedBytes.now -= malloc_usable_size(block);
    std::free(block);
}

} // namespace
} // namespace test

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return test::fails() ? nullptr : test::allocated(std::malloc(size > 0 ? size : 1));
}

void* operator new(std::size_t size) {
    void* block = operator new(size, std::nothrow);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    test::release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    test::release(block);
}
