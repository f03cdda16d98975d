#include "tlvlib/thumbs/TVNC_ThumbnailConverter.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/files/TVNG_SafeSave.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/QEXC_TextCodec.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_immortal.h"
#include "tlvlib/util/TVNG_memory.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_PackedText.h"
#include "tlvlib/xml/TVNG_Records.h"
#include "tlvlib/xml/TVNG_nodes.h"

#include <QtCore/QFile>

namespace {

/// The names in the document.
struct PackNames
{
    QString root = QEXC_TextCodec::fromSJIS("thumbnail");
    QString image = QEXC_TextCodec::fromSJIS("image");
    QString src = QEXC_TextCodec::fromSJIS("src");
    QString png = QEXC_TextCodec::fromSJIS("*.png");
};

PackNames& packNames()
{
    return TVNG_immortal<PackNames>();
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
    if (base64.isEmpty()) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] thumbnail is empty.");
        return false;
    }
    TVNC_SavedFile file(path);
    if (!file.open()) {
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] Couldn't open thumbnail for writing.");
        return false;
    }
    // A text without a letter of base64 gives an empty file.
    file.device().write(QByteArray::fromBase64(base64));
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
    attributes.append(packNames().src, src);
    char c_textType = TVNG_CDATA_SECTION;
    TVNC_XMLSetting::addXMLChild(pc_root, packNames().image, base64Text, c_textType, attributes, 0);
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
    char c_textType = TVNG_CHARACTER_DATA;
    QXmlStreamAttributes docInfo = TVNG_docInfo();
    TVNC_XMLNode* pc_root =
        TVNC_XMLSetting::addXMLChild(nullptr, packNames().root, noText, c_textType, docInfo, 1);
    if (!pc_root)
        return;
    TVNG_release(pc_root_);
    pc_root_ = pc_root;

    const bool b_complete = TVNG_hasMemoryFor([&] {
        QStringList filter(packNames().png);
        const QStringList files =
            getFileList(pngDir, filter, QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot,
                        QDir::Name | QDir::Reversed);
        for (int i = 0; i < files.size(); ++i) {
            QString name = files.at(i);
            QString path = pngDir + name;
            QByteArray base64;
            encode_base64(path, base64);
            QList<TVNC_XMLNode*>& images = TVNC_NodeAccess::children(*pc_root);
            const int si_before = static_cast<int>(images.size());
            setThumbnail(noText, name, pc_root);
            if (images.size() > si_before && !base64.isEmpty())
                TVNC_NodeAccess::setPackedText(
                    *images.last(),
                    TVNC_PackedText::pack(base64.constData(), static_cast<int>(base64.size())));
        }
    });
    if (b_complete)
        TVNC_XMLSetting::save(xmlPath);
    else
        TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailPngToXML] Fail");
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
    QString saveError; // the first one tells of the whole pack
    for (int i = 0; i < images.size(); ++i) {
        TVNC_XMLNode* pc_image = images.at(i);
        if (!pc_image) {
            TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter] XMLNode is Null.");
            break;
        }
        if (pc_image->getName() != packNames().image || pc_image->getTextType() != TVNG_CDATA_SECTION)
            continue;
        const bool b_decoded = TVNG_hasMemoryFor([&] {
            QByteArray base64 = TVNC_NodeAccess::isTextPacked(*pc_image)
                                    ? TVNC_PackedText::bytes(TVNC_NodeAccess::text(*pc_image))
                                    : pc_image->getText().toUtf8();
            QString path = pngDir + TVNC_NodeAccess::attributes(*pc_image).value(packNames().src).toString();
            if (!decode_base64(base64, path) && !base64.isEmpty() && saveError.isEmpty())
                saveError = TVNG_GetSaveError();
        });
        if (!b_decoded)
            TVNG_DebugPrint(1, "[TVNC_ThumbnailConverter::convertThumbnailXMLToPng] Fail");
    }
    if (!saveError.isEmpty())
        TVNG_setSaveError(saveError);
    TVNC_XMLSetting::deleteAllXMLNode();
}

QStringList TVNC_ThumbnailConverter::getFileList(QString& dir, QStringList& nameFilters,
                                                 QFlags<QDir::Filter> filters, QFlags<QDir::SortFlag> sort)
{
    return QDir(dir).entryList(nameFilters, filters, sort);
}
