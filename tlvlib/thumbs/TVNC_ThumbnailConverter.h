#ifndef TLVLIB_THUMBS_TVNC_THUMBNAILCONVERTER_H
#define TLVLIB_THUMBS_TVNC_THUMBNAILCONVERTER_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QString>
#include <QtCore/QStringList>

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * Packs the PNG files of a directory into one XML document, and unpacks them again:
 *
 * @code
 * <?xml version="1.0" encoding="UTF-8"?>
 * <thumbnail docInfo="1.0">
 *     <image src="000010.PNG"><![CDATA[iVBORw0KGgo...]]></image>
 *     <image src="000002.PNG"><![CDATA[iVBORw0KGgo...]]></image>
 * </thumbnail>
 * @endcode
 *
 * Each "image" holds a file's name and, in base64 without line breaks, its bytes. Nothing looks at whether
 * they are a picture. Names lose what a document cannot hold, such as most control characters, and files are
 * then unpacked under other names than they had. The whole pack is in memory meanwhile: less than three times
 * the bytes of the files, which come back when the thread's event loop runs.
 *
 * Nothing is kept between two conversions. Paths are joined as they are, so directories end in "/". Failures
 * are log lines, all at level 1 but those of the setting base.
 */
class TLVLIB_EXPORT TVNC_ThumbnailConverter : public TVNC_XMLSetting
{
public:
    /// The one converter of the process, made on first use.
    static TVNC_ThumbnailConverter* getInstance();

    /**
     * Reads a file and gives its bytes in base64. One that cannot be opened leaves @a out as it was and logs
     * "[TVNC_ThumbnailConverter] Couldn't open thumbnail for reading.".
     */
    void encode_base64(QString& path, QByteArray& out);

    /**
     * Writes the bytes that a base64 text holds into a file, replacing it. What is no letter of base64 is
     * skipped, so a text without a letter makes an empty file. Errors while writing go unnoticed, but in the
     * mode that TVNG_SetSafeSave() switches on.
     *
     * @return false, with the file as it was, for an empty text, logged as "[TVNC_ThumbnailConverter]
     * thumbnail is empty.", for a file that cannot be opened, logged as "[TVNC_ThumbnailConverter] Couldn't
     * open thumbnail for writing.", and for one that could not be replaced whole, logged at level 2 as
     * "[TVNC_ThumbnailConverter] Couldn't replace thumbnail."
     */
    bool decode_base64(QByteArray& base64, QString& path);

    /**
     * Adds an "image" at the end of @a pc_root. A null root is logged as
     * "[TVNC_ThumbnailConverter::setThumbnail] pc_XMLRootNode is Null.".
     *
     * @param base64Text the file's bytes in base64, without line breaks
     * @param src        the file's name
     * @param pc_root    the pack
     */
    void setThumbnail(QString& base64Text, QString& src, TVNC_XMLNode* pc_root);

    /**
     * Packs the files of a directory whose names end in ".png", in small or capital letters, the last name
     * first. Hidden files, directories and symbolic links are left out. A file that cannot be read, or has no
     * bytes, becomes an empty "image", which is not unpacked again. A null argument is logged as
     * "[TVNC_ThumbnailConverter::convertThumbnailPngToXML] Invalid Parameter.".
     *
     * @param pc_pngDir  the directory, in ASCII and with "/" at its end
     * @param pc_xmlPath the pack's full path, in ASCII
     */
    void convertThumbnailPngToXML(char* pc_pngDir, char* pc_xmlPath);

    /**
     * Unpacks a document, whatever its root. Only an "image" whose text is a CDATA section is unpacked; one
     * that fails does not stop the others. "src" is joined to the directory as it is and may name a file
     * elsewhere: look at packs of doubtful origin first, as docs/integration.md tells.
     *
     * A null argument is logged as "[TVNC_ThumbnailConverter::convertThumbnailXMLToPng] Invalid Parameter.".
     * A null child of the root ends the unpacking and is logged as "[TVNC_ThumbnailConverter] XMLNode is
     * Null.".
     *
     * @param pc_xmlPath the pack's full path, in ASCII
     * @param pc_pngDir  the directory, in ASCII and with "/" at its end
     */
    void convertThumbnailXMLToPng(char* pc_xmlPath, char* pc_pngDir);

    /// The names of a directory's entries, as QDir lists them.
    QStringList getFileList(QString& dir, QStringList& nameFilters, QFlags<QDir::Filter> filters,
                            QFlags<QDir::SortFlag> sort);

private:
    TVNC_ThumbnailConverter();
    ~TVNC_ThumbnailConverter();
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
