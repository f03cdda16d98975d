#include "tests/support/LogRecorder.h"
#include "tests/support/Random.h"
#include "tests/support/Setting.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestSupport.h"
#include "tests/support/Tree.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtNetwork/QNetworkCookie>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

static bool b_offAtFirst = false;

/// The two functions, and what stays as it was while they are used; tst_TVNG_SafeSave_faults has what fails.
class tst_TVNG_SafeSave : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void offAtFirst();
    void defaultModeCallsWhatQtCalls();
    void defaultModeTellsNothing();
    void oneWriteTwoSyncsOneRename();
    void everyValueButZeroSwitchesOn();

    void documentsAreTheSame();
    void picturesAreTheSame();
    void cookieIniIsTheSame();
    void cookieIniLosesWhatElseItHeld();
    void cookiesAreReadBackAtOnce();
    void logLinesAreTheSame();
    void nullNodesAreWrittenAsEver();

    void modeIsKept_data();
    void modeIsKept();
    void ownerAndGroupAreKept();
    void fileThatCannotBeGivenToItsOwnerIsWrittenInPlace();
    void newFilesFollowTheUmask();
    void secretsAreMadeForTheirOwnerAlone();
    void secretsKeepTheModeTheyHad();
    void proxyPasswordIsASecret();
    void defaultModeMakesSecretsAsEver();

    void symbolicLinksStay_data();
    void symbolicLinksStay();
    void linkToNothingMakesItsTarget();
    void descriptorZeroIsOneLikeAnyOther();
    void namesOfAllLengths();
    void relativePaths();
    void leftoverGoesWithTheNextSave();
    void leftoverIsNoDocument();
    void savesOfTwoProcessesAreWhole();

private:
    QString file(const char* pc_name) const { return path_ + utf8(pc_name); }
    QByteArray localFile(const char* pc_name) const { return QFile::encodeName(file(pc_name)); }
    QByteArray localPath() const { return QFile::encodeName(path_); }
    int modeOf(const char* pc_name) const;

    QScopedPointer<TempDir> dir_;
    QString path_;
};

/// Writes a document with this text.
static bool write(const QString& path, const char* pc_text)
{
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "root", pc_text));
    TVNC_XMLWriter writer;
    QString name = path;
    return writer.write(name, root.data());
}

static QByteArray document(const char* pc_text)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>") + pc_text + "</root>\n";
}

static QImage picture(int si_seed)
{
    QImage image(40, 30, QImage::Format_RGB32);
    Random random(static_cast<quint32>(si_seed));
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, random.next(0x1000000) | 0xFF000000u);
    }
    return image;
}

static void saveCookie(QString dir, const QByteArray& value)
{
    QList<QNetworkCookie> cookies;
    cookies << QNetworkCookie("name", value);
    TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &dir, 20);
}

void tst_TVNG_SafeSave::init()
{
    dir_.reset(new TempDir);
    path_ = dir_->path();
    umask(022);
    TVNG_SetSafeSave(1);
    QVERIFY(write(file("first.xml"), "the error of another test goes"));
    QVERIFY(QFile::remove(file("first.xml")));
    QCOMPARE(TVNG_GetSaveError(), QString());
    LogRecorder::clear();
}

void tst_TVNG_SafeSave::cleanup()
{
    SystemCalls::mend();
    TVNG_SetSafeSave(0);
    releaseDeferred();
    dir_.reset();
}

