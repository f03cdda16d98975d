#include "tests/tools/TlvctlRun.h"

#include <tlvlib/tlvlib.h>

#include <QtCore/QDir>
#include <QtCore/QJsonArray>

#include <memory>

/// tlvctl fonts list and add
class tst_tlvctl_fonts : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void listShowsNumbersAndNames();
    void listWritesJson();
    void listOfMissingFileIsEmpty();
    void listTellsWhatTheStoreHides();
    void listAgreesWithTheStore();
    void listOfDamagedFileShowsWhatIsRead();
    void listNeedsAReadableFile();
    void listEscapesHostileNames();
    void addWritesExactlyThisFile_data();
    void addWritesExactlyThisFile();
    void addAppendsAndTellsTheNumbers();
    void addTakesTheSameNameTwice();
    void addTakesNamesUpTo256Bytes();
    void addRefusesBadNames_data();
    void addRefusesBadNames();
    void addFillsTheLastNumberAndRefusesTheNext();
    void addTakesNonAsciiInTheCLocale();
    void addTakesANameThatBeginsWithADash();
    void addRefusesADamagedListUnlessForced();
    void addRefusesAListThatItCannotRead();
    void addNeedsADirectory();
    void addDetectsWriteErrors();
    void addDetectsAListThatCannotBeReplaced();
    void dryRunTellsWhatWouldBeAdded();
    void dryRunRefusesWhatAddRefuses();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString listPath() const { return path("fontlist.xml"); }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_fonts::listShowsNumbersAndNames()
{
    writeFile(listPath(), fontList({"Sans", "VL \xE6\x97\xA5", "Sans"}));
    const QByteArray expected =
        "000  Sans\n001  VL \xE6\x97\xA5\n002  Sans\nrecords: 3, counted by the store: 3\n";
    const QString withoutSlash = path().left(path().size() - 1);
    for (const QString& dir : {path(), withoutSlash}) {
        const Run run = tlvctl({"fonts", "list", dir}, with("LC_ALL", "C"));
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, expected);
        QCOMPARE(run.err, QByteArray());
    }
}

