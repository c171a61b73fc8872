// The same contacts in SQLite: a table of all rows in memory with a full text index of trigrams (FTS5) over the forms
// of names and of digits. Words of three characters or more ask the index, shorter ones LIKE. What matches is grouped
// by name and number, in the order of the sources; total and first page come from one statement.
#pragma once

#include "bench/session/KeySearch.h"
#include "bench/session/Population.h"

#include <map>
#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace bench {

class Fts5Search : public KeySearch {
public:
    // Throws std::runtime_error with SQLite's words, here and in type.
    explicit Fts5Search(const Population& population);
    ~Fts5Search() override;

    bool isStateless() const override { return true; }
    Took type(const std::string& key) override;
    Page page() const override { return m_page; }

private:
    struct Close {
        void operator()(sqlite3* database) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;

    void execute(const char* sql);
    Statement prepare(const std::string& sql);
    void fill(const Population& population);
    sqlite3_stmt* statementFor(bool isIndexed, const std::string& column, std::size_t shortWords);
    void search(const std::string& typed);

    std::unique_ptr<sqlite3, Close> m_database;
    std::map<std::string, Statement> m_statements; // by their conditions
    Page m_page;
};

} // namespace bench