int tst_TVNG_SafeSave::modeOf(const char* pc_name) const
{
    struct stat status;
    return stat(localFile(pc_name).constData(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

// --- The modes ---------------------------------------------------------------------------------------------

void tst_TVNG_SafeSave::offAtFirst()
{
    QVERIFY(b_offAtFirst);
}

/// Names of Qt's own temporary files differ.
static QStringList withoutChance(const QStringList& texts)
{
    const QString start = utf8("cookie.ini.");
    QStringList same;
    foreach (QString text, texts) {
        const int si_name = static_cast<int>(text.indexOf(start));
        if (si_name >= 0 && !text.contains(utf8(".lock")))
            text.replace(si_name + static_cast<int>(start.size()), 6, utf8("XXXXXX"));
        same << text;
    }
    return same;
}

// The reference is Qt itself, with what the library called before there was another mode.
void tst_TVNG_SafeSave::defaultModeCallsWhatQtCalls()
{
    TVNG_SetSafeSave(0);
    const QByteArray text(100000, 'x');
    for (int i = 0; i < 2; ++i) { // a new file, then one that is there
        SystemCalls::record(localPath());
        QFile reference(file("a.xml"));
        QVERIFY(reference.open(QIODevice::WriteOnly));
        TVNC_XMLWriter referenceWriter;
        QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "root", text.constData()));
        QVERIFY(referenceWriter.write(reference, root.data()));
        reference.close();
        const QStringList expected = SystemCalls::texts();
        QVERIFY(expected.size() > 2);
        if (i == 0)
            QVERIFY(QFile::remove(file("a.xml")));
        SystemCalls::record(localPath());
        QVERIFY(write(file("a.xml"), text.constData()));
        QCOMPARE(SystemCalls::texts(), expected);
    }

    QString name = file("b.png");
    QByteArray base64 = text.toBase64();
    SystemCalls::record(localPath());
    QFile reference(name);
    QVERIFY(reference.open(QIODevice::WriteOnly | QIODevice::Truncate));
    reference.write(text);
    reference.close();
    QStringList expected = SystemCalls::texts();
    QVERIFY(QFile::remove(name));
    SystemCalls::record(localPath());
    QVERIFY(TVNC_ThumbnailConverter::getInstance()->decode_base64(base64, name));
    QCOMPARE(SystemCalls::texts(), expected);

    QImage image = picture(1);
    SystemCalls::record(localPath());
    QVERIFY(image.save(file("000008.PNG"), "PNG", -1));
    expected = SystemCalls::texts();
    QVERIFY(QFile::remove(file("000008.PNG")));
    int si_number = 7;
    QString path = path_;
    SystemCalls::record(localPath());
    QVERIFY(TVNC_BookmarksSetting::getInstance()->setThumbnail(&image, &path, si_number));
    QCOMPARE(SystemCalls::texts(), expected);

    saveCookie(path_, "value");
    const QByteArray ini = readFile(file("cookie.ini"));
    const QVariant value = QSettings(file("cookie.ini"), QSettings::IniFormat).value(utf8("Cookie/cookies"));
    QVERIFY(QFile::remove(file("cookie.ini")));
    SystemCalls::record(localPath());
    {
        QSettings settings(file("cookie.ini"), QSettings::IniFormat);
        settings.clear();
        settings.setValue(utf8("Cookie/cookies"), value);
    }
    expected = withoutChance(SystemCalls::texts());
    QCOMPARE(readFile(file("cookie.ini")), ini);
    QVERIFY(QFile::remove(file("cookie.ini")));
    SystemCalls::record(localPath());
    saveCookie(path_, "value");
    QCOMPARE(withoutChance(SystemCalls::texts()), expected);
}

void tst_TVNG_SafeSave::defaultModeTellsNothing()
{
    QVERIFY(!write(file("none/a.xml"), "x"));
    const QString error = TVNG_GetSaveError();
    QVERIFY(!error.isEmpty());
    TVNG_SetSafeSave(0);
    QVERIFY(write(file("a.xml"), "x"));
    QCOMPARE(TVNG_GetSaveError(), error);
}

void tst_TVNG_SafeSave::oneWriteTwoSyncsOneRename()
{
    SystemCalls::record(localPath());
    QVERIFY(write(file("a.xml"), "x"));
    const int si_size = static_cast<int>(document("x").size());
    QCOMPARE(SystemCalls::texts(),
             QStringList()
                 << utf8("open a.xml.tlvsave 0x%1 666").arg(O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0, 16)
                 << utf8("write %1").arg(si_size) << utf8("fsync") << utf8("close")
                 << utf8("rename a.xml.tlvsave a.xml") << utf8("fsync directory"));
    // However large: every byte once.
    SystemCalls::record(localPath());
    QVERIFY(write(file("a.xml"), QByteArray(300000, 'x').constData()));
    qint64 written = 0;
    int si_syncs = 0;
    foreach (const SystemCall& call, SystemCalls::take()) {
        written += call.kind == SystemCall::WRITE ? call.data.size() : 0;
        si_syncs += call.kind == SystemCall::SYNC || call.kind == SystemCall::SYNC_DIRECTORY ? 1 : 0;
    }
    QCOMPARE(written, static_cast<qint64>(readFile(file("a.xml")).size()));
    QCOMPARE(si_syncs, 2);
}

void tst_TVNG_SafeSave::everyValueButZeroSwitchesOn()
{
    const char pc_values[] = {1, 2, static_cast<char>(-1), 127, static_cast<char>(-128)};
    for (size_t i = 0; i < sizeof pc_values; ++i) {
        TVNG_SetSafeSave(pc_values[i]);
        SystemCalls::record(localPath());
        QVERIFY(write(file("a.xml"), "x"));
        QVERIFY(SystemCalls::texts().contains(utf8("rename a.xml.tlvsave a.xml")));
    }
    TVNG_SetSafeSave(0);
    SystemCalls::record(localPath());
    QVERIFY(write(file("a.xml"), "x"));
    QVERIFY(!SystemCalls::texts().contains(utf8("rename a.xml.tlvsave a.xml")));
}

// --- What files and log hold -------------------------------------------------------------------------------

void tst_TVNG_SafeSave::documentsAreTheSame()
{
    Random random(15);
    for (int i = 0; i < 200; ++i) {
        QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "root"));
        const int si_nodes = static_cast<int>(random.next(i % 10 == 0 ? 3000 : 30));
        for (int j = 0; j < si_nodes; ++j) {
            TVNC_XMLNode* pc_node = makeNode(root.data(), "entry", "", static_cast<char>(random.next(3)));
            QString text;
            for (quint32 k = random.next(20); k > 0; --k)
                text += QChar(random.next(4) == 0 ? random.next(0x10000) : random.next(0x80));
            pc_node->setText(text);
        }
        QString inPlace = file("in-place.xml");
        QString whole = file("whole.xml");
        TVNC_XMLWriter writer;
        TVNC_XMLWriter otherWriter;
        TVNG_SetSafeSave(0);
        const bool b_written = writer.write(inPlace, root.data());
        TVNG_SetSafeSave(1);
        QCOMPARE(otherWriter.write(whole, root.data()), b_written);
        QCOMPARE(otherWriter.hasError(), writer.hasError());
        QCOMPARE(readFile(whole), readFile(inPlace));
    }
    // The setting base has a way of its own to write.
    Setting setting;
    QString path = file("in-place.xml");
    setting.load(path);
    path = file("saved.xml");
    setting.save(path);
    QCOMPARE(readFile(path), readFile(file("whole.xml")));
}

