#include "tests/tools/TlvctlRun.h"

#include <QtCore/QJsonArray>

#include <memory>
#include <vector>

/// tlvctl show
class tst_tlvctl_show : public QObject
{
    Q_OBJECT

private slots:
    void init() { dir_ = std::make_unique<TempDir>(); }
    void cleanup() { dir_.reset(); }

    void showDrawsNamesAttributesTextsAndTypes();
    void showWritesJson();
    void showKeepsNamespacesOfAttributes();
    void showOfDamagedFileShowsWhatIsRead();
    void showOfDamagedFileSaysSoInJson();
    void showNeedsAnElement();
    void showNeedsAReadableFile();
    void showEscapesHostileTexts();
    void showEscapesHostileFileNamesAndErrors();
    void showIndentsToADepthOf20();
    void showDrawsAMillionLevels();
    void showWritesAMillionLevelsAsJson();
    void showTakesFileNamesThatLookLikeResources();

private:
    /// A path in the test's own directory.
    QString path(const QString& name = QString()) const { return dir_->path() + name; }
    QString listPath() const { return path("fontlist.xml"); }

    std::unique_ptr<TempDir> dir_;
};

void tst_tlvctl_show::showDrawsNamesAttributesTextsAndTypes()
{
    writeFile(path("a.xml"), "<list version=\"1.0\" kind='a \"b\"'>\n"
                             "  <item id=\"000\">first<sub/></item>\n"
                             "  <item><![CDATA[<second>]]></item>\n"
                             "</list>");
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out, QByteArray("list version=\"1.0\" kind=\"a \\\"b\\\"\"\n"
                                 "  item id=\"000\"  text \"first\"\n"
                                 "    sub\n"
                                 "  item  CDATA \"<second>\"\n"));
}

void tst_tlvctl_show::showWritesJson()
{
    writeFile(path("a.xml"), "<list version=\"1.0\"><item>a \"b\" \xE6\x97\xA5</item>"
                             "<item><![CDATA[<c>\n]]></item><item/></list>");
    const Run run = tlvctl({"show", "--json", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());

    const QJsonArray none;
    const QJsonObject version{{"name", "version"}, {"value", "1.0"}};
    const QJsonObject first{{"name", "item"},
                            {"attributes", none},
                            {"text", utf8("a \"b\" \u65E5")},
                            {"textType", "text"},
                            {"children", none}};
    const QJsonObject second{
        {"name", "item"}, {"attributes", none}, {"text", "<c>\n"}, {"textType", "cdata"}, {"children", none}};
    const QJsonObject third{{"name", "item"},
                            {"attributes", none},
                            {"text", QJsonValue()},
                            {"textType", QJsonValue()},
                            {"children", none}};
    const QJsonObject root{{"name", "list"},
                           {"attributes", QJsonArray{version}},
                           {"text", QJsonValue()},
                           {"textType", QJsonValue()},
                           {"children", QJsonArray{first, second, third}}};
    const QJsonObject whole{
        {"file", path("a.xml")}, {"complete", true}, {"error", QJsonValue()}, {"root", root}};
    QCOMPARE(jsonOf(run.out), whole);
}

void tst_tlvctl_show::showKeepsNamespacesOfAttributes()
{
    writeFile(path("a.xml"), "<a xmlns:x=\"urn:x\" id=\"1\" x:id=\"2\"/>");
    QCOMPARE(tlvctl({"show", path("a.xml")}).out, QByteArray("a id=\"1\" {urn:x}id=\"2\"\n"));
    const QJsonArray expected{QJsonObject{{"name", "id"}, {"value", "1"}},
                              QJsonObject{{"name", "id"}, {"namespace", "urn:x"}, {"value", "2"}}};
    const QJsonObject json = jsonOf(tlvctl({"show", "--json", path("a.xml")}).out);
    QCOMPARE(json["root"].toObject()["attributes"].toArray(), expected);
}

void tst_tlvctl_show::showOfDamagedFileShowsWhatIsRead()
{
    writeFile(path("a.xml"), DAMAGED_LIST);
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 1);
    QCOMPARE(run.out, QByteArray("fontlist docInfo=\"1.0\"\n"
                                 "  font id=\"000\"  text \"Sans\"\n"
                                 "  font id=\"001\"  text \"Serif\"\n"));
    QVERIFY(complains(run, path("a.xml"), {"line 4", "column ", "everything behind that place is not read"}));
}

