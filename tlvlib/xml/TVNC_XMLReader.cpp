#include "tlvlib/xml/TVNC_XMLReader.h"

#include "tlvlib/files/TVNG_openFile.h"
#include "tlvlib/format/TVNC_XMLInput.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/util/TVNG_memory.h"
#include "tlvlib/xml/TVNC_NamePool.h"
#include "tlvlib/xml/TVNC_XMLNode.h"
#include "tlvlib/xml/TVNG_nodes.h"

#include <QtCore/QFile>

#include <memory>
#include <mutex>

namespace {

// --- The filter of a reader -------------------------------------------------------------------------------

/**
 * A filter that a reader reads through. The reader owns it, but has no room for it: the layout of the class
 * is part of the binary interface. The reader's device() does not tell the filter either, since the program
 * may have given the reader another device, and deleted it.
 */
struct Input
{
    Input(QIODevice& source, const TVNC_XMLReader* pc_owner)
        : filter(source), pc_reader(pc_owner), pc_next(nullptr)
    {
    }

    TVNC_XMLInput filter;
    const TVNC_XMLReader* const pc_reader;
    Input* pc_next;
};

// The filters of all readers, of which few live at a time. Neither variable is made or destroyed while the
// program runs: a reader that goes needs no memory, and may go after everything else.
std::mutex inputsMutex;
Input* pc_firstInput = nullptr;

/// Puts a filter, or none, in the place of the one that a reader had.
void replaceInput(const TVNC_XMLReader* pc_reader, Input* pc_input)
{
    std::unique_ptr<Input> old; // deleted when nothing is locked any more
    const std::lock_guard<std::mutex> lock(inputsMutex);
    Input** pc_link = &pc_firstInput;
    while (*pc_link && (*pc_link)->pc_reader != pc_reader)
        pc_link = &(*pc_link)->pc_next;
    old.reset(*pc_link);
    if (old)
        *pc_link = old->pc_next;
    if (pc_input) {
        pc_input->pc_next = pc_firstInput;
        pc_firstInput = pc_input;
    }
}

// --- Attributes -------------------------------------------------------------------------------------------

/**
 * Qt has no constructor of an attribute with a namespace and a prefix: only its reader makes such ones. The
 * reader's own would keep all of its working memory alive. So the qualified name is put in here, through the
 * one way to a private member that C++ allows: an explicit instantiation may name it.
 */
template <typename Member, Member MEMBER>
struct QualifiedName
{
    friend void setQualifiedName(QXmlStreamAttribute& attribute, const QString& name)
    {
        attribute.*MEMBER = name;
    }
};
void setQualifiedName(QXmlStreamAttribute& attribute, const QString& name);
template struct QualifiedName<decltype(&QXmlStreamAttribute::m_qualifiedName),
                              &QXmlStreamAttribute::m_qualifiedName>;

/// The names of a document, from the references that a stream reader hands out.
class SharedNames
{
public:
    template <typename Reference>
    QString of(const Reference& name)
    {
        return name.isEmpty() ? QString() : pool_.shared(name.data(), static_cast<int>(name.size()));
    }

private:
    TVNC_NamePool pool_;
};

/**
 * Copies attributes so that they hold nothing but their own text. The reader's own set is part of its working
 * memory: a node that shared it would keep room for 16 attributes and the last token's text alive.
 */
QXmlStreamAttributes compactCopy(const QXmlStreamAttributes& attributes, SharedNames& names)
{
    QXmlStreamAttributes copy;
    copy.reserve(attributes.size());
    for (int i = 0; i < attributes.size(); ++i) {
        const QXmlStreamAttribute& attribute = attributes.at(i);
        const QString value = TVNG_copyOf(attribute.value());
        const QString qualifiedName = names.of(attribute.qualifiedName());
        if (attribute.namespaceUri().isEmpty()) {
            copy.append(qualifiedName, value);
            continue;
        }
        QXmlStreamAttribute own(names.of(attribute.namespaceUri()), names.of(attribute.name()), value);
        setQualifiedName(own, qualifiedName);
        copy.append(own);
    }
    return copy;
}

// --- Nodes ------------------------------------------------------------------------------------------------

/// Gives a node what the start tag holds that the reader stands on.
void readStartTag(const QXmlStreamReader& reader, TVNC_XMLNode& node, SharedNames& names)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    if (!attributes.isEmpty()) {
        QXmlStreamAttributes copy = compactCopy(attributes, names);
        node.setAttribute(copy);
    }
    QString name = names.of(reader.name());
    node.setName(name);
}

