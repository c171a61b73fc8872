// The search library, from its start to its end, for as long as this object lives.
#pragma once

namespace wideseek {

class Library {
public:
    // Throws std::runtime_error when there is no memory for it.
    Library();

    // Every callback object has been detached by then.
    ~Library();

    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

} // namespace wideseek
