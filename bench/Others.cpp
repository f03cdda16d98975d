#include "bench/Others.h"

#include <QtCore/QFile>
#include <QtCore/QTextStream>
#include <QtCore/QVariant>
#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

#include <cstdlib>

namespace {

[[noreturn]] void fail(const QString& problem)
{
    qWarning("%s", qPrintable(problem));
    std::abort();
}

void openOrFail(QFile& file, QIODevice::OpenMode mode)
{
    if (!file.open(mode))
        fail(file.fileName() + ": " + file.errorString());
}

} // namespace

void bareTokenLoop(const QString& path)
{
    QFile file(path);
    openOrFail(file, QIODevice::ReadOnly);
    QXmlStreamReader reader(&file);
    while (!reader.atEnd())
        reader.readNext();
}

void bareWriterCalls(const QString& path, const Format& format, const Records& records)
{
    QFile file(path);
    openOrFail(file, QIODevice::WriteOnly);
    QXmlStreamWriter writer(&file);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(format.root);
    writer.writeAttribute("docInfo", "1.0");
    for (size_t i = 0; i < records.size(); ++i) {
        writer.writeStartElement(format.record);
        writer.writeAttribute("id", numberOf(static_cast<int>(i)));
        if (format.fields.empty())
            writer.writeCharacters(records[i][0]);
        for (size_t f = 0; f < format.fields.size(); ++f) {
            writer.writeStartElement(format.fields[f]);
            writer.writeCharacters(records[i][f]);
            writer.writeEndElement();
        }
        writer.writeEndElement();
    }
    writer.writeEndDocument();
}

// --- QDom -------------------------------------------------------------------------------------------------

void DomStore::load()
{
    QFile file(path_);
    openOrFail(file, QIODevice::ReadOnly);
    document_.setContent(&file);
}

void DomStore::clear()
{
    document_ = QDomDocument();
}

void DomStore::save()
{
    QFile file(path_);
    openOrFail(file, QIODevice::WriteOnly);
    QTextStream stream(&file);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    stream.setCodec("UTF-8"); // as Qt 6 does by itself
#endif
    document_.save(stream, 4);
}

Record DomStore::recordOf(const QDomElement& element) const
{
    Record record;
    if (format_.fields.empty())
        record[0] = element.text();
    for (size_t f = 0; f < format_.fields.size(); ++f)
        record[f] = element.firstChildElement(format_.fields[f]).text();
    return record;
}

Records DomStore::records() const
{
    Records records;
    QDomElement element = document_.documentElement().firstChildElement();
    for (; !element.isNull(); element = element.nextSiblingElement())
        records.push_back(recordOf(element));
    return records;
}

Record DomStore::at(int position) const
{
    const QString number = numberOf(position);
    QDomElement element = document_.documentElement().firstChildElement();
    while (!element.isNull() && element.attribute("id") != number)
        element = element.nextSiblingElement();
    return recordOf(element);
}

int DomStore::find(int field, const QString& text) const
{
    int position = 0;
    QDomElement element = document_.documentElement().firstChildElement();
    for (; !element.isNull(); element = element.nextSiblingElement(), ++position) {
        if (element.firstChildElement(format_.fields[static_cast<size_t>(field)]).text() == text)
            return position;
    }
    return -1;
}

void DomStore::prepend(const Record& record, int max)
{
    QDomElement root = document_.documentElement();
    QDomElement element = document_.createElement(format_.record);
    for (size_t f = 0; f < format_.fields.size(); ++f) {
        QDomElement field = document_.createElement(format_.fields[f]);
        field.appendChild(document_.createTextNode(record[f]));
        element.appendChild(field);
    }
    root.insertBefore(element, root.firstChild());
    int position = 0;
    for (element = root.firstChildElement(); !element.isNull(); element = element.nextSiblingElement())
        element.setAttribute("id", numberOf(position++));
    if (position > max)
        root.removeChild(root.lastChild());
}

// --- pugixml ----------------------------------------------------------------------------------------------

void PugiStore::load()
{
    if (!document_.load_file(QFile::encodeName(path_).constData()))
        fail(path_);
}

void PugiStore::clear()
{
    document_.reset();
}

void PugiStore::save()
{
    document_.save_file(QFile::encodeName(path_).constData(), "    ");
}

Record PugiStore::recordOf(const pugi::xml_node& node) const
{
    Record record;
    if (format_.fields.empty())
        record[0] = QString::fromUtf8(node.text().get());
    for (size_t f = 0; f < format_.fields.size(); ++f)
        record[f] = QString::fromUtf8(node.child(format_.fields[f]).text().get());
    return record;
}

Records PugiStore::records() const
{
    Records records;
    for (const pugi::xml_node& node : document_.document_element())
        records.push_back(recordOf(node));
    return records;
}

