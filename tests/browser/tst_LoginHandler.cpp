#include "tests/browser/Network.h"
#include "tests/support/TestSite.h"
#include "tests/support/TestSupport.h"

#include <tlvlib/browser/LoginHandler.h>
#include <tlvlib/browser/ProxyFactory.h>
#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>

#include <QtNetwork/QAuthenticator>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

using Tlv::LoginHandler;
using Tlv::LoginModel;
using Tlv::LoginRequest;

namespace {

TVNC_BrowserCommonSetting& preferences()
{
    return *TVNC_BrowserCommonSetting::getInstance();
}

using Answer = QPair<QString, QString>;

/// A browser's network, and a user who gives one answer after the other.
struct Browser
{
    explicit Browser(LoginModel& logins) : handler(logins)
    {
        manager.setProxyFactory(new Tlv::ProxyFactory);
        handler.attach(&manager);
        QObject::connect(
            &handler, &LoginHandler::loginRequired, &handler, [this](const LoginRequest& request) {
                questions.append(request);
                if (answers.isEmpty())
                    return;
                isSameRequest = handler.answer(request, answers.first().first, answers.first().second);
                if (answers.size() > 1 || !isStubborn)
                    answers.removeFirst();
            });
    }

    QNetworkAccessManager manager;
    LoginHandler handler;
    QList<Answer> answers;
    bool isStubborn = false; ///< whether the user repeats the last answer for ever
    bool isSameRequest = false;
    QList<LoginRequest> questions;
};

} // namespace

class tst_LoginHandler : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void loginIsAskedOnceAndKept_data();
    void loginIsAskedOnceAndKept();
    void wrongAnswerIsAskedAgain_data();
    void wrongAnswerIsAskedAgain();
    void nobodyIsAskedForEver_data();
    void nobodyIsAskedForEver();
    void unansweredRequestFails();
    void answerMayComeLater_data();
    void answerMayComeLater();
    void keptLoginThatIsWrongIsReplaced();
    void digestLoginIsGivenToDigestAlone();
    void keptDigestLoginIsFound();
    void loginsOfOneServerAreKeptApart();
    void bytesAreUtf8_data();
    void bytesAreUtf8();
    void tooLongLoginIsUsedButNotKept();
    void noEventRunsMeanwhile();
    void forgottenAnswersAreAskedAgain();

    void proxyGetsTheLoginOfThePreferences();
    void proxyLoginIsAskedAndKept();
    void proxyAsksNobodyForEver();
    void tooLongProxyLoginIsNotKept();

private:
    QString dir() const { return dir_->path(); }
    int port() const { return site_->port(); }
    int row(LoginModel::Scheme scheme) const { return logins_->find("127.0.0.1", port(), scheme); }
    void useProxy();

    std::unique_ptr<TempDir> dir_;
    std::unique_ptr<TestSite> site_;
    std::unique_ptr<LoginModel> logins_;
};

void tst_LoginHandler::init()
{
    dir_ = std::make_unique<TempDir>();
    site_ = std::make_unique<TestSite>();
    QVERIFY(site_->listen());
    QString directory = dir();
    preferences().loadSetting(&directory);
    logins_ = std::make_unique<LoginModel>();
    logins_->load(dir());
}

void tst_LoginHandler::loginIsAskedOnceAndKept_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<LoginModel::Scheme>("scheme");
    QTest::addColumn<QString>("realm");
    QTest::newRow("basic") << "/basic"
                           << "bob"
                           << "builder" << LoginModel::Basic << "Staff";
    QTest::newRow("digest") << "/digest"
                            << "alice"
                            << "wonderland" << LoginModel::Digest << "Archive";
}

void tst_LoginHandler::loginIsAskedOnceAndKept()
{
    QFETCH(QString, path);
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(LoginModel::Scheme, scheme);
    QFETCH(QString, realm);
    Browser browser(*logins_);
    browser.answers = {{user, password}};
    QCOMPARE(get(browser.manager, site_->address(path)), 200);
    QVERIFY(browser.isSameRequest);
    QCOMPARE(browser.questions.size(), 1);
    const LoginRequest question = browser.questions.first();
    QCOMPARE(question.url, QUrl(site_->address(path)));
    QCOMPARE(question.host, QString("127.0.0.1"));
    QCOMPARE(question.port, port());
    QCOMPARE(question.realm, realm);
    QVERIFY(!question.wasRefused && !question.isProxy);
    QTRY_COMPARE(logins_->count(), 1); // the scheme is found out by and by
    QCOMPARE(logins_->credentials(row(scheme)),
             (QPair<QByteArray, QByteArray>(user.toUtf8(), password.toUtf8())));
    QCOMPARE(site_->answers(path.toLatin1()), (QList<int>{401, 200}));

    // Nor is anybody asked by the next process. Qt tells the scheme with the end of a request.
    Browser next(*logins_);
    QSignalSpy found(&next.handler, &LoginHandler::loginFound);
    if (get(next.manager, site_->address(path)) == 401) {
        QCOMPARE(scheme, LoginModel::Digest);
        QTRY_COMPARE(found.count(), 1);
        QCOMPARE(found.first().first().toUrl(), QUrl(site_->address(path)));
        QCOMPARE(get(next.manager, site_->address(path)), 200);
    }
    QVERIFY(next.questions.isEmpty());
}