/// Stops a reader for want of memory.
void stop(QXmlStreamReader& reader)
{
    TVNG_hasMemoryFor([&] { reader.raiseError(); }); // Qt sets the error before it may throw
}

} // namespace

TVNC_XMLReader::TVNC_XMLReader() {}

TVNC_XMLReader::~TVNC_XMLReader()
{
    replaceInput(this, nullptr);
}

TVNC_XMLNode* TVNC_XMLReader::read(QString& path)
{
    TVNC_XMLNode* pc_root = nullptr;
    const bool b_complete = TVNG_hasMemoryFor([&] {
        QFile file(path);
        if (TVNG_openForReading(file))
            pc_root = read(file);
    });
    const bool b_noMemory = !b_complete || error() == CustomError;
    return pc_root || b_noMemory ? pc_root : TVNG_newXMLNode(nullptr, 0);
}

TVNC_XMLNode* TVNC_XMLReader::read(QIODevice& device)
{
    std::unique_ptr<TVNC_XMLNode> root;
    const bool b_complete = TVNG_hasMemoryFor([&] {
        // Not a local object: error and position can only be asked for afterwards while the reader's device
        // stays what it was.
        Input* const pc_input = new Input(device, this);
        replaceInput(this, pc_input);
        setDevice(&pc_input->filter);
        while (!atEnd()) {
            const TokenType token = readNext();
            if (token == EndElement)
                break;
            if (token == StartElement) { // of the root: Qt's reader ends at a second one
                root.reset(readXMLNode(nullptr));
                if (!root)
                    break;
            }
        }
    });
    if (b_complete)
        return root.release();
    stop(*this);
    return nullptr;
}

TVNC_XMLNode* TVNC_XMLReader::readXMLNode(TVNC_XMLNode* pc_parent)
{
    TVNC_XMLNode* pc_top = nullptr;
    const bool b_complete = TVNG_hasMemoryFor([&] {
        SharedNames names;
        pc_top = TVNG_newXMLNode(pc_parent, 0);
        if (!pc_top)
            qBadAlloc();
        readStartTag(*this, *pc_top, names);
        TVNC_XMLNode* pc_node = pc_top; // the element that is open; null at the end of the top one
        while (pc_node && !atEnd()) {
            const TokenType token = readNext();
            if (token == StartElement) {
                pc_node = TVNG_newXMLNode(pc_node, 0);
                if (pc_node)
                    readStartTag(*this, *pc_node, names);
                else
                    stop(*this); // What was read stays, and the error tells that it is not all.
            } else if (token == EndElement) {
                pc_node = pc_node == pc_top ? nullptr : pc_node->getXMLNodeParent();
            } else {
                readText(pc_node);
            }
        }
    });
    if (b_complete)
        return pc_top;
    delete pc_top;
    stop(*this);
    return nullptr;
}

void TVNC_XMLReader::readText(TVNC_XMLNode* pc_node)
{
    if (!pc_node || !pc_node->getText().isEmpty() || isWhitespace())
        return;
    if (tokenType() != Characters)
        return;
    QString text = TVNG_copyOf(this->text());
    pc_node->setTextType(isCDATA() ? TVNG_CDATA_SECTION : TVNG_CHARACTER_DATA);
    pc_node->setText(text);
}
