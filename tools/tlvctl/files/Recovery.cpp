#include "tools/tlvctl/files/Recovery.h"

#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Record.h"

#include <tlvlib/xml/TVNC_XMLReader.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QXmlStreamReader>

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

const char HEAD[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// The roots of all documents.
const char* const ROOTS[] = {"repostry_common", "repostry", "bookmarks", "history",
                             "authentication",  "cookie",   "fontlist",  "thumbnail"};

/// How much stray content is told one by one.
const int STRAY_MAX = 5;

/// A place in a file: Qt 5 counts bytes with int, Qt 6 does not.
using Place = decltype(QByteArray().size());

struct Piece
{
    Place begin;
    Place end; ///< behind it
};

bool startsAt(const QByteArray& bytes, Place at, const char* text)
{
    const size_t length = qstrlen(text);
    return bytes.size() - at >= static_cast<Place>(length) &&
           std::strncmp(bytes.constData() + at, text, length) == 0;
}

/// Whether a tag of the name begins here: "<name", and behind it what ends a name.
bool isStartTag(const QByteArray& bytes, Place at, const QByteArray& name)
{
    const Place behind = at + 1 + name.size();
    return startsAt(bytes, at, ('<' + name).constData()) &&
           (behind >= bytes.size() || QByteArray(" \t\r\n/>").contains(bytes.at(behind)));
}

Place nextStartTag(const QByteArray& bytes, Place from, const QByteArray& name)
{
    Place at = bytes.indexOf('<' + name, from);
    while (at >= 0 && !isStartTag(bytes, at, name))
        at = bytes.indexOf('<' + name, at + 1);
    return at;
}

/// Behind the end of what begins with @a begin, such as a comment; -1 when it has none.
Place behind(const QByteArray& bytes, Place begin, const char* end)
{
    const Place at = bytes.indexOf(end, begin);
    return at < 0 ? -1 : at + static_cast<Place>(qstrlen(end));
}

/// Behind the tag that begins here; -1 for none. A ">" in the value of an attribute ends nothing.
Place behindTag(const QByteArray& bytes, Place begin)
{
    char quote = 0;
    for (Place i = begin + 1; i < bytes.size(); ++i) {
        const char c = bytes.at(i);
        if (c == '<')
            return -1;
        if (quote != 0)
            quote = c == quote ? 0 : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '>')
            return i + 1;
    }
    return -1;
}

/// Behind the element that begins here; -1 when its end is not found before another one of its name begins.
Place behindElement(const QByteArray& bytes, Place begin, const QByteArray& name)
{
    int depth = 0;
    Place at = begin;
    while (at >= 0 && at < bytes.size()) {
        if (startsAt(bytes, at, "<![CDATA[")) {
            at = behind(bytes, at, "]]>");
        } else if (startsAt(bytes, at, "<!--")) {
            at = behind(bytes, at, "-->");
        } else {
            if (depth > 0 && isStartTag(bytes, at, name))
                return -1;
            const bool isEnd = startsAt(bytes, at, "</");
            at = behindTag(bytes, at);
            if (at < 0)
                return -1;
            depth += isEnd ? -1 : bytes.at(at - 2) == '/' ? 0 : 1;
            if (depth <= 0)
                return depth == 0 ? at : -1;
        }
        at = at < 0 ? -1 : bytes.indexOf('<', at);
    }
    return -1;
}

std::unique_ptr<TVNC_XMLNode> readWhole(const QByteArray& bytes, const QByteArray& name)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    TVNC_XMLReader reader;
    std::unique_ptr<TVNC_XMLNode> root(reader.read(buffer));
    const bool isWhole = root && !reader.hasError() && root->getName() == QString::fromLatin1(name);
    return isWhole ? std::move(root) : nullptr;
}

/// The whole elements of a name, none of which stands in another.
std::vector<Piece> wholeElements(const QByteArray& bytes, const QByteArray& name)
{
    std::vector<Piece> pieces;
    Place begin = nextStartTag(bytes, 0, name);
    while (begin >= 0) {
        const Place end = behindElement(bytes, begin, name);
        const Place next = end < 0 ? -1 : nextStartTag(bytes, end, name);
        // An end tag without a start tag is that of an element which was cut off where it begins.
        const bool isShell = end >= 0 && bytes.at(end - 2) == '/' &&
                             bytes.mid(end, next < 0 ? -1 : next - end).contains("</" + name + '>');
        const bool isWhole = end >= 0 && !isShell && readWhole(bytes.mid(begin, end - begin), name);
        if (isWhole)
            pieces.push_back({begin, end});
        begin = isWhole ? next : nextStartTag(bytes, begin + 1, name);
    }
    return pieces;
}

