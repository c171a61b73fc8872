// One thing that is measured, at one size: made once, prepared before every run, run. Only runs are measured.
#pragma once

#include <cstddef>
#include <functional>

namespace bench {

class Workload {
public:
    Workload() = default;
    virtual ~Workload() = default;
    Workload(const Workload&) = delete;
    Workload& operator=(const Workload&) = delete;

    // Whether a run uses up what it works on, so that prepare is called before each.
    virtual bool isUsedUp() const { return false; }
    virtual void prepare() {}

    virtual void run() = 0;

    // Called within a run when what somebody waits for is there, by those workloads that are measured up to then.
    std::function<void()> onPage;

    // How many rows (contacts, for a source) the last run ended with.
    virtual std::size_t rows() const = 0;
};

} // namespace bench

// Runs the workload. A function of its own, and named without C++'s decoration, so that a profiler can be told to count
// what happens inside it and nothing else.
extern "C" void measured_region(bench::Workload* workload);
