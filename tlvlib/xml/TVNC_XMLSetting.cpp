#include "tlvlib/xml/TVNC_XMLSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNG_openFile.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/xml/TVNC_CanonicalReader.h"
#include "tlvlib/xml/TVNC_CanonicalWriter.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNC_XMLReader.h"
#include "tlvlib/xml/TVNC_XMLWriter.h"
#include "tlvlib/xml/TVNG_newXMLNode.h"

#include <QtCore/QBitArray>
#include <QtCore/QFile>

#include <new>

namespace {

/**
 * The root of the document in a file, as TVNC_XMLReader::read() gives it: null only when memory ran out. A
 * document in the library's own form is read the fast way. Nobody has a reader here whose state could be
 * asked for afterwards.
 */
TVNC_XMLNode* readDocument(QString& path)
{
    try {
        QFile file(path);
        if (TVNG_openForReading(file)) {
            if (TVNC_XMLNode* pc_root = TVNC_CanonicalReader::read(file))
                return pc_root;
            TVNC_XMLReader reader;
            TVNC_XMLNode* const pc_root = reader.read(file);
            if (pc_root || reader.error() == QXmlStreamReader::CustomError)
                return pc_root;
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return TVNG_newXMLNode(nullptr, 0);
}

/// Has a root, or none, deleted later. False when there is no memory for that.
bool isReleased(TVNC_XMLNode* pc_root)
{
    try {
        if (pc_root)
            pc_root->deleteLater();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Writes as TVNC_XMLWriter::write() does, and a tree of the stores' kind the fast way.
void writeDocument(QString& path, TVNC_XMLNode* pc_root)
{
    if (!pc_root)
        return;
    try {
        QFile file(path);
        if (!TVNG_openForWriting(file))
            return;
        if (TVNC_CanonicalWriter::takes(*pc_root))
            TVNC_CanonicalWriter::write(file, *pc_root);
        else
            TVNC_XMLWriter().write(file, pc_root);
    } catch (const std::bad_alloc&) {
        // Goes unnoticed, as every error of writing does.
    }
}

} // namespace

TVNC_XMLSetting::TVNC_XMLSetting() : pc_XMLRootNode(nullptr) {}

TVNC_XMLSetting::~TVNC_XMLSetting()
{
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::~TVNC_XMLSetting] 0x%X", TVNG_low32(pc_XMLRootNode));
    if (pc_XMLRootNode)
        pc_XMLRootNode->deleteLater();
    pc_XMLRootNode = nullptr;
}

void TVNC_XMLSetting::load(QString& path)
{
    if (path.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_XMLSetting::load] Path is NULL or empty.");
        return;
    }
    // Here and in save(), the texts name the bookmarks whichever store is at work. Log filters rely on them.
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::loadBookmark] start");
    // Without memory for a new document the one that is there stays.
    TVNC_XMLNode* const pc_root = readDocument(path);
    if (pc_root && isReleased(pc_XMLRootNode))
        pc_XMLRootNode = pc_root;
    else
        delete pc_root;
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::loadBookmark] end");
}

void TVNC_XMLSetting::save(QString& path)
{
    if (path.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_XMLSetting::save] Path is NULL or empty.");
        return;
    }
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::save] start");
    writeDocument(path, pc_XMLRootNode);
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::saveBookmark] end");
}

int TVNC_XMLSetting::getXMLRootNodeChildCntByName(QString& attributeName, QString& name)
{
    if (!pc_XMLRootNode)
        return 0;
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(*pc_XMLRootNode);
    const int si_size = static_cast<int>(children.size());
    if (si_size <= TVNC_RecordNumbers::LIMIT && TVNC_NodeAccess::isNumbered(*pc_XMLRootNode) &&
        attributeName == TVNC_RecordNumbers::usualName()) {
        int si_named = 0;
        for (int i = 0; i < si_size; ++i)
            si_named += TVNC_NodeAccess::name(*children.at(i)) == name ? 1 : 0;
        return si_named;
    }
    // Only a number's first bearer counts, as in a look-up by number.
    QBitArray taken(si_size);
    int si_count = 0;
    for (int i = 0; i < si_size; ++i) {
        TVNC_XMLNode* pc_child = children.at(i);
        int si_number = 0;
        if (!pc_child ||
            !TVNC_RecordNumbers::read(TVNC_NodeAccess::attributes(*pc_child), attributeName, si_number))
            continue;
        if (si_number < 0 || si_number >= si_size || taken.testBit(si_number))
            continue;
        taken.setBit(si_number);
        if (TVNC_NodeAccess::name(*pc_child) == name)
            ++si_count;
    }
    return si_count;
}

