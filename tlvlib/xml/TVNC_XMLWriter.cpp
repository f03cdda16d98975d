#include "tlvlib/xml/TVNC_XMLWriter.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/xml/TVNC_CanonicalWriter.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNC_XMLCharacters.h"
#include "tlvlib/xml/TVNG_files.h"

#include <QtCore/QVector>

namespace {

/// Elements up to this depth, the root's being 1, are formatted.
const int FORMATTED_DEPTH = 100;

/// Writes a document with the caller's writer, or the fastest way where the caller has none.
bool writeDocument(QIODevice& device, TVNC_XMLNode* pc_root, TVNC_XMLWriter* pc_writer)
{
    if (!pc_writer && TVNC_CanonicalWriter::takes(*pc_root)) {
        TVNC_CanonicalWriter::write(device, *pc_root);
        return true;
    }
    TVNC_XMLWriter writer;
    TVNC_XMLWriter& used = pc_writer ? *pc_writer : writer;
    const bool b_written = used.write(device, pc_root);
    used.setDevice(nullptr); // the device goes
    return b_written;
}

/**
 * Walks a tree and writes it, with a stack of its own instead of recursion.
 */
class TreeWriter
{
public:
    explicit TreeWriter(QXmlStreamWriter& writer) : writer_(writer), b_formatting_(writer.autoFormatting()) {}

    ~TreeWriter() { writer_.setAutoFormatting(b_formatting_); }

    bool write(TVNC_XMLNode* pc_root)
    {
        if (!start(pc_root))
            return false;
        while (!open_.isEmpty()) {
            Element& element = open_.last();
            const QList<TVNC_XMLNode*>& children = TVNC_NodeAccess::children(*element.pc_node);
            if (element.si_next == children.size()) {
                end();
                continue;
            }
            if (!start(children.at(element.si_next++)))
                return false;
        }
        return true;
    }

    /// Ends the elements that are too deep to be formatted. The end of the document closes the others.
    void endUnformatted()
    {
        while (open_.size() > FORMATTED_DEPTH)
            end();
    }

private:
    struct Element
    {
        TVNC_XMLNode* pc_node;
        int si_next; ///< position of the child that comes next
    };

    /// Writes all of an element that comes before its children.
    bool start(TVNC_XMLNode* pc_node)
    {
        if (!pc_node) {
            // The reader's name in the writer's message: log filters on the devices look for this text.
            TVNG_DebugPrint(1, "[TVNC_XMLReader::writeXMLNode] pc_Node NULL !!!.");
            return false;
        }
        const Element element = {pc_node, 0};
        open_.append(element);
        format();
        writer_.writeStartElement(pc_node->getName());
        writeAttributes(TVNC_NodeAccess::attributes(*pc_node));
        writeText(pc_node);
        return true;
    }

    void end()
    {
        format();
        writer_.writeEndElement();
        open_.remove(open_.size() - 1);
    }

    void format() { writer_.setAutoFormatting(b_formatting_ && open_.size() <= FORMATTED_DEPTH); }

    void writeAttributes(const QXmlStreamAttributes& attributes)
    {
        for (int i = 0; i < attributes.size(); ++i) {
            const QXmlStreamAttribute& attribute = attributes.at(i);
            const QString value = TVNC_XMLCharacters::writable(attribute.value().toString());
            if (attribute.namespaceUri().isEmpty())
                writer_.writeAttribute(attribute.qualifiedName().toString(), value);
            else
                writer_.writeAttribute(attribute.namespaceUri().toString(), attribute.name().toString(),
                                       value);
        }
    }

    void writeText(TVNC_XMLNode* pc_node)
    {
        const char c_type = pc_node->getTextType();
        if ((c_type != 0 && c_type != 1) || pc_node->getText().isEmpty())
            return;
        const QString text = TVNC_XMLCharacters::writable(pc_node->getText());
        if (text.isEmpty())
            return;
        if (c_type == 1)
            writer_.writeCDATA(text);
        else
            writer_.writeCharacters(text);
    }

    QXmlStreamWriter& writer_;
    const bool b_formatting_;
    QVector<Element> open_;
};

} // namespace

TVNC_XMLWriter::TVNC_XMLWriter()
{
    setAutoFormatting(true);
}

TVNC_XMLWriter::~TVNC_XMLWriter() {}

bool TVNG_writeFile(QString& path, TVNC_XMLNode* pc_root, TVNC_XMLWriter* pc_writer)
{
    if (!pc_root)
        return false;
    TVNC_SavedFile file(path);
    if (!file.open()) {
        TVNG_DebugPrint(2, "TVNC_XMLWriter::write file open error!");
        return false;
    }
    const bool b_written = writeDocument(file.device(), pc_root, pc_writer);
    if (!file.commit()) {
        TVNG_DebugPrint(2, "TVNC_XMLWriter::write file replace error!");
        return false;
    }
    return b_written;
}

bool TVNC_XMLWriter::write(QString& path, TVNC_XMLNode* pc_root)
{
    return TVNG_writeFile(path, pc_root, this);
}

bool TVNC_XMLWriter::write(QIODevice& device, TVNC_XMLNode* pc_root)
{
    if (!pc_root)
        return false;
    setDevice(&device);
    writeStartDocument();
    bool b_written;
    {
        TreeWriter tree(*this);
        b_written = tree.write(pc_root);
        tree.endUnformatted();
    }
    writeEndDocument();
    return b_written;
}

bool TVNC_XMLWriter::writeXMLNode(TVNC_XMLNode* pc_node)
{
    return TreeWriter(*this).write(pc_node);
}
