#include "tlvlib/xml/TVNC_XMLWriter.h"

#include "tlvlib/diag/TVNG_DebugPrint.h"
#include "tlvlib/files/TVNC_SavedFile.h"
#include "tlvlib/files/TVNG_openFile.h"
#include "tlvlib/files/TVNG_saveMode.h"
#include "tlvlib/format/TVNC_XMLCharacters.h"
#include "tlvlib/format/TVNG_documentForm.h"
#include "tlvlib/util/TVNG_memory.h"
#include "tlvlib/xml/TVNC_NodeAccess.h"
#include "tlvlib/xml/TVNG_walkTree.h"

#include <QtCore/QVector>

#include <map>

namespace {

const char XML_NAMESPACE[] = "http://www.w3.org/XML/1998/namespace";

/**
 * What prefixes mean in the open elements. An element declares those that its attributes need and that are
 * not declared around it already, so that what comes back has the same names. Qt's own writer gives each
 * namespace a prefix of its own making, and does not escape the markup in its name.
 */
class Prefixes
{
public:
    Prefixes() : si_madeUp_(0) { bind(0, QString::fromLatin1("xml"), QString::fromLatin1(XML_NAMESPACE)); }

    bool isBound(const QString& prefix, const QString& namespaceUri) const
    {
        return !prefix.isEmpty() && meaningOf(prefix).namespaceUri == namespaceUri;
    }

    /// Lets the element at a depth declare a prefix. Not one that it has declared already.
    bool bind(int si_depth, const QString& prefix, const QString& namespaceUri)
    {
        const Meaning meaning = {namespaceUri, si_depth};
        const Binding binding = {prefix, meaning, meaningOf(prefix)};
        if (prefix.isEmpty() || binding.hidden.si_depth == si_depth)
            return false;
        bindings_.append(binding);
        meanings_[prefix] = meaning;
        return true;
    }

    /// A prefix that means a namespace; an empty text when there is none.
    QString find(const QString& namespaceUri) const
    {
        for (int i = static_cast<int>(bindings_.size()) - 1; i >= 0; --i) {
            if (isBound(bindings_.at(i).prefix, namespaceUri))
                return bindings_.at(i).prefix;
        }
        return QString();
    }

    /// A prefix that means nothing, such as Qt makes them up: "n1", "n2" and so on through a document.
    QString makeUp()
    {
        QString prefix;
        do {
            prefix = QLatin1Char('n') + QString::number(++si_madeUp_);
        } while (!meaningOf(prefix).namespaceUri.isEmpty());
        return prefix;
    }

    /// Forgets what the element at a depth has declared.
    void end(int si_depth)
    {
        while (bindings_.last().meaning.si_depth == si_depth) { // no element has the depth of "xml", 0
            meanings_[bindings_.last().prefix] = bindings_.last().hidden;
            bindings_.remove(bindings_.size() - 1);
        }
    }

private:
    struct Meaning
    {
        Meaning() : si_depth(-1) {}
        Meaning(const QString& uri, int si_declaredAt) : namespaceUri(uri), si_depth(si_declaredAt) {}
        QString namespaceUri;
        int si_depth; ///< of the element that has declared it
    };
    struct Binding
    {
        QString prefix;
        Meaning meaning;
        Meaning hidden; ///< what the prefix means around the element
    };

    Meaning meaningOf(const QString& prefix) const
    {
        const std::map<QString, Meaning>::const_iterator found = meanings_.find(prefix);
        return found == meanings_.end() ? Meaning() : found->second;
    }

    // Not Qt's hash, which ends the program in Qt 6 when memory runs out.
    std::map<QString, Meaning> meanings_; ///< by prefix
    QVector<Binding> bindings_;           ///< depths in ascending order
    int si_madeUp_;
};

/// Writes a tree node by node.
class TreeWriter
{
public:
    explicit TreeWriter(QXmlStreamWriter& writer)
        : writer_(writer), b_formatting_(writer.autoFormatting()), si_open_(0)
    {
    }

    ~TreeWriter() { writer_.setAutoFormatting(b_formatting_); }

    /// Writes all of an element that comes before its children.
    bool enter(TVNC_XMLNode* pc_node, int si_depth)
    {
        if (!pc_node) {
            // The reader's name in the writer's message: log filters on the devices look for this text.
            TVNG_DebugPrint(1, "[TVNC_XMLReader::writeXMLNode] pc_Node NULL !!!.");
            return false;
        }
        si_open_ = si_depth;
        format();
        writer_.writeStartElement(pc_node->getName());
        writeAttributes(TVNC_NodeAccess::attributes(*pc_node));
        writeText(*pc_node);
        return true;
    }

    void leave(TVNC_XMLNode&, int) { end(); }

