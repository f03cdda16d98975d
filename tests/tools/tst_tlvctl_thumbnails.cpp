#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>

#include <memory>
#include <vector>

#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A pack as the library writes it, of names and texts.
QByteArray pack(const QList<QPair<QByteArray, QByteArray>>& images)
{
    QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<thumbnail docInfo=\"1.0\">\n";
    for (const auto& image : images) {
        xml += "    <image src=\"" + image.first + '"';
        xml += image.second.isEmpty() ? "/>\n" : "><![CDATA[" + image.second + "]]></image>\n";
    }
    return xml + "</thumbnail>\n";
}

/// The bytes 0 to 255 and more, so many.
QByteArray someBytes(int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(static_cast<char>(i * 7 % 256));
    return bytes;
}

/// What the tool writes to a terminal that is its standard error, and its exit code.
QPair<QByteArray, int> onTerminal(const QStringList& arguments)
{
    std::vector<QByteArray> words{TLVCTL};
    for (const QString& argument : arguments)
        words.push_back(argument.toUtf8());
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);

    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0)
        return {"no terminal", -1};
    const pid_t child = fork();
    if (child == 0) {
        dup2(slave, STDERR_FILENO);
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        execv(TLVCTL, argv.data());
        _exit(127);
    }
    close(slave);
    QByteArray out;
    char bytes[4096];
    ssize_t count = 0;
    while ((count = read(master, bytes, sizeof(bytes))) > 0)
        out.append(bytes, static_cast<int>(count));
    close(master);
    int status = 0;
    waitpid(child, &status, 0);
    return {out, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

} // namespace

/// tlvctl thumbnails
class tst_tlvctl_thumbnails : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { dir_.reset(); }

    void packHoldsThePngFilesLastNameFirst();
    void packIsTheLibrarys();
    void packLeavesOutWhatIsNoFile();
    void packWritesJson();
    void packOfAnEmptyDirectoryIsEmpty();
    void packTellsOfFilesWithoutBytes();
    void packRefusesWhatItCannotRead();
    void packRefusesNamesThatItCannotKeep();
    void packReplacesPacksOnly();
    void packThatCannotBeWrittenIsReported();
    void packDryRunWritesNothing();

    void unpackGivesTheSameFiles();
    void unpackTakesPathsOfAllKinds();
    void unpackWritesJson();
    void unpackRefusesOtherPlaces_data();
    void unpackRefusesOtherPlaces();
    void unpackTrustsNamesOnDemand();
    void unpackRefusesANameTwice();
    void unpackRefusesSymbolicLinksInTheWay();
    void unpackRefusesWhatIsNoFile();
    void unpackKeepsFilesThatAreThere();
    void unpackListsTenProblems();
    void unpackPassesOverWhatTheLibraryDoes();
    void unpackRefusesADamagedPack();
    void unpackRefusesWhatIsNoPack_data();
    void unpackRefusesWhatIsNoPack();
    void unpackTellsOfFilesThatCannotBeWritten();
    void unpackTellsOfAFullDisk();
    void unpackDryRunWritesNothing();

    void listShowsPictures();
    void listMarksWhatUnpackingRefuses();
    void listWritesJson();
    void listShowsADamagedPackUpToTheDamage();
    void listEscapesWhatATerminalWouldObey();

    void progressIsShownOnATerminal();

    void wrongUsage_data();
    void wrongUsage();