Record PugiStore::at(int position) const
{
    return recordOf(
        document_.document_element().find_child_by_attribute("id", qPrintable(numberOf(position))));
}

int PugiStore::find(int field, const QString& text) const
{
    const QByteArray utf8 = text.toUtf8();
    int position = 0;
    for (const pugi::xml_node& node : document_.document_element()) {
        if (utf8 == node.child(format_.fields[static_cast<size_t>(field)]).text().get())
            return position;
        ++position;
    }
    return -1;
}

void PugiStore::prepend(const Record& record, int max)
{
    pugi::xml_node root = document_.document_element();
    pugi::xml_node node = root.prepend_child(format_.record);
    node.append_attribute("id");
    for (size_t f = 0; f < format_.fields.size(); ++f)
        node.append_child(format_.fields[f]).text().set(record[f].toUtf8().constData());
    int position = 0;
    for (pugi::xml_node& child : root)
        child.attribute("id").set_value(qPrintable(numberOf(position++)));
    if (position > max)
        root.remove_child(root.last_child());
}

// --- SQLite -----------------------------------------------------------------------------------------------

namespace {

/// Carries a statement out.
QSqlQuery run(const QString& name, const QString& text, const QVariantList& values = {})
{
    QSqlQuery query(QSqlDatabase::database(name));
    query.setForwardOnly(true);
    query.prepare(text);
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (!query.exec())
        fail(text + ": " + query.lastError().text());
    return query;
}

Record recordOf(const QSqlQuery& query, int fields)
{
    Record record;
    for (int f = 0; f < fields; ++f)
        record[static_cast<size_t>(f)] = query.value(f).toString();
    return record;
}

QVariantList valuesOf(const Record& record, int fields)
{
    QVariantList values;
    for (int f = 0; f < fields; ++f)
        values.append(record[static_cast<size_t>(f)]);
    return values;
}

const char* const COLUMNS[] = {"", "a", "a, b", "a, b, c"};
const char* const PLACES[] = {"", "?", "?, ?", "?, ?, ?"};

} // namespace

SqliteStore::SqliteStore(const Format& format, const QString& path)
    : fields_(format.fields.empty() ? 1 : static_cast<int>(format.fields.size())), name_(path + ".db")
{
    QSqlDatabase::addDatabase("QSQLITE", name_).setDatabaseName(name_);
    open();
    run(name_, QString("CREATE TABLE IF NOT EXISTS records (position INTEGER PRIMARY KEY, %1)")
                   .arg(COLUMNS[fields_]));
    close();
}

SqliteStore::~SqliteStore()
{
    QSqlDatabase::removeDatabase(name_);
}

void SqliteStore::open()
{
    if (!QSqlDatabase::database(name_, false).open())
        fail(name_);
}

void SqliteStore::close()
{
    QSqlDatabase::database(name_, false).close();
}

Records SqliteStore::records() const
{
    Records records;
    QSqlQuery query =
        run(name_, QString("SELECT %1 FROM records ORDER BY position DESC").arg(COLUMNS[fields_]));
    while (query.next())
        records.push_back(recordOf(query, fields_));
    return records;
}

void SqliteStore::replaceAll(const Records& records)
{
    QSqlDatabase database = QSqlDatabase::database(name_);
    database.transaction();
    run(name_, "DELETE FROM records");
    QSqlQuery query(database);
    query.prepare(QString("INSERT INTO records (%1) VALUES (%2)").arg(COLUMNS[fields_], PLACES[fields_]));
    for (size_t i = records.size(); i > 0; --i) {
        const QVariantList values = valuesOf(records[i - 1], fields_);
        for (int f = 0; f < fields_; ++f)
            query.bindValue(f, values.at(f));
        if (!query.exec())
            fail(query.lastError().text());
    }
    database.commit();
}

Record SqliteStore::at(int position) const
{
    QSqlQuery query =
        run(name_,
            QString("SELECT %1 FROM records ORDER BY position DESC LIMIT 1 OFFSET ?").arg(COLUMNS[fields_]),
            {position});
    query.next();
    return recordOf(query, fields_);
}

int SqliteStore::find(int field, const QString& text) const
{
    const char* const names[] = {"a", "b", "c"};
    QSqlQuery query = run(
        name_,
        QString("SELECT position FROM records WHERE %1 = ? ORDER BY position DESC LIMIT 1").arg(names[field]),
        {text});
    return query.next() ? query.value(0).toInt() : -1;
}

void SqliteStore::prepend(const Record& record, int max)
{
    QSqlDatabase database = QSqlDatabase::database(name_);
    database.transaction();
    run(name_, QString("INSERT INTO records (%1) VALUES (%2)").arg(COLUMNS[fields_], PLACES[fields_]),
        valuesOf(record, fields_));
    run(name_, "DELETE FROM records WHERE position <= (SELECT MAX(position) FROM records) - ?", {max});
    database.commit();
}
