#include "tools/tlvctl/records/Document.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"

#include <tlvlib/xml/TVNC_XMLReader.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <utility>

#include <sys/stat.h>

namespace {

/// The first byte of a file that begins no character of UTF-8; -1 where there is none.
int firstWrongByte(const QByteArray& bytes)
{
    for (int i = 0; i < bytes.size();) {
        const uchar lead = static_cast<uchar>(bytes.at(i));
        const int length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        const QByteArray character = bytes.mid(i, length);
        if (length > 1 && QString::fromUtf8(character).toUtf8() != character)
            return i;
        i += length;
    }
    return -1;
}

Damage damageFoundBy(const TVNC_XMLReader& reader, QFile& file)
{
    Damage damage;
    damage.line = reader.lineNumber();
    damage.column = reader.columnNumber();
    damage.reason = reader.errorString();
    if (damage.reason.endsWith('.'))
        damage.reason.chop(1); // it goes into a sentence of ours
    file.seek(0);
    const QByteArray bytes = file.readAll();
    const int wrong = firstWrongByte(bytes);
    const QByteArray before = bytes.left(wrong);
    // An error in front of it is told first.
    if (wrong < 0 || damage.line < before.count('\n') + 1)
        return damage;
    damage.line = before.count('\n') + 1;
    damage.column = QString::fromUtf8(before.mid(before.lastIndexOf('\n') + 1)).size() + 1;
    damage.reason = QString("byte %1, 0x%2, is no UTF-8")
                        .arg(wrong)
                        .arg(static_cast<uchar>(bytes.at(wrong)), 2, 16, QLatin1Char('0'));
    return damage;
}

/// A file that shows how much of it was read. One of less than a step has no bar.
class ShownFile : public QFile
{
public:
    explicit ShownFile(const QString& path)
        : QFile(path), steps_(size() / STEP_BYTES), progress_(static_cast<size_t>(steps_))
    {
    }

protected:
    qint64 readData(char* data, qint64 maximum) override
    {
        const qint64 bytes = QFile::readData(data, maximum);
        for (read_ += bytes; done_ < std::min(steps_, read_ / STEP_BYTES); ++done_)
            progress_.advance();
        return bytes;
    }

private:
    static const qint64 STEP_BYTES = 1 << 20;

    qint64 steps_;
    Progress progress_;
    qint64 read_ = 0;
    qint64 done_ = 0;
};

/// The same in all but their children.
bool sameElement(TVNC_XMLNode& left, TVNC_XMLNode& right)
{
    // Without a text there is nothing that could be of a type.
    const bool sameType = left.getText().isEmpty() || left.getTextType() == right.getTextType();
    return left.getName() == right.getName() && left.getAttribute() == right.getAttribute() &&
           left.getText() == right.getText() && sameType;
}

} // namespace

QString problemWithPlace(const QString& path)
{
    struct stat info;
    if (stat(QFile::encodeName(path).constData(), &info) != 0 || S_ISREG(info.st_mode))
        return QString();
    if (S_ISDIR(info.st_mode))
        return "Is a directory";
    if (S_ISFIFO(info.st_mode))
        return "Is a FIFO";
    return S_ISSOCK(info.st_mode) ? "Is a socket" : "Is a device";
}

Document readDocument(const QString& path)
{
    Document document;
    ShownFile file(path);
    document.problem = problemWithPlace(path);
    if (!document.problem.isEmpty()) {
        document.state = Document::State::UNREADABLE;
        return document;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        // In a directory that may not be searched, nobody knows whether there is such a file.
        const bool isMissing = !file.exists() && QFileInfo(QFileInfo(path).path()).isExecutable();
        document.state = isMissing ? Document::State::MISSING : Document::State::UNREADABLE;
        document.problem = file.errorString();
        return document;
    }
    TVNC_XMLReader reader;
    document.root.reset(reader.read(file));
    document.hasRoot = document.root != nullptr;
    if (file.error() != QFileDevice::NoError) { // the reader takes a failing disk for the end of the file
        document.state = Document::State::UNREADABLE;
        document.problem = file.errorString();
    } else if (reader.hasError()) {
        document.state = Document::State::DAMAGED;
        document.damage = damageFoundBy(reader, file);
    } else {
        document.state = Document::State::COMPLETE;
    }
    return document;
}

QString describe(const Damage& damage)
{
    // The reason may quote the document.
    return QString("damaged at line %1, column %2 (%3)")
        .arg(QString::number(damage.line), QString::number(damage.column), printable(damage.reason));
}

bool checkReadable(const QString& path, const Document& document, const QString& advice)
{
    if (document.state != Document::State::MISSING && document.state != Document::State::UNREADABLE)
        return true;
    complain(path, QString("cannot be read: %1; %2").arg(printable(document.problem), advice));
    return false;
}

int exitCodeOfReading(const QString& path, const Document& document)
{
    if (document.state != Document::State::DAMAGED)
        return DONE;
    const QString damage = describe(document.damage);
    if (document.hasRoot)
        complain(path, damage + "; everything behind that place is not read. Correct the file there, or "
                                "restore it from a copy");
    else
        complain(path, "no settings document: it holds no element, " + damage +
                           "; check that it is the right file");
    return FAILED;
}

void writeCompleteness(JsonWriter& json, const Document& document)
{
    const bool isComplete = document.state != Document::State::DAMAGED;
    json.member("complete", isComplete);
    json.member("error");
    if (isComplete) {
        json.null();
        return;
    }
    json.beginObject();
    json.member("line", document.damage.line);
    json.member("column", document.damage.column);
    json.member("message", document.damage.reason);
    json.endObject();
}

bool sameTree(TVNC_XMLNode& left, TVNC_XMLNode& right)
{
    std::vector<std::pair<TVNC_XMLNode*, TVNC_XMLNode*>> pending{{&left, &right}};
    while (!pending.empty()) {
        const auto [one, other] = pending.back();
        pending.pop_back();
        const QList<TVNC_XMLNode*>& children = one->getXMLNodeChildren();
        const QList<TVNC_XMLNode*>& otherChildren = other->getXMLNodeChildren();
        if (!sameElement(*one, *other) || children.size() != otherChildren.size())
            return false;
        for (int i = 0; i < children.size(); ++i)
            pending.emplace_back(children.at(i), otherChildren.at(i));
    }
    return true;
}
