#include "tlvlib/thumbs/TVNC_ThumbnailConverter.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"

#include <QtCore/QFile>

namespace {

const char CHARACTER_DATA = 0;
const char CDATA_SECTION = 1;

/// The names in the document, decoded once. Never destroyed, so that they outlive the converter.
struct Names
{
    Names()
        : root(QEXC_TextCodec::fromSJIS("thumbnail"))
        , docInfo(QEXC_TextCodec::fromSJIS("docInfo"))
        , version(QEXC_TextCodec::fromSJIS("1.0"))
        , image(QEXC_TextCodec::fromSJIS("image"))
        , src(QEXC_TextCodec::fromSJIS("src"))
        , png(QEXC_TextCodec::fromSJIS("*.png"))
    {
    }
    QString root;
    QString docInfo;
    QString version;
    QString image;
    QString src;
    QString png;
};

Names& names()
{
    static Names* const pc_names = new Names;
    return *pc_names;
}

} // namespace

TVNC_ThumbnailConverter::TVNC_ThumbnailConverter() {}

TVNC_ThumbnailConverter::~TVNC_ThumbnailConverter() {}

TVNC_ThumbnailConverter* TVNC_ThumbnailConverter::getInstance()
{
    static TVNC_ThumbnailConverter instance;
    return &instance;
}

void TVNC_ThumbnailConverter::encode_base64(QString& path, QByteArray& out)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] Couldn't open thumbnail for reading.");
        return;
    }
    out = file.readAll().toBase64();
}

bool TVNC_ThumbnailConverter::decode_base64(QByteArray& base64, QString& path)
{
    // Before the file is touched: one that is there is not lost to a text without any letter of base64.
    const QByteArray bytes = QByteArray::fromBase64(base64);
    if (bytes.isEmpty()) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] thumbnail is empty.");
        return false;
    }
    TVNC_SavedFile file(path);
    if (!file.open()) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] Couldn't open thumbnail for writing.");
        return false;
    }
    file.device().write(bytes);
    if (!file.commit()) {
        TVNG_DebugPrint(2, "[TVNC_ThumbnailConverter] Couldn't replace thumbnail.");
        return false;
    }
    return true;
}

void TVNC_ThumbnailConverter::setThumbnail(QString& base64Text, QString& src, TVNC_XMLNode* pc_root)
{
    if (!pc_root) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::setThumbnail] pc_XMLRootNode is Null.");
        return;
    }
    QXmlStreamAttributes attributes;
    attributes.append(names().src, src);
    char c_textType = CDATA_SECTION;
    TVNC_XMLSetting::addXMLChild(pc_root, names().image, base64Text, c_textType, attributes, 0);
}

void TVNC_ThumbnailConverter::convertThumbnailPngToXML(char* pc_pngDir, char* pc_xmlPath)
{
    if (!pc_pngDir || !pc_xmlPath) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailPngToXML] Invalid Parameter.");
        return;
    }
    QString pngDir = TVNG_fromCString(pc_pngDir);
    QString xmlPath = TVNG_fromCString(pc_xmlPath);

    QString noText;
    char c_textType = CHARACTER_DATA;
    QXmlStreamAttributes docInfo;
    docInfo.append(names().docInfo, names().version);
    TVNC_XMLNode* pc_root =
        TVNC_XMLSetting::addXMLChild(nullptr, names().root, noText, c_textType, docInfo, 1);
    if (!pc_root)
        return;
    if (pc_XMLRootNode)
        pc_XMLRootNode->deleteLater();
    pc_XMLRootNode = pc_root;

    QStringList filter(names().png);
    const QStringList files = getFileList(
        pngDir, filter, QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot, QDir::Name | QDir::Reversed);
    for (int i = 0; i < files.size(); ++i) {
        QString name = files.at(i);
        QString path = pngDir + name;
        QByteArray base64;
        encode_base64(path, base64);
        const QList<TVNC_XMLNode*>& images = TVNC_NodeAccess::children(*pc_root);
        const int si_before = static_cast<int>(images.size());
        setThumbnail(noText, name, pc_root);
        if (images.size() > si_before && !base64.isEmpty())
            TVNC_NodeAccess::setPackedText(*images.last(), base64.constData(),
                                           static_cast<int>(base64.size()));
    }
    TVNC_XMLSetting::save(xmlPath);
    TVNC_XMLSetting::deleteAllXMLNode();
}

void TVNC_ThumbnailConverter::convertThumbnailXMLToPng(char* pc_xmlPath, char* pc_pngDir)
{
    if (!pc_xmlPath || !pc_pngDir) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailXMLToPng] Invalid Parameter.");
        return;
    }
    QString xmlPath = TVNG_fromCString(pc_xmlPath);
    QString pngDir = TVNG_fromCString(pc_pngDir);
    TVNC_XMLSetting::load(xmlPath);
    TVNC_XMLNode* pc_root = TVNC_XMLSetting::getXMLRootNode();
    if (!pc_root)
        return;
    const QList<TVNC_XMLNode*>& images = TVNC_NodeAccess::children(*pc_root);
    for (int i = 0; i < images.size(); ++i) {
        TVNC_XMLNode* pc_image = images.at(i);
        if (!pc_image) {
            TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] XMLNode is Null.");
            break;
        }
        if (pc_image->getName() != names().image || pc_image->getTextType() != CDATA_SECTION)
            continue;
        // A picture's text is packed, unless it is very small or something else.
        QByteArray base64 = TVNC_NodeAccess::packedText(*pc_image);
        if (base64.isNull())
            base64 = pc_image->getText().toUtf8();
        QString path = pngDir + TVNC_NodeAccess::attributes(*pc_image).value(names().src).toString();
        decode_base64(base64, path);
    }
    TVNC_XMLSetting::deleteAllXMLNode();
}

QStringList TVNC_ThumbnailConverter::getFileList(QString& dir, QStringList& nameFilters,
                                                 QFlags<QDir::Filter> filters, QFlags<QDir::SortFlag> sort)
{
    return QDir(dir).entryList(nameFilters, filters, sort);
}
