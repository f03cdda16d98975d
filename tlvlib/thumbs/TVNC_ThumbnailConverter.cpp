#include "tlvlib/thumbs/TVNC_ThumbnailConverter.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/files/TVNG_SafeSave.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_literal.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_PackedText.h"
#include "tlvlib/xml/TVNG_Records.h"
#include "tlvlib/xml/TVNG_nodes.h"

#include <QtCore/QFile>

#include <cerrno>

namespace {

/// The names in the document.
struct PackNames
{
    QString root = TVNG_literal("thumbnail");
    QString image = TVNG_literal("image");
    QString src = TVNG_literal("src");
    QString extension = TVNG_literal(".png");
};

PackNames& packNames()
{
    return TVNG_immortal<PackNames>();
}

// The operations' own work, for the conversions. When memory runs out, they throw: a pack without a picture
// must not replace one that has it.

void encode(const QString& path, QByteArray& out)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] Couldn't open thumbnail for reading.");
        return;
    }
    out = file.readAll().toBase64();
}

bool decode(const QByteArray& base64, const QString& path)
{
    if (base64.isEmpty()) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] thumbnail is empty.");
        return false;
    }
    // A text without a letter of base64 gives an empty file.
    const QByteArray bytes = QByteArray::fromBase64(base64);
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

/// Null when there was no memory for the element.
TVNC_XMLNode* addImage(TVNC_XMLSetting& setting, TVNC_XMLNode& root, QString& base64Text, const QString& src)
{
    QXmlStreamAttributes attributes;
    attributes.append(packNames().src, src);
    char c_textType = TVNG_CDATA_SECTION;
    return setting.addXMLChild(&root, packNames().image, base64Text, c_textType, attributes, 0);
}

/// The names of the pictures in a directory, the last one first.
QStringList picturesIn(const QString& dir)
{
    errno = 0;
    const QStringList files = QDir(dir).entryList(QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot,
                                                  QDir::Name | QDir::Reversed);
    // Qt tells in no other way that it had no memory to open the directory. When names were found, the same
    // error only means that realloc() took another way. A filter of Qt's finds nothing without memory and
    // does not tell, so none is used.
    if (files.isEmpty() && errno == ENOMEM)
        qBadAlloc();
    QStringList pictures;
    for (int i = 0; i < files.size(); ++i) {
        if (files.at(i).endsWith(packNames().extension, Qt::CaseInsensitive))
            pictures.append(files.at(i));
    }
    return pictures;
}

/// Adds the pictures of a directory to a pack.
void addImages(TVNC_XMLSetting& setting, TVNC_XMLNode& root, const QString& dir)
{
    const QStringList pictures = picturesIn(dir);
    for (int i = 0; i < pictures.size(); ++i) {
        QByteArray base64;
        encode(dir + pictures.at(i), base64);
        QString noText;
        TVNC_XMLNode* pc_image = addImage(setting, root, noText, pictures.at(i));
        if (!pc_image)
            qBadAlloc();
        else if (!base64.isEmpty())
            TVNC_NodeAccess::setPackedText(
                *pc_image, TVNC_PackedText::pack(base64.constData(), static_cast<int>(base64.size())));
    }
}

/// The base64 of an image, as long as it stays as it is.
QByteArray base64Of(TVNC_XMLNode& image)
{
    if (TVNC_NodeAccess::isTextPacked(image))
        return TVNC_PackedText::bytes(TVNC_NodeAccess::storedText(image));
    return TVNC_NodeAccess::text(image).toUtf8();
}

/// Writes the file of an image. True also for one without a text, which stays away.
bool unpack(TVNC_XMLNode& image, const QString& dir)
{
    const QByteArray base64 = base64Of(image);
    const QString path = dir + TVNC_NodeAccess::attributes(image).value(packNames().src).toString();
    return decode(base64, path) || base64.isEmpty();
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
    TVNG_ifMemory([&] { encode(path, out); });
}