void tst_TVNG_SafeSave::picturesAreTheSame()
{
    for (int i = 0; i < 20; ++i) {
        QImage image = picture(i);
        int si_number = 0;
        QString whole = path_;
        QVERIFY(TVNC_BookmarksSetting::getInstance()->setThumbnail(&image, &whole, si_number));
        QVERIFY(image.save(file("reference.png"), "PNG", -1));
        QCOMPARE(readFile(whole), readFile(file("reference.png")));

        QByteArray base64;
        TVNC_ThumbnailConverter::getInstance()->encode_base64(whole, base64);
        QString unpacked = file("unpacked.png");
        QVERIFY(TVNC_ThumbnailConverter::getInstance()->decode_base64(base64, unpacked));
        QCOMPARE(readFile(unpacked), readFile(whole));
    }
    // No picture makes no file, and costs none that is there.
    QImage none;
    int si_number = 0;
    QString path = path_;
    const QByteArray before = readFile(file("000001.PNG"));
    QVERIFY(!TVNC_BookmarksSetting::getInstance()->setThumbnail(&none, &path, si_number));
    QCOMPARE(readFile(file("000001.PNG")), before);
    QCOMPARE(TVNG_GetSaveError(), file("000001.PNG") + utf8(" could not be saved: there is no picture"));
}

