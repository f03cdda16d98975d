#include "tlvlib/xml/TVNC_XMLSetting.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/diag/TVNG_ifMemory.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/files/TVNG_openFile.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/xml/TVNC_CanonicalReader.h"
#include "tlvlib/xml/TVNC_CanonicalWriter.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_RecordNumbers.h"
#include "tlvlib/xml/TVNC_XMLReader.h"
#include "tlvlib/xml/TVNC_XMLWriter.h"
#include "tlvlib/xml/TVNG_nodes.h"

#include <QtCore/QFile>

namespace {

/**
 * The root of the document in a file, as TVNC_XMLReader::read() gives it; null when memory ran out. A
 * document in the library's own form is read the fast way: nobody can ask for a reader's state here.
 */
TVNC_XMLNode* readDocument(QString& path)
{
    QFile file(path);
    if (!TVNG_openForReading(file))
        return TVNG_newXMLNode(nullptr, 0);
    if (TVNC_XMLNode* const pc_root = TVNC_CanonicalReader::read(file))
        return pc_root;
    TVNC_XMLReader reader;
    TVNC_XMLNode* const pc_root = reader.read(file);
    if (reader.error() == QXmlStreamReader::CustomError) {
        delete pc_root; // a part of the document
        return nullptr;
    }
    return pc_root ? pc_root : TVNG_newXMLNode(nullptr, 0);
}

/// Writes as TVNC_XMLWriter::write() does, and a tree of the stores' kind the fast way.
void writeDocument(QString& path, TVNC_XMLNode* pc_root)
{
    if (!pc_root)
        return;
    TVNC_SavedFile file(path);
    if (!TVNG_openForWriting(file))
        return;
    if (TVNC_CanonicalWriter::takes(*pc_root)) {
        TVNC_CanonicalWriter::write(file.device(), *pc_root);
    } else {
        TVNC_XMLWriter writer;
        writer.write(file.device(), pc_root);
        if (!writer.device())
            qBadAlloc(); // it ran out; without an end of the save, no file is replaced
    }
    TVNG_finishWriting(file);
}

} // namespace

TVNC_XMLSetting::TVNC_XMLSetting() : pc_root_(nullptr) {}

TVNC_XMLSetting::~TVNC_XMLSetting()
{
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::~TVNC_XMLSetting] 0x%X", TVNG_low32(pc_root_));
    TVNG_release(pc_root_);
    pc_root_ = nullptr;
}

void TVNC_XMLSetting::load(QString& path)
{
    if (path.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_XMLSetting::load] Path is NULL or empty.");
        return;
    }
    TVNG_release(pc_root_);
    pc_root_ = nullptr;
    // Here and in save(), the texts name the bookmarks whichever store is at work. Log filters rely on them.
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::loadBookmark] start");
    // A document that memory did not suffice for leaves no root. An empty one would be saved over the file.
    TVNG_hasMemoryFor([&] { pc_root_ = readDocument(path); });
    if (!pc_root_)
        TVNG_DebugPrint(1, "[TVNC_XMLSetting::load] Fail");
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::loadBookmark] end");
}

void TVNC_XMLSetting::save(QString& path)
{
    if (path.isEmpty()) {
        TVNG_DebugPrint(2, "[TVNC_XMLSetting::save] Path is NULL or empty.");
        return;
    }
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::save] start");
    if (!TVNG_hasMemoryToSave([&] { writeDocument(path, pc_root_); }))
        TVNG_DebugPrint(1, "[TVNC_XMLSetting::save] Fail");
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::saveBookmark] end");
}

int TVNC_XMLSetting::getXMLRootNodeChildCntByName(QString& attributeName, QString& name)
{
    if (!pc_root_)
        return 0;
    int si_count = 0;
    TVNG_ifMemory([&] {
        const QList<TVNC_XMLNode*> records =
            TVNC_RecordNumbers::findAll(*pc_root_, getXMLNodeCnt(), attributeName);
        for (int i = 0; i < records.size(); ++i)
            si_count += records.at(i) && TVNC_NodeAccess::name(*records.at(i)) == name ? 1 : 0;
    });
    return si_count;
}

void TVNC_XMLSetting::setIDforChildren(QString& attributeName)
{
    if (pc_root_)
        TVNG_ifMemory([&] { TVNC_RecordNumbers::number(*pc_root_, attributeName); });
}

void TVNC_XMLSetting::deleteXMLNodeByID(int si_id, QString& attributeName)
{
    if (!pc_root_)
        return;
    TVNC_XMLNode* pc_child = pc_root_->getXMLNodeChildByID(si_id, attributeName);
    if (!pc_child)
        return;
    pc_root_->removeXMLNode(pc_child);
    if (!pc_child->getXMLNodeParent()) // there was memory for it
        TVNG_release(pc_child);
}

void TVNC_XMLSetting::deleteAllXMLNode()
{
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::deleteAllXMLNode] 0x%X", TVNG_low32(pc_root_));
    if (pc_root_)
        createXMLRootNode();
}

void TVNC_XMLSetting::deleteAllSetting()
{
    // The text keeps the operation's older name.
    TVNG_DebugPrint(3, "[TVNC_XMLSetting::deleteRootChildren] 0x%X", TVNG_low32(pc_root_));
    if (!pc_root_)
        return;
    const QList<TVNC_XMLNode*> removed = TVNG_takeChildren(*pc_root_);
    // A program may have listed a record twice. Qt keeps one such event for an object, however often
    // deleteLater() is called, and drops it when the object is deleted.
    for (int i = 0; i < removed.size(); ++i) {
        if (removed.at(i)) {
            TVNG_release(removed.at(i));
        } else {
            TVNG_DebugPrint(1, "[TVNC_XMLSetting::deleteRootChildren] 0x%X Why Pass??", TVNG_low32(pc_root_));
            TVNG_hasMemoryFor([&] { TVNC_NodeAccess::children(*pc_root_).append(nullptr); });
        }
    }
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
    return pc_root_;
}

void TVNC_XMLSetting::createXMLRootNode()
{
    TVNG_release(pc_root_);
    pc_root_ = TVNG_newXMLNode(nullptr, 0);
    if (!pc_root_)
        TVNG_DebugPrint(1, "[TVNC_XMLSetting::createXMLRootNode] Fail");
}

TVNC_XMLNode* TVNC_XMLSetting::getGrandchildNode(QString childName, QString grandchildName)
{
    if (!pc_root_)
        return nullptr;
    TVNC_XMLNode* pc_child = pc_root_->getXMLNodeChildByName(childName);
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
    return pc_root_ ? static_cast<int>(TVNC_NodeAccess::children(*pc_root_).size()) : 0;
}
