#include "tools/tlvctl/records/StoreList.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Table.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

#include <algorithm>

namespace {

void writeList(const Store& store, const Document& document,
               const std::function<void(JsonWriter&)>& writeMembers)
{
    JsonWriter json;
    json.beginObject();
    json.member("file");
    json.string(store.file().path());
    json.member("exists");
    json.boolean(document.state != Document::State::MISSING);
    writeCompleteness(json, document);
    json.member("count");
    json.number(store.count());
    writeMembers(json);
    json.endObject();
}

void printList(const Store& store, const Document& document, const std::function<void()>& printText)
{
    if (document.state == Document::State::MISSING && !store.hasDefaults())
        printLine("records: 0, because there is no " + printable(store.file().path()));
    else
        printText();
}

} // namespace

int listStore(Store& store, const QCommandLineParser& arguments, const std::function<void()>& printText,
              const std::function<void(JsonWriter&)>& writeMembers)
{
    if (!store.file().checkDirectory())
        return FAILED;
    const QString path = store.file().path();
    const Document document = readDocument(path);
    if (document.state == Document::State::UNREADABLE) {
        complain(path, QString("cannot be read: %1; make it readable").arg(printable(document.problem)));
        return FAILED;
    }
    store.load();
    if (arguments.isSet("json"))
        writeList(store, document, writeMembers);
    else
        printList(store, document, printText);
    if (document.state != Document::State::DAMAGED)
        return DONE;
    complainAboutDamage(path, document);
    return FAILED;
}

void printRecords(int counted, const QStringList& header, const std::vector<ListedRecord>& records,
                  const std::function<QStringList(size_t)>& cells, const QStringList& remarks)
{
    Table table(QStringList("no.") + header);
    for (size_t i = 0; i < records.size(); ++i) {
        const QString mark = records[i].flaws.empty() ? QString() : "*";
        table.addRow(QStringList(numberText(records[i].number) + mark) + cells(i));
    }
    table.print();
    qint64 flawed = 0;
    for (const ListedRecord& record : records) {
        if (record.flaws.empty())
            continue;
        ++flawed;
        printLine("* " + recordName(record) + ": " + explanationsOf(record.flaws));
    }
    for (const QString& remark : remarks)
        printLine(remark);
    QString line = QString("records: %1, counted by the store: %2").arg(records.size()).arg(counted);
    if (flawed > 0)
        line += QString(", marked: %1").arg(flawed);
    printLine(line);
}

void writeBytes(JsonWriter& json, const char* textMember, const char* base64Member, const QByteArray& bytes)
{
    const std::optional<QString> text = utf8Text(bytes);
    json.member(textMember);
    if (text)
        json.string(*text);
    else
        json.null();
    json.member(base64Member);
    if (text)
        json.null();
    else
        json.string(QString::fromLatin1(bytes.toBase64()));
}

void writeRecord(JsonWriter& json, const ListedRecord& record)
{
    json.member("number");
    if (record.number)
        json.number(*record.number);
    else
        json.null();
    json.member("filePosition");
    json.number(record.filePosition);
    json.member("flaws");
    json.beginArray();
    for (const Flaw& flaw : record.flaws)
        json.string(flaw.name);
    json.endArray();
}

QStringList remarkAboutNumbers(int renumbered)
{
    if (renumbered == 0)
        return {};
    return {QString("numbers that stand otherwise in the file, and are given anew by loading: %1")
                .arg(renumbered)};
}

int countRenumbered(TVNC_XMLNode* root)
{
    if (!root)
        return 0;
    const QList<TVNC_XMLNode*>& records = root->getXMLNodeChildren();
    int renumbered = 0;
    for (int i = 0; i < std::min(static_cast<int>(records.size()), NUMBERED_MAX); ++i) {
        if (records.at(i)->getAttribute().value("id") != numberText(i))
            ++renumbered;
    }
    return renumbered;
}

QString recordName(const ListedRecord& record)
{
    if (record.number)
        return numberText(record.number);
    return QString("%1 (record %2 of the file)").arg(numberText(record.number)).arg(record.filePosition + 1);
}

QString explanationsOf(const std::vector<Flaw>& flaws)
{
    QStringList explanations;
    for (const Flaw& flaw : flaws)
        explanations.append(flaw.explanation);
    return explanations.join("; ");
}