private:
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QByteArray utf8Path(const QString& name = QString()) const { return path(name).toUtf8(); }
    QString pictures() const { return path("pictures"); }
    QString target() const { return path("target"); }
    QString file() const { return path("pack.xml"); }
    QStringList targetFiles() const
    {
        return QDir(target()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
    }
    Run packAll() const { return tlvctl({"thumbnails", "pack", pictures(), file()}); }
    Run unpackAll(const QStringList& options = {}) const
    {
        return tlvctl(QStringList{"thumbnails", "unpack", file(), target()} + options);
    }
    /// Whether standard error is made of these messages about the pack.
    bool complainsOfPack(const Run& run, const QList<QByteArray>& messages) const;

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_thumbnails::init()
{
    dir_ = std::make_unique<TempDir>();
    QVERIFY(QDir().mkpath(pictures()));
    QVERIFY(QDir().mkpath(target()));
}

bool tst_tlvctl_thumbnails::complainsOfPack(const Run& run, const QList<QByteArray>& messages) const
{
    QByteArray all;
    for (const QByteArray& message : messages)
        all += "tlvctl: " + file().toUtf8() + ": " + message + '\n';
    if (run.err != all)
        qWarning("standard error is: %s", run.err.constData());
    return run.err == all;
}

const char NOTHING_WRITTEN[] =
    "nothing was written; unpack into an empty directory, replace files that are there with --force, and use "
    "names as they are with --trust-names if you know who has made the pack";

// --- pack -------------------------------------------------------------------------------------------------

void tst_tlvctl_thumbnails::packHoldsThePngFilesLastNameFirst()
{
    writeFile(pictures() + "/000002.PNG", "two");
    writeFile(pictures() + "/000010.PNG", "ten");
    writeFile(pictures() + "/a.png", "small");
    writeFile(pictures() + "/a.jpg", "other");
    for (const QString& dir : {pictures(), pictures() + '/'}) {
        const Run run = tlvctl({"thumbnails", "pack", dir, file(), "--force"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QByteArray());
        const QByteArray expected =
            pack({{"a.png", "c21hbGw="}, {"000010.PNG", "dGVu"}, {"000002.PNG", "dHdv"}});
        QCOMPARE(readFile(file()), expected);
        QCOMPARE(run.out, "pictures packed: 3, bytes: 11\nbytes of " + utf8Path("pack.xml") + ": " +
                              QByteArray::number(expected.size()) + '\n');
    }
}

void tst_tlvctl_thumbnails::packIsTheLibrarys()
{
    for (int i = 1; i <= 300; ++i)
        writeFile(pictures() + QString("/%1.PNG").arg(i, 6, 10, QLatin1Char('0')), someBytes(i));
    QCOMPARE(packAll().code, 0);
    QList<QPair<QByteArray, QByteArray>> images;
    for (int i = 300; i >= 1; --i)
        images.append({QByteArray::number(i).rightJustified(6, '0') + ".PNG", someBytes(i).toBase64()});
    QCOMPARE(readFile(file()), pack(images));
}

void tst_tlvctl_thumbnails::packLeavesOutWhatIsNoFile()
{
    writeFile(pictures() + "/1.png", "1");
    QVERIFY(QDir(pictures()).mkdir("2.png"));
    QVERIFY(QFile::link(pictures() + "/1.png", pictures() + "/3.png"));
    QCOMPARE(mkfifo(qPrintable(pictures() + "/4.png"), 0600), 0);
    QCOMPARE(packAll().code, 0);
    QCOMPARE(readFile(file()), pack({{"1.png", "MQ=="}}));
}

void tst_tlvctl_thumbnails::packWritesJson()
{
    writeFile(pictures() + "/1.png", "1");
    writeFile(pictures() + "/2.png", "");
    const Run run = tlvctl({"thumbnails", "pack", "--json", pictures(), file()});
    QCOMPARE(run.code, 0);
    QCOMPARE(jsonOf(run.out),
             (QJsonObject{
                 {"file", file()},
                 {"dryRun", false},
                 {"fileBytes", QFileInfo(file()).size()},
                 {"pictures",
                  QJsonArray{QJsonObject{{"name", "2.png"}, {"bytes", 0}, {"flaws", QJsonArray{"noBytes"}}},
                             QJsonObject{{"name", "1.png"}, {"bytes", 1}, {"flaws", QJsonArray()}}}}}));
}

void tst_tlvctl_thumbnails::packOfAnEmptyDirectoryIsEmpty()
{
    const Run run = packAll();
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.startsWith("pictures packed: 0, bytes: 0\n"));
    QCOMPARE(readFile(file()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                          "<thumbnail docInfo=\"1.0\"/>\n"));
    QCOMPARE(unpackAll().out, QByteArray("pictures unpacked: 0, bytes: 0\n"));
}

void tst_tlvctl_thumbnails::packTellsOfFilesWithoutBytes()
{
    writeFile(pictures() + "/1.png", "1");
    writeFile(pictures() + "/2.png", "");
    const Run run = packAll();
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.startsWith("pictures packed: 2, bytes: 1\n"
                               "of these without bytes, so that they will not be unpacked: 1\n"));
    QCOMPARE(readFile(file()), pack({{"2.png", ""}, {"1.png", "MQ=="}}));
}

