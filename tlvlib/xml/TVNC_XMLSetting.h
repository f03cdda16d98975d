#ifndef TLVLIB_XML_TVNC_XMLSETTING_H
#define TLVLIB_XML_TVNC_XMLSETTING_H

#include <tlvlib/util/tlvlib_export.h>
#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QString>
#include <QtCore/QXmlStreamAttributes>

TLVLIB_NO_VIRTUAL_DESTRUCTOR_BEGIN
/**
 * One settings document in memory, the base of every store: loads and saves it, numbers its records (the
 * root's children), finds, adds, replaces and deletes them.
 *
 * The root is null until the first load(). Every operation copes with that and then does nothing, unless told
 * otherwise below. Replaced roots and removed records are released with QObject::deleteLater(), each by
 * itself: pointers to them stay valid until the calling thread's event loop runs, and their memory comes back
 * only then. Until then a record that was let go has no parent, and may be added to another node or deleted.
 *
 * Nothing is reported as an error; every rejection is a line in the log and leaves the document as it was.
 * Nothing is thrown, here or in a store: an operation that memory does not suffice for answers as it refuses
 * (0 or false, null, an empty text, an output left as it was) and logs at level 1 "[TVNG_ifMemory] Fail",
 * unless told otherwise below. Some log texts name another operation than the one that writes them. They are
 * kept as they are, since the devices' log filters look for them. One thread uses a store.
 *
 * The numbering: setIDforChildren() gives the records the attribute "id" with their position as three digits,
 * "000" to "998". Records from position 999 on get no number and are neither counted nor found by number.
 *
 * The order of the virtual operations and the size of the object are part of the binary interface. There is
 * no virtual destructor, so a store is never deleted through a pointer to this class.
 */
class TLVLIB_EXPORT TVNC_XMLSetting
{
public:
    /// Starts without a root. Reads nothing.
    TVNC_XMLSetting();

    /// Logs at level 3 "[TVNC_XMLSetting::~TVNC_XMLSetting] 0x%X" with the low 32 bits of the root's address.
    ~TVNC_XMLSetting();

    /**
     * Replaces the document by the one in the file at @a path. A file that is missing, unreadable or without
     * an element gives an empty root; see TVNC_XMLReader for damaged files.
     *
     * Logs at level 3 "[TVNC_XMLSetting::loadBookmark] start" and "... end", whatever the store. An empty
     * path keeps the document and logs at level 2 "[TVNC_XMLSetting::load] Path is NULL or empty.". When
     * memory runs out, there is no root afterwards, so that no save replaces the file, and level 1 has
     * "[TVNC_XMLSetting::load] Fail".
     */
    virtual void load(QString& path);

    /**
     * Writes the document into the file at @a path, as TVNG_SetSafeSave() has it. Without a root the file
     * stays as it was. In place, write errors go unnoticed, except that a file which cannot be opened is
     * logged by TVNC_XMLWriter; where the file is replaced whole, TVNG_GetSaveError() tells them all.
     *
     * Logs at level 3 "[TVNC_XMLSetting::save] start" and "[TVNC_XMLSetting::saveBookmark] end", whatever the
     * store; for an empty path at level 2 "[TVNC_XMLSetting::save] Path is NULL or empty."; when there is no
     * memory to write with at level 1 "[TVNC_XMLSetting::save] Fail".
     */
    virtual void save(QString& path);

    /**
     * Counts the records of a name that can be reached by number: the numbers from 0 to the number of records
     * minus 1 whose first bearer is named @a name. 0 without a root. Time grows with the number of records.
     */
    virtual int getXMLRootNodeChildCntByName(QString& attributeName, QString& name);

    /**
     * Numbers the first 999 records by their position. Each loses every other attribute; later records keep
     * what they have. A null record is logged at level 1 as "[TVNC_XMLSetting::setIDforChildren] 0x%X Why
     * Pass??" with the root's address. Records whose number stands already cost next to nothing.
     */
    virtual void setIDforChildren(QString& attributeName);

    /// Removes the first record whose @a attributeName is the number @a si_id. Renumbers nothing.
    virtual void deleteXMLNodeByID(int si_id, QString& attributeName);

    /**
     * Replaces the root by an empty one; without a root, none is made.
     * Logs at level 3 "[TVNC_XMLSetting::deleteAllXMLNode] 0x%X" with the root's address.
     */
    virtual void deleteAllXMLNode();

    /**
     * Removes all records. The root, its name and its attributes stay.
     * Logs at level 3 "[TVNC_XMLSetting::deleteRootChildren] 0x%X" with the root's address, and at level 1
     * the same followed by " Why Pass??" for each null record, which stays.
     */
    virtual void deleteAllSetting();

    /**
     * Creates an element.
     *
     * @param pc_parent the element that owns it; null gives a detached node, which the caller owns
     * @param name its name
     * @param text its text
     * @param attributes its attributes, in their order
     * @param c_textType 0 for character data, 1 for a CDATA section
     * @param c_prepend 0 puts it last among the parent's children, any other value first
     * @return the element; null, logged at level 1 as "[TVNC_XMLSetting::addXMLChild] Fail", when memory ran
     * out
     */
    virtual TVNC_XMLNode* addXMLChild(TVNC_XMLNode* pc_parent, QString& name, QString& text, char& c_textType,
                                      QXmlStreamAttributes& attributes, char c_prepend);

    /// The root; null before the first load.
    TVNC_XMLNode* getXMLRootNode();

    /// Replaces the root, if any, by a new empty one. When memory runs out, there is none, and level 1 of the
    /// log has "[TVNC_XMLSetting::createXMLRootNode] Fail".
    void createXMLRootNode();

    /// The first child of this name of the root's first child of that name; null when either is missing.
    TVNC_XMLNode* getGrandchildNode(QString childName, QString grandchildName);

    /**
     * Sets an element that occurs once: the first child of @a name gets the text and the text type and keeps
     * its attributes. Where there is none, one is added with addXMLChild(), and only then @a attributes
     * count.
     *
     * @return the element; null for a null parent or when memory ran out
     */
    TVNC_XMLNode* setElement(TVNC_XMLNode* pc_parent, QString name, QString text,
                             QXmlStreamAttributes attributes, char c_textType, char c_prepend);

    /// The number of the root's children, named and numbered or not; 0 without a root.
    int getXMLNodeCnt();

private:
    Q_DISABLE_COPY(TVNC_XMLSetting)

    /// Makes a root of its own.
    friend class TVNC_ThumbnailConverter;

    TVNC_XMLNode* pc_root_;
};
TLVLIB_NO_VIRTUAL_DESTRUCTOR_END

#endif
