#include "tests/support/LogRecorder.h"
#include "tests/support/TestSupport.h"
#include "tools/tlvctl/files/Check.h"

#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/stores/TVNC_CookieSetting.h>
#include <tlvlib/xml/TVNC_XMLNode.h>
#include <tlvlib/xml/TVNC_XMLReader.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QXmlStreamReader>

#include <algorithm>
#include <memory>
#include <random>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

/**
 * Damages every file of a healthy profile in thousands of ways, and runs the check, the repair and the check
 * again over each: the first finds the damage, nothing that was readable is lost, the report counts right,
 * and the second finds nothing but what the repair said remains.
 */
class tst_tlvctl_damages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyFileIsATest();
    void bytes_data();
    void bytes();
    void otherThingsInItsPlace_data() { bytes_data(); }
    void otherThingsInItsPlace();
    void modes();
    void owners();

private:
    /// What was done to a file's bytes: those from begin to end were replaced.
    struct Damage
    {
        QByteArray bytes;
        int begin;
        int end;
        bool isCut;
    };

    Damage damage(const QByteArray& healthy, int i);
    void tryDamage(const QString& dir, const QString& name, const QByteArray& healthy, const Damage& damage,
                   bool isTried);

    QString dir_;
    std::mt19937 random_;
    std::unique_ptr<TempDir> temp_;
};

const int DAMAGES = 2000;

/// The files of the profile, and the records of each.
struct File
{
    const char* name;
    const char* record; ///< null for files that are no list
};

const File FILES[] = {{"bookmark.xml", "bookmark"},   {"visit.xml", "pageInfo"},
                      {"authinfo.xml", "authInfo"},   {"fontlist.xml", "font"},
                      {"cookies.xml", "webSiteInfo"}, {"pack.xml", "image"},
                      {"repostry.xml", nullptr},      {"repostry_private.xml", nullptr},
                      {"cookie.ini", nullptr},        {"thumbnail/000001.PNG", nullptr}};

QString rowOf(const File& file)
{
    return QString(file.name).endsWith(".PNG") ? "picture" : file.name;
}

const char* recordOf(const QString& name)
{
    for (const File& file : FILES) {
        if (name == file.name)
            return file.record;
    }
    return nullptr;
}

void run(const QStringList& arguments)
{
    QProcess process;
    process.start(TLVCTL, arguments);
    process.write("secret");
    process.closeWriteChannel();
    QVERIFY2(process.waitForFinished() && process.exitCode() == 0,
             process.readAllStandardError().constData());
}

/// How each finding ends.
QStringList endingsOf(const std::vector<FileReport>& reports)
{
    QStringList endings;
    for (const FileReport& report : reports) {
        for (const Finding& finding : report.findings)
            endings.append(QString("%1 %2 %3")
                               .arg(static_cast<int>(finding.ending))
                               .arg(report.lost)
                               .arg(report.path + ": " + finding.text));
    }
    return endings;
}

/// The texts of all findings, and of those that a repair has left.
QStringList textsOf(const std::vector<FileReport>& reports, bool areRemaining)
{
    QStringList texts;
    for (const FileReport& report : reports) {
        for (const Finding& finding : report.findings) {
            if (!areRemaining || finding.ending == Ending::REMAINS)
                texts.append(report.path + ": " + finding.text);
        }
    }
    texts.sort();
    return texts;
}