void tst_tlvctl_fonts::listWritesJson()
{
    writeFile(listPath(), fontList({"Sans", "Serif"}));
    const Run run = tlvctl({"fonts", "list", "--json", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    const QJsonObject first{{"number", 0}, {"name", "Sans"}, {"element", "font"}, {"hidden", QJsonArray()}};
    const QJsonObject second{{"number", 1}, {"name", "Serif"}, {"element", "font"}, {"hidden", QJsonArray()}};
    const QJsonObject expected{{"file", listPath()}, {"exists", true},
                               {"complete", true},   {"error", QJsonValue()},
                               {"count", 2},         {"fonts", QJsonArray{first, second}}};
    QCOMPARE(jsonOf(run.out), expected);
}

void tst_tlvctl_fonts::listOfMissingFileIsEmpty()
{
    const Run run = tlvctl({"fonts", "list", path()});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "records: 0, because there is no " + listPath().toUtf8() + '\n');
    const QJsonObject json = jsonOf(tlvctl({"fonts", "list", path(), "--json"}).out);
    QCOMPARE(json["exists"], QJsonValue(false));
    QCOMPARE(json["count"], QJsonValue(0));
    QCOMPARE(json["fonts"], QJsonValue(QJsonArray()));
    QVERIFY(!QFile::exists(listPath()));
}

void tst_tlvctl_fonts::listTellsWhatTheStoreHides()
{
    const QByteArray longName(257, 'x');
    writeFile(listPath(), "<fontlist><font>Sans</font><font>" + longName +
                              "</font><typeface>Other</typeface><font/></fontlist>");
    const Run run = tlvctl({"fonts", "list", path()});
    QCOMPARE(run.code, 0);
    const QList<QByteArray> lines = run.out.split('\n');
    QCOMPARE(lines.size(), 6); // with what follows the last line break
    QCOMPARE(lines.at(0), QByteArray("000  Sans"));
    QVERIFY(lines.at(1).startsWith("001  " + longName + "  (") && lines.at(1).contains("257 bytes"));
    QVERIFY(lines.at(2).startsWith("002  Other  (") && lines.at(2).contains("\"typeface\""));
    QVERIFY(lines.at(3).startsWith("003  ") && lines.at(3).contains("no name"));
    QCOMPARE(lines.at(4), QByteArray("records: 4, counted by the store: 3, hidden in part or in full: 3"));

    const QJsonArray fonts = jsonOf(tlvctl({"fonts", "list", path(), "--json"}).out)["fonts"].toArray();
    QCOMPARE(fonts.at(0).toObject()["hidden"].toArray(), QJsonArray());
    QCOMPARE(fonts.at(1).toObject()["hidden"].toArray(), QJsonArray{"nameTooLong"});
    QCOMPARE(fonts.at(2).toObject()["hidden"].toArray(), QJsonArray{"notNamedFont"});
    QCOMPARE(fonts.at(2).toObject()["element"].toString(), QString("typeface"));
    QCOMPARE(fonts.at(3).toObject()["hidden"].toArray(), QJsonArray{"emptyName"});
}

void tst_tlvctl_fonts::listAgreesWithTheStore()
{
    // Behind the 999 records that the store numbers, records keep the number that stands in the file.
    QByteArray xml = "<fontlist>";
    for (int i = 0; i < 1000; ++i)
        xml += i % 100 == 7 ? "<font>" + QByteArray(300, 'y') + "</font>" : "<font>F</font>";
    xml += "<font id=\"5\">taken</font><font id=\"1500\">beyond</font><font id=\" +999 \">last</font>"
           "<item id=\"1000\">item</item><font id=\"x\">none</font></fontlist>";
    writeFile(listPath(), xml);
    const QJsonObject json = jsonOf(tlvctl({"fonts", "list", path(), "--json"}).out);

    TVNC_FontListSetting& store = *TVNC_FontListSetting::getInstance();
    store.loadFontList(path());
    QCOMPARE(json["count"].toInt(), store.getCount());
    const QJsonArray fonts = json["fonts"].toArray();
    QCOMPARE(fonts.size(), 1005);
    for (const QJsonValue& value : fonts) {
        const QJsonObject font = value.toObject();
        const QJsonArray hidden = font["hidden"].toArray();
        QCOMPARE(hidden.contains("noNumber"), font["number"].isNull());
        if (font["number"].isNull())
            continue;
        const QString name = hidden.contains("nameTooLong") ? QString() : font["name"].toString();
        QCOMPARE(store.getFont(font["number"].toInt()), name);
    }
    const auto number = [&fonts](int position) { return fonts.at(position).toObject().value("number"); };
    QCOMPARE(number(998), QJsonValue(998));
    QVERIFY(number(999).isNull());
    QVERIFY(number(1000).isNull());
    QCOMPARE(number(1001), QJsonValue(1500));
    QCOMPARE(number(1002), QJsonValue(999));
    QCOMPARE(number(1003), QJsonValue(1000));
    QVERIFY(number(1004).isNull());
}

void tst_tlvctl_fonts::listOfDamagedFileShowsWhatIsRead()
{
    writeFile(listPath(), DAMAGED_LIST);
    const Run run = tlvctl({"fonts", "list", path()});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray("000  Sans\n001  Serif\nrecords: 2, counted by the store: 2\n"));
    QVERIFY(complains(run, listPath(), {"line 4", "everything behind that place is not read"}));
    const Run json = tlvctl({"fonts", "list", path(), "--json"});
    QCOMPARE(json.code, 1);
    QCOMPARE(jsonOf(json.out)["complete"], QJsonValue(false));
    QCOMPARE(jsonOf(json.out)["error"].toObject()["line"].toInt(), 4);
}

