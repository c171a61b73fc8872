// What went wrong with the phone's files, each problem once, in order of appearance; the first so many. Any thread.
#pragma once

#include <cstddef>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace host {

class ProblemList {
public:
    // Behind so many, one more says that there are more.
    static constexpr std::size_t most = 500;

    // True when the problem is new and is listed.
    bool add(const std::string& problem) {
        const std::lock_guard lock(m_mutex);
        if (m_problems.size() > most || m_known.contains(problem)) {
            return false;
        }
        const bool full = m_problems.size() == most;
        m_problems.push_back(full ? "there are more problems than these; mend them, and the next ones are listed"
                                  : problem);
        m_known.insert(m_problems.back());
        return !full;
    }

    // Those from the one with this index on, so that whoever has seen the first ones need not take them again.
    std::vector<std::string> from(std::size_t index) const {
        const std::lock_guard lock(m_mutex);
        return index < m_problems.size()
                   ? std::vector<std::string>(m_problems.begin() + static_cast<std::ptrdiff_t>(index), m_problems.end())
                   : std::vector<std::string>();
    }

    std::vector<std::string> all() const { return from(0); }

private:
    mutable std::mutex m_mutex;
    std::set<std::string> m_known; // both guarded by m_mutex
    std::vector<std::string> m_problems;
};

} // namespace host