void tst_tlvctl_damages::initTestCase()
{
    if (QFileInfo("/dev/shm").isWritable())
        qputenv("TMPDIR", "/dev/shm"); // so many saves need no disk
    qputenv("TZ", "UTC0");             // nor so many times the file of a zone
    temp_ = std::make_unique<TempDir>();
    dir_ = temp_->path() + "damages";
    QVERIFY(QDir().mkpath(dir_ + "/all/thumbnail"));
    const QString all = dir_ + "/all";
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(dir_ + "/page.png"));
    for (int i = 0; i < 6; ++i) {
        const QString n = QString::number(i);
        run({"bookmarks", "add", all, "http://example.com/" + n, "--title", "Page <" + n + "> & more",
             "--image", dir_ + "/page.png"});
        run({"history", "add", all, "http://example.org/" + n, "--title", "Visit " + n, "--time",
             "2011/04/12 10:1" + n});
        run({"auth", "add", all, "host" + n, "80", "--type", "basic", "--user", "user" + n});
        run({"fonts", "add", all, "Font " + n});
    }
    QList<QNetworkCookie> cookies;
    for (int i = 0; i < 6; ++i) {
        QNetworkCookie cookie("name" + QByteArray::number(i), "value" + QByteArray::number(i));
        cookie.setDomain(".example.com");
        cookie.setPath("/");
        cookies.append(cookie);
    }
    TVNG_SetSafeSave(1);
    QString iniDir = all + '/';
    TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &iniDir, 20);
    run({"cookies", "from-ini", all, all + "/cookies.xml"});
    run({"prefs", "set", "common", all, "proxy.host", "proxy.example.net"});
    run({"prefs", "set", "user", all, "page.zoom", "1.1"});
    run({"thumbnails", "pack", all + "/thumbnail", all + "/pack.xml"});
    for (const QString& name : QDir(all).entryList({"*.bak"}))
        QFile::remove(all + '/' + name);
    QCOMPARE(textsOf(checkDirectory(all + '/', Repair::NONE), false), QStringList());

    // Each file in a directory of its own; the bookmarks with their pictures.
    for (const File& file : FILES) {
        const bool hasPictures =
            QString(file.name).startsWith("thumbnail") || qstrcmp(file.name, "bookmark.xml") == 0;
        const QString own = dir_ + '/' + QString(file.name).replace('/', '-');
        QVERIFY(QDir().mkpath(own + (hasPictures ? "/thumbnail" : "")));
        QVERIFY(QFile::copy(all + '/' + file.name, own + '/' + file.name));
        if (!hasPictures)
            continue;
        QFile::copy(all + "/bookmark.xml", own + "/bookmark.xml");
        for (const QString& name : QDir(all + "/thumbnail").entryList(QDir::Files))
            QFile::copy(all + "/thumbnail/" + name, own + "/thumbnail/" + name);
    }
}

/// Each row of bytes() is a test of its own, which is asked for by its name.
void tst_tlvctl_damages::everyFileIsATest()
{
    QStringList rows;
    for (const File& file : FILES)
        rows.append(rowOf(file));
    QCOMPARE(rows, QString(TLVCTL_DAMAGED).split(' '));
}

void tst_tlvctl_damages::bytes_data()
{
    QTest::addColumn<QString>("name");
    for (const File& file : FILES)
        QTest::newRow(rowOf(file).toLatin1().constData()) << QString(file.name);
}

tst_tlvctl_damages::Damage tst_tlvctl_damages::damage(const QByteArray& healthy, int i)
{
    const int size = static_cast<int>(healthy.size());
    const int at = i % size;
    QByteArray bytes = healthy;
    switch ((i / size + i) % 4) {
    case 0: { // a flipped bit, at every place in turn
        bytes[at] = static_cast<char>(bytes.at(at) ^ (1 << (i / 7 % 8)));
        return {bytes, at, at + 1, false};
    }
    case 1: // cut
        return {bytes.left(at), at, size, true};
    case 2: { // inserted
        QByteArray more;
        for (int j = 0; j < 1 + i % 5; ++j)
            more += "<>&\"/ aZ9\x01\xFF"[random_() % 11];
        return {bytes.insert(at, more), at, at, false};
    }
    default: { // another byte
        bytes[at] = static_cast<char>(random_());
        return {bytes, at, at + 1, false};
    }
    }
}

/// Names, attributes and nesting of a document, without the texts of leaves; empty for a damaged one.
QByteArray structureOf(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    const std::unique_ptr<TVNC_XMLNode> root(reader.read(buffer));
    if (reader.hasError())
        return QByteArray();
    QXmlStreamReader xml(bytes);
    QByteArray structure;
    bool isLeaf = false;
    QString text;
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            structure += text.trimmed().isEmpty() ? "" : "text";
            structure += '<' + xml.name().toUtf8();
            for (const QXmlStreamAttribute& attribute : xml.attributes())
                structure += ' ' + attribute.qualifiedName().toUtf8() + '=' +
                             (attribute.name() == QLatin1String("src") ? "name" : attribute.value().toUtf8());
            structure += '>';
            isLeaf = true;
            text.clear();
            break;
        case QXmlStreamReader::EndElement:
            structure += isLeaf || text.trimmed().isEmpty() ? "</>" : "text</>";
            isLeaf = false;
            text.clear();
            break;
        case QXmlStreamReader::Characters:
            text += xml.text();
            break;
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
        case QXmlStreamReader::DTD:
            structure += "other";
            break;
        default:
            break;
        }
    }
    return structure;
}