void tst_tlvctl_thumbnails::packRefusesWhatItCannotRead()
{
    writeFile(pictures() + "/1.png", "1");
    writeFile(pictures() + "/2.png", "2");
    QVERIFY(QFile::setPermissions(pictures() + "/2.png", QFile::WriteOwner));
    const Run run = packAll();
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    const QByteArray problem = "tlvctl: " + utf8Path("pictures/") + ": 2.png cannot be read\n";
    QCOMPARE(run.err, problem + "tlvctl: " + utf8Path("pack.xml") +
                          ": nothing was written; see to these files, or go on without them with --force\n");
    QVERIFY(!QFile::exists(file()));

    const Run forced = tlvctl({"thumbnails", "pack", pictures(), file(), "--force"});
    QCOMPARE(forced.code, 1); // it is not all that was asked for
    QCOMPARE(forced.err, problem);
    QVERIFY(forced.out.startsWith("pictures packed: 1, bytes: 1\n"));
    QCOMPARE(readFile(file()), pack({{"1.png", "MQ=="}}));
}

void tst_tlvctl_thumbnails::packRefusesNamesThatItCannotKeep()
{
    writeFile(pictures() + "/a\x01.png", "1");
    const Run run = packAll();
    QCOMPARE(run.code, 1);
    QVERIFY(run.err.startsWith("tlvctl: " + utf8Path("pictures/") +
                               ": a\\x01.png has a name with characters that a pack cannot keep\n"));
    QVERIFY(!QFile::exists(file()));
}

void tst_tlvctl_thumbnails::packReplacesPacksOnly()
{
    writeFile(pictures() + "/1.png", "1");
    const QByteArray fonts = fontList({"Sans"});
    writeFile(file(), fonts);
    const Run run = packAll();
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, file(), {"no pack of thumbnails", "nothing was written", "--force"}));
    QCOMPARE(readFile(file()), fonts);

    writeFile(file(), "no document");
    QCOMPARE(packAll().code, 1);
    QCOMPARE(readFile(file()), QByteArray("no document"));
    QCOMPARE(tlvctl({"thumbnails", "pack", pictures(), file(), "--force"}).code, 0);
    QCOMPARE(readFile(file()), pack({{"1.png", "MQ=="}}));

    writeFile(pictures() + "/1.png", "2");
    QCOMPARE(packAll().code, 0);
    QCOMPARE(readFile(file()), pack({{"1.png", "Mg=="}}));
}

void tst_tlvctl_thumbnails::packThatCannotBeWrittenIsReported()
{
    QVERIFY(QFile::setPermissions(path("target"), QFile::ReadOwner | QFile::ExeOwner));
    const Run run = tlvctl({"thumbnails", "pack", pictures(), path("target/pack.xml")});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path("target/pack.xml"), {"saving failed", "permissions"}));
    QVERIFY(QFile::setPermissions(path("target"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));

    const Run missing = tlvctl({"thumbnails", "pack", pictures(), path("none/pack.xml")});
    QCOMPARE(missing.code, 1);
    QVERIFY(complains(missing, path("none"), {"no such directory"}));
    const Run noPictures = tlvctl({"thumbnails", "pack", path("none"), file()});
    QCOMPARE(noPictures.code, 1);
    QVERIFY(complains(noPictures, path("none"), {"no such directory"}));
}