void tst_tlvctl_show::showOfDamagedFileSaysSoInJson()
{
    writeFile(path("a.xml"), DAMAGED_LIST);
    const Run run = tlvctl({"show", path("a.xml"), "--json"});
    QCOMPARE(run.code, 1);
    QVERIFY(complains(run, path("a.xml"), {"line 4"}));
    const QJsonObject json = jsonOf(run.out);
    QCOMPARE(json["complete"], QJsonValue(false));
    const QJsonObject error = json["error"].toObject();
    QCOMPARE(error["line"].toInt(), 4);
    QVERIFY(error["column"].toInt() > 25 && error["column"].toInt() <= 33); // somewhere in the wrong end tag
    QVERIFY(!error["message"].toString().isEmpty());
    QCOMPARE(json["root"].toObject()["children"].toArray().size(), 2);
}

void tst_tlvctl_show::showNeedsAnElement()
{
    for (const QByteArray& content : {QByteArray(), QByteArray("  \n"), QByteArray("<!-- nothing -->"),
                                      QByteArray("<?xml version=\"1.0\"?>\n"), QByteArray("no markup")}) {
        writeFile(path("a.xml"), content);
        const Run run = tlvctl({"show", path("a.xml")});
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QByteArray());
        QVERIFY(complains(run, path("a.xml"), {"no element"}));

        const Run json = tlvctl({"show", path("a.xml"), "--json"});
        QCOMPARE(json.code, 1);
        QVERIFY(complains(json, path("a.xml"), {"no element"}));
        QCOMPARE(jsonOf(json.out)["complete"], QJsonValue(false));
        QVERIFY(jsonOf(json.out)["root"].isNull());
    }
}

void tst_tlvctl_show::showNeedsAReadableFile()
{
    const Run missing = tlvctl({"show", path("a.xml")});
    QCOMPARE(missing.code, 1);
    QCOMPARE(missing.out, QByteArray());
    QVERIFY(complains(missing, path("a.xml"), {"No such file"}));

    const Run directory = tlvctl({"show", path()});
    QCOMPARE(directory.code, 1);
    QVERIFY(complains(directory, path(), {"Is a directory"}));

    writeFile(path("a.xml"), "<a/>");
    QFile::setPermissions(path("a.xml"), QFileDevice::Permissions());
    const Run unreadable = tlvctl({"show", "--json", path("a.xml")});
    QCOMPARE(unreadable.code, 1);
    QCOMPARE(unreadable.out, QByteArray());
    QVERIFY(complains(unreadable, path("a.xml"), {"Permission denied"}));
}

void tst_tlvctl_show::showEscapesHostileTexts()
{
    writeFile(path("a.xml"),
              utf8("<a b=\"\u202E&#9;&#10;&#13;\u009B\"><c>\\ \u2028\u007F\u200E\n\uFEFF</c></a>").toUtf8());
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 0);
    QVERIFY(isHarmless(run.out));
    QCOMPARE(run.out, QByteArray("a b=\"\\u{202E}\\t\\n\\r\\x9B\"\n"
                                 "  c  text \"\\\\ \\u{2028}\\x7F\\u{200E}\\n\\u{FEFF}\"\n"));

    const Run json = tlvctl({"show", "--json", path("a.xml")});
    QVERIFY(isHarmless(json.out));
    const QJsonObject root = jsonOf(json.out)["root"].toObject();
    QCOMPARE(root["attributes"].toArray().at(0).toObject()["value"].toString(), utf8("\u202E\t\n\r\u009B"));
    QCOMPARE(root["children"].toArray().at(0).toObject()["text"].toString(),
             utf8("\\ \u2028\u007F\u200E\n\uFEFF"));
}