    /// Ends the elements that are too deep to be formatted. The end of the document closes the others.
    void endUnformatted()
    {
        while (si_open_ > TVNG_FORMATTED_DEPTH)
            end();
    }

private:
    void end()
    {
        format();
        writer_.writeEndElement();
        prefixes_.end(si_open_);
        --si_open_;
    }

    void format() { writer_.setAutoFormatting(b_formatting_ && si_open_ <= TVNG_FORMATTED_DEPTH); }

    void writeAttributes(const QXmlStreamAttributes& attributes)
    {
        // The attributes' own prefixes are declared first, so that no made-up one takes the place of theirs.
        for (int i = 0; i < attributes.size(); ++i) {
            const QXmlStreamAttribute& attribute = attributes.at(i);
            if (!attribute.namespaceUri().isEmpty())
                declare(attribute.prefix().toString(), attribute.namespaceUri().toString());
        }
        for (int i = 0; i < attributes.size(); ++i)
            writeAttribute(nameOf(attributes.at(i)), attributes.at(i).value().toString());
    }

    void writeAttribute(const QString& qualifiedName, const QString& value)
    {
        writer_.writeAttribute(qualifiedName, TVNC_XMLCharacters::writable(value));
    }

    /// Has the element declare a prefix, unless that is declared around it, or the element has given the
    /// prefix another meaning already.
    void declare(const QString& prefix, const QString& namespaceUri)
    {
        if (!prefixes_.isBound(prefix, namespaceUri) && prefixes_.bind(si_open_, prefix, namespaceUri))
            writeAttribute(QLatin1String("xmlns:") + prefix, namespaceUri);
    }

    /// The name under which an attribute is written: its own, unless that would not be in its namespace. Then
    /// an application has made the attribute, without a prefix, or taken it from another element.
    QString nameOf(const QXmlStreamAttribute& attribute)
    {
        const QString namespaceUri = attribute.namespaceUri().toString();
        if (namespaceUri.isEmpty() || prefixes_.isBound(attribute.prefix().toString(), namespaceUri))
            return attribute.qualifiedName().toString();
        QString prefix = prefixes_.find(namespaceUri);
        if (prefix.isEmpty()) {
            prefix = prefixes_.makeUp();
            declare(prefix, namespaceUri);
        }
        return prefix + QLatin1Char(':') + attribute.name().toString();
    }

    void writeText(TVNC_XMLNode& node)
    {
        const char c_type = node.getTextType();
        if (c_type != TVNG_CHARACTER_DATA && c_type != TVNG_CDATA_SECTION)
            return;
        const QString text = TVNC_XMLCharacters::writable(TVNC_NodeAccess::text(node));
        if (text.isEmpty())
            return;
        if (c_type == TVNG_CDATA_SECTION)
            writer_.writeCDATA(text);
        else
            writer_.writeCharacters(text);
    }

    QXmlStreamWriter& writer_;
    const bool b_formatting_;
    int si_open_; ///< how many elements are open
    Prefixes prefixes_;
};

} // namespace

TVNC_XMLWriter::TVNC_XMLWriter()
{
    setAutoFormatting(true);
}

TVNC_XMLWriter::~TVNC_XMLWriter() {}

bool TVNC_XMLWriter::write(QString& path, TVNC_XMLNode* pc_root)
{
    bool b_written = false;
    TVNG_hasMemoryToSave([&] {
        TVNC_SavedFile file(path);
        if (!pc_root || !TVNG_openForWriting(file))
            return;
        b_written = write(file.device(), pc_root);
        if (!device())
            qBadAlloc();    // it ran out; without an end of the save, no file is replaced
        setDevice(nullptr); // the file's goes with this block
        b_written = TVNG_finishWriting(file) && b_written;
    });
    return b_written;
}

bool TVNC_XMLWriter::write(QIODevice& device, TVNC_XMLNode* pc_root)
{
    if (!pc_root)
        return false;
    bool b_written = false;
    const bool b_complete = TVNG_hasMemoryFor([&] {
        setDevice(&device);
        writeStartDocument();
        {
            TreeWriter tree(*this);
            b_written = TVNG_walkTree(pc_root, tree);
            tree.endUnformatted();
        }
        writeEndDocument();
    });
    // False also stands for a null node. Callers that must know what it was ask for the device.
    if (!b_complete)
        setDevice(nullptr);
    return b_complete && b_written;
}

bool TVNC_XMLWriter::writeXMLNode(TVNC_XMLNode* pc_node)
{
    bool b_written = false;
    const bool b_complete = TVNG_hasMemoryFor([&] {
        TreeWriter tree(*this);
        b_written = TVNG_walkTree(pc_node, tree);
    });
    return b_complete && b_written;
}