void tst_LoginHandler::wrongAnswerIsAskedAgain_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::newRow("basic") << "/basic"
                           << "bob"
                           << "builder";
    QTest::newRow("digest") << "/digest"
                            << "alice"
                            << "wonderland";
}

void tst_LoginHandler::wrongAnswerIsAskedAgain()
{
    QFETCH(QString, path);
    QFETCH(QString, user);
    QFETCH(QString, password);
    Browser browser(*logins_);
    browser.answers = {{user, "wrong"}, {user, password}};
    QCOMPARE(get(browser.manager, site_->address(path)), 200);
    QCOMPARE(browser.questions.size(), 2);
    QVERIFY(browser.questions.last().wasRefused);
    QCOMPARE(browser.questions.last().user, user);
    QTRY_COMPARE(logins_->count(), 1);
    QCOMPARE(logins_->credentials(0).second, password.toUtf8()); // the right one alone
}

void tst_LoginHandler::nobodyIsAskedForEver_data()
{
    wrongAnswerIsAskedAgain_data();
}

void tst_LoginHandler::nobodyIsAskedForEver()
{
    QFETCH(QString, path);
    QFETCH(QString, user);
    Browser browser(*logins_);
    browser.isStubborn = true;
    browser.answers = {{user, "a"}, {user, "b"}, {user, "c"}, {user, "d"}};
    QCOMPARE(get(browser.manager, site_->address(path)), 401);
    QCOMPARE(browser.questions.size(), 3);
    QCOMPARE(logins_->count(), 0);
    // The same answer again is no answer.
    Browser other(*logins_);
    other.isStubborn = true;
    other.answers = {{user, "a"}};
    site_->requests.clear();
    QCOMPARE(get(other.manager, site_->address(path)), 401);
    QCOMPARE(site_->answers(path.toLatin1()), (QList<int>{401, 401}));
}

void tst_LoginHandler::unansweredRequestFails()
{
    LoginHandler handler(*logins_);
    QNetworkAccessManager manager;
    handler.attach(&manager);
    QSignalSpy questions(&handler, &LoginHandler::loginRequired);
    QCOMPARE(get(manager, site_->address("/basic")), 401);
    QCOMPARE(questions.count(), 1);
}

void tst_LoginHandler::answerMayComeLater_data()
{
    loginIsAskedOnceAndKept_data();
}

void tst_LoginHandler::answerMayComeLater()
{
    QFETCH(QString, path);
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(LoginModel::Scheme, scheme);
    LoginHandler handler(*logins_);
    QNetworkAccessManager manager;
    handler.attach(&manager);
    QList<LoginRequest> questions;
    connect(&handler, &LoginHandler::loginRequired, this,
            [&questions](const LoginRequest& request) { questions.append(request); });
    QCOMPARE(get(manager, site_->address(path)), 401);
    QCOMPARE(questions.size(), 1);
    QVERIFY(!handler.answer(questions.last(), user, "wrong"));
    QCOMPARE(get(manager, site_->address(path)), 401);
    QCOMPARE(questions.size(), 2);
    QVERIFY(questions.last().wasRefused);
    QVERIFY(!handler.answer(questions.last(), user, password));
    QCOMPARE(get(manager, site_->address(path)), 200);
    QCOMPARE(questions.size(), 2);
    // The failed request has told the scheme.
    QCOMPARE(logins_->credentials(row(scheme)).second, password.toUtf8());
    for (const TestSite::Request& request : site_->requests)
        QCOMPARE(request.method, QByteArray("GET"));
}

void tst_LoginHandler::keptLoginThatIsWrongIsReplaced()
{
    QVERIFY(logins_->keep("127.0.0.1", port(), LoginModel::Basic, "bob", "old"));
    Browser browser(*logins_);
    browser.answers = {{"bob", "builder"}};
    QCOMPARE(get(browser.manager, site_->address("/basic")), 200);
    QCOMPARE(browser.questions.size(), 1);
    QVERIFY(browser.questions.first().wasRefused);
    QCOMPARE(browser.questions.first().user, QString("bob"));
    QCOMPARE(site_->answers("/basic"), (QList<int>{401, 401, 200})); // what is kept is tried once
    QTRY_COMPARE(logins_->credentials(row(LoginModel::Basic)).second, QByteArray("builder"));
    QCOMPARE(logins_->count(), 1);
}