void tst_TVNG_SafeSave::cookieIniIsTheSame()
{
    Random random(3);
    QString dir = path_;
    for (int i = 0; i < 300; ++i) {
        QByteArray value;
        if (i < 256)
            value = QByteArray(1, static_cast<char>(i)) + "0fFx;" + static_cast<char>(i); // digits behind it
        for (quint32 j = random.next(40); j > 0; --j)
            value += static_cast<char>(random.next(256));
        if (i >= 296)
            value = ",";
        QNetworkCookie cookie("n", value);
        if (i < 296) // else there is no ";" in the file
            cookie.setDomain(utf8("\xC3\xA9.example.com"));
        QList<QNetworkCookie> cookies;
        for (int j = 0; j < i % 4; ++j)
            cookies << cookie;
        TVNG_SetSafeSave(0);
        TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &dir, 20);
        const QByteArray expected = readFile(file("cookie.ini"));
        QVERIFY(!expected.isEmpty());
        QVERIFY(QFile::remove(file("cookie.ini")));
        TVNG_SetSafeSave(1);
        TVNC_CookieSetting::getInstance()->saveCookieInfo(cookies, &dir, 20);
        QCOMPARE(readFile(file("cookie.ini")), expected);
    }
    QCOMPARE(QDir(path_).entryList(QDir::Files), QStringList() << utf8("cookie.ini"));
}

void tst_TVNG_SafeSave::cookieIniLosesWhatElseItHeld()
{
    const QByteArray others[] = {"[General]\nother=1\n", "[Cookie]\ncookies=x\nother=2\n[More]\nkey=3\n",
                                 "; a comment\n\n[Cookie]\ncookies=\"@ByteArray(\\0)\"\n",
                                 "[no end\n\xFF\xFE==\n"};
    for (int i = 0; i < 4; ++i) {
        TVNG_SetSafeSave(0);
        writeFile(file("cookie.ini"), others[i]);
        saveCookie(path_, "v");
        const QByteArray expected = readFile(file("cookie.ini"));
        QVERIFY(QFile::remove(file("cookie.ini")));
        TVNG_SetSafeSave(1);
        writeFile(file("cookie.ini"), others[i]);
        saveCookie(path_, "v");
        QCOMPARE(readFile(file("cookie.ini")), expected);
    }
}

// QSettings remembers what it has read, by the file's size and time.
void tst_TVNG_SafeSave::cookiesAreReadBackAtOnce()
{
    QString dir = path_;
    for (int i = 0; i < 300; ++i) {
        const QByteArray value = QByteArray::number(1000 + i);
        if (i % 3 == 2)
            TVNG_SetSafeSave(0); // its own writes, too, when an application switches back
        saveCookie(path_, value);
        TVNG_SetSafeSave(1);
        const QList<QNetworkCookie> cookies = TVNC_CookieSetting::getInstance()->loadCookieInfo(&dir, 20);
        QCOMPARE(static_cast<int>(cookies.size()), 1);
        QCOMPARE(cookies.at(0).value(), value);
    }
    // Time does not run away for all that: only saves within one tick of the clock push it.
    QVERIFY(QFileInfo(file("cookie.ini")).lastModified() < QDateTime::currentDateTime().addSecs(310));
}

void tst_TVNG_SafeSave::logLinesAreTheSame()
{
    QStringList logs[2];
    for (char c_on = 0; c_on < 2; ++c_on) {
        TVNG_SetSafeSave(c_on);
        QString dir = path_;
        int si_last = 0;
        QImage image = picture(1);
        QString picturePath = path_;
        TVNC_BookmarksSetting::getInstance()->loadBookmark(&dir, 10, si_last);
        QVERIFY(TVNC_BookmarksSetting::getInstance()->setThumbnail(&image, &picturePath, si_last));
        TVNC_BookmarksSetting::getInstance()->saveBookmark(&dir, 10);
        TVNC_AuthSetting::getInstance()->loadAuthInfo(&dir, 10);
        TVNC_AuthSetting::getInstance()->saveAuthInfo(&dir, 10);
        saveCookie(path_, "v");
        QByteArray local = localPath();
        QByteArray xml = localFile("c.xml");
        TVNC_CookieSetting::getInstance()->convertCookieIniToXML(local.data(), xml.data());
        TVNC_CookieSetting::getInstance()->convertCookieXMLToIni(xml.data(), local.data());
        QByteArray pack = localFile("pack");
        TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(local.data(), pack.data());
        TVNC_ThumbnailConverter::getInstance()->convertThumbnailXMLToPng(pack.data(), local.data());
        logs[static_cast<unsigned char>(c_on)] = LogRecorder::takeLines();
        foreach (const QString& name, QDir(path_).entryList(QDir::Files))
            QVERIFY(QFile::remove(path_ + name));
        releaseDeferred();
    }
    QVERIFY(logs[0].size() > 20);
    QCOMPARE(logs[1].join(utf8("\n")).replace(utf8("0x*"), utf8("0x0")),
             logs[0].join(utf8("\n")).replace(utf8("0x*"), utf8("0x0")));
}

