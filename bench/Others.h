#ifndef BENCH_OTHERS_H
#define BENCH_OTHERS_H

#include "bench/Records.h"

#include <QtXml/QDomDocument>

#include <pugixml.hpp>

/**
 * @file
 * What else a browser on Qt could keep its records with, each written as its manual suggests.
 */

/// Every token of the file and nothing else: no reader of this format can do with less.
void bareTokenLoop(const QString& path);

/// The calls that write these tokens and nothing else.
void bareWriterCalls(const QString& path, const Format& format, const Records& records);

/// The document object model of Qt.
class DomStore
{
public:
    DomStore(const Format& format, const QString& path) : format_(format), path_(path) {}

    void load();
    void clear();
    void save();
    Records records() const;
    Record at(int position) const;
    int find(int field, const QString& text) const;
    void prepend(const Record& record, int max); ///< and numbers all again

private:
    Record recordOf(const QDomElement& element) const;

    const Format& format_;
    QString path_;
    QDomDocument document_;
};

/// A fast XML library without Qt. Its texts are UTF-8.
class PugiStore
{
public:
    PugiStore(const Format& format, const QString& path) : format_(format), path_(path) {}

    void load();
    void clear();
    void save();
    Records records() const;
    Record at(int position) const;
    int find(int field, const QString& text) const;
    void prepend(const Record& record, int max);

private:
    Record recordOf(const pugi::xml_node& node) const;

    const Format& format_;
    QString path_;
    pugi::xml_document document_;
};

/// A table of SQLite through Qt's driver. Every operation is a transaction on the file.
class SqliteStore
{
public:
    /// @param path of the document; the database is beside it
    SqliteStore(const Format& format, const QString& path);
    ~SqliteStore();

    void open();
    void close();
    Records records() const; ///< newest first
    void replaceAll(const Records& records);
    Record at(int position) const;
    int find(int field, const QString& text) const;
    void prepend(const Record& record, int max);

private:
    int fields_;
    QString name_;
};

#endif