/// The records of a document, each as the texts of its elements, and with what it has for src.
QStringList recordsIn(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const std::unique_ptr<TVNC_XMLNode> root(TVNC_XMLReader().read(buffer));
    QStringList records;
    if (!root)
        return records;
    for (TVNC_XMLNode* record : root->getXMLNodeChildren()) {
        QString text = record->getAttribute().value("src").toString() + record->getText();
        for (TVNC_XMLNode* field : record->getXMLNodeChildren())
            text += '\n' + field->getText();
        records.append(text);
    }
    return records;
}

/// Where each record of a healthy document stands.
std::vector<std::pair<qint64, qint64>> placesOf(const QByteArray& bytes, const QByteArray& record)
{
    std::vector<std::pair<qint64, qint64>> places;
    for (auto at = bytes.indexOf('<' + record + ' '); at >= 0;
         at = bytes.indexOf('<' + record + ' ', at + 1)) {
        const QByteArray end = "</" + record + '>';
        places.push_back({at, bytes.indexOf(end, at) + end.size()});
    }
    return places;
}

/// The leaves of preferences that the damage did not touch, as they stand in the file.
QList<QByteArray> leavesBeside(int begin, int end, const QByteArray& healthy)
{
    QList<QByteArray> leaves;
    int at = 0;
    for (const QByteArray& line : healthy.split('\n')) {
        const bool isTouched = at <= end && at + line.size() >= begin;
        if (!isTouched && (line.contains("</") || line.contains("/>")) && line.trimmed().count('<') > 0 &&
            line.startsWith("        "))
            leaves.append(line);
        at += static_cast<int>(line.size()) + 1;
    }
    return leaves;
}

/// The cookies "nameN=..." of a cookie.ini that the damage did not touch.
QList<QByteArray> cookiesBeside(int begin, int end, const QByteArray& healthy)
{
    const int lengthBytes = 16; // in front of each cookie, escaped
    QList<QByteArray> cookies;
    for (auto at = healthy.indexOf("name"); at >= 0;) {
        const auto next = healthy.indexOf("name", at + 1);
        if (begin > (next < 0 ? healthy.size() : next) || end < at - lengthBytes)
            cookies.append(healthy.mid(at, 5));
        at = next;
    }
    return cookies;
}

QStringList cookiesIn(const QString& dir)
{
    QString iniDir = dir;
    QStringList cookies;
    for (const QNetworkCookie& cookie : TVNC_CookieSetting::getInstance()->loadCookieInfo(&iniDir, 100))
        cookies.append(cookie.toRawForm());
    return cookies;
}