void tst_tlvctl_thumbnails::packDryRunWritesNothing()
{
    writeFile(pictures() + "/1.png", "1");
    const Run run = tlvctl({"thumbnails", "pack", pictures(), file(), "--dry-run"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out,
             "dry run: nothing is written to " + utf8Path("pack.xml") + "\npictures packed: 1, bytes: 1\n");
    QVERIFY(!QFile::exists(file()));
}

// --- unpack -----------------------------------------------------------------------------------------------

void tst_tlvctl_thumbnails::unpackGivesTheSameFiles()
{
    for (int i = 1; i <= 300; ++i)
        writeFile(pictures() + QString("/%1.PNG").arg(i), someBytes(i));
    QCOMPARE(packAll().code, 0);
    const Run run = unpackAll();
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("pictures unpacked: 300, bytes: 45150\n"));
    QCOMPARE(targetFiles(), QDir(pictures()).entryList(QDir::Files, QDir::Name));
    for (int i = 1; i <= 300; ++i)
        QCOMPARE(readFile(target() + QString("/%1.PNG").arg(i)), someBytes(i));
}

void tst_tlvctl_thumbnails::unpackTakesPathsOfAllKinds()
{
    const QString source = path(utf8("Bücher & \u65E5\u672C/"));
    const QString other = path(utf8("zweites Verzeichnis ü"));
    QVERIFY(QDir().mkpath(source) && QDir().mkpath(other));
    writeFile(source + utf8("\u65E5 \"1\" <&>.png"), "1");
    const QString packed = source + "pack ä.xml";
    QCOMPARE(tlvctl({"thumbnails", "pack", source, packed}).code, 0);
    QCOMPARE(tlvctl({"thumbnails", "unpack", packed, other}).code, 0);
    QCOMPARE(QDir(other).entryList(QDir::Files), QStringList{utf8("\u65E5 \"1\" <&>.png")});
}

void tst_tlvctl_thumbnails::unpackWritesJson()
{
    writeFile(file(), pack({{"1.png", "MTI="}, {"2.png", ""}}));
    const Run run = unpackAll({"--json"});
    QCOMPARE(run.code, 0);
    QCOMPARE(
        jsonOf(run.out),
        (QJsonObject{
            {"file", file()},
            {"complete", true},
            {"error", QJsonValue()},
            {"pictures",
             QJsonArray{QJsonObject{{"name", "1.png"}, {"bytes", 2}, {"flaws", QJsonArray()}},
                        QJsonObject{{"name", "2.png"}, {"bytes", 0}, {"flaws", QJsonArray{"noBytes"}}}}}}));
}

void tst_tlvctl_thumbnails::unpackRefusesOtherPlaces_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("parent") << QByteArray("../1.png");
    QTest::newRow("parent alone") << QByteArray("..");
    QTest::newRow("itself") << QByteArray(".");
    QTest::newRow("absolute") << QByteArray("/tmp/1.png");
    QTest::newRow("directory below") << QByteArray("sub/1.png");
    QTest::newRow("hidden parent") << QByteArray("sub/../../1.png");
}

void tst_tlvctl_thumbnails::unpackRefusesOtherPlaces()
{
    QFETCH(QByteArray, name);
    QVERIFY(QDir(target()).mkdir("sub"));
    writeFile(file(), pack({{"0.png", "MA=="}, {name, "MQ=="}}));
    const Run run = unpackAll({"--force"});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complainsOfPack(
        run, {'"' + name + "\" names another place than a file in the directory", NOTHING_WRITTEN}));
    QCOMPARE(targetFiles(), QStringList{"sub"});
    QVERIFY(!QFile::exists(path("1.png")));
}