void tst_tlvctl_fonts::listNeedsAReadableFile()
{
    const Run noDirectory = tlvctl({"fonts", "list", path("none/")});
    QCOMPARE(noDirectory.code, 1);
    QVERIFY(complains(noDirectory, path("none"), {"check the spelling"}));

    writeFile(listPath(), fontList({"Sans"}));
    QFile::setPermissions(listPath(), QFileDevice::Permissions());
    const Run unreadable = tlvctl({"fonts", "list", path()});
    QCOMPARE(unreadable.code, 1);
    QCOMPARE(unreadable.out, QByteArray());
    QVERIFY(complains(unreadable, listPath(), {"Permission denied"}));

    // Whether there is a list cannot be seen here, so it must not be called missing.
    QVERIFY(QDir().mkdir(path("closed")));
    QFile::setPermissions(path("closed"), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const Run closed = tlvctl({"fonts", "list", path("closed")});
    QCOMPARE(closed.code, 1);
    QVERIFY(complains(closed, path("closed/fontlist.xml"), {"Permission denied"}));
}

void tst_tlvctl_fonts::listEscapesHostileNames()
{
    writeFile(listPath(), utf8("<fontlist><font>a\n999  \u202Eb\\\u009B</font></fontlist>").toUtf8());
    const Run run = tlvctl({"fonts", "list", path()});
    QVERIFY(run.out.startsWith("000  a\\n999  \\u{202E}b\\\\\\x9B\n"));
    QVERIFY(isHarmless(run.out));
    QVERIFY(isHarmless(tlvctl({"fonts", "list", "--json", path()}).out));
}

void tst_tlvctl_fonts::addWritesExactlyThisFile_data()
{
    QTest::addColumn<bool>("hasSlash");
    QTest::newRow("with /") << true;
    QTest::newRow("without /") << false;
}

void tst_tlvctl_fonts::addWritesExactlyThisFile()
{
    QFETCH(bool, hasSlash);
    const Run run =
        tlvctl({"fonts", "add", hasSlash ? path() : path().left(path().size() - 1), "Sans", "Serif"});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("000  Sans\n001  Serif\n"));
    QCOMPARE(readFile(listPath()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                              "<fontlist docInfo=\"1.0\">\n"
                                              "    <font id=\"000\">Sans</font>\n"
                                              "    <font id=\"001\">Serif</font>\n"
                                              "</fontlist>\n"));
    QCOMPARE(QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList{"fontlist.xml"});
}

void tst_tlvctl_fonts::addAppendsAndTellsTheNumbers()
{
    writeFile(listPath(), fontList({"Sans"}));
    const Run run = tlvctl({"fonts", "add", path(), "A & <B>", utf8("\u65E5\u672C")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, utf8("001  A & <B>\n002  \u65E5\u672C\n").toUtf8());
    QCOMPARE(readFile(listPath()), fontList({"Sans", "A &amp; &lt;B&gt;", utf8("\u65E5\u672C").toUtf8()}));
}

void tst_tlvctl_fonts::addTakesTheSameNameTwice()
{
    writeFile(listPath(), fontList({"Sans"}));
    QCOMPARE(tlvctl({"fonts", "add", path(), "Sans", "Sans"}).code, 0);
    QCOMPARE(readFile(listPath()), fontList({"Sans", "Sans", "Sans"}));
}

void tst_tlvctl_fonts::addTakesNamesUpTo256Bytes()
{
    const QString ascii(256, 'a');
    const QString twoBytes = utf8("\u00E9").repeated(128);
    QCOMPARE(tlvctl({"fonts", "add", path(), ascii, twoBytes}).code, 0);
    QCOMPARE(readFile(listPath()), fontList({ascii.toUtf8(), twoBytes.toUtf8()}));
}

void tst_tlvctl_fonts::addRefusesBadNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << ""
                           << "is empty";
    QTest::newRow("257 bytes") << QString(257, 'a') << "257 bytes";
    QTest::newRow("257 bytes, 129 characters") << utf8("\u00E9").repeated(128) + 'a' << "257 bytes";
    QTest::newRow("blanks") << "  \t"
                            << "blanks";
    QTest::newRow("control character") << "a\x01z"
                                       << "control characters";
    QTest::newRow("escape sequence") << "\x1b[31m"
                                     << "control characters";
    QTest::newRow("carriage return") << "a\rb"
                                     << "control characters";
}

void tst_tlvctl_fonts::addRefusesBadNames()
{
    QFETCH(QString, name);
    QFETCH(QString, reason);
    const QStringList names{"Good", name, "Also good"};
    const Run fresh = tlvctl(QStringList{"fonts", "add", path()} + names);
    QCOMPARE(fresh.code, 1);
    QCOMPARE(fresh.out, QByteArray());
    QVERIFY(complains(fresh, listPath(), {reason, "nothing was added", "; "}));
    QVERIFY(isHarmless(fresh.err));
    QVERIFY(!QFile::exists(listPath()));

    const QByteArray before = "<fontlist><font>Sans</font></fontlist>"; // not as the tool would write it
    writeFile(listPath(), before);
    QCOMPARE(tlvctl(QStringList{"fonts", "add", path(), "--force"} + names).code, 1);
    QCOMPARE(readFile(listPath()), before);
}