void TVNC_XMLSetting::setIDforChildren(QString& attributeName)
{
    if (!pc_XMLRootNode)
        return;
    const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(*pc_XMLRootNode);
    int si_size = static_cast<int>(children.size());
    if (si_size > TVNC_RecordNumbers::LIMIT)
        si_size = TVNC_RecordNumbers::LIMIT;
    TVNC_RecordNumbers numbers(attributeName);
    bool b_numbered = attributeName == TVNC_RecordNumbers::usualName();
    for (int i = 0; i < si_size; ++i) {
        TVNC_XMLNode* pc_child = children.at(i);
        if (!pc_child) {
            b_numbered = false;
            TVNG_DebugPrint(1, "[TVNC_XMLSetting::setIDforChildren] 0x%X Why Pass??",
                            TVNG_low32(pc_XMLRootNode));
            continue;
        }
        numbers.give(*pc_child, i);
        b_numbered = b_numbered && !TVNC_NodeAccess::hasExposedAttributes(*pc_child);
    }
    TVNC_NodeAccess::setNumbered(*pc_XMLRootNode, b_numbered);
}

void TVNC_XMLSetting::deleteXMLNodeByID(int si_id, QString& attributeName)
{
    if (!pc_XMLRootNode)
        return;
    TVNC_XMLNode* pc_child = pc_XMLRootNode->getXMLNodeChildByID(si_id, attributeName);
    if (!pc_child)
        return;
    pc_XMLRootNode->removeXMLNode(pc_child);
    pc_child->deleteLater();
}

void TVNC_XMLSetting::deleteAllXMLNode()
{
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::deleteAllXMLNode] 0x%X", TVNG_low32(pc_XMLRootNode));
    if (pc_XMLRootNode)
        createXMLRootNode();
}

void TVNC_XMLSetting::deleteAllSetting()
{
    // The text keeps the operation's older name.
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::deleteRootChildren] 0x%X", TVNG_low32(pc_XMLRootNode));
    if (!pc_XMLRootNode)
        return;
    const QList<TVNC_XMLNode*> removed = TVNC_NodeAccess::takeChildren(*pc_XMLRootNode);
    if (removed.isEmpty())
        return;
    for (int i = 0; i < removed.size(); ++i) {
        if (removed.at(i))
            continue;
        TVNG_DebugPrint(1, "[TVNC_XMLSetting::deleteRootChildren] 0x%X Why Pass??",
                        TVNG_low32(pc_XMLRootNode));
        TVNC_NodeAccess::children(*pc_XMLRootNode).append(nullptr);
    }
    TVNC_NodeAccess::deleteLater(removed, TVNG_newXMLNode(nullptr, 0));
}

TVNC_XMLNode* TVNC_XMLSetting::addXMLChild(TVNC_XMLNode* pc_parent, QString& name, QString& text,
                                           char& c_textType, QXmlStreamAttributes& attributes, char c_prepend)
{
    TVNC_XMLNode* pc_child = TVNG_newXMLNode(pc_parent, c_prepend);
    if (!pc_child) {
        TVNG_DebugPrint(1, "[TVNC_XMLSetting::addXMLChild] Fail");
        return nullptr;
    }
    pc_child->setName(name);
    pc_child->setText(text);
    pc_child->setTextType(c_textType);
    pc_child->setAttribute(attributes);
    return pc_child;
}

TVNC_XMLNode* TVNC_XMLSetting::getXMLRootNode()
{
    return pc_XMLRootNode;
}

void TVNC_XMLSetting::createXMLRootNode()
{
    if (pc_XMLRootNode)
        pc_XMLRootNode->deleteLater();
    pc_XMLRootNode = new TVNC_XMLNode(nullptr, 0);
}

TVNC_XMLNode* TVNC_XMLSetting::getGrandchildNode(QString childName, QString grandchildName)
{
    if (!pc_XMLRootNode)
        return nullptr;
    TVNC_XMLNode* pc_child = pc_XMLRootNode->getXMLNodeChildByName(childName);
    return pc_child ? pc_child->getXMLNodeChildByName(grandchildName) : nullptr;
}

TVNC_XMLNode* TVNC_XMLSetting::setElement(TVNC_XMLNode* pc_parent, QString name, QString text,
                                          QXmlStreamAttributes attributes, char c_textType, char c_prepend)
{
    if (!pc_parent)
        return nullptr;
    if (TVNC_XMLNode* pc_element = pc_parent->getXMLNodeChildByName(name)) {
        pc_element->setTextType(c_textType);
        pc_element->setText(text);
        return pc_element;
    }
    return addXMLChild(pc_parent, name, text, c_textType, attributes, c_prepend);
}

int TVNC_XMLSetting::getXMLNodeCnt()
{
    return pc_XMLRootNode ? static_cast<int>(TVNC_NodeAccess::children(*pc_XMLRootNode).size()) : 0;
}
