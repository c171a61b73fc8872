// A vCard file that contacts are brought into. New cards are of version 3.0 (RFC 2426), which every program reads.
#pragma once

#include "tools/wideseek/import/TargetFile.h"

#include <string>
#include <vector>

namespace wideseek {

class CardTarget final : public TargetFile {
public:
    CardTarget(std::filesystem::path path, const std::string& bytes);

    std::string bytes() const override;

private:
    struct Card {
        std::size_t end = 0; // where the line stands that ends it
        bool old = false;    // version 2.1
    };

    std::string m_bytes; // UTF-8 as far as the file is in one encoding
    std::vector<Card> m_cards;
};

} // namespace wideseek