void tst_tlvctl_fonts::addFillsTheLastNumberAndRefusesTheNext()
{
    QList<QByteArray> names = manyNames(998);
    const QByteArray before = fontList(names);
    writeFile(listPath(), before);
    const Run tooMany = tlvctl({"fonts", "add", path(), "one", "two"});
    QCOMPARE(tooMany.code, 1);
    QCOMPARE(tooMany.out, QByteArray());
    QVERIFY(complains(tooMany, listPath(), {"999", "delete"}));
    QCOMPARE(readFile(listPath()), before);

    const Run last = tlvctl({"fonts", "add", path(), "one"});
    QCOMPARE(last.code, 0);
    QCOMPARE(last.out, QByteArray("998  one\n"));
    names.append("one");
    QCOMPARE(readFile(listPath()), fontList(names));

    const Run next = tlvctl({"fonts", "add", path(), "--force", "two"});
    QCOMPARE(next.code, 1);
    QVERIFY(complains(next, listPath(), {"999"}));
    QCOMPARE(readFile(listPath()), fontList(names));
}

void tst_tlvctl_fonts::addTakesNonAsciiInTheCLocale()
{
    const QString dir = path(utf8("\u65E5"));
    QVERIFY(QDir().mkdir(dir));
    for (const char* locale : {"C", "POSIX"}) {
        QFile::remove(dir + "/fontlist.xml");
        const Run run = tlvctl({"fonts", "add", dir, utf8("\u672C")}, with("LC_ALL", locale));
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, utf8("000  \u672C\n").toUtf8());
        QCOMPARE(readFile(dir + "/fontlist.xml"), fontList({utf8("\u672C").toUtf8()}));
    }
}

void tst_tlvctl_fonts::addTakesANameThatBeginsWithADash()
{
    QCOMPARE(tlvctl({"fonts", "add", path(), "--", "--json"}).code, 0);
    QCOMPARE(readFile(listPath()), fontList({"--json"}));
}

void tst_tlvctl_fonts::addRefusesADamagedListUnlessForced()
{
    writeFile(listPath(), DAMAGED_LIST);
    const Run refused = tlvctl({"fonts", "add", path(), "New"});
    QCOMPARE(refused.code, 1);
    QCOMPARE(refused.out, QByteArray());
    QVERIFY(complains(refused, listPath(), {"line 4", "lose", "--force"}));
    QCOMPARE(readFile(listPath()), QByteArray(DAMAGED_LIST));

    const Run forced = tlvctl({"fonts", "add", path(), "New", "--force"});
    QCOMPARE(forced.code, 0);
    QCOMPARE(forced.out, "002  New\nas it was, the file is in " + listPath().toUtf8() + ".bak\n");
    QCOMPARE(readFile(listPath() + ".bak"), QByteArray(DAMAGED_LIST));
    QCOMPARE(readFile(listPath()), fontList({"Sans", "Serif", "New"}));
}