void tst_tlvctl_damages::tryDamage(const QString& dir, const QString& name, const QByteArray& healthy,
                                   const Damage& damage, bool isTried)
{
    const QByteArray before = QByteArray("at ") + QByteArray::number(damage.begin) + " of " + name.toUtf8() +
                              ": " + damage.bytes.mid(std::max(0, damage.begin - 30), 60);
    writeFile(dir + name, damage.bytes);
    const QStringList found = textsOf(checkDirectory(dir, Repair::NONE), false);
    const bool isXml = name.endsWith(".xml");
    // A letter of a text, a blank more: nobody can know, and the check calls it clean, or knows the value.
    const bool isPack =
        name != "pack.xml" || damage.bytes.left(200).contains("<thumbnail"); // by its root alone
    const bool isKnowable =
        isXml ? isPack && structureOf(damage.bytes) != structureOf(healthy) : name.endsWith(".PNG");
    QVERIFY2(!isKnowable || damage.bytes == healthy || !found.isEmpty(), before.constData());

    const QStringList told = isTried ? endingsOf(checkDirectory(dir, Repair::TRY)) : QStringList();
    QCOMPARE(readFile(dir + name), damage.bytes);
    const std::vector<FileReport> repaired = checkDirectory(dir, Repair::DO);
    if (isTried)
        QCOMPARE(told, endingsOf(repaired));
    const QByteArray after = readFile(dir + name);
    const auto report = std::find_if(repaired.begin(), repaired.end(), [&](const FileReport& candidate) {
        return candidate.path == dir + name;
    });
    const bool isRewritten = report != repaired.end() && !report->keptAs.isEmpty();
    if (!isRewritten) { // the same bytes, of which a second check says the same
        QCOMPARE(after, damage.bytes);
        QCOMPARE(textsOf(repaired, true), found);
        return;
    }
    QCOMPARE(textsOf(checkDirectory(dir, Repair::NONE), false), textsOf(repaired, true));
    QCOMPARE(readFile(report->keptAs), damage.bytes);
    for (const QByteArray& leaf :
         name.startsWith("repostry") ? leavesBeside(damage.begin, damage.end, healthy) : QList<QByteArray>())
        QVERIFY2(after.contains(leaf), (before + "\nlost: " + leaf).constData());
    const QString cookies = name == "cookie.ini" ? cookiesIn(dir).join('\n') : QString();
    for (const QByteArray& cookie :
         name == "cookie.ini" ? cookiesBeside(damage.begin, damage.end, healthy) : QList<QByteArray>())
        QVERIFY2(cookies.contains(cookie + "=value"), (before + "\nlost: " + cookie).constData());
    const char* const record = recordOf(name);
    if (!record)
        return;
    // Every record that the damage did not touch is there, in order.
    const QStringList all = recordsIn(healthy);
    const QStringList left = recordsIn(after);
    int next = 0;
    int cutAway = 0;
    const auto places = placesOf(healthy, record);
    QCOMPARE(static_cast<int>(places.size()), all.size());
    for (size_t i = 0; i < places.size(); ++i) {
        cutAway += damage.isCut && places[i].first + 1 >= damage.begin ? 1 : 0;
        if (places[i].second > damage.begin && places[i].first < damage.end)
            continue;
        if (damage.begin == damage.end && places[i].first < damage.begin && places[i].second > damage.begin)
            continue;
        while (next < left.size() && left.at(next) != all.at(static_cast<int>(i)))
            ++next;
        QVERIFY2(next++ < left.size(),
                 (before + "\nlost: " + all.at(static_cast<int>(i)).toUtf8()).constData());
    }
    // Of what is cut away nothing is left that could be counted.
    QVERIFY2(left.size() + report->lost == all.size() - cutAway,
             (before + "\nleft " + QByteArray::number(left.size()) + ", told lost " +
              QByteArray::number(report->lost))
                 .constData());
}

void tst_tlvctl_damages::bytes()
{
    QFETCH(QString, name);
    const QString dir = dir_ + '/' + QString(name).replace('/', '-') + '/';
    const QByteArray healthy = readFile(dir + name);
    const QStringList cookies = name == "cookie.ini" ? cookiesIn(dir) : QStringList();
    random_.seed(20110412); // the same damages, whichever rows run before
    for (int i = 0; i < DAMAGES; ++i) {
        tryDamage(dir, name, healthy, damage(healthy, i), i % 20 == 0);
        if (QTest::currentTestFailed())
            return;
        for (const QString& other : QDir(dir).entryList({"*.bak*", "*.rejected*"}, QDir::Files))
            QFile::remove(dir + other);
        QFile::remove(dir + name); // so that QSettings sees another file
        writeFile(dir + name, healthy);
        chmod((dir + name).toUtf8().constData(), 0600);
        LogRecorder::clear();
    }
    if (name == "cookie.ini")
        QCOMPARE(cookiesIn(dir), cookies);
}

