#include "bench/session/Fts5Search.h"

#include "host/contacts/ContactMatch.h"
#include "host/text/Key.h"
#include "host/text/NameForm.h"
#include "host/text/Utf8.h"

#include <sqlite3.h>

#include <stdexcept>
#include <string_view>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t trigram = 3;

[[noreturn]] void fail(sqlite3* database) {
    throw std::runtime_error(std::string("SQLite: ") + (database ? sqlite3_errmsg(database) : "no memory"));
}

void bind(sqlite3_stmt* statement, int place, std::string_view text) {
    sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

std::string textAt(sqlite3_stmt* statement, int index) {
    const unsigned char* const text = sqlite3_column_text(statement, index);
    return text ? reinterpret_cast<const char*>(text) : "";
}

bool hasTrigram(std::string_view text) {
    std::size_t characters = 0;
    while (!text.empty() && characters < trigram) {
        host::text::takeFirst(text);
        ++characters;
    }
    return characters == trigram;
}

// The numbers without "+", and the keypad forms of the name. What stands between forms is part of no key.
std::string digitForms(const DirectorySearchData& contact) {
    std::string forms;
    for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
        forms += number->starts_with('+') ? number->substr(1) : *number;
        forms += host::text::formSeparator;
    }
    host::text::appendKeypadForms(contact.strName, forms);
    return forms;
}

std::string selectWhere(const std::string& condition) {
    return "SELECT name, number, count(*) OVER () FROM (SELECT name, number, min(id) AS place FROM contact WHERE " +
           condition + " GROUP BY name, number) ORDER BY place LIMIT " + std::to_string(pageSize);
}

} // namespace

void Fts5Search::Close::operator()(sqlite3* database) const {
    sqlite3_close(database);
}

void Fts5Search::Close::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Fts5Search::Fts5Search(const Population& population) {
    sqlite3* database = nullptr;
    const int code = sqlite3_open(":memory:", &database);
    m_database.reset(database);
    if (code != SQLITE_OK) {
        fail(database);
    }
    execute("CREATE TABLE contact (id INTEGER PRIMARY KEY, name TEXT, number TEXT, names TEXT, digits TEXT)");
    execute("CREATE VIRTUAL TABLE trigrams USING fts5(names, digits, content='contact', content_rowid='id', "
            "tokenize='trigram')");
    fill(population);
    execute("INSERT INTO trigrams(trigrams) VALUES('rebuild')");
    execute("INSERT INTO trigrams(trigrams) VALUES('optimize')");
    // Rows that come in the order of the groups need no sorting: short keys, which match most rows, gain a quarter.
    execute("CREATE INDEX by_row ON contact (name, number)");
    execute("ANALYZE");
}

Fts5Search::~Fts5Search() = default;

void Fts5Search::execute(const char* sql) {
    if (sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
        fail(m_database.get());
    }
}

Fts5Search::Statement Fts5Search::prepare(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(m_database.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        fail(m_database.get());
    }
    return Statement(statement);
}

void Fts5Search::fill(const Population& population) {
    const Statement insert = prepare("INSERT INTO contact (name, number, names, digits) VALUES (?, ?, ?, ?)");
    execute("BEGIN");
    for (const auto& contacts : population) {
        for (const DirectorySearchData& contact : contacts) {
            std::string names;
            host::text::appendNameForms(contact.strName, names);
            const std::string digits = digitForms(contact);
            for (const std::string* number : {&contact.strNumber1, &contact.strNumber2, &contact.strNumber3}) {
                if (number->empty()) {
                    continue;
                }
                bind(insert.get(), 1, contact.strName);
                bind(insert.get(), 2, *number);
                bind(insert.get(), 3, names);
                bind(insert.get(), 4, digits);
                if (sqlite3_step(insert.get()) != SQLITE_DONE) {
                    fail(m_database.get());
                }
                sqlite3_reset(insert.get());
            }
        }
    }
    execute("COMMIT");
}

Took Fts5Search::type(const std::string& key) {
    return timeOfSearch([&] { search(key); });
}

// The statement for a key: the index for its longer words, LIKE for each of the others.
sqlite3_stmt* Fts5Search::statementFor(bool isIndexed, const std::string& column, std::size_t shortWords) {
    std::string condition = isIndexed ? "id IN (SELECT rowid FROM trigrams WHERE trigrams MATCH ?)" : "true";
    for (std::size_t i = 0; i < shortWords; ++i) {
        condition += " AND " + column + " LIKE ?";
    }
    Statement& statement = m_statements[condition];
    if (!statement) {
        statement = prepare(selectWhere(condition));
    }
    return statement.get();
}

// Keys are letters, digits and blanks here: nothing in their words is special to LIKE.
void Fts5Search::search(const std::string& typed) {
    const host::MatchKey key(host::text::convertKey(typed));
    const std::string column = key.digits ? "digits" : "names";
    std::string match;
    std::vector<std::string> patterns;
    for (const std::string& word : key.words) {
        if (hasTrigram(word)) {
            match += (match.empty() ? "" : " AND ") + column + " : \"" + word + "\"";
        } else {
            patterns.push_back("%" + word + "%");
        }
    }
    sqlite3_stmt* const statement = statementFor(!match.empty(), column, patterns.size());
    int place = 0;
    if (!match.empty()) {
        bind(statement, ++place, match);
    }
    for (const std::string& pattern : patterns) {
        bind(statement, ++place, pattern);
    }
    m_page = {};
    int code = sqlite3_step(statement);
    for (; code == SQLITE_ROW; code = sqlite3_step(statement)) {
        m_page.rows.push_back({textAt(statement, 0), textAt(statement, 1)});
        m_page.total = static_cast<std::size_t>(sqlite3_column_int64(statement, 2));
    }
    if (code != SQLITE_DONE) {
        fail(m_database.get());
    }
    sqlite3_reset(statement);
}

} // namespace bench