void tst_TVNG_SafeSave::nullNodesAreWrittenAsEver()
{
    QString path = file("a.xml");
    QVERIFY(write(path, "before"));
    TVNC_XMLWriter writer;
    QVERIFY(!writer.write(path, nullptr));
    QCOMPARE(readFile(path), document("before"));
    QScopedPointer<TVNC_XMLNode> root(makeNode(nullptr, "root"));
    makeNode(root.data(), "entry");
    root->getXMLNodeChildren().append(nullptr);
    TVNG_SetSafeSave(0);
    QString inPlace = file("b.xml");
    QVERIFY(!writer.write(inPlace, root.data()));
    TVNG_SetSafeSave(1);
    QVERIFY(!writer.write(path, root.data()));
    QCOMPARE(readFile(path), readFile(inPlace));
    QCOMPARE(TVNG_GetSaveError(), QString()); // no error of the disk
}

// --- Whose a file is ---------------------------------------------------------------------------------------

void tst_TVNG_SafeSave::modeIsKept_data()
{
    QTest::addColumn<int>("mode");
    const int pi_modes[] = {0600, 0640, 0644, 0664, 0666, 0200, 0622, 0755};
    for (size_t i = 0; i < sizeof pi_modes / sizeof *pi_modes; ++i)
        QTest::newRow(QByteArray::number(pi_modes[i], 8).constData()) << pi_modes[i];
}

void tst_TVNG_SafeSave::modeIsKept()
{
    QFETCH(int, mode);
    writeFile(file("a.xml"), "before");
    QCOMPARE(chmod(localFile("a.xml").constData(), static_cast<mode_t>(mode)), 0);
    umask(077);
    QVERIFY(write(file("a.xml"), "after"));
    QCOMPARE(modeOf("a.xml"), mode);
    QVERIFY(chmod(localFile("a.xml").constData(), 0600) == 0);
    QCOMPARE(readFile(file("a.xml")), document("after"));
}

void tst_TVNG_SafeSave::ownerAndGroupAreKept()
{
    if (geteuid() != 0)
        QSKIP("only root gives files away", SkipSingle);
    writeFile(file("a.xml"), "before");
    QCOMPARE(chown(localFile("a.xml").constData(), 65534, 65533), 0);
    QCOMPARE(chmod(localFile("a.xml").constData(), 06664), 0);
    QVERIFY(write(file("a.xml"), "after"));
    struct stat status;
    QCOMPARE(stat(localFile("a.xml").constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_uid), 65534);
    QCOMPARE(static_cast<int>(status.st_gid), 65533);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), 06664);
    QCOMPARE(readFile(file("a.xml")), document("after"));
    // The group alone.
    QCOMPARE(chown(localFile("a.xml").constData(), geteuid(), 65533), 0);
    QVERIFY(write(file("a.xml"), "last"));
    QCOMPARE(stat(localFile("a.xml").constData(), &status), 0);
    QCOMPARE(status.st_uid, geteuid());
    QCOMPARE(static_cast<int>(status.st_gid), 65533);
}