void tst_tlvctl_fonts::addRefusesAListThatItCannotRead()
{
    const QByteArray before = fontList({"Sans"});
    writeFile(listPath(), before);
    QFile::setPermissions(listPath(), QFileDevice::WriteOwner);
    const Run run = tlvctl({"fonts", "add", path(), "New"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, listPath(), {"Permission denied", "lose", "--force"}));
    QFile::setPermissions(listPath(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    QCOMPARE(readFile(listPath()), before);

    QFile::remove(listPath());
    QVERIFY(QDir().mkdir(listPath()));
    for (const QStringList& options : {QStringList(), QStringList("--force")}) {
        const Run directory = tlvctl(QStringList{"fonts", "add", path(), "New"} + options);
        QCOMPARE(directory.code, 1);
        QCOMPARE(directory.out, QByteArray());
        QVERIFY(complains(directory, listPath(), {"Is a directory"}));
    }
}

void tst_tlvctl_fonts::addNeedsADirectory()
{
    const Run missing = tlvctl({"fonts", "add", path("new dir"), "Sans"});
    QCOMPARE(missing.code, 1);
    QVERIFY(complains(missing, path("new dir"), {"no such directory", "check the spelling"}));
    QVERIFY(QDir(path()).isEmpty());

    writeFile(path("file"), "x");
    const Run file = tlvctl({"fonts", "add", path("file"), "Sans"});
    QCOMPARE(file.code, 1);
    QVERIFY(complains(file, path("file"), {"not a directory"}));
    QCOMPARE(readFile(path("file")), QByteArray("x"));

    const Run empty = tlvctl({"fonts", "add", "", "Sans"});
    QCOMPARE(empty.code, 1);
    QVERIFY(complains(empty, "''", {"no directory"}));
}

void tst_tlvctl_fonts::addDetectsWriteErrors()
{
    // Files end at 8 blocks of 512 bytes here, as they would on a disk that is full.
    writeFile(listPath(), fontList(manyNames(80)));
    QVERIFY(readFile(listPath()).size() < 8 * 512);
    const Run run = shell("trap '' XFSZ; ulimit -f 8; exec \"$tlvctl\" fonts add \"$1\" " +
                              (QString(200, 'a') + ' ').repeated(6),
                          path());
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(complains(run, listPath(), {"saving failed", "free space"}));
}

void tst_tlvctl_fonts::addDetectsAListThatCannotBeReplaced()
{
    const QByteArray before = fontList({"Sans"});
    writeFile(listPath(), before);
    QFile::setPermissions(listPath(), QFileDevice::ReadOwner);
    const Run readOnly = tlvctl({"fonts", "add", path(), "New"});
    QCOMPARE(readOnly.code, 1);
    QCOMPARE(readOnly.out, QByteArray());
    QVERIFY(complains(readOnly, listPath(), {"permission denied", "make the file writable"}));
    QCOMPARE(readFile(listPath()), before);

    QVERIFY(QDir().mkdir(path("closed")));
    QFile::setPermissions(path("closed"), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const Run closed = tlvctl({"fonts", "add", path("closed"), "New"});
    QCOMPARE(closed.code, 1);
    QVERIFY(complains(closed, path("closed/fontlist.xml"), {"saving failed", "permissions"}));
}

void tst_tlvctl_fonts::dryRunTellsWhatWouldBeAdded()
{
    const Run missing = tlvctl({"fonts", "add", "--dry-run", path(), "Sans", "a\nb"});
    QCOMPARE(missing.code, 0);
    QCOMPARE(missing.err, QByteArray());
    QCOMPARE(missing.out, "dry run: nothing is written to " + listPath().toUtf8() +
                              ", where this would change:\n000  Sans\n001  a\\nb\n");
    QVERIFY(QDir(path()).isEmpty());

    const QByteArray before = "<fontlist><font>Sans</font></fontlist>"; // not as the tool would write it
    writeFile(listPath(), before);
    const Run run = tlvctl({"fonts", "add", path(), "Serif", "--dry-run"});
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.endsWith("\n001  Serif\n"));
    QCOMPARE(readFile(listPath()), before);
}

void tst_tlvctl_fonts::dryRunRefusesWhatAddRefuses()
{
    writeFile(listPath(), DAMAGED_LIST);
    const Run damaged = tlvctl({"fonts", "add", "--dry-run", path(), "New"});
    QCOMPARE(damaged.code, 1);
    QCOMPARE(damaged.out, QByteArray());
    QVERIFY(complains(damaged, listPath(), {"line 4", "--force"}));
    QCOMPARE(tlvctl({"fonts", "add", "--dry-run", "--force", path(), "New"}).code, 0);
    QCOMPARE(readFile(listPath()), QByteArray(DAMAGED_LIST));
    QCOMPARE(tlvctl({"fonts", "add", "--dry-run", path(), QString(257, 'a')}).code, 1);
    QCOMPARE(tlvctl({"fonts", "add", "--dry-run", path("none"), "New"}).code, 1);
}

TLVCTL_TEST_MAIN(tst_tlvctl_fonts)
#include "tst_tlvctl_fonts.moc"