void tst_tlvctl_thumbnails::unpackTrustsNamesOnDemand()
{
    QVERIFY(QDir(target()).mkdir("sub"));
    writeFile(file(),
              pack({{"../1.png", "MQ=="}, {"sub/2.png", "Mg=="}, {"3.png", "Mw=="}, {"3.png", "NA=="}}));
    const Run run = unpackAll({"--trust-names"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("pictures unpacked: 4, bytes: 4\n"));
    QCOMPARE(readFile(path("1.png")), QByteArray("1"));
    QCOMPARE(readFile(target() + "/sub/2.png"), QByteArray("2"));
    QCOMPARE(readFile(target() + "/3.png"), QByteArray("4")); // the last one holds
}

void tst_tlvctl_thumbnails::unpackRefusesANameTwice()
{
    writeFile(file(), pack({{"1.png", "MQ=="}, {"1.png", "Mg=="}}));
    const Run run = unpackAll();
    QCOMPARE(run.code, 1);
    QVERIFY(complainsOfPack(run, {"\"1.png\" has a name that a picture before it has", NOTHING_WRITTEN}));
    QCOMPARE(targetFiles(), QStringList());
    // The first one is not unpacked, so that the second is no other's.
    writeFile(file(), pack({{"1.png", ""}, {"1.png", "Mg=="}}));
    QCOMPARE(unpackAll().code, 0);
}

void tst_tlvctl_thumbnails::unpackRefusesSymbolicLinksInTheWay()
{
    QVERIFY(QFile::link(path("outside"), target() + "/1.png")); // leads to nothing yet
    writeFile(file(), pack({{"1.png", "MQ=="}}));
    const Run run = unpackAll({"--force"});
    QCOMPARE(run.code, 1);
    QVERIFY(complainsOfPack(
        run, {"\"1.png\" would be written through a symbolic link that is there", NOTHING_WRITTEN}));
    QVERIFY(!QFile::exists(path("outside")));
    QCOMPARE(unpackAll({"--trust-names"}).code, 0);
    QCOMPARE(readFile(path("outside")), QByteArray("1"));
}

void tst_tlvctl_thumbnails::unpackRefusesWhatIsNoFile()
{
    QVERIFY(QDir(target()).mkdir("1.png"));
    QCOMPARE(mkfifo(qPrintable(target() + "/2.png"), 0600), 0);
    writeFile(file(), pack({{"1.png", "MQ=="}, {"2.png", "Mg=="}}));
    const Run run = unpackAll({"--force", "--trust-names"});
    QCOMPARE(run.code, 1);
    const QByteArray problem = " has the name of something that is there and is no file";
    QVERIFY(complainsOfPack(run, {"\"1.png\"" + problem, "\"2.png\"" + problem, NOTHING_WRITTEN}));
}

void tst_tlvctl_thumbnails::unpackKeepsFilesThatAreThere()
{
    writeFile(target() + "/2.png", "mine");
    writeFile(file(), pack({{"1.png", "MQ=="}, {"2.png", "Mg=="}}));
    const Run run = unpackAll();
    QCOMPARE(run.code, 1);
    QVERIFY(complainsOfPack(run, {"\"2.png\" is there already", NOTHING_WRITTEN}));
    QCOMPARE(targetFiles(), QStringList{"2.png"});
    QCOMPARE(readFile(target() + "/2.png"), QByteArray("mine"));
    QCOMPARE(unpackAll({"--force"}).code, 0);
    QCOMPARE(readFile(target() + "/2.png"), QByteArray("2"));
}

void tst_tlvctl_thumbnails::unpackListsTenProblems()
{
    QList<QPair<QByteArray, QByteArray>> images;
    QList<QByteArray> messages;
    for (int i = 0; i < 12; ++i) {
        images.append({"../" + QByteArray::number(i), "MQ=="});
        if (i < 10)
            messages.append("\"../" + QByteArray::number(i) +
                            "\" names another place than a file in the directory");
    }
    writeFile(file(), pack(images));
    QVERIFY(complainsOfPack(unpackAll(), messages + QList<QByteArray>{"and 2 more", NOTHING_WRITTEN}));
    images.removeLast();
    images.removeLast();
    writeFile(file(), pack(images));
    QVERIFY(complainsOfPack(unpackAll(), messages + QList<QByteArray>{NOTHING_WRITTEN}));
}

void tst_tlvctl_thumbnails::unpackPassesOverWhatTheLibraryDoes()
{
    writeFile(file(),
              "<thumbnail><image src='1.png'>MQ==</image><picture src='../2.png'><![CDATA[Mg==]]>"
              "</picture><image src='3.png'/><image src='4.png'><![CDATA[NA==]]></image></thumbnail>");
    const Run run = unpackAll();
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("\"1.png\" is no CDATA section: not unpacked\n"
                                 "\"../2.png\" element \"picture\" instead of \"image\": not unpacked\n"
                                 "\"3.png\" has no bytes: not unpacked\n"
                                 "pictures unpacked: 1, bytes: 1\n"));
    QCOMPARE(targetFiles(), QStringList{"4.png"});
}