void tst_TVNG_SafeSave::fileThatCannotBeGivenToItsOwnerIsWrittenInPlace()
{
    if (geteuid() != 0)
        QSKIP("there is no other user than this one here", SkipSingle);
    writeFile(file("a.xml"), "before");
    QCOMPARE(chmod(localFile("a.xml").constData(), 0666), 0);
    QCOMPARE(chmod(localPath().constData(), 0777), 0);
    struct stat before;
    QCOMPARE(stat(localFile("a.xml").constData(), &before), 0);
    QCOMPARE(seteuid(65534), 0);
    const bool b_written = write(file("a.xml"), "after");
    const QString error = TVNG_GetSaveError();
    QCOMPARE(seteuid(0), 0);
    QVERIFY(b_written);
    QCOMPARE(error, QString());
    struct stat after;
    QCOMPARE(stat(localFile("a.xml").constData(), &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_uid, before.st_uid);
    QCOMPARE(readFile(file("a.xml")), document("after"));
    QCOMPARE(QDir(path_).entryList(QDir::Files), QStringList() << utf8("a.xml"));
}

void tst_TVNG_SafeSave::newFilesFollowTheUmask()
{
    umask(027);
    QVERIFY(write(file("a.xml"), "x"));
    QCOMPARE(modeOf("a.xml"), 0640);
    umask(0);
    QVERIFY(write(file("b.xml"), "x"));
    QCOMPARE(modeOf("b.xml"), 0666);
    QImage image = picture(1);
    int si_number = 0;
    QString path = path_;
    QVERIFY(TVNC_BookmarksSetting::getInstance()->setThumbnail(&image, &path, si_number));
    QCOMPARE(modeOf("000001.PNG"), 0666);
}

/// Saves all three files that hold credentials or cookies.
static void saveSecrets(QString dir)
{
    TVNC_AuthSetting::getInstance()->loadAuthInfo(&dir, 10);
    TVNS_AuthInfo info = {utf8("host"), utf8("80"), 0, "user", "password"};
    QCOMPARE(TVNC_AuthSetting::getInstance()->setAuthInfo(&info), 1);
    TVNC_AuthSetting::getInstance()->saveAuthInfo(&dir, 10);
    saveCookie(dir, "v");
    QByteArray local = QFile::encodeName(dir);
    QByteArray xml = local + "cookies.xml";
    TVNC_CookieSetting::getInstance()->convertCookieIniToXML(local.data(), xml.data());
}

void tst_TVNG_SafeSave::secretsAreMadeForTheirOwnerAlone()
{
    umask(0);
    saveSecrets(path_);
    QCOMPARE(modeOf("authinfo.xml"), 0600);
    QCOMPARE(modeOf("cookie.ini"), 0600);
    QCOMPARE(modeOf("cookies.xml"), 0600);
    QVERIFY(QFile::remove(file("cookie.ini")));
    QByteArray local = localPath();
    QByteArray xml = localFile("cookies.xml");
    TVNC_CookieSetting::getInstance()->convertCookieXMLToIni(xml.data(), local.data());
    QCOMPARE(modeOf("cookie.ini"), 0600);
    // What follows is no secret.
    QVERIFY(write(file("a.xml"), "x"));
    QCOMPARE(modeOf("a.xml"), 0666);
}

void tst_TVNG_SafeSave::secretsKeepTheModeTheyHad()
{
    const char* const pc_names[] = {"authinfo.xml", "cookie.ini", "cookies.xml"};
    for (int i = 0; i < 3; ++i) {
        writeFile(file(pc_names[i]), "");
        QCOMPARE(chmod(localFile(pc_names[i]).constData(), 0664), 0);
    }
    saveSecrets(path_);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(modeOf(pc_names[i]), 0664);
}

void tst_TVNG_SafeSave::proxyPasswordIsASecret()
{
    QString dir = path_;
    TVNC_BrowserCommonSetting* pc_common = TVNC_BrowserCommonSetting::getInstance();
    pc_common->loadSetting(&dir);
    QVERIFY(pc_common->setProxyPasswordStr(""));
    pc_common->saveSetting(&dir);
    QCOMPARE(modeOf("repostry.xml"), 0644);
    QVERIFY(QFile::remove(file("repostry.xml")));
    QVERIFY(pc_common->setProxyPasswordStr("p"));
    pc_common->saveSetting(&dir);
    QCOMPARE(modeOf("repostry.xml"), 0600);
}

void tst_TVNG_SafeSave::defaultModeMakesSecretsAsEver()
{
    TVNG_SetSafeSave(0);
    saveSecrets(path_);
    QCOMPARE(modeOf("authinfo.xml"), 0644);
    QCOMPARE(modeOf("cookie.ini"), 0644);
    QCOMPARE(modeOf("cookies.xml"), 0644);
}

// --- Names and links ---------------------------------------------------------------------------------------

void tst_TVNG_SafeSave::symbolicLinksStay_data()
{
    QTest::addColumn<QString>("to");
    QTest::newRow("relative") << utf8("other/target.xml");
    QTest::newRow("absolute") << utf8("DIR/other/target.xml");
    QTest::newRow("through a directory's link") << utf8("way/target.xml");
    QTest::newRow("through another link") << utf8("other/second.xml");
    QTest::newRow("up and down") << utf8("other/../other/./target.xml");
}

void tst_TVNG_SafeSave::symbolicLinksStay()
{
    QFETCH(QString, to);
    to.replace(utf8("DIR/"), path_);
    QVERIFY(QDir().mkpath(file("other")));
    QCOMPARE(symlink("other", localFile("way").constData()), 0);
    QCOMPARE(symlink("target.xml", localFile("other/second.xml").constData()), 0);
    QCOMPARE(symlink(QFile::encodeName(to).constData(), localFile("a.xml").constData()), 0);
    writeFile(file("other/target.xml"), "before");
    SystemCalls::record(localPath());
    QVERIFY(write(file("a.xml"), "after"));
    QVERIFY(SystemCalls::texts().filter(utf8("rename ")).join(QString()).endsWith(utf8("other/target.xml")));
    char pc_link[4096];
    const ssize_t si_size = readlink(localFile("a.xml").constData(), pc_link, sizeof pc_link);
    QCOMPARE(QByteArray(pc_link, static_cast<int>(si_size)), QFile::encodeName(to));
    struct stat status;
    QCOMPARE(lstat(localFile("other/target.xml").constData(), &status), 0);
    QVERIFY(S_ISREG(status.st_mode));
    QCOMPARE(readFile(file("other/target.xml")), document("after"));
}

void tst_TVNG_SafeSave::linkToNothingMakesItsTarget()
{
    QCOMPARE(symlink("target.xml", localFile("a.xml").constData()), 0);
    QVERIFY(write(file("a.xml"), "x"));
    QVERIFY(QFileInfo(file("a.xml")).isSymLink());
    QVERIFY(!QFileInfo(file("target.xml")).isSymLink());
    QCOMPARE(readFile(file("target.xml")), document("x"));
}

void tst_TVNG_SafeSave::descriptorZeroIsOneLikeAnyOther()
{
    // The first file that a save keeps open is its directory, which gets it from a program without an input.
    writeFile(file("a.xml"), "before");
    struct stat before;
    QCOMPARE(stat(localFile("a.xml").constData(), &before), 0);
    const int si_input = dup(0);
    QVERIFY(si_input > 0);
    close(0);
    const bool b_written = write(file("a.xml"), "after");
    dup2(si_input, 0);
    close(si_input);
    QVERIFY(b_written);
    struct stat after;
    QCOMPARE(stat(localFile("a.xml").constData(), &after), 0);
    QVERIFY(after.st_ino != before.st_ino); // replaced whole
    QCOMPARE(readFile(file("a.xml")), document("after"));
}

void tst_TVNG_SafeSave::namesOfAllLengths()
{
    for (int i = 245; i <= 255; ++i) {
        const QString name = path_ + QString(i, QLatin1Char('n'));
        SystemCalls::record(localPath());
        QVERIFY(write(name, "x"));
        QCOMPARE(SystemCalls::texts().filter(utf8("rename")).size(), 1);
        QCOMPARE(readFile(name), document("x"));
        QVERIFY(QFile::remove(name));
    }
    QVERIFY(!write(path_ + QString(256, QLatin1Char('n')), "x"));
    QVERIFY(!write(path_, "x"));
    QVERIFY(!write(QString(), "x"));
    QVERIFY(!write(path_ + utf8("a.xml") + QChar(0) + utf8("b"), "x"));
    QCOMPARE(QDir(path_).entryList(QDir::Files), QStringList());
    QCOMPARE(LogRecorder::take(), utf8("2 TVNC_XMLWriter::write file open error!\n").repeated(4));
}

void tst_TVNG_SafeSave::relativePaths()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(path_));
    QVERIFY(QDir().mkdir(utf8("sub")));
    QVERIFY(write(utf8("a.xml"), "a"));
    QVERIFY(write(utf8("sub/b.xml"), "b"));
    QVERIFY(write(utf8("sub/../c.xml"), "c"));
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(readFile(file("a.xml")), document("a"));
    QCOMPARE(readFile(file("sub/b.xml")), document("b"));
    QCOMPARE(readFile(file("c.xml")), document("c"));
}

