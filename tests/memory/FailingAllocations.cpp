#include "tests/memory/FailingAllocations.h"

#include <cstdlib>
#include <new>
#include <pugixml.hpp>

namespace test {
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

} // namespace
} // namespace test

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return test::fails() ? nullptr : std::malloc(size > 0 ? size : 1);
}

void* operator new(std::size_t size) {
    void* block = operator new(size, std::nothrow);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