void tst_tlvctl_thumbnails::unpackRefusesADamagedPack()
{
    writeFile(file(),
              pack({{"1.png", "MQ=="}, {"2.png", "Mg=="}}).replace("]]></image>\n</thumb", "]]></i>\n"));
    const Run run = unpackAll();
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, file(), {"damaged at line 4", "nothing was written", "--force"}));
    QCOMPARE(targetFiles(), QStringList());
    QCOMPARE(unpackAll({"--force"}).code, 0);
    QCOMPARE(readFile(target() + "/1.png"), QByteArray("1"));
}

void tst_tlvctl_thumbnails::unpackRefusesWhatIsNoPack_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("word");
    QTest::newRow("font list") << fontList({"Sans"}) << "its root is \"fontlist\"";
    QTest::newRow("text") << QByteArray("text") << "damaged at line 1";
    QTest::newRow("empty") << QByteArray("") << "damaged at line 1";
    QTest::newRow("missing") << QByteArray() << "cannot be read: No such file or directory";
}

void tst_tlvctl_thumbnails::unpackRefusesWhatIsNoPack()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, word);
    if (!bytes.isNull())
        writeFile(file(), bytes);
    for (const QStringList& options : {QStringList(), {"--force"}}) {
        const Run run = unpackAll(options);
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, file(), {word}));
    }
}

void tst_tlvctl_thumbnails::unpackTellsOfFilesThatCannotBeWritten()
{
    const QByteArray longName = QByteArray(256, 'n');
    writeFile(file(), pack({{longName, "MQ=="}, {"2.png", "Mg=="}}));
    const Run run = unpackAll();
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(
        run.err.startsWith("tlvctl: " + utf8Path("target/") + ": \"" + longName + "\" cannot be written: "));
    QVERIFY(run.err.contains("; check the permissions of the directory"));
    QCOMPARE(run.err.count('\n'), 1);
    QCOMPARE(targetFiles(), QStringList{"2.png"}); // one that fails does not stop the others

    const Run missing = tlvctl({"thumbnails", "unpack", file(), path("none")});
    QCOMPARE(missing.code, 1);
    QVERIFY(complains(missing, path("none"), {"no such directory", "check the spelling"}));
}

void tst_tlvctl_thumbnails::unpackTellsOfAFullDisk()
{
    writeFile(file(), pack({{"1.png", someBytes(3000).toBase64()}}));
    // A limit on the size of files stands for the disk.
    const Run run = shell("trap '' XFSZ; ulimit -f 1; exec \"$tlvctl\" thumbnails unpack \"$1\" \"$(dirname "
                          "\"$1\")/target\"",
                          file());
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(run.err.startsWith("tlvctl: " + utf8Path("target/") + ": \"1.png\" cannot be written: "));
    QVERIFY(run.err.contains("check the permissions of the directory and the free space"));
    QCOMPARE(targetFiles(), QStringList()); // nothing of it
}