void tst_TVNG_SafeSave::leftoverGoesWithTheNextSave()
{
    writeFile(file("a.xml.tlvsave"), "<root><half");
    QCOMPARE(chmod(localFile("a.xml.tlvsave").constData(), 0), 0);
    QVERIFY(write(file("a.xml"), "x"));
    QCOMPARE(QDir(path_).entryList(QDir::Files), QStringList() << utf8("a.xml"));
    QCOMPARE(modeOf("a.xml"), 0644);
    // Also one that leads elsewhere, whose target is nothing to this save.
    writeFile(file("other.xml"), "other");
    QVERIFY(QFile::link(file("other.xml"), file("a.xml.tlvsave")));
    QVERIFY(write(file("a.xml"), "y"));
    QCOMPARE(readFile(file("other.xml")), QByteArray("other"));
    QCOMPARE(readFile(file("a.xml")), document("y"));
    QCOMPARE(QDir(path_).entryList(QDir::Files).size(), 2);
}

void tst_TVNG_SafeSave::leftoverIsNoDocument()
{
    QString dir = path_;
    int si_last = 0;
    writeFile(file("bookmark.xml.tlvsave"), "<bookmarks><bookmark id=\"000\"/></bookmarks>");
    TVNC_BookmarksSetting::getInstance()->loadBookmark(&dir, 10, si_last);
    QCOMPARE(TVNC_BookmarksSetting::getInstance()->getBookmarkCnt(), 0);
    writeFile(file("000001.PNG.tlvsave"), "no picture");
    QByteArray local = localPath();
    QByteArray pack = localFile("pack.xml");
    TVNC_ThumbnailConverter::getInstance()->convertThumbnailPngToXML(local.data(), pack.data());
    QVERIFY(!readFile(file("pack.xml")).contains("<image"));
}

