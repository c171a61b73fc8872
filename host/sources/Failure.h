// Why a source failed, for people.
#pragma once

#include <exception>
#include <new>
#include <string>

namespace host {

// The reason that the exception gives that is being handled. No memory is needed for the shortest one.
inline std::string reasonOfCurrentException() noexcept {
    try {
        try {
            throw;
        } catch (const std::bad_alloc&) {
            return "there is not enough memory for it; make its file smaller or give the phone more memory";
        } catch (const std::exception& exception) {
            return exception.what();
        } catch (...) {
            return "the source gives no reason";
        }
    } catch (...) {
        return "no memory";
    }
}

} // namespace host
