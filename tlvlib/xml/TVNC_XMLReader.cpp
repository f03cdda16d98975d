#include "tlvlib/xml/TVNC_XMLReader.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/util/TVNG_QtVersion.h"
#include "tlvlib/xml/TVNC_CanonicalReader.h"
#include "tlvlib/xml/TVNC_XMLInput.h"
#include "tlvlib/xml/TVNC_XMLNode.h"
#include "tlvlib/xml/TVNG_files.h"
#include "tlvlib/xml/TVNG_newXMLNode.h"

#include <QtCore/QFile>

namespace {

/**
 * Gives every "pageInfo" and "title" of a document the same shared string instead of one each. Of two names
 * that fall into the same slot only the later one is remembered, so a hostile file with a million names costs
 * no more than the names themselves.
 */
class NamePool
{
public:
    template <typename Reference>
    QString& shared(const Reference& name)
    {
        QString& slot = slots_[slotOf(name)];
        if (!(slot == name))
            slot = TVNG_copyOf(name);
        return slot;
    }

private:
    static const unsigned int SLOTS = 64;

    template <typename Reference>
    static unsigned int slotOf(const Reference& name)
    {
        const int si_size = static_cast<int>(name.size());
        if (si_size == 0)
            return 0;
        return (static_cast<unsigned int>(si_size) * 7u + name.at(0).unicode() * 31u +
                name.at(si_size / 2).unicode() * 5u + name.at(si_size - 1).unicode()) %
               SLOTS;
    }

    QString slots_[SLOTS];
};

/**
 * Copies attributes so that they hold nothing but their own text. The reader's own set is part of its working
 * memory: a node that shared it would keep room for 16 attributes and the last token's text alive.
 */
QXmlStreamAttributes compactCopy(const QXmlStreamAttributes& attributes, NamePool& names)
{
    QXmlStreamAttributes copy;
    copy.reserve(attributes.size());
    for (int i = 0; i < attributes.size(); ++i) {
        const QXmlStreamAttribute& attribute = attributes.at(i);
        const QString value = TVNG_copyOf(attribute.value());
        if (attribute.namespaceUri().isEmpty())
            copy.append(names.shared(attribute.qualifiedName()), value);
        else
            copy.append(TVNG_copyOf(attribute.namespaceUri()), names.shared(attribute.name()), value);
    }
    return copy;
}

/// Creates the node of the start tag that the reader stands on; null when memory has run out.
TVNC_XMLNode* createNode(const QXmlStreamReader& reader, TVNC_XMLNode* pc_parent, NamePool& names)
{
    TVNC_XMLNode* pc_node = TVNG_newXMLNode(pc_parent, 0);
    if (!pc_node)
        return nullptr;
    const QXmlStreamAttributes attributes = reader.attributes();
    if (!attributes.isEmpty()) {
        QXmlStreamAttributes copy = compactCopy(attributes, names);
        pc_node->setAttribute(copy);
    }
    pc_node->setName(names.shared(reader.name()));
    return pc_node;
}

} // namespace

TVNC_XMLReader::TVNC_XMLReader() {}

TVNC_XMLReader::~TVNC_XMLReader() {}

TVNC_XMLNode* TVNG_readFile(QString& path, TVNC_XMLReader* pc_reader)
{
    QFile file(path);
    if (!file.exists()) {
        TVNG_DebugPrint(2, "TVNC_XMLReader::read file not exist!");
    } else if (!file.open(QIODevice::ReadOnly)) {
        TVNG_DebugPrint(2, "TVNC_XMLReader::read file open error!");
    } else {
        TVNC_XMLNode* pc_root = pc_reader ? nullptr : TVNC_CanonicalReader::read(file);
        if (!pc_root) {
            TVNC_XMLReader reader;
            pc_root = (pc_reader ? pc_reader : &reader)->read(file);
        }
        file.close();
        if (pc_root)
            return pc_root;
    }
    return new TVNC_XMLNode(nullptr, 0);
}

TVNC_XMLNode* TVNC_XMLReader::read(QString& path)
{
    return TVNG_readFile(path, this);
}

TVNC_XMLNode* TVNC_XMLReader::read(QIODevice& device)
{
    // A child of the device, not a local object: the reader's error and position can only be asked for
    // afterwards while its device stays what it was.
    setDevice(new TVNC_XMLInput(device));

    TVNC_XMLNode* pc_root = nullptr;
    while (!atEnd()) {
        const TokenType token = readNext();
        if (token == EndElement)
            break;
        if (token == StartElement && !pc_root) {
            pc_root = readXMLNode(nullptr);
            if (!pc_root)
                break;
        }
    }
    return pc_root;
}

TVNC_XMLNode* TVNC_XMLReader::readXMLNode(TVNC_XMLNode* pc_parent)
{
    NamePool names;
    TVNC_XMLNode* const pc_top = createNode(*this, pc_parent, names);
    TVNC_XMLNode* pc_node = pc_top;
    while (pc_node && !atEnd()) {
        const TokenType token = readNext();
        if (token == EndElement) {
            pc_node = pc_node == pc_top ? nullptr : pc_node->getXMLNodeParent();
            continue;
        }
        readText(pc_node);
        if (token == StartElement) {
            TVNC_XMLNode* pc_child = createNode(*this, pc_node, names);
            if (pc_child)
                pc_node = pc_child;
            else // a child that cannot be created ends its parent, as an end tag does
                pc_node = pc_node == pc_top ? nullptr : pc_node->getXMLNodeParent();
        }
    }
    return pc_top;
}

void TVNC_XMLReader::readText(TVNC_XMLNode* pc_node)
{
    if (!pc_node || !pc_node->getText().isEmpty() || isWhitespace())
        return;
    if (tokenType() != Characters)
        return;
    QString text = TVNG_copyOf(this->text());
    pc_node->setTextType(isCDATA() ? 1 : 0);
    pc_node->setText(text);
}