bool TVNC_ThumbnailConverter::decode_base64(QByteArray& base64, QString& path)
{
    bool b_decoded = false;
    TVNG_saveIfMemory([&] { b_decoded = decode(base64, path); });
    return b_decoded;
}

void TVNC_ThumbnailConverter::setThumbnail(QString& base64Text, QString& src, TVNC_XMLNode* pc_root)
{
    if (!pc_root) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::setThumbnail] pc_XMLRootNode is Null.");
        return;
    }
    TVNG_ifMemory([&] { addImage(*this, *pc_root, base64Text, src); });
}

void TVNC_ThumbnailConverter::convertThumbnailPngToXML(char* pc_pngDir, char* pc_xmlPath)
{
    if (!pc_pngDir || !pc_xmlPath) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailPngToXML] Invalid Parameter.");
        return;
    }
    const bool b_complete = TVNG_hasMemoryToSave([&] {
        QString xmlPath = TVNG_fromCString(pc_xmlPath);
        QString noText;
        char c_textType = TVNG_CHARACTER_DATA;
        QXmlStreamAttributes docInfo = TVNG_docInfo();
        TVNC_XMLNode* pc_root =
            TVNC_XMLSetting::addXMLChild(nullptr, packNames().root, noText, c_textType, docInfo, 1);
        if (!pc_root) {
            TVNG_setNoMemoryToSave();
            return;
        }
        TVNG_release(pc_root_);
        pc_root_ = pc_root;
        addImages(*this, *pc_root, TVNG_fromCString(pc_pngDir));
        TVNC_XMLSetting::save(xmlPath);
        TVNC_XMLSetting::deleteAllXMLNode();
    });
    if (b_complete)
        return;
    TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailPngToXML] Fail");
    TVNC_XMLSetting::deleteAllXMLNode();
}

void TVNC_ThumbnailConverter::convertThumbnailXMLToPng(char* pc_xmlPath, char* pc_pngDir)
{
    if (!pc_xmlPath || !pc_pngDir) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailXMLToPng] Invalid Parameter.");
        return;
    }
    TVNG_saveIfMemory([&] {
        QString xmlPath = TVNG_fromCString(pc_xmlPath);
        QString pngDir = TVNG_fromCString(pc_pngDir);
        TVNC_XMLSetting::load(xmlPath);
        TVNC_XMLNode* pc_root = TVNC_XMLSetting::getXMLRootNode();
        if (!pc_root) {
            if (!xmlPath.isEmpty()) // then the load would have made one
                TVNG_setNoMemoryToSave();
            return;
        }
        const QList<TVNC_XMLNode*>& images = TVNC_NodeAccess::children(*pc_root);
        QString saveError; // the first one tells of the whole pack
        for (int i = 0; i < images.size(); ++i) {
            TVNC_XMLNode* pc_image = images.at(i);
            if (!pc_image) {
                TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] XMLNode is Null.");
                break;
            }
            if (pc_image->getName() != packNames().image || pc_image->getTextType() != TVNG_CDATA_SECTION)
                continue;
            bool b_done = false; // true also when there was nothing to do
            if (!TVNG_hasMemoryToSave([&] { b_done = unpack(*pc_image, pngDir); }))
                TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailXMLToPng] Fail");
            if (!b_done && saveError.isEmpty())
                saveError = TVNG_GetSaveError();
        }
        if (!saveError.isEmpty())
            TVNG_setSaveError(saveError);
        TVNC_XMLSetting::deleteAllXMLNode();
    });
}

QStringList TVNC_ThumbnailConverter::getFileList(QString& dir, QStringList& nameFilters,
                                                 QFlags<QDir::Filter> filters, QFlags<QDir::SortFlag> sort)
{
    return TVNG_ifMemory(QStringList(), [&] { return QDir(dir).entryList(nameFilters, filters, sort); });
}
