#include "tests/support/PrivateRoot.h"
#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>

#include <memory>

static const QString LOG_DIR = "/ata07/Talvenor/tmp";

/// The library's log file, at its real path.
class tst_tlvctl_log : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void logFileGetsWhatTheLevelAdmits();
    void unwritableLogFileIsReportedAndNothingElse();
    void credentialsStayOutOfTheLog();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString listPath() const { return path("fontlist.xml"); }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_log::logFileGetsWhatTheLevelAdmits()
{
    QVERIFY(QDir().mkpath(LOG_DIR));
    const QString log = LOG_DIR + "/tlvlog.log";
    const QByteArray trace = "[TVNC_FontListSetting::loadFontList] start\n";
    const QByteArray problem = "TVNC_XMLReader::read file not exist!\n";

    QCOMPARE(tlvctl({"fonts", "list", path()}).code, 0);
    QVERIFY(!QFile::exists(log));

    const Run failuresOnly = tlvctl({"fonts", "list", path(), "--log-level", "1"});
    QCOMPARE(failuresOnly.code, 0);
    QCOMPARE(failuresOnly.err, QByteArray());
    QVERIFY(!readFile(log).contains(problem));

    QCOMPARE(tlvctl({"fonts", "--log-level", "2", "list", path()}).code, 0);
    QVERIFY(readFile(log).contains(problem));
    QVERIFY(!readFile(log).contains(trace));

    QCOMPARE(tlvctl({"--log-level", "3", "fonts", "list", path()}).code, 0);
    QVERIFY(readFile(log).contains(trace));
    QFile::remove(log);
    QDir("/ata07").rmpath("Talvenor/tmp");
}

void tst_tlvctl_log::unwritableLogFileIsReportedAndNothingElse()
{
    QVERIFY(!QFile::exists(LOG_DIR));
    writeFile(listPath(), fontList({"Sans"}));
    const Run run = tlvctl({"fonts", "list", path(), "--log-level", "3"});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.startsWith("000  Sans\n"));
    QVERIFY(complains(run, LOG_DIR + "/tlvlog.log", {"mkdir -p"}));
}

void tst_tlvctl_log::credentialsStayOutOfTheLog()
{
    QVERIFY(QDir().mkpath(LOG_DIR));
    const QString log = LOG_DIR + "/tlvlog.log";
    const QStringList level{"--log-level", "3", "auth"};
    const Run add = tlvctlReading("hunter2", level + QStringList{"add", path(), "intranet.example", "80",
                                                                 "--type", "basic", "--user", "alice"});
    QCOMPARE(add.code, 0);
    QCOMPARE(tlvctl(level + QStringList{"list", "--show-passwords", path()}).code, 0);
    QCOMPARE(tlvctl(level + QStringList{"remove", path(), "0"}).code, 0);
    const QByteArray text = readFile(log);
    for (const char* line : {"[TVNC_AuthSetting::setAuthInfo]", "[TVNC_AuthSetting::saveAuthInfo] end",
                             "[TVNC_AuthSetting::deleteAuthInfo] si_nodeNum:0"})
        QVERIFY2(text.contains(line), line);
    for (const QByteArray& secret : {QByteArray("hunter2"), QByteArray("alice"), QByteArray("intranet")})
        QVERIFY(!text.contains(secret) && !text.contains(secret.toBase64()));
    QFile::remove(log);
    QDir("/ata07").rmpath("Talvenor/tmp");
}

TLVLIB_PRIVATE_ROOT_TEST_MAIN(tst_tlvctl_log)
#include "tst_tlvctl_log.moc"