/// Cuts what belongs to no record: the head of the document with the root's start tag, and its end tag.
QByteArray withoutFrame(QByteArray gap, bool isFirst, bool isLast, const QByteArray& root)
{
    if (isFirst) {
        const Place at = nextStartTag(gap, 0, root);
        const Place end = at < 0 ? -1 : behindTag(gap, at);
        const bool isPlain = at >= 0 && end >= 0 && gap.left(at).count('<') <= 1;
        gap = isPlain ? gap.mid(end) : gap;
    }
    gap = gap.trimmed();
    const QByteArray endTag = "</" + root + '>';
    if (isLast && gap.endsWith(endTag))
        gap.chop(endTag.size());
    else if (isLast && endTag.startsWith(gap))
        gap.clear();
    return gap.trimmed();
}

/// Records that begin or end there. A start tag without its attribute is a damaged end tag, or the root's.
int countTags(const QByteArray& bytes, const DocumentForm& form)
{
    const QByteArray name = form.record;
    return static_cast<int>(
        std::max(bytes.count('<' + name + ' ' + form.attribute + '='), bytes.count("</" + name + '>')));
}

/// End tags of whatever name.
int countEndTags(const QByteArray& bytes)
{
    int count = 0;
    for (Place at = bytes.indexOf("</"); at >= 0 && at + 2 < bytes.size(); at = bytes.indexOf("</", at + 1))
        count += std::isalpha(static_cast<uchar>(bytes.at(at + 2))) != 0 ? 1 : 0;
    return count;
}

/// How many records of which something is there were in a gap.
int lostIn(const QByteArray& gap, bool isFirst, bool isLast, const DocumentForm& form)
{
    const int tags = countTags(gap, form);
    const QByteArray startTag = '<' + QByteArray(form.record) + ' ' + form.attribute + '=';
    const bool isCutTag = isLast && gap.size() > 1 && startTag.startsWith(gap);
    // End tags of elements stand there: of a record that has lost both tags of its own.
    const bool isWithoutTags = countEndTags(gap.mid(1)) > (isFirst || isLast ? 1 : 0);
    return tags > 0 ? tags : isCutTag || isWithoutTags ? 1 : 0;
}

/// Whether the first element is this one.
bool beginsWithRoot(const QByteArray& bytes, const char* root)
{
    Place at = bytes.indexOf('<');
    while (at >= 0 && (startsAt(bytes, at, "<?") || startsAt(bytes, at, "<!")))
        at = bytes.indexOf('<', at + 1);
    return at >= 0 && isStartTag(bytes, at, root);
}

/// Whether the root of another document of the system begins there. Some of their elements have names in
/// common.
bool isOtherDocument(const QByteArray& bytes, const DocumentForm& form)
{
    return nextStartTag(bytes, 0, form.root) < 0 &&
           std::any_of(std::begin(ROOTS), std::end(ROOTS),
                       [&](const char* root) { return beginsWithRoot(bytes, root); });
}

bool isBlank(const QString& text)
{
    return text.trimmed().isEmpty();
}

} // namespace

bool hidesRecords(const QByteArray& bytes, const DocumentForm& form)
{
    const QByteArray startTag = '<' + QByteArray(form.record ? form.record : form.root) + ' ';
    Place begin = bytes.indexOf("<![CDATA[");
    while (begin >= 0) {
        const Place end = bytes.indexOf("]]>", begin);
        const QByteArray section = bytes.mid(begin, end < 0 ? -1 : end - begin);
        if (section.contains(startTag) && end >= 0)
            return true;
        begin = end < 0 ? -1 : bytes.indexOf("<![CDATA[", end);
    }
    return false;
}

Recovered recoverRecords(const QByteArray& bytes, const DocumentForm& form)
{
    Recovered recovered;
    std::vector<Piece> pieces = wholeElements(bytes, form.record);
    // "<record/>" is what is left of a start tag.
    const Place bare = static_cast<Place>(qstrlen(form.record)) + 3;
    pieces.erase(std::remove_if(pieces.begin(), pieces.end(),
                                [bare](const Piece& piece) { return piece.end - piece.begin == bare; }),
                 pieces.end());
    recovered.document = HEAD + ('<' + QByteArray(form.root)) + " docInfo=\"1.0\">";
    Place from = 0;
    for (size_t i = 0; i <= pieces.size(); ++i) {
        const bool isLast = i == pieces.size();
        const Piece next = isLast ? Piece{bytes.size(), bytes.size()} : pieces[i];
        const QByteArray gap = withoutFrame(bytes.mid(from, next.begin - from), i == 0, isLast, form.root);
        recovered.lost += lostIn(gap, i == 0, isLast, form);
        if (!gap.isEmpty())
            recovered.rejected += gap + '\n';
        recovered.document += bytes.mid(next.begin, next.end - next.begin);
        from = next.end;
    }
    recovered.document += "</" + QByteArray(form.root) + '>';
    recovered.kept = static_cast<int>(pieces.size());
    recovered.isForeign =
        isOtherDocument(bytes, form) || (pieces.empty() && nextStartTag(bytes, 0, form.root) < 0);
    return recovered;
}

