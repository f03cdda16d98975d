#include "tests/browser/RowFollower.h"
#include "tests/support/Random.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/CookieModel.h>

using Tlv::CookieJar;
using Tlv::CookieModel;

class tst_CookieModel : public QObject
{
    Q_OBJECT

private slots:
    void cookieIsShownWithoutItsValue();
    void removedRowLeavesTheJar();
    void randomChanges();

private:
    static QNetworkCookie cookie(const QByteArray& text)
    {
        return QNetworkCookie::parseCookies(text + "; domain=example.org; path=/").first();
    }
};

void tst_CookieModel::cookieIsShownWithoutItsValue()
{
    CookieJar jar;
    CookieModel model(jar);
    QVERIFY(jar.insertCookie(cookie("sid=s3cret; expires=Wed, 06-May-2037 07:08:09 GMT; secure; HttpOnly")));
    QVERIFY(jar.insertCookie(cookie("visit=now")));
    QCOMPARE(RowFollower::rowsOf(model),
             (QList<QStringList>{{"example.org", "sid", "/", "secure, HttpOnly", "2037-05-06 09:08"},
                                 {"example.org", "visit", "/", "", "end of the browser"}}));
    for (int role = 0; role < CookieModel::HttpOnlyRole + 10; ++role) {
        for (int column = 0; column < model.columnCount(); ++column)
            QVERIFY(!model.index(0, column).data(role).toString().contains("s3cret"));
    }
    const QHash<int, QByteArray> names = model.roleNames();
    QCOMPARE(names.value(CookieModel::DomainRole), QByteArray("domain"));
    QCOMPARE(names.value(CookieModel::ExpiresRole), QByteArray("expires"));
    QCOMPARE(names.value(CookieModel::HttpOnlyRole), QByteArray("httpOnly"));
    QVERIFY(model.index(0, 0).data(CookieModel::SecureRole).toBool());
    QVERIFY(!model.index(1, 0).data(CookieModel::HttpOnlyRole).toBool());
    QVERIFY(!model.index(1, 0).data(CookieModel::ExpiresRole).toDateTime().isValid());
}

void tst_CookieModel::removedRowLeavesTheJar()
{
    CookieJar jar;
    CookieModel model(jar);
    for (const char* text : {"a=1", "b=2", "c=3", "d=4"})
        QVERIFY(jar.insertCookie(cookie(text)));
    QVERIFY(model.removeRows(1, 2));
    QCOMPARE(jar.cookies().size(), 2);
    QCOMPARE(jar.cookies().last().name(), QByteArray("d"));
    QVERIFY(!model.removeRows(1, 2));
    QVERIFY(!model.removeRows(-1, 1));
    model.clear();
    QVERIFY(jar.cookies().isEmpty());
}

void tst_CookieModel::randomChanges()
{
    CookieJar jar;
    CookieModel model(jar);
    RowFollower view(model);
    Random random(2037);
    for (int i = 0; i < 300; ++i) {
        const QByteArray text = "c" + QByteArray::number(random.next(20)) + "=" + QByteArray::number(i);
        switch (random.next(6)) {
        case 0:
            jar.deleteCookie(cookie(text));
            break;
        case 1:
            model.remove(static_cast<int>(random.next(20)));
            break;
        case 2:
            jar.insertCookie(cookie(text + "; expires=Wed, 06-May-2009 07:08:09 GMT")); // deletes it
            break;
        default:
            jar.insertCookie(cookie(text));
        }
        QVERIFY(view.agrees());
        QCOMPARE(model.count(), static_cast<int>(jar.cookies().size()));
    }
    jar.clear();
    QVERIFY(view.agrees());
    QCOMPARE(model.count(), 0);
    QCOMPARE(view.resets(), 0);
}

int main(int argc, char** argv)
{
    qputenv("TZ", "Europe/Berlin");
    QCoreApplication application(argc, argv);
    tst_CookieModel test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_CookieModel.moc"
