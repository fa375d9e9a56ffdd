#include "cli.h"
#include "foundation/dates.h"
#include "store/document_file.h"
#include "store/library_root.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <cstdio>

namespace tl::cli {

namespace {

QJsonValue toJson(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap: {
        QJsonObject object;
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            object.insert(it.key(), toJson(it.value()));
        return object;
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        QJsonArray array;
        for (const QVariant &v : value.toList())
            array.append(toJson(v));
        return array;
    }
    case QMetaType::QDateTime:
        return isoDateString(value.toDateTime());
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return QJsonValue(value.toLongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    default:
        return value.isValid() ? QJsonValue(value.toString()) : QJsonValue();
    }
}

void write(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

} // namespace

int fail(const QString &message, int status)
{
    write(stderr, message + u'\n');
    return status;
}

void printLine(const QString &line)
{
    write(stdout, line + u'\n');
}

namespace {

QString compactJson(const QJsonValue &j)
{
    const QJsonDocument doc = j.isArray()    ? QJsonDocument(j.toArray())
                              : j.isObject() ? QJsonDocument(j.toObject())
                                             : QJsonDocument(QJsonArray{j});
    QByteArray text = doc.toJson(QJsonDocument::Compact);
    // A bare scalar prints without the array around it.
    if (!j.isArray() && !j.isObject())
        text = text.mid(1, text.size() - 2);
    return QString::fromUtf8(text);
}

// A scalar as plain text; a container inside a listing as compact JSON.
QString plainText(const QVariant &value)
{
    const QJsonValue j = toJson(value);
    if (j.isBool())
        return j.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (j.isDouble() && value.typeId() != QMetaType::Double)
        return QString::number(value.toLongLong());
    if (j.isDouble())
        return QString::number(j.toDouble(), 'g', QLocale::FloatingPointShortest);
    if (j.isArray() || j.isObject())
        return compactJson(j);
    return j.toString();
}

} // namespace

int StandardErrorAlerts::run(const platform::Alert &alert)
{
    fail(alert.informativeText.isEmpty()
             ? alert.message
             : alert.message + QStringLiteral(": ") + alert.informativeText);
    return HeadlessAlertPresenter::run(alert);
}

void printValue(const QVariant &value, bool json)
{
    if (json) {
        printLine(compactJson(toJson(value)));
        return;
    }
    switch (value.typeId()) {
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        for (const QVariant &item : value.toList())
            printLine(plainText(item));
        return;
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            printLine(it.key() + QStringLiteral(": ") + plainText(it.value()));
        return;
    }
    default:
        if (value.isValid())
            printLine(plainText(value));
    }
}

void printList(const QStringList &list, bool json)
{
    if (json) {
        printLine(QString::fromUtf8(
            QJsonDocument(QJsonArray::fromStringList(list)).toJson(QJsonDocument::Compact)));
        return;
    }
    for (const QString &line : list)
        printLine(line);
}

QString absolutePath(const QString &argument)
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(argument));
}

std::optional<QString> itemInLibrary(const QString &argument, Inside inside)
{
    const QString root = store::libraryRoot();
    const QString path = absolutePath(argument);
    // Links are followed, so a link in the library that leads out of it
    // leads out for this test too: a folder's own files lie inside it, and
    // any other item's beside it.
    const QFileInfo item(path);
    const QString parent = QFileInfo(item.path()).canonicalFilePath();
    if (!item.isDir() && parent.isEmpty()) {
        fail(QStringLiteral("No such folder: %1").arg(item.path()));
        return std::nullopt;
    }
    const QString resolved =
        item.isDir() ? item.canonicalFilePath() : parent + u'/' + item.fileName();
    const bool below = !root.isEmpty() && (resolved.startsWith(root + u'/') ||
                                           (inside == Inside::RootAllowed && resolved == root));
    if (!below) {
        fail(resolved == root ? QStringLiteral("Not for the library itself: %1").arg(path)
                              : QStringLiteral("Outside the library: %1").arg(path));
        return std::nullopt;
    }
    return resolved;
}

std::optional<QVariant> parseTypedValue(const QString &type, const QStringList &values)
{
    if (type == u"array") {
        QVariantList list;
        for (const QString &v : values)
            list << v;
        return list;
    }
    if (values.size() != 1)
        return std::nullopt;
    const QString &text = values.first();
    bool ok = true;
    if (type.isEmpty() || type == u"string")
        return text;
    if (type == u"int") {
        const qint64 n = text.toLongLong(&ok);
        return ok ? std::optional<QVariant>(n) : std::nullopt;
    }
    if (type == u"real") {
        const double d = text.toDouble(&ok);
        return ok ? std::optional<QVariant>(d) : std::nullopt;
    }
    if (type == u"bool") {
        const QString t = text.toLower();
        if (t == u"true" || t == u"yes" || t == u"1")
            return true;
        if (t == u"false" || t == u"no" || t == u"0")
            return false;
        return std::nullopt;
    }
    if (type == u"date") {
        QDateTime date = QDateTime::fromString(text, Qt::ISODate);
        if (!date.isValid())
            return std::nullopt;
        return date.toUTC();
    }
    return std::nullopt;
}

int deliver(const QString &text, const QCommandLineParser &parser)
{
    if (!parser.isSet(QStringLiteral("o"))) {
        printLine(text);
        return Success;
    }
    const QString file = absolutePath(parser.value(QStringLiteral("o")));
    if (!store::tl_writeToFile(text.toUtf8(), file, true))
        return fail(QStringLiteral("Cannot write %1").arg(file));
    return Success;
}

} // namespace tl::cli