void tst_tlvctl_damages::otherThingsInItsPlace()
{
    QFETCH(QString, name);
    const QString dir = dir_ + '/' + QString(name).replace('/', '-') + '/';
    const QByteArray path = (dir + name).toUtf8();
    const QByteArray healthy = readFile(dir + name);
    const auto restore = [&] {
        QDir(dir + name).removeRecursively();
        QFile::remove(dir + name);
        writeFile(dir + name, healthy);
        chmod(path.constData(), 0600);
    };
    const auto expectFinding = [&](const char* what) {
        const QStringList found = textsOf(checkDirectory(dir, Repair::NONE), false);
        QVERIFY2(!found.isEmpty() || name == "pack.xml", what); // nobody knows the name of a pack
        checkDirectory(dir, Repair::DO);
        QCOMPARE(textsOf(checkDirectory(dir, Repair::NONE), false), found);
    };
    for (const File& other : FILES) {
        if (name == other.name || name.endsWith(".PNG") || QString(other.name).endsWith(".PNG"))
            continue;
        const QByteArray swapped = readFile(dir_ + "/all/" + other.name);
        writeFile(dir + name, swapped);
        const QStringList found = textsOf(checkDirectory(dir, Repair::NONE), false);
        QVERIFY2(!found.isEmpty() || name == "pack.xml", other.name);
        checkDirectory(dir, Repair::DO);
        QCOMPARE(readFile(dir + name), swapped);
        restore();
    }
    QFile::remove(dir + name);
    QVERIFY(mkfifo(path.constData(), 0600) == 0);
    expectFinding("a FIFO");
    restore();
    QFile::remove(dir + name);
    QVERIFY(QDir().mkdir(dir + name));
    expectFinding("a directory");
    restore();
    QFile::remove(dir + name);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, path.constData(), sizeof(address.sun_path));
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    QVERIFY(bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0);
    expectFinding("a socket");
    close(fd);
    restore();
    QFile::remove(dir + name);
    QVERIFY(symlink("/dev/zero", path.constData()) == 0);
    expectFinding("a device");
    restore();
    QFile::remove(dir + name);
    QVERIFY(symlink("/nowhere/at/all", path.constData()) == 0);
    expectFinding("a link to nothing");
    restore();
    QFile::remove(dir + name);
    const bool isMissed =
        name == "bookmark.xml" || name.endsWith(".PNG"); // pictures, or a bookmark, tell of it
    QCOMPARE(!textsOf(checkDirectory(dir, Repair::NONE), false).isEmpty(), isMissed);
    restore();
    QVERIFY(textsOf(checkDirectory(dir, Repair::NONE), false).isEmpty());
}

void tst_tlvctl_damages::modes()
{
    for (const char* name : {"authinfo.xml", "cookies.xml", "cookie.ini"}) {
        const QString dir = dir_ + '/' + name + '/';
        const QByteArray path = (dir + name).toUtf8();
        for (int mode = 0600; mode <= 0677; ++mode) {
            QVERIFY(chmod(path.constData(), static_cast<mode_t>(mode)) == 0);
            const bool isOpen = mode != 0600;
            QCOMPARE(textsOf(checkDirectory(dir, Repair::NONE), false).size(), isOpen ? 1 : 0);
            QVERIFY(textsOf(checkDirectory(dir, Repair::DO), true).isEmpty());
            QVERIFY(textsOf(checkDirectory(dir, Repair::NONE), false).isEmpty());
            struct stat info;
            QVERIFY(stat(path.constData(), &info) == 0 && (info.st_mode & 0777) == 0600);
        }
        QCOMPARE(QDir(dir).entryList(QDir::Files), QStringList{name}); // no copy for that
    }
}

/// What the owner of the directory may not read is found in every file, and left to a person.
void tst_tlvctl_damages::owners()
{
    for (const File& file : FILES) {
        const QString name = file.name;
        if (recordOf(name) == nullptr && name.endsWith(".PNG"))
            continue;
        const QString dir = dir_ + '/' + name + '/';
        const QByteArray path = (dir + name).toUtf8();
        const auto tellsBoth = [&] {
            const QStringList found = textsOf(checkDirectory(dir, Repair::NONE), false);
            return found.size() == 1 && textsOf(checkDirectory(dir, Repair::DO), true) == found;
        };
        const QByteArray healthy = readFile(dir + name);
        QVERIFY(chmod(path.constData(), 0) == 0);
        QVERIFY2(tellsBoth(), file.name);
        QVERIFY(chmod(path.constData(), 0600) == 0);
        if (geteuid() == 0) {
            QVERIFY(chown(path.constData(), 1234, 4321) == 0);
            QVERIFY2(tellsBoth(), file.name);
            QVERIFY(chown(path.constData(), 0, 0) == 0);
        }
        QVERIFY(textsOf(checkDirectory(dir, Repair::NONE), false).isEmpty());
        QCOMPARE(readFile(dir + name), healthy);
    }
}

QTEST_APPLESS_MAIN(tst_tlvctl_damages)
#include "tst_tlvctl_damages.moc"
