#include "tools/tlvctl/bookmarks/BookmarkFile.h"

#include "tools/tlvctl/records/Document.h"
#include "tools/tlvctl/records/Record.h"

#include <QtCore/QXmlStreamWriter>

namespace {

const char DOCUMENT_TYPE[] =
    "<!DOCTYPE xbel PUBLIC \"+//IDN python.org//DTD XML Bookmark Exchange Language 1.0//EN//XML\" "
    "\"http://pyxml.sourceforge.net/topics/dtds/xbel-1.0.dtd\">";

void add(TVNC_XMLNode& node, BookmarkFile& file)
{
    const QString& name = node.getName();
    if (name == "folder")
        ++file.folders;
    else if (name == "alias")
        ++file.others;
    else if (name == "bookmark")
        file.bookmarks.push_back({plainTitle(textOf(node, "title").value_or(QString())),
                                  node.getAttribute().value("href").toString().trimmed(), QByteArray()});
}

} // namespace

QByteArray writeXbel(const std::vector<FiledBookmark>& bookmarks)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDTD(DOCUMENT_TYPE);
    xml.writeStartElement("xbel");
    xml.writeAttribute("version", "1.0");
    xml.writeTextElement("title", "Bookmarks");
    for (const FiledBookmark& bookmark : bookmarks) {
        xml.writeStartElement("bookmark");
        xml.writeAttribute("href", bookmark.href);
        xml.writeTextElement("title", bookmark.title);
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    return bytes;
}

BookmarkFile readXbel(const QString& path)
{
    BookmarkFile file;
    // The library's own reader: it has been made for documents of any size and depth, and for hostile ones.
    const Document document = readDocument(path);
    if (document.state == Document::State::DAMAGED)
        file.problem = "is " + describe(document.damage);
    else if (!document.root || document.root->getName() != "xbel")
        file.problem = "is no XBEL: its root is not \"xbel\"";
    else
        walkTree(
            *document.root, [&file](TVNC_XMLNode& node, int) { add(node, file); }, [](TVNC_XMLNode&) {});
    return file;
}
