#pragma once

#include <QString>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

// A thin hold on an SQLite connection: statements that remember the first
// failure, so callers test once after a run of steps.
namespace tl::search::detail {

class Database
{
public:
    Database() = default;
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // A connection used by one thread only need not lock itself.
    enum class Threads { One, Several };
    bool open(const QString &path, Threads threads = Threads::Several);
    void close();
    bool isOpen() const { return m_db != nullptr; }
    bool exec(const char *sql);
    sqlite3 *handle() const { return m_db; }
    qint64 lastInsertRowid() const;

    // The first failure since the last clear, as SQLite's primary code.
    int failure() const { return m_failure; }
    void clearFailure() { m_failure = 0; }
    void noteFailure(int code);
    // SQLite found the file damaged or not a database at all.
    bool isDamaged() const;

private:
    sqlite3 *m_db = nullptr;
    int m_failure = 0;
};

class Statement
{
public:
    Statement(Database &db, const QString &sql);
    ~Statement();
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    Statement &bind(int index, const QString &text);
    Statement &bind(int index, qint64 number);
    // Text in UTF-8 that stays as it is until the statement is next reset.
    Statement &bind(int index, std::string_view utf8);
    // True while a row is there; false at the end and on failure.
    bool step();
    // Steps to the end, then resets for another run.
    bool run();
    void reset();
    QString text(int column) const;
    // The text as SQLite holds it, valid until the next step.
    std::string_view utf8(int column) const;
    qint64 integer(int column) const;

private:
    Database &m_db;
    sqlite3_stmt *m_statement = nullptr;
};

} // namespace tl::search::detail