void tst_LoginHandler::digestLoginIsGivenToDigestAlone()
{
    QVERIFY(logins_->keep("127.0.0.1", port(), LoginModel::Digest, "bob", "builder"));
    Browser browser(*logins_);
    QSignalSpy found(&browser.handler, &LoginHandler::loginFound);
    QCOMPARE(get(browser.manager, site_->address("/basic")), 401);
    QTRY_COMPARE(browser.questions.size(), 1); // once it is known that none fits
    QCOMPARE(get(browser.manager, site_->address("/basic")), 401);
    QCOMPARE(found.count(), 0);
    for (const TestSite::Request& request : site_->requests)
        QVERIFY(!request.headers.contains("authorization"));
}

void tst_LoginHandler::keptDigestLoginIsFound()
{
    QVERIFY(logins_->keep("127.0.0.1", port(), LoginModel::Digest, "alice", "old"));
    Browser browser(*logins_);
    QSignalSpy found(&browser.handler, &LoginHandler::loginFound);
    QCOMPARE(get(browser.manager, site_->address("/digest")), 401);
    QTRY_COMPARE(found.count(), 1);
    browser.answers = {{"alice", "wonderland"}};
    QCOMPARE(get(browser.manager, site_->address("/digest")), 200);
    QCOMPARE(browser.questions.size(), 1);
    QVERIFY(browser.questions.first().wasRefused);
    QCOMPARE(found.count(), 1); // not for one that has been tried
    QCOMPARE(logins_->credentials(row(LoginModel::Digest)).second, QByteArray("wonderland"));
}

void tst_LoginHandler::loginsOfOneServerAreKeptApart()
{
    Browser first(*logins_);
    first.answers = {{"bob", "builder"}};
    QCOMPARE(get(first.manager, site_->address("/basic")), 200);
    QTRY_COMPARE(logins_->count(), 1);
    first.answers = {{"alice", "wonderland"}};
    QCOMPARE(get(first.manager, site_->address("/digest")), 200);
    QTRY_COMPARE(logins_->count(), 2);
    QCOMPARE(logins_->credentials(row(LoginModel::Basic)).first, QByteArray("bob"));
    QCOMPARE(logins_->credentials(row(LoginModel::Digest)).first, QByteArray("alice"));
}

void tst_LoginHandler::bytesAreUtf8_data()
{
    wrongAnswerIsAskedAgain_data();
}

void tst_LoginHandler::bytesAreUtf8()
{
    QFETCH(QString, path);
    site_->basicUser = site_->digestUser = "j\xC3\xBCrgen \xE6\x9B\xB8";
    site_->basicPassword = site_->digestPassword = "p\xC3\xA4\xC3\x9F \xE2\x82\xAC";
    Browser browser(*logins_);
    browser.answers = {{utf8("j\xC3\xBCrgen \xE6\x9B\xB8"), "wrong"},
                       {utf8("j\xC3\xBCrgen \xE6\x9B\xB8"), utf8("p\xC3\xA4\xC3\x9F \xE2\x82\xAC")}};
    QCOMPARE(get(browser.manager, site_->address(path)), 200);
    QCOMPARE(browser.questions.last().user, utf8("j\xC3\xBCrgen \xE6\x9B\xB8"));
    QTRY_COMPARE(logins_->count(), 1);
    QCOMPARE(logins_->credentials(0).first, site_->basicUser);
    QCOMPARE(logins_->credentials(0).second, site_->basicPassword);
}

void tst_LoginHandler::tooLongLoginIsUsedButNotKept()
{
    site_->basicPassword = QByteArray(273, 'p');
    Browser browser(*logins_);
    QSignalSpy notKept(&browser.handler, &LoginHandler::loginNotKept);
    browser.answers = {{"bob", QString(273, 'p')}};
    QCOMPARE(get(browser.manager, site_->address("/basic")), 200);
    QTRY_COMPARE(notKept.count(), 1);
    QCOMPARE(logins_->count(), 0);
}

void tst_LoginHandler::noEventRunsMeanwhile()
{
    QNetworkAccessManager manager;
    bool hasRun = false;
    int rounds = 0;
    connect(&manager, &QNetworkAccessManager::authenticationRequired, this, [this, &hasRun] {
        hasRun = false;
        QMetaObject::invokeMethod(
            this, [&hasRun] { hasRun = true; }, Qt::QueuedConnection);
    });
    LoginHandler handler(*logins_);
    handler.attach(&manager);
    connect(&manager, &QNetworkAccessManager::authenticationRequired, this, [&hasRun, &rounds] {
        QVERIFY(!hasRun);
        ++rounds;
    });
    connect(&handler, &LoginHandler::loginRequired, this,
            [&handler](const LoginRequest& request) { handler.answer(request, "bob", "builder"); });
    QCOMPARE(get(manager, site_->address("/basic")), 200);
    QTRY_COMPARE(logins_->count(), 1);
    QCOMPARE(rounds, 1);
}