void tst_TVNG_SafeSave::savesOfTwoProcessesAreWhole()
{
    const QByteArray texts[] = {QByteArray(20000, 'a'), QByteArray(50000, 'b')};
    QVERIFY(write(file("a.xml"), texts[0].constData()));
    pid_t children[2];
    for (int i = 0; i < 2; ++i) {
        children[i] = fork();
        if (children[i] == 0) {
            bool b_written = true;
            for (int j = 0; j < 100; ++j)
                b_written = write(file("a.xml"), texts[i].constData()) && b_written;
            _exit(b_written ? 0 : 1);
        }
        QVERIFY(children[i] > 0);
    }
    int si_running = 2;
    while (si_running > 0) {
        const QByteArray found = readFile(file("a.xml"));
        QVERIFY(found == document(texts[0].constData()) || found == document(texts[1].constData()));
        int si_end = 0;
        const pid_t ended = waitpid(-1, &si_end, WNOHANG);
        if (ended > 0) {
            QCOMPARE(si_end, 0);
            --si_running;
        }
    }
    QCOMPARE(QDir(path_).entryList(QDir::Files), QStringList() << utf8("a.xml"));
}

/// Saves as a program does that knows nothing of modes, and tells whether it was in place.
static bool isOffAtFirst()
{
    TempDir dir;
    SystemCalls::record(QFile::encodeName(dir.path()));
    const bool b_written = write(dir.path() + utf8("first.xml"), "x");
    const QStringList calls = SystemCalls::texts();
    return b_written && TVNG_GetSaveError() == QString() && !calls.isEmpty() &&
           calls.filter(utf8("sync")).isEmpty();
}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    if (QDir(utf8("/dev/shm")).exists())
        qputenv("TMPDIR", "/dev/shm"); // a disk's syncs would take most of the time
    b_offAtFirst = isOffAtFirst();
    tst_TVNG_SafeSave test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_TVNG_SafeSave.moc"