void tst_tlvctl_show::showEscapesHostileFileNamesAndErrors()
{
    const QString name = path(utf8("a\x1b[31m\n\u202E.xml"));
    const QString shown = path("a\\x1B[31m\\n\\u{202E}.xml");
    const Run missing = tlvctl({"show", name});
    QVERIFY(isHarmless(missing.err));
    QVERIFY(complains(missing, shown, {}));

    // The parser's message quotes what it did not expect.
    for (const char* content : {"<a><\u202E/></a>", "<a>&\u202E;</a>", "\u202E<a/>", "<a\u0085/>"}) {
        writeFile(name, content);
        const Run run = tlvctl({"show", name});
        QCOMPARE(run.code, 1);
        QVERIFY(isHarmless(run.err) && isHarmless(run.out));
        QVERIFY(complains(run, shown, {"line 1"}));
        QVERIFY(isHarmless(tlvctl({"show", "--json", name}).out));
    }
}

void tst_tlvctl_show::showIndentsToADepthOf20()
{
    writeFile(path("a.xml"), QByteArray("<a>").repeated(22) + QByteArray("</a>").repeated(22));
    const QList<QByteArray> lines = tlvctl({"show", path("a.xml")}).out.split('\n');
    QCOMPARE(lines.size(), 23); // with what follows the last line break
    QCOMPARE(lines.at(19), QByteArray(38, ' ') + "a");
    QCOMPARE(lines.at(20), QByteArray(40, ' ') + "[21] a");
    QCOMPARE(lines.at(21), QByteArray(40, ' ') + "[22] a");
}

void tst_tlvctl_show::showDrawsAMillionLevels()
{
    const int depth = 1000000;
    writeFile(path("a.xml"), QByteArray("<a>").repeated(depth) + "end" + QByteArray("</a>").repeated(depth));
    const Run run = tlvctl({"show", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out.count('\n'), depth);
    QVERIFY(run.out.endsWith("[1000000] a  text \"end\"\n"));
    QVERIFY(run.out.size() < 100 * depth);
}

void tst_tlvctl_show::showWritesAMillionLevelsAsJson()
{
    const int depth = 1000000;
    writeFile(path("a.xml"), QByteArray("<a>").repeated(depth) + "end" + QByteArray("</a>").repeated(depth));
    const Run run = tlvctl({"show", "--json", path("a.xml")});
    QCOMPARE(run.code, 0);
    QCOMPARE(run.err, QByteArray());
    QCOMPARE(run.out.count("\"name\":\"a\""), depth);
    QCOMPARE(run.out.count("\"text\":\"end\""), 1);

    // No parser at hand goes that deep. None of the strings holds a bracket, so these tell the structure.
    std::vector<char> open;
    size_t deepest = 0;
    for (const char c : run.out) {
        if (c == '{' || c == '[') {
            open.push_back(c);
            deepest = qMax(deepest, open.size());
        } else if (c == '}' || c == ']') {
            QVERIFY(!open.empty());
            QCOMPARE(open.back(), c == '}' ? '{' : '[');
            open.pop_back();
        }
    }
    QVERIFY(open.empty());
    // The whole, an object and a list of children for each element; the innermost list is as deep as any.
    QCOMPARE(deepest, static_cast<size_t>(2 * depth + 1));
}

void tst_tlvctl_show::showTakesFileNamesThatLookLikeResources()
{
    writeFile(path(":a.xml"), "<a/>");
    const Run run = runProgram(TLVCTL, {"show", ":a.xml"}, plainEnvironment(), path());
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out, QByteArray("a\n"));
}

TLVCTL_TEST_MAIN(tst_tlvctl_show)
#include "tst_tlvctl_show.moc"