void tst_tlvctl_thumbnails::unpackDryRunWritesNothing()
{
    writeFile(file(), pack({{"1.png", "MQ=="}}));
    const Run run = unpackAll({"--dry-run"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out,
             "dry run: nothing is written to " + utf8Path("target/") + "\npictures unpacked: 1, bytes: 1\n");
    QCOMPARE(targetFiles(), QStringList());
}

// --- list -------------------------------------------------------------------------------------------------

void tst_tlvctl_thumbnails::listShowsPictures()
{
    writeFile(file(), pack({{"000010.PNG", someBytes(1234).toBase64()}, {"2.png", "Mg=="}}));
    const Run run = tlvctl({"thumbnails", "list", file()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("name        bytes\n"
                                 "000010.PNG  1234\n"
                                 "2.png       1\n"
                                 "pictures: 2, bytes: 1235\n"));
}

void tst_tlvctl_thumbnails::listMarksWhatUnpackingRefuses()
{
    writeFile(file(), pack({{"../a", "MQ=="}, {"", "MQ=="}, {"b", "M Q=="}, {"b", "MQ=="}, {"c", "="}}));
    QCOMPARE(tlvctl({"thumbnails", "list", file()}).out,
             QByteArray("name   bytes\n"
                        "../a*  1\n"
                        "*      1\n"
                        "b      1\n"
                        "b*     1\n"
                        "c*     0\n"
                        "* \"../a\" names another place than a file in the directory\n"
                        "* \"\" has no name\n"
                        "* \"b\" has a name that a picture before it has\n"
                        "* \"c\" has no bytes: not unpacked\n"
                        "pictures: 5, bytes: 4, marked: 4\n"));
}

void tst_tlvctl_thumbnails::listWritesJson()
{
    writeFile(file(), pack({{"../a", "MQ=="}}));
    const QJsonObject list = jsonOf(tlvctl({"thumbnails", "list", "--json", file()}).out);
    QCOMPARE(list["complete"], QJsonValue(true));
    QCOMPARE(list["pictures"].toArray(),
             (QJsonArray{QJsonObject{{"name", "../a"}, {"bytes", 1}, {"flaws", QJsonArray{"otherPlace"}}}}));
}

void tst_tlvctl_thumbnails::listShowsADamagedPackUpToTheDamage()
{
    writeFile(file(), pack({{"1.png", "MQ=="}}).replace("</thumbnail>\n", ""));
    const Run run = tlvctl({"thumbnails", "list", file()});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray("name   bytes\n1.png  1\npictures: 1, bytes: 1\n"));
    QVERIFY(complains(run, file(), {"damaged at line 4"}));
}

void tst_tlvctl_thumbnails::listEscapesWhatATerminalWouldObey()
{
    writeFile(file(), pack({{"a&#9;\xE2\x80\xAE/", "MQ=="}, {"b\xE2\x80\xAE", ""}}));
    for (const QStringList& arguments :
         {QStringList{"list", file()}, {"list", "--json", file()}, {"unpack", file(), target()}}) {
        const Run run = tlvctl(QStringList("thumbnails") + arguments);
        QVERIFY(isHarmless(run.out) && isHarmless(run.err));
        QVERIFY((run.out + run.err).contains("202"));
    }
}

// --- Progress ---------------------------------------------------------------------------------------------

void tst_tlvctl_thumbnails::progressIsShownOnATerminal()
{
    for (int i = 0; i < 4; ++i)
        writeFile(pictures() + QString("/%1.png").arg(i), "1");
    const QByteArray all = "\r[" + QByteArray(40, ' ') + "]   0 %" +           //
                           "\r[##########" + QByteArray(30, ' ') + "]  25 %" + //
                           "\r[" + QByteArray(20, '#') + QByteArray(20, ' ') + "]  50 %" + "\r[" +
                           QByteArray(30, '#') + QByteArray(10, ' ') + "]  75 %" + "\r[" +
                           QByteArray(40, '#') + "] 100 %\r\033[K";
    QCOMPARE(onTerminal({"thumbnails", "pack", pictures(), file()}), qMakePair(all, 0));
    QCOMPARE(onTerminal({"thumbnails", "unpack", file(), target()}), qMakePair(all, 0));
}

// --- Wrong usage ------------------------------------------------------------------------------------------

void tst_tlvctl_thumbnails::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("pack without a file")
        << QStringList{"pack", "/tmp"} << QByteArray("missing argument FILE");
    QTest::newRow("unpack without a directory")
        << QStringList{"unpack", "/tmp/x"} << QByteArray("missing argument DIR");
    QTest::newRow("list without a file") << QStringList{"list"} << QByteArray("missing argument FILE");
}

void tst_tlvctl_thumbnails::wrongUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    const Run run = tlvctl(QStringList("thumbnails") + arguments);
    QCOMPARE(run.code, 2);
    QCOMPARE(run.err, "tlvctl: " + message + "; see \"tlvctl thumbnails " + arguments.first().toUtf8() +
                          " --help\"\n");
}

TLVCTL_TEST_MAIN(tst_tlvctl_thumbnails)
#include "tst_tlvctl_thumbnails.moc"
