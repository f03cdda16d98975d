#include "tests/tools/TlvctlRun.h"

#include <QtCore/QDir>

#include <memory>

namespace {

/// A configuration for fontconfig in @a dir that knows the fonts of the directory @a fonts alone.
QProcessEnvironment fontEnvironment(const QString& dir, const QString& fonts, const QByteArray& rules = {})
{
    writeFile(dir + "fonts.conf", "<?xml version=\"1.0\"?><fontconfig><dir>" + QFile::encodeName(fonts) +
                                      "</dir><cachedir>" + QFile::encodeName(dir) + "cache</cachedir>" +
                                      rules + "</fontconfig>");
    return with("FONTCONFIG_FILE", dir + "fonts.conf");
}

const char SANS_MONO[] = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";

/// A rule that renames the family which a font file gives.
QByteArray renamingRule(const QByteArray& name)
{
    return "<match target=\"scan\"><edit name=\"family\" mode=\"assign\"><string>" + name +
           "</string></edit></match>";
}

} // namespace

/// tlvctl fonts import
class tst_tlvctl_fonts_import : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void importAddsTheFontsOfTheMachine();
    void importSkipsUnusableNames();
    void importStopsWhenNoNumberIsLeft();
    void importWithoutFontsAdvises();
    void importRefusesADamagedListUnlessForced();
    void importReportsAMissingPlatformPlugin();
    void dryRunTellsWhatWouldBeImported();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString listPath() const { return path("fontlist.xml"); }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_fonts_import::importAddsTheFontsOfTheMachine()
{
    QVERIFY2(QFile::exists(SANS_MONO), "run scripts/bootstrap, which installs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"));
    writeFile(path("list/fontlist.xml"), fontList({"Monospace"}));

    // Beside the one family with a font of its own, Qt offers its three generic ones.
    const Run run = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QVERIFY(run.out.startsWith("001  DejaVu Sans Mono\n002  Sans Serif\n003  Serif\n"));
    QVERIFY(run.out.contains("4 found: 3 added, 1 already listed, 0 skipped"));
    QCOMPARE(readFile(path("list/fontlist.xml")),
             fontList({"Monospace", "DejaVu Sans Mono", "Sans Serif", "Serif"}));

    const Run again = tlvctl({"fonts", "import", path("list/")}, environment);
    QCOMPARE(again.code, 0);
    QVERIFY(again.out.startsWith("4 found: 0 added, 4 already listed, 0 skipped"));
    QCOMPARE(readFile(path("list/fontlist.xml")),
             fontList({"Monospace", "DejaVu Sans Mono", "Sans Serif", "Serif"}));
}

void tst_tlvctl_fonts_import::importSkipsUnusableNames()
{
    QVERIFY2(QFile::exists(SANS_MONO), "run scripts/bootstrap, which installs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QByteArray name(257, 'n');
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"), renamingRule(name));
    const Run run = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(run.code, 0);
    QVERIFY(run.out.contains("4 found: 3 added, 0 already listed, 1 skipped (name too long"));
    QCOMPARE(readFile(path("list/fontlist.xml")), fontList({"Monospace", "Sans Serif", "Serif"}));
}

void tst_tlvctl_fonts_import::importStopsWhenNoNumberIsLeft()
{
    QVERIFY2(QFile::exists(SANS_MONO), "run scripts/bootstrap, which installs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"));
    QList<QByteArray> names = manyNames(998);
    writeFile(path("list/fontlist.xml"), fontList(names));
    const Run run = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(run.code, 1);
    QVERIFY(run.out.startsWith("998  DejaVu Sans Mono\n"));
    QVERIFY(run.out.contains("4 found: 1 added, 0 already listed"));
    QVERIFY(run.out.contains("3 skipped (no number left)"));
    QVERIFY(complains(run, path("list/fontlist.xml"), {"3 skipped", "999", "delete"}));
    names.append("DejaVu Sans Mono");
    QCOMPARE(readFile(path("list/fontlist.xml")), fontList(names));
}

void tst_tlvctl_fonts_import::importWithoutFontsAdvises()
{
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    const Run run = tlvctl({"fonts", "import", path("list")}, fontEnvironment(path(), path("fonts")));
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray());
    QVERIFY(run.err.startsWith("tlvctl: ") && run.err.contains("install a font package"));
    QVERIFY(!QFile::exists(path("list/fontlist.xml")));
}

void tst_tlvctl_fonts_import::importRefusesADamagedListUnlessForced()
{
    QVERIFY2(QFile::exists(SANS_MONO), "run scripts/bootstrap, which installs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"));
    writeFile(path("list/fontlist.xml"), DAMAGED_LIST);
    const Run refused = tlvctl({"fonts", "import", path("list")}, environment);
    QCOMPARE(refused.code, 1);
    QVERIFY(complains(refused, path("list/fontlist.xml"), {"line 4", "--force"}));
    QCOMPARE(readFile(path("list/fontlist.xml")), QByteArray(DAMAGED_LIST));

    QCOMPARE(tlvctl({"fonts", "import", "--force", path("list")}, environment).code, 0);
    QCOMPARE(readFile(path("list/fontlist.xml")),
             fontList({"Sans", "Serif", "DejaVu Sans Mono", "Monospace", "Sans Serif"}));
}

void tst_tlvctl_fonts_import::importReportsAMissingPlatformPlugin()
{
    const Run run = tlvctl({"fonts", "import", path()}, with("QT_QPA_PLATFORM", "nonexistent"));
    QCOMPARE(run.code, 1);
    QVERIFY(run.err.startsWith("tlvctl: ") && run.err.contains("QT_QPA_PLATFORM"));
    QVERIFY(!QFile::exists(listPath()));
}

void tst_tlvctl_fonts_import::dryRunTellsWhatWouldBeImported()
{
    QVERIFY2(QFile::exists(SANS_MONO), "run scripts/bootstrap, which installs the DejaVu fonts");
    QVERIFY(QDir().mkpath(path("fonts")) && QDir().mkpath(path("list")));
    QVERIFY(QFile::copy(SANS_MONO, path("fonts/a.ttf")));
    const QProcessEnvironment environment = fontEnvironment(path(), path("fonts"));
    const QStringList arguments{"fonts", "import", "--dry-run", path("list/")};
    const Run run = tlvctl(arguments, environment);
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, "dry run: nothing is written to " + path("list/fontlist.xml").toUtf8() +
                          ", where this would change:\n"
                          "000  DejaVu Sans Mono\n001  Monospace\n002  Sans Serif\n003  Serif\n"
                          "4 found: 4 added, 0 already listed, 0 skipped (name too long or unusable), "
                          "0 skipped (no number left)\n");
    QVERIFY(!QFile::exists(path("list/fontlist.xml")));

    QCOMPARE(tlvctl({"fonts", "import", path("list/")}, environment).code, 0);
    const Run again = tlvctl(arguments, environment);
    QCOMPARE(again.code, 0);
    QVERIFY(again.out.startsWith("dry run: nothing would change in " + path("list/fontlist.xml").toUtf8() +
                                 "\n4 found: 0 added"));
}

TLVCTL_TEST_MAIN(tst_tlvctl_fonts_import)
#include "tst_tlvctl_fonts_import.moc"
