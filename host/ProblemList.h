// What went wrong with the phone's files, each problem once, in order of appearance. Any thread.
#pragma once

#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace host {

class ProblemList {
public:
    // True when the problem is new.
    bool add(const std::string& problem) {
        const std::lock_guard lock(m_mutex);
        if (!m_known.insert(problem).second) {
            return false;
        }
        m_problems.push_back(problem);
        return true;
    }

    std::vector<std::string> all() const {
        const std::lock_guard lock(m_mutex);
        return m_problems;
    }

private:
    mutable std::mutex m_mutex;
    std::set<std::string> m_known; // both guarded by m_mutex
    std::vector<std::string> m_problems;
};

} // namespace host
