#include "tests/support/TestSupport.h"
#include "tools/tlvctl/commandline/Table.h"

#include <QtCore/QFile>

#include <cstdio>

#include <pty.h>
#include <unistd.h>

namespace {

/// Leads standard output to a file descriptor for the lifetime of the object.
class Redirection
{
public:
    explicit Redirection(int target)
    {
        std::fflush(stdout);
        saved_ = dup(STDOUT_FILENO);
        dup2(target, STDOUT_FILENO);
    }
    ~Redirection()
    {
        std::fflush(stdout);
        dup2(saved_, STDOUT_FILENO);
        close(saved_);
    }

private:
    Q_DISABLE_COPY(Redirection)
    int saved_ = -1;
};

/// What a table writes into a file.
QString inFile(const Table& table)
{
    const TempDir dir;
    QFile file(dir.path() + "out");
    if (!file.open(QIODevice::ReadWrite))
        return "no file";
    {
        const Redirection redirection(file.handle());
        table.print();
    }
    return QString::fromUtf8(readFile(dir.path() + "out"));
}

/// What a small table writes to a terminal of so many columns. 0 is a terminal that does not know its width.
QString onTerminal(const Table& table, ushort columns)
{
    int master = -1;
    int slave = -1;
    winsize size{};
    size.ws_col = columns;
    if (openpty(&master, &slave, nullptr, nullptr, &size) != 0)
        return "no terminal";
    {
        const Redirection redirection(slave);
        table.print();
        std::printf("END");
    }
    QByteArray out;
    char bytes[4096];
    while (!out.endsWith("END")) {
        const ssize_t count = read(master, bytes, sizeof(bytes));
        if (count <= 0)
            break;
        out.append(bytes, static_cast<int>(count));
    }
    close(slave);
    close(master);
    out.chop(3);
    return QString::fromUtf8(out).remove('\r'); // the terminal adds it to every line break
}

Table exampleTable()
{
    Table table({"no.", "title", "address"});
    table.addRow({"000", "Weather", "http://example.com/weather"});
    table.addRow({"001", "The news of today", "http://example.com/"});
    return table;
}

} // namespace

/// The tables of the tool.
class tst_tlvctl_table : public QObject
{
    Q_OBJECT

private slots:
    void widthIsThatOfATerminal_data();
    void widthIsThatOfATerminal();
    void cutTextsFitAndEndInAMark_data();
    void cutTextsFitAndEndInAMark();
    void emptyTableWritesNothing();
    void nothingIsCutInAFile();
    void hugeCellDoesNotWidenTheOtherLines();
    void nothingIsCutWhereItFits();
    void widestColumnsAreCutOnATerminal_data();
    void widestColumnsAreCutOnATerminal();
    void columnsKeepEightOnANarrowTerminal();
    void everythingIsWrittenWhereTheTerminalHasNoWidth();
    void wideCharactersKeepTheColumnsStraight();
    void hugeCellIsCutAtOnce();
    void firstColumnIsKeptWhereItIsNeeded();
};

void tst_tlvctl_table::widthIsThatOfATerminal_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::newRow("empty") << QString() << 0;
    QTest::newRow("ASCII") << "abc" << 3;
    QTest::newRow("accented") << utf8("\u00E9") << 1;
    QTest::newRow("accent of its own") << utf8("e\u0301") << 1;
    QTest::newRow("enclosing mark") << utf8("a\u20DD") << 1;
    QTest::newRow("Japanese") << utf8("\u65E5\u672C") << 4;
    QTest::newRow("Hangul") << utf8("\uAC00\uD7A3") << 4;
    QTest::newRow("full-width") << utf8("\uFF21\uFF01") << 4;
    QTest::newRow("half-width katakana") << utf8("\uFF76") << 1;
    QTest::newRow("half fill space") << utf8("\u303F") << 1;
    QTest::newRow("smiley") << utf8("\U0001F600") << 2;
    QTest::newRow("rare Han") << utf8("\U00020000") << 2;
    QTest::newRow("Cyrillic") << utf8("\u0416") << 1;
}

void tst_tlvctl_table::widthIsThatOfATerminal()
{
    QFETCH(QString, text);
    QFETCH(int, width);
    QCOMPARE(displayWidth(text), width);
}

void tst_tlvctl_table::cutTextsFitAndEndInAMark_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("cut");
    QTest::newRow("fits") << "abcd" << 4 << "abcd";
    QTest::newRow("one too many") << "abcde" << 4 << utf8("abc\u2026");
    QTest::newRow("to the mark alone") << "abcde" << 1 << utf8("\u2026");
    QTest::newRow("wide fits") << utf8("\u65E5\u672C") << 4 << utf8("\u65E5\u672C");
    QTest::newRow("wide") << utf8("\u65E5\u672C\u8A9E") << 5 << utf8("\u65E5\u672C\u2026");
    QTest::newRow("wide, with half a place left") << utf8("\u65E5\u672C\u8A9E") << 4 << utf8("\u65E5\u2026");
    QTest::newRow("accents stay") << utf8("e\u0301e\u0301e\u0301") << 2 << utf8("e\u0301\u2026");
    QTest::newRow("no half of a pair") << utf8("\U0001F600\U0001F600") << 3 << utf8("\U0001F600\u2026");
}

