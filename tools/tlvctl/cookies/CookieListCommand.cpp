#include "tools/tlvctl/cookies/CookieListCommand.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QFileInfo>

namespace {

const QString SHOW_VALUES = "show-values";

QString flagsOf(const CookieRecord& record)
{
    QStringList flags;
    if (record.secure == "true")
        flags.append("secure");
    if (record.httpOnly.value_or(false))
        flags.append("HttpOnly");
    return flags.join(' ');
}

void writeCookie(JsonWriter& json, const CookieRecord& record, bool withValues)
{
    json.beginObject();
    writeRecord(json, record);
    json.member("domain");
    json.string(record.domain);
    writeBytes(json, "name", "nameBase64", record.name);
    json.member("path");
    json.string(record.path);
    json.member("secure");
    json.boolean(record.secure == "true");
    json.member("httpOnly");
    if (record.httpOnly)
        json.boolean(*record.httpOnly);
    else
        json.null();
    json.member("expires");
    if (record.expires.isEmpty())
        json.null();
    else
        json.string(record.expires);
    if (withValues)
        writeBytes(json, "value", "valueBase64", record.value);
    json.endObject();
}

void writeCookies(JsonWriter& json, const CookieFile& cookies, bool withValues)
{
    json.member("remarks");
    json.beginArray();
    for (const QString& remark : cookies.remarks)
        json.string(remark);
    json.endArray();
    json.member("cookies");
    json.beginArray();
    for (const CookieRecord& record : cookies.records)
        writeCookie(json, record, withValues);
    json.endArray();
}

int listDocument(const QCommandLineParser& arguments, bool withValues)
{
    CookieDocument document(pathArgument(arguments));
    return listStore(
        document, arguments, [&] { printCookies(document.read(), document.count(), withValues); },
        [&](JsonWriter& json) { writeCookies(json, document.read(), withValues); });
}

int listIni(const QCommandLineParser& arguments, bool withValues)
{
    const StoreFile file(cookieIniDir(pathArgument(arguments)), "cookie.ini");
    if (!file.checkDirectory())
        return FAILED;
    const std::optional<CookieFile> cookies = readCookieIni(file.dir());
    if (!cookies)
        return FAILED;
    const int count = static_cast<int>(cookies->records.size());
    const bool exists = QFileInfo::exists(file.path());
    if (arguments.isSet("json")) {
        JsonWriter json;
        json.beginObject();
        json.member("file");
        json.string(file.path());
        json.member("exists");
        json.boolean(exists);
        json.member("count");
        json.number(count);
        writeCookies(json, *cookies, withValues);
        json.endObject();
    } else if (exists) {
        printCookies(*cookies, count, withValues);
    } else {
        printLine("records: 0, because there is no " + printable(file.path()));
    }
    return DONE;
}

int listCookies(const QCommandLineParser& arguments)
{
    const bool withValues = arguments.isSet(SHOW_VALUES);
    return isCookieIni(pathArgument(arguments)) ? listIni(arguments, withValues)
                                                : listDocument(arguments, withValues);
}

} // namespace

void printCookies(const CookieFile& cookies, int counted, bool withValues)
{
    const std::vector<CookieRecord>& records = cookies.records;
    const auto cells = [&records, withValues](size_t i) {
        const CookieRecord& record = records[i];
        QStringList row{printableBytes(record.name), printable(record.domain), printable(record.path),
                        flagsOf(record), printable(record.expires)};
        if (withValues)
            row.append(printableBytes(record.value));
        return row;
    };
    QStringList header{"name", "domain", "path", "flags", "expires"};
    if (withValues)
        header.append("value");
    printRecords(counted, header, {records.begin(), records.end()}, cells, cookies.remarks);
}

Command cookieListCommand()
{
    Command command;
    command.name = "list";
    command.summary = "List the cookies of cookie.ini, or of a cookie document.";
    command.details = "FILE is a directory that holds cookie.ini, that file, or a cookie document. In\n"
                      "cookie.ini times of expiry are in UTC, in a document they have no zone. Cookies\n"
                      "that the store hides, or reads otherwise than they stand there, are marked with\n"
                      "*, and lines below the table tell how. Values are as good as passwords and only\n"
                      "shown with --show-values.";
    command.examples = {"tlvctl cookies list /data/settings", "tlvctl cookies list --json /data/cookies.xml"};
    command.arguments = {{"FILE", "A directory with cookie.ini, that file, or a cookie document."}};
    command.options = {jsonOption(), {SHOW_VALUES, "Show the values, too."}};
    command.run = listCookies;
    return command;
}
