#include "tests/browser/RowFollower.h"
#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/LoginModel.h>

using Tlv::LoginModel;

class tst_LoginModel : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void loginIsShownWithoutPassword();
    void sameServerAndSchemeIsReplaced();
    void limits_data();
    void limits();
    void oldestGoesForTheNext();
    void randomChanges();

private:
    QString dir() const { return dir_->path(); }

    std::unique_ptr<TempDir> dir_;
};

void tst_LoginModel::init()
{
    dir_ = std::make_unique<TempDir>();
}

void tst_LoginModel::loginIsShownWithoutPassword()
{
    LoginModel model;
    model.load(dir());
    QVERIFY(model.keep("example.org", 443, LoginModel::Digest, "j\xC3\xBCrgen", "s3cret"));
    const QString dots(8, QChar(0x2022));
    QCOMPARE(RowFollower::rowsOf(model),
             (QList<QStringList>{{"example.org:443", "Digest", utf8("j\xC3\xBCrgen"), dots}}));
    QCOMPARE(model.credentials(0), (QPair<QByteArray, QByteArray>("j\xC3\xBCrgen", "s3cret")));
    QCOMPARE(model.credentials(1), (QPair<QByteArray, QByteArray>()));
    // In no role of any column.
    for (int role = 0; role < LoginModel::PortRole + 10; ++role) {
        for (int column = 0; column < model.columnCount(); ++column)
            QVERIFY(!model.index(0, column).data(role).toString().contains("s3cret"));
    }
    const QHash<int, QByteArray> names = model.roleNames();
    QCOMPARE(names.value(LoginModel::ServerRole), QByteArray("server"));
    QCOMPARE(names.value(LoginModel::HostRole), QByteArray("host"));
    QCOMPARE(names.value(LoginModel::PortRole), QByteArray("port"));
    QVERIFY(!names.values().contains("password"));
    QCOMPARE(model.index(0, 0).data(LoginModel::PortRole).toString(), QString("443"));
}

void tst_LoginModel::sameServerAndSchemeIsReplaced()
{
    LoginModel model;
    model.load(dir());
    QVERIFY(model.keep("a", 80, LoginModel::Basic, "u", "1"));
    QVERIFY(model.keep("a", 80, LoginModel::Digest, "u", "2"));
    QVERIFY(model.keep("a", 81, LoginModel::Basic, "u", "3"));
    QVERIFY(model.keep("a", 80, LoginModel::Basic, "v", "4"));
    QCOMPARE(model.count(), 3);
    QCOMPARE(model.credentials(model.find("a", 80, LoginModel::Basic)).second, QByteArray("4"));
    QCOMPARE(model.credentials(model.find("a", 80, LoginModel::Digest)).second, QByteArray("2"));
    QCOMPARE(model.find("a", 80, LoginModel::Ntlm), -1);
    QCOMPARE(model.save(dir()), QString());
    LoginModel again;
    again.load(dir());
    QCOMPARE(RowFollower::rowsOf(again), RowFollower::rowsOf(model));
}

void tst_LoginModel::limits_data()
{
    QTest::addColumn<int>("host");
    QTest::addColumn<int>("user");
    QTest::addColumn<int>("password");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("longest") << 256 << 272 << 272 << true;
    QTest::newRow("host") << 257 << 1 << 1 << false;
    QTest::newRow("user") << 1 << 273 << 1 << false;
    QTest::newRow("password") << 1 << 1 << 273 << false;
}

void tst_LoginModel::limits()
{
    QFETCH(int, host);
    QFETCH(int, user);
    QFETCH(int, password);
    QFETCH(bool, isKept);
    LoginModel model;
    model.setMaximum(1);
    model.load(dir());
    QVERIFY(model.keep("earlier", 80, LoginModel::Basic, "u", "p"));
    QCOMPARE(model.keep(QString(host, 'h'), 80, LoginModel::Basic, QByteArray(user, 'u'),
                        QByteArray(password, 'p')),
             isKept);
    QCOMPARE(model.count(), 1);
    QCOMPARE(model.find("earlier", 80, LoginModel::Basic), isKept ? -1 : 0); // a refused one costs none
}

void tst_LoginModel::oldestGoesForTheNext()
{
    LoginModel model;
    model.setMaximum(2);
    model.load(dir());
    for (int port = 1; port <= 3; ++port)
        QVERIFY(model.keep("a", port, LoginModel::Basic, "u", "p"));
    QCOMPARE(model.count(), 2);
    QCOMPARE(model.find("a", 1, LoginModel::Basic), -1);
    QCOMPARE(model.find("a", 3, LoginModel::Basic), 0);
}

void tst_LoginModel::randomChanges()
{
    LoginModel model;
    model.setMaximum(8);
    model.load(dir());
    RowFollower view(model);
    Random random(99);
    for (int i = 0; i < 300; ++i) {
        if (random.next(4) == 0 && model.count() > 0)
            model.remove(static_cast<int>(random.next(quint32(model.count()))));
        else
            QVERIFY(model.keep("h", static_cast<int>(random.next(6)), LoginModel::Scheme(random.next(3)), "u",
                               QByteArray::number(i)));
        QVERIFY(view.agrees());
        QVERIFY(model.count() <= 8);
    }
    QCOMPARE(view.resets(), 0);
    QCOMPARE(model.save(dir()), QString());
    LoginModel again;
    again.load(dir());
    QCOMPARE(RowFollower::rowsOf(again), RowFollower::rowsOf(model));
}

TLVLIB_TEST_MAIN(tst_LoginModel)
#include "tst_LoginModel.moc"
