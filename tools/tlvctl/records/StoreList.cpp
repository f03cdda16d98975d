#include "tools/tlvctl/records/StoreList.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Table.h"
#include "tools/tlvctl/commandline/Text.h"

#include <algorithm>

namespace {

/// How many notes stand below a list.
const int NOTES_MAX = 20;

void writeList(const Store& store, const Document& document,
               const std::function<void(JsonWriter&)>& writeMembers)
{
    JsonWriter json;
    json.beginObject();
    json.member("file", store.file().path());
    json.member("exists", document.state != Document::State::MISSING);
    writeCompleteness(json, document);
    json.member("count", store.count());
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

std::optional<Document> loadToRead(Store& store)
{
    if (!store.file().checkDirectory())
        return std::nullopt;
    const QString path = store.file().path();
    Document document = readDocument(path);
    if (document.state != Document::State::MISSING && !checkReadable(path, document, "make it readable"))
        return std::nullopt;
    store.load(std::move(document.root));
    return document;
}

int showLoaded(const Store& store, const Document& document, const QCommandLineParser& arguments,
               const std::function<void()>& printText, const std::function<void(JsonWriter&)>& writeMembers)
{
    if (arguments.isSet("json"))
        writeList(store, document, writeMembers);
    else
        printList(store, document, printText);
    return exitCodeOfReading(store.file().path(), document);
}

int listStore(Store& store, const QCommandLineParser& arguments, const std::function<void()>& printText,
              const std::function<void(JsonWriter&)>& writeMembers)
{
    const std::optional<Document> document = loadToRead(store);
    return document ? showLoaded(store, *document, arguments, printText, writeMembers) : FAILED;
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
    int noted = 0;
    for (const ListedRecord& record : records) {
        if (!record.flaws.empty() && ++noted <= NOTES_MAX)
            printLine("* " + recordName(record) + ": " + explanationsOf(record.flaws));
    }
    if (noted > NOTES_MAX)
        printLine(QString("* and %1 more, which --json tells").arg(noted - NOTES_MAX));
    for (const QString& remark : remarks)
        printLine(remark);
    printCount(counted, records, "marked");
}

void printCount(int counted, const std::vector<ListedRecord>& records, const char* mark)
{
    const auto flawed = std::count_if(records.begin(), records.end(),
                                      [](const ListedRecord& record) { return !record.flaws.empty(); });
    QString line = QString("records: %1, counted by the store: %2").arg(records.size()).arg(counted);
    if (flawed > 0)
        line += QString(", %1: %2").arg(mark).arg(flawed);
    printLine(line);
}

void writeBytes(JsonWriter& json, const char* textMember, const char* base64Member, const QByteArray& bytes)
{
    const std::optional<QString> text = utf8Text(bytes);
    json.member(textMember, text);
    json.member(base64Member, text ? std::nullopt : std::optional<QString>(bytes.toBase64()));
}

void writeRecord(JsonWriter& json, const ListedRecord& record)
{
    json.member("number", record.number);
    json.member("filePosition", record.filePosition);
    json.member("flaws", namesOf(record.flaws));
}