Recovered recoverLeaves(const QByteArray& bytes, const DocumentForm& form,
                        const std::vector<LeafPlace>& places)
{
    Recovered recovered;
    QByteArray rest = bytes;
    QByteArray group;
    recovered.document = HEAD + ('<' + QByteArray(form.root)) + " docInfo=\"1.0\">";
    for (const LeafPlace& place : places) {
        const QByteArray name = place.leaf.toLatin1();
        const std::vector<Piece> pieces = wholeElements(rest, name);
        if (pieces.empty()) {
            ++recovered.lost;
            continue;
        }
        if (group != place.group.toLatin1()) {
            recovered.document += group.isEmpty() ? QByteArray() : "</" + group + '>';
            group = place.group.toLatin1();
            recovered.document += '<' + group + '>';
        }
        const Piece& first = pieces.front();
        recovered.document += rest.mid(first.begin, first.end - first.begin);
        rest.remove(first.begin, first.end - first.begin);
        ++recovered.kept;
    }
    recovered.document += group.isEmpty() ? QByteArray() : "</" + group + '>';
    recovered.document += "</" + QByteArray(form.root) + '>';
    recovered.rejected = recovered.lost > 0 ? rest : QByteArray();
    recovered.isForeign = isOtherDocument(bytes, form) || recovered.kept == 0;
    return recovered;
}

bool isRootOfAnother(const QString& name, const DocumentForm& form)
{
    return name != form.root && std::any_of(std::begin(ROOTS), std::end(ROOTS),
                                            [&name](const char* root) { return name == root; });
}

QStringList strayContent(const QString& path, const DocumentForm& form)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QStringList lines;
    int count = 0;
    const auto add = [&](const QString& what) {
        if (++count <= STRAY_MAX)
            lines.append(
                QString("%1 at line %2, column %3, which no browser writes and the next change may drop")
                    .arg(what)
                    .arg(xml.lineNumber())
                    .arg(xml.columnNumber()));
    };
    struct Open
    {
        bool hasChildren;
        bool hasText;
        QSet<QString> children; ///< the names of those that may stand there once
    };
    std::vector<Open> open;
    while (!xml.atEnd()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::Comment:
            add("a comment");
            break;
        case QXmlStreamReader::ProcessingInstruction:
            add("a processing instruction");
            break;
        case QXmlStreamReader::DTD:
            add("a document type");
            break;
        case QXmlStreamReader::StartElement: {
            if (!open.empty()) {
                const bool isList = open.size() == 1 && form.record;
                const QString name = xml.name().toString();
                if (!isList && open.back().children.contains(name))
                    add(QString("a second element %1").arg(quoted(name)));
                else if (!isList)
                    open.back().children.insert(name);
                if (open.back().hasText && !open.back().hasChildren)
                    add("text between elements");
                open.back().hasChildren = true;
            }
            for (const QXmlStreamAttribute& attribute : xml.attributes()) {
                const QString name = attribute.qualifiedName().toString();
                const bool isRootsOwn =
                    open.empty() && name == "docInfo" && attribute.value() == QLatin1String("1.0");
                const bool isRecordsOwn =
                    open.size() == 1 && form.record && name == QLatin1String(form.attribute);
                if (!isRootsOwn && !isRecordsOwn)
                    add(QString("the attribute %1").arg(quoted(name)));
            }
            if (!xml.namespaceDeclarations().isEmpty())
                add("a namespace");
            open.push_back({false, false, {}});
            break;
        }
        case QXmlStreamReader::EndElement:
            open.pop_back();
            break;
        case QXmlStreamReader::Characters:
            if (isBlank(xml.text().toString()))
                break;
            if (open.back().hasChildren)
                add("text between elements");
            open.back().hasText = true;
            break;
        default:
            break;
        }
    }
    if (xml.hasError())
        add("something behind the end");
    if (count > STRAY_MAX)
        lines.append(QString("and %1 more of these").arg(count - STRAY_MAX));
    return lines;
}

void normalise(TVNC_XMLNode& root, const DocumentForm& form)
{
    QString rootName = form.root;
    QXmlStreamAttributes rootAttributes;
    if (root.getName() != rootName || root.getAttribute().hasAttribute("docInfo"))
        rootAttributes.append("docInfo", "1.0");
    root.setName(rootName);
    root.setAttribute(rootAttributes);
    int number = 0;
    const auto enter = [&](TVNC_XMLNode& node, int depth) {
        QString none;
        if (!node.getXMLNodeChildren().isEmpty())
            node.setText(none);
        if (depth == 1)
            return;
        QXmlStreamAttributes attributes;
        if (depth == 2 && form.record) {
            QString record = form.record;
            node.setName(record);
            const bool isNumbered = qstrcmp(form.attribute, "id") == 0;
            const QString kept = node.getAttribute().value(form.attribute).toString();
            const bool isKept =
                node.getAttribute().hasAttribute(form.attribute) && (!isNumbered || number >= NUMBERED_MAX);
            if (isNumbered && number < NUMBERED_MAX)
                attributes.append(form.attribute, numberText(number));
            else if (isKept)
                attributes.append(form.attribute, kept);
            ++number;
        }
        node.setAttribute(attributes);
    };
    walkTree(root, enter, [](TVNC_XMLNode&) {});
}
