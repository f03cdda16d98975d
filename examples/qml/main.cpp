/*
 * Bookmarks and history in QML: the models of tlvlib/browser in two lists, on Qt 6, in one file.
 *
 *     qml-bookmarks DIR [--screenshot FILE]
 *
 * DIR is a profile such as the example browser "kiosk" makes. A click opens a page in the machine's browser.
 */

#include <tlvlib/browser/Profile.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQml/QQmlContext>
#include <QtQuick/QQuickWindow>

#include <cstdio>

namespace {

const char WINDOW[] = R"QML(
import QtQuick

Window {
    id: window
    width: 800; height: 480
    visible: true
    title: "Bookmarks and history"
    color: "#f4f6f8"

    component Title: Text { color: "#27435c"; font { pixelSize: 18; bold: true } }

    Column {
        anchors { fill: parent; margins: 12 }
        spacing: 8

        Title { text: "Bookmarks (" + bookmarks.count + ")" }

        GridView {
            width: parent.width; height: 190
            clip: true
            cellWidth: 180; cellHeight: 164
            model: bookmarks
            delegate: Column {
                required property int index
                required property string title
                required property url pictureUrl
                required property string url

                Rectangle {
                    width: 162; height: 122
                    border.color: "#b8c0c8"
                    // Loads when it is scrolled to, in a thread of its own.
                    Image { anchors { fill: parent; margins: 1 } source: pictureUrl; asynchronous: true }
                    TapHandler { onTapped: Qt.openUrlExternally(url) }
                    TapHandler { acceptedButtons: Qt.RightButton; onTapped: bookmarks.remove(index) }
                }
                Text { width: 162; text: title; textFormat: Text.PlainText; elide: Text.ElideRight }
            }
        }

        Title { text: "History (" + visits.count + ")" }

        ListView {
            width: parent.width; height: window.height - 280
            clip: true
            model: visits
            delegate: Row {
                required property date dateTime
                required property string title
                required property string url

                spacing: 12
                Text { width: 150; text: Qt.formatDateTime(dateTime, "yyyy-MM-dd hh:mm") }
                Text { width: 250; text: title; textFormat: Text.PlainText; elide: Text.ElideRight }
                Text {
                    width: 340; text: url; textFormat: Text.PlainText; elide: Text.ElideMiddle
                    TapHandler { onTapped: Qt.openUrlExternally(url) }
                }
            }
        }
    }
}
)QML";

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addPositionalArgument("DIR", "The profile; made when it is missing.");
    parser.addOption({"screenshot", "Save a picture of the window once it is shown, and end.", "FILE"});
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);

    Tlv::Profile profile;
    if (!profile.open(parser.positionalArguments().first())) {
        std::fprintf(stderr, "qml-bookmarks: %s\n", qPrintable(profile.errorString()));
        return EXIT_FAILURE;
    }
    QQmlApplicationEngine engine;
    engine.rootContext()->setContextProperty("bookmarks", profile.bookmarks());
    engine.rootContext()->setContextProperty("visits", profile.history());
    engine.loadData(WINDOW);
    if (engine.rootObjects().isEmpty())
        return EXIT_FAILURE;

    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    if (parser.isSet("screenshot")) {
        QTimer::singleShot(500, window, [&] { // the pictures are there by then
            const bool isSaved = window->grabWindow().save(parser.value("screenshot"), "PNG");
            QCoreApplication::exit(isSaved ? EXIT_SUCCESS : EXIT_FAILURE);
        });
    }
    return application.exec();
}
