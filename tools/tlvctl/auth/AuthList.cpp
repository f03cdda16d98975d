#include "tools/tlvctl/auth/AuthList.h"

#include "tlvlib/util/TVNG_limits.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/StoreChange.h"

namespace {

void readType(TVNC_XMLNode& record, unsigned char& value, std::vector<Flaw>& flaws)
{
    value = 0;
    const std::optional<QString> word = textOf(record, "authType");
    if (!word) {
        flaws.push_back(missingElement("authType"));
        return;
    }
    for (unsigned char type = 0; type < TVNG_AUTH_TYPE_COUNT; ++type) {
        if (*word == TVNG_AUTH_TYPES[type]) {
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
        flaws.push_back(missingElement(element));
        return;
    }
    const QByteArray bytes = QByteArray::fromBase64(text->toUtf8());
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

/// A host name or a port.
QString readText(TVNC_XMLNode& record, const char* element, int maxBytes, const char* tooLong,
                 std::vector<Flaw>& flaws)
{
    const QString explanation =
        QString("\"%1\" of %2 bytes, over %3: the store does not answer it").arg(element, "%1", "%2");
    return answeredText(record, element, maxBytes, {tooLong, explanation}, QString(), flaws);
}

void readRecord(TVNC_XMLNode& node, AuthRecord& record)
{
    std::vector<Flaw>& flaws = record.flaws;
    TVNS_AuthInfo& info = record.info;
    checkName(node, "authInfo", {"notNamedAuthInfo", ": answered, but not counted"}, flaws);
    info.hostName = readText(node, "hostName", TVNG_HOST_NAME_MAX_BYTES, "hostTooLong", flaws);
    info.portNum = readText(node, "portNum", TVNG_PORT_NUM_MAX_BYTES, "portTooLong", flaws);
    readType(node, info.authType, flaws);
    readBytes(node, "user", TVNG_USER_MAX_BYTES, "userTooLong", "userNotBase64", info.user, flaws);
    readBytes(node, "passwd", TVNG_PASSWD_MAX_BYTES, "passwordTooLong", "passwordNotBase64", info.passwd,
              flaws);
}

} // namespace

AuthList::AuthList(const QString& dir, int maximum)
    : StoreOf(dir, "authinfo.xml", {"authentication", "authInfo"}), maximum_(maximum)
{
}

void AuthList::loadSetting()
{
    QString dir = file().dir();
    store_.loadAuthInfo(&dir, maximum_);
}

void AuthList::save()
{
    QString dir = file().dir();
    store_.saveAuthInfo(&dir, maximum_);
}

std::vector<AuthRecord> AuthList::records() const
{
    return readRecords<AuthRecord>(root(), readRecord);
}

TVNS_AuthInfo AuthList::entry(int number) const
{
    TVNS_AuthInfo info;
    store_.getAuthInfo(number, &info);
    return info;
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
    return type < TVNG_AUTH_TYPE_COUNT ? TVNG_AUTH_TYPES[type] : QString();
}

std::optional<unsigned char> AuthList::typeOf(const QString& word)
{
    for (unsigned char type = 0; type < TVNG_AUTH_TYPE_COUNT; ++type) {
        if (word.compare(TVNG_AUTH_TYPES[type], Qt::CaseInsensitive) == 0)
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