void tst_tlvctl_table::cutTextsFitAndEndInAMark()
{
    QFETCH(QString, text);
    QFETCH(int, width);
    QFETCH(QString, cut);
    QCOMPARE(cutToWidth(text, width), cut);
    QVERIFY(displayWidth(cut) <= width);
}

void tst_tlvctl_table::emptyTableWritesNothing()
{
    QCOMPARE(inFile(Table({"no.", "title"})), QString());
}

void tst_tlvctl_table::nothingIsCutInAFile()
{
    QCOMPARE(inFile(exampleTable()), QString("no.  title              address\n"
                                             "000  Weather            http://example.com/weather\n"
                                             "001  The news of today  http://example.com/\n"));
    Table table({"a", "b"});
    const QString text(300, 'x');
    table.addRow({text, text});
    QVERIFY(inFile(table).endsWith('\n' + text + "  " + text + '\n'));
}

void tst_tlvctl_table::hugeCellDoesNotWidenTheOtherLines()
{
    Table table({"a", "b"});
    const QString huge(100000, 'x');
    table.addRow({huge, "1"});
    for (int i = 0; i < 1000; ++i)
        table.addRow({"y", "2"});
    const QStringList lines = inFile(table).split('\n');
    QCOMPARE(lines.size(), 1003); // with what follows the last line break
    QVERIFY(lines.at(1) == huge + "  1");
    QCOMPARE(lines.at(0), 'a' + QString(61, ' ') + 'b');
    QCOMPARE(lines.at(1001), 'y' + QString(61, ' ') + '2');
}

void tst_tlvctl_table::nothingIsCutWhereItFits()
{
    QCOMPARE(onTerminal(exampleTable(), 50), inFile(exampleTable())); // exactly
    QCOMPARE(onTerminal(exampleTable(), 200), inFile(exampleTable()));
}

void tst_tlvctl_table::widestColumnsAreCutOnATerminal_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("table");
    QTest::newRow("one short") << 49
                               << utf8("no.  title              address\n"
                                       "000  Weather            http://example.com/weath\u2026\n"
                                       "001  The news of today  http://example.com/\n");
    QTest::newRow("two columns") << 35
                                 << utf8("no.  title           address\n"
                                         "000  Weather         http://exampl\u2026\n"
                                         "001  The news of t\u2026  http://exampl\u2026\n");
}

void tst_tlvctl_table::widestColumnsAreCutOnATerminal()
{
    QFETCH(int, columns);
    QFETCH(QString, table);
    const QString lines = onTerminal(exampleTable(), static_cast<ushort>(columns));
    QCOMPARE(lines, table);
    for (const QString& line : lines.split('\n'))
        QVERIFY(displayWidth(line) <= columns);
}

void tst_tlvctl_table::columnsKeepEightOnANarrowTerminal()
{
    QCOMPARE(onTerminal(exampleTable(), 5), utf8("no.  title     address\n"
                                                 "000  Weather   http://\u2026\n"
                                                 "001  The new\u2026  http://\u2026\n"));
}

void tst_tlvctl_table::everythingIsWrittenWhereTheTerminalHasNoWidth()
{
    QCOMPARE(onTerminal(exampleTable(), 0), inFile(exampleTable()));
}

void tst_tlvctl_table::wideCharactersKeepTheColumnsStraight()
{
    Table table({"title", "no."});
    table.addRow({utf8("\u65E5\u672C\u8A9E"), "1"});
    table.addRow({utf8("e\u0301"), "2"});
    QCOMPARE(inFile(table), utf8("title   no.\n"
                                 "\u65E5\u672C\u8A9E  1\n"
                                 "e\u0301       2\n"));
}

void tst_tlvctl_table::hugeCellIsCutAtOnce()
{
    // Column by column, this would take as many rounds as there are characters.
    Table table({"a", "b"});
    table.addRow({QString(10000000, 'x'), QString(9000000, 'y')});
    QCOMPARE(onTerminal(table, 40), utf8("a                    b\n") + QString(18, 'x') + utf8("\u2026  ") +
                                        QString(18, 'y') + utf8("\u2026\n"));
}

/// "prefs set" needs the names that "prefs show" prints.
void tst_tlvctl_table::firstColumnIsKeptWhereItIsNeeded()
{
    Table table({"name", "value", "meaning"}, true);
    table.addRow({QString("page.name-of-twenty-5"), QString(30, 'v'), QString(30, 'm')});
    QCOMPARE(onTerminal(table, 40), utf8("name                   value     meaning\n"
                                         "page.name-of-twenty-5  vvvvvvv\u2026  mmmmmmm\u2026\n"));
    Table cut({"name", "value", "meaning"});
    cut.addRow({QString("page.name-of-twenty-5"), QString(30, 'v'), QString(30, 'm')});
    QVERIFY(!onTerminal(cut, 40).contains("page.name-of-twenty-5"));
}

TLVLIB_TEST_MAIN(tst_tlvctl_table)
#include "tst_tlvctl_table.moc"
