#include "tools/tlvctl/auth/AuthList.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"
#include "tools/tlvctl/records/StoreChange.h"

#include <QtCore/QSet>

#include <utility>

namespace {

const char* const TYPE_NAMES[] = {"basic", "digest", "NTLM"};
const unsigned char TYPE_COUNT = 3;

/// The text of an element; nothing where there is no such element.
std::optional<QString> textOf(TVNC_XMLNode& record, const char* element)
{
    QString name = element;
    TVNC_XMLNode* const child = record.getXMLNodeChildByName(name);
    return child ? std::optional<QString>(child->getText()) : std::nullopt;
}

QByteArray bytesOf(const QString& text)
{
    return QByteArray::fromBase64(text.toUtf8());
}

Flaw missing(const char* element)
{
    return {"elementMissing", QString("no element \"%1\"").arg(element)};
}

/// A host name or a port.
void readText(TVNC_XMLNode& record, const char* element, int maxBytes, const char* tooLong, QString& value,
              std::vector<Flaw>& flaws)
{
    const std::optional<QString> text = textOf(record, element);
    if (!text)
        flaws.push_back(missing(element));
    else if (utf8Size(*text) > maxBytes)
        flaws.push_back({tooLong, QString("\"%1\" of %2 bytes, over %3: the store does not answer it")
                                      .arg(element)
                                      .arg(utf8Size(*text))
                                      .arg(maxBytes)});
    else
        value = *text;
}

void readType(TVNC_XMLNode& record, unsigned char& value, std::vector<Flaw>& flaws)
{
    value = 0;
    const std::optional<QString> word = textOf(record, "authType");
    if (!word) {
        flaws.push_back(missing("authType"));
        return;
    }
    for (unsigned char type = 0; type < TYPE_COUNT; ++type) {
        if (*word == TYPE_NAMES[type]) {
            value = type;
            return;
        }
    }
    flaws.push_back({"typeUnknown", QString("type %1 is none of \"basic\", \"digest\", \"NTLM\": the store "
                                            "answers \"basic\"")
                                        .arg(quoted(*word))});
}

/// A user name or a password. Of the latter not even the length is told.
void readBytes(TVNC_XMLNode& record, const char* element, int maxBytes, const char* tooLong,
               const char* notBase64, QByteArray& value, std::vector<Flaw>& flaws)
{
    const std::optional<QString> text = textOf(record, element);
    if (!text) {
        flaws.push_back(missing(element));
        return;
    }
    const QByteArray bytes = bytesOf(*text);
    if (bytes.size() > maxBytes)
        flaws.push_back(
            {tooLong,
             QString("\"%1\" is over %2 bytes: the store does not answer it").arg(element).arg(maxBytes)});
    else
        value = bytes;
    if (QString::fromLatin1(bytes.toBase64()) != *text)
        flaws.push_back(
            {notBase64, QString("\"%1\" is not all base64: the store reads what is").arg(element)});
}

AuthRecord readRecord(TVNC_XMLNode& node)
{
    AuthRecord record;
    if (node.getName() != "authInfo")
        record.flaws.push_back(
            {"notNamedAuthInfo", QString("element %1 instead of \"authInfo\": answered, but not counted")
                                     .arg(quoted(node.getName()))});
    readText(node, "hostName", AuthList::HOST_MAX_BYTES, "hostTooLong", record.info.hostName, record.flaws);
    readText(node, "portNum", AuthList::PORT_MAX_BYTES, "portTooLong", record.info.portNum, record.flaws);
    readType(node, record.info.authType, record.flaws);
    readBytes(node, "user", AuthList::USER_MAX_BYTES, "userTooLong", "userNotBase64", record.info.user,
              record.flaws);
    readBytes(node, "passwd", AuthList::PASSWORD_MAX_BYTES, "passwordTooLong", "passwordNotBase64",
              record.info.passwd, record.flaws);
    return record;
}

} // namespace

AuthList::AuthList(const QString& dir, int maximum)
    : Store(dir, "authinfo.xml"), store_(*TVNC_AuthSetting::getInstance()), maximum_(maximum)
{
}

void AuthList::load()
{
    renumbered_ = countRenumbered(readDocument(file().path()).root.get());
    QString dir = file().dir();
    store_.loadAuthInfo(&dir, maximum_);
}

void AuthList::save()
{
    QString dir = file().dir();
    store_.saveAuthInfo(&dir, maximum_);
}

TVNC_XMLNode& AuthList::root() const
{
    return *store_.getXMLRootNode();
}

int AuthList::count() const
{
    return store_.getAuthInfoCnt();
}

std::vector<AuthRecord> AuthList::records() const
{
    std::vector<AuthRecord> records;
    QSet<int> taken;
    for (TVNC_XMLNode* node : std::as_const(root().getXMLNodeChildren())) {
        AuthRecord record = readRecord(*node);
        record.number = numberOf(*node, taken);
        record.filePosition = static_cast<int>(records.size());
        if (!record.number)
            record.flaws.insert(record.flaws.begin(), {"noNumber", "has no number: cannot be asked for"});
        records.push_back(record);
    }
    return records;
}

TVNS_AuthInfo AuthList::entry(int number) const
{
    TVNS_AuthInfo info;
    store_.getAuthInfo(number, &info);
    return info;
}

void AuthList::remove(int number)
{
    store_.deleteAuthInfo(number);
}

bool AuthList::add(TVNS_AuthInfo info, QStringList& changes)
{
    const int records = static_cast<int>(root().getXMLNodeChildren().size());
    int added = 0;
    if (records < maximum_) {
        added = store_.setAuthInfo(&info);
    } else {
        changes.append(changeLine("removed", numberText(maximum_ - 1), line(entry(maximum_ - 1))));
        added = store_.updateAuthInfo(&info);
    }
    changes.append(changeLine("added", numberText(0), line(info)));
    return added == 1;
}

QString AuthList::typeName(unsigned char type)
{
    return type < TYPE_COUNT ? TYPE_NAMES[type] : QString();
}

std::optional<unsigned char> AuthList::typeOf(const QString& word)
{
    for (unsigned char type = 0; type < TYPE_COUNT; ++type) {
        if (word.compare(TYPE_NAMES[type], Qt::CaseInsensitive) == 0)
            return type;
    }
    return std::nullopt;
}

QString AuthList::line(const TVNS_AuthInfo& info)
{
    return QStringList{printable(info.hostName), printable(info.portNum), typeName(info.authType),
                       printableBytes(info.user)}
        .join("  ");
}
