// The problems of one file, as people read them: so many at most, each of a length that fits on some lines.
//
//     Problems problems("contacts.csv");
//     problems.add(7, notDialable(field));
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// The problem of a number that is kept although nobody can dial it; the number is what is shown.
std::string notDialable(std::string_view number);

// Text of a file within quotation marks, shortened when it is long; never in the middle of a character.
std::string shown(std::string_view text);

class Problems {
public:
    // How many are kept of one file. One more then says that there are more.
    static constexpr std::size_t most = 100;

    explicit Problems(std::string file) : m_file(std::move(file)) {}

    // reason: what is wrong, and what to do. With the line, or the other place, where it is.
    void add(std::size_t line, std::string_view reason) { add(std::to_string(line), reason); }
    void add(std::string_view place, std::string_view reason);

    // "file:place: reason", in the order of adding.
    std::vector<std::string> take() { return std::move(m_list); }

private:
    std::string m_file;
    std::vector<std::string> m_list;
};

} // namespace host