void tst_LoginHandler::forgottenAnswersAreAskedAgain()
{
    Browser browser(*logins_);
    browser.answers = {{"bob", "builder"}};
    QCOMPARE(get(browser.manager, site_->address("/basic")), 200);
    QTRY_COMPARE(logins_->count(), 1);
    logins_->clear();
    browser.handler.forget();
    browser.answers = {{"bob", "builder"}};
    QCOMPARE(get(browser.manager, site_->address("/basic")), 200);
    QCOMPARE(browser.questions.size(), 2);
}

// --- The proxy ---------------------------------------------------------------------------------------------

void tst_LoginHandler::useProxy()
{
    site_->isStrictProxy = true;
    preferences().setUseProxyInfo(1);
    QVERIFY(preferences().setProxyServerStr("127.0.0.1"));
    QVERIFY(preferences().setProxyHttpPortStr(QString::number(port())));
}

void tst_LoginHandler::proxyGetsTheLoginOfThePreferences()
{
    useProxy();
    preferences().setUseProxyCertificationInfo(1);
    QVERIFY(preferences().setProxyAccountStr("bob"));
    QVERIFY(preferences().setProxyPasswordStr("builder"));
    Browser browser(*logins_);
    QCOMPARE(get(browser.manager, "http://outside.example/page"), 200);
    QVERIFY(browser.questions.isEmpty());
    QCOMPARE(site_->answers("http://outside.example/page"), (QList<int>{407, 200}));
}

void tst_LoginHandler::proxyLoginIsAskedAndKept()
{
    useProxy();
    preferences().setUseProxyCertificationInfo(1);
    QVERIFY(preferences().setProxyAccountStr("bob"));
    QVERIFY(preferences().setProxyPasswordStr("old"));
    Browser browser(*logins_);
    QSignalSpy kept(&browser.handler, &LoginHandler::proxyLoginKept);
    site_->basicPassword = "gr\xC3\xBC\xC3\x9F";
    browser.answers = {{"bob", "wrong"}, {"bob", utf8("gr\xC3\xBC\xC3\x9F")}};
    QCOMPARE(get(browser.manager, "http://outside.example/page"), 200);
    QCOMPARE(browser.questions.size(), 2);
    QVERIFY(browser.questions.first().isProxy);
    QVERIFY(browser.questions.first().wasRefused);
    QCOMPARE(browser.questions.first().port, port());
    QCOMPARE(browser.questions.first().realm, QString("proxy"));
    QTRY_COMPARE(kept.count(), 1);
    QByteArray password;
    preferences().getProxyPasswordStr(&password);
    QCOMPARE(password, QByteArray("gr\xC3\xBC\xC3\x9F"));
    QCOMPARE(logins_->count(), 0);
    Browser next(*logins_);
    QCOMPARE(get(next.manager, "http://outside.example/page"), 200);
    QVERIFY(next.questions.isEmpty());
}

void tst_LoginHandler::proxyAsksNobodyForEver()
{
    useProxy();
    Browser browser(*logins_);
    browser.isStubborn = true;
    browser.answers = {{"bob", "a"}, {"bob", "b"}, {"bob", "c"}, {"bob", "d"}, {"bob", "e"}};
    QCOMPARE(get(browser.manager, "http://outside.example/page"), 407);
    QCOMPARE(browser.questions.size(), 3);
    QByteArray user;
    preferences().getProxyAccountStr(&user);
    QCOMPARE(user, QByteArray());
}

void tst_LoginHandler::tooLongProxyLoginIsNotKept()
{
    useProxy();
    site_->basicPassword = QByteArray(81, 'p');
    Browser browser(*logins_);
    QSignalSpy notKept(&browser.handler, &LoginHandler::loginNotKept);
    browser.answers = {{"bob", QString(81, 'p')}};
    QCOMPARE(get(browser.manager, "http://outside.example/page"), 200);
    QTRY_COMPARE(notKept.count(), 1);
    QCOMPARE(preferences().getUseProxyCertificationInfo(), char(0));
    QByteArray user;
    preferences().getProxyAccountStr(&user);
    QCOMPARE(user, QByteArray()); // nor half of it
}

TLVLIB_TEST_MAIN(tst_LoginHandler)
#include "tst_LoginHandler.moc"
