#include "search/sqlite_database.h"

#include "store/log.h"

#include <QFile>
#include <sqlite3.h>

namespace tl::search::detail {

Database::~Database()
{
    close();
}

bool Database::open(const QString &path, Threads threads)
{
    static const bool configured = [] {
        // Counting every allocation takes a lock shared by all connections.
        sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
        return true;
    }();
    Q_UNUSED(configured);
    close();
    m_failure = 0;
    const int code =
        sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE |
                            (threads == Threads::One ? SQLITE_OPEN_NOMUTEX : SQLITE_OPEN_FULLMUTEX),
                        nullptr);
    if (code != SQLITE_OK) {
        noteFailure(code);
        close();
        return false;
    }
    sqlite3_busy_timeout(m_db, 10000);
    return true;
}

void Database::close()
{
    if (m_db)
        sqlite3_close_v2(m_db);
    m_db = nullptr;
}

bool Database::exec(const char *sql)
{
    if (!m_db)
        return false;
    const int code = sqlite3_exec(m_db, sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        noteFailure(code);
    return code == SQLITE_OK;
}

qint64 Database::lastInsertRowid() const
{
    return m_db ? sqlite3_last_insert_rowid(m_db) : -1;
}

void Database::noteFailure(int code)
{
    if (m_failure == 0)
        m_failure = code & 0xff;
    logLine(QStringLiteral("search index: %1").arg(QString::fromUtf8(sqlite3_errstr(code))));
}

bool Database::isDamaged() const
{
    return m_failure == SQLITE_CORRUPT || m_failure == SQLITE_NOTADB;
}

Statement::Statement(Database &db, const QString &sql) : m_db(db)
{
    if (!db.handle())
        return;
    const QByteArray utf8 = sql.toUtf8();
    const int code =
        sqlite3_prepare_v2(db.handle(), utf8.constData(), int(utf8.size()), &m_statement, nullptr);
    if (code != SQLITE_OK)
        m_db.noteFailure(code);
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

Statement &Statement::bind(int index, const QString &text)
{
    if (m_statement) {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(m_statement, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
    }
    return *this;
}

Statement &Statement::bind(int index, std::string_view utf8)
{
    if (m_statement)
        sqlite3_bind_text(m_statement, index, utf8.data(), int(utf8.size()), SQLITE_STATIC);
    return *this;
}

Statement &Statement::bind(int index, qint64 number)
{
    if (m_statement)
        sqlite3_bind_int64(m_statement, index, number);
    return *this;
}

bool Statement::step()
{
    if (!m_statement)
        return false;
    const int code = sqlite3_step(m_statement);
    if (code == SQLITE_ROW)
        return true;
    if (code != SQLITE_DONE)
        m_db.noteFailure(code);
    return false;
}

bool Statement::run()
{
    while (step()) {
    }
    reset();
    return m_statement && m_db.failure() == 0;
}

void Statement::reset()
{
    if (m_statement) {
        sqlite3_reset(m_statement);
        sqlite3_clear_bindings(m_statement);
    }
}

QString Statement::text(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(m_statement, column));
}

std::string_view Statement::utf8(int column) const
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column));
    return {bytes ? bytes : "", size_t(sqlite3_column_bytes(m_statement, column))};
}

qint64 Statement::integer(int column) const
{
    return sqlite3_column_int64(m_statement, column);
}

} // namespace tl::search::detail
