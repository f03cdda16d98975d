#include "tools/tlvctl/bookmarks/BookmarkFile.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <libxml/HTMLparser.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>

#include <iconv.h>

namespace {

const char START[] = "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n"
                     "<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=UTF-8\">\n"
                     "<TITLE>Bookmarks</TITLE>\n"
                     "<H1>Bookmarks</H1>\n"
                     "<DL><p>\n";
const char END[] = "</DL><p>\n";

/// How much the parser gets at a time, between two steps of the progress bar.
const int CHUNK_BYTES = 64 << 10;

/// The parser's time for a start tag grows with the square of its attributes, and that for an end tag with
/// the number of elements around it. Files of browsers have ten and a hundred.
const int ATTRIBUTES_MAX = 1000;
const int DEPTH_MAX = 1000;

/// Where a file names its encoding.
const int HEAD_BYTES = 1024;

const QByteArray BYTE_ORDER_MARK = "\xEF\xBB\xBF";

/// The encoding that a file names in its head; what browsers of old Windows wrote when it names none.
QByteArray encodingOf(const QByteArray& bytes)
{
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF"))
        return "UTF-16";
    const QByteArray key = "charset=";
    const QByteArray head = bytes.left(HEAD_BYTES).toLower();
    const auto at = head.indexOf(key);
    QByteArray name;
    for (const char c :
         at < 0 ? QByteArray() : head.mid(at + key.size()).replace('"', "").replace('\'', "")) {
        if (!std::isalnum(static_cast<uchar>(c)) && !std::strchr("-_.", c))
            break;
        name += c;
    }
    return name.isEmpty() ? QByteArray("windows-1252") : name;
}

/// Bytes in an encoding as UTF-8; each byte that is no character in it as U+FFFD.
QByteArray decoded(QByteArray bytes, const QByteArray& encoding)
{
    iconv_t converter = iconv_open("UTF-8", encoding.constData());
    if (converter == iconv_t(-1)) // NOLINT(performance-no-int-to-ptr): what iconv_open() answers
        return encoding == "windows-1252" ? bytes : decoded(bytes, "windows-1252");
    QByteArray utf8;
    char* in = bytes.data();
    auto left = static_cast<size_t>(bytes.size());
    std::array<char, CHUNK_BYTES> chunk;
    while (left > 0) {
        char* out = chunk.data();
        size_t room = chunk.size();
        const bool isStuck = iconv(converter, &in, &left, &out, &room) == size_t(-1) && errno != E2BIG;
        utf8.append(chunk.data(), static_cast<int>(chunk.size() - room));
        if (isStuck) {
            utf8 += "\xEF\xBF\xBD";
            ++in;
            --left;
        }
    }
    iconv_close(converter);
    return utf8;
}

/**
 * The text of a file in UTF-8. What is UTF-8 is taken as that, whatever the file says of itself; all else by
 * its byte order mark, by the encoding that it names, or as the Latin-1 of old Windows browsers.
 */
QByteArray textOf(const QByteArray& bytes)
{
    QByteArray utf8 = bytes.startsWith(BYTE_ORDER_MARK) ? bytes.mid(BYTE_ORDER_MARK.size()) : bytes;
    if (!utf8Text(utf8))
        utf8 = decoded(bytes, encodingOf(bytes));
    // libxml2 does not end a <DT> where the next one begins: each entry would be nested in the one before.
    return utf8.replace('\0', "").replace("<DT>", "").replace("<dt>", "");
}

/// Counts the attributes of start tags as the parser would meet them.
class AttributeCount
{
public:
    /// The largest number in one tag of the text.
    static int largestIn(const QByteArray& text)
    {
        AttributeCount count;
        for (const char character : text)
            count.read(character);
        return count.largest_;
    }

private:
    enum class State { TEXT, MARKUP, BETWEEN, NAME, VALUE_START, VALUE, QUOTED };

    static bool isBlank(char character) { return std::strchr(" \t\r\n\f", character) != nullptr; }

    void read(char character)
    {
        if (state_ == State::QUOTED)
            state_ = character == quote_ ? State::BETWEEN : State::QUOTED;
        else if (state_ == State::TEXT)
            state_ = character == '<' ? State::MARKUP : State::TEXT;
        else if (character == '>')
            end();
        else if (state_ == State::VALUE_START && (character == '"' || character == '\''))
            begin(State::QUOTED, character);
        else if (state_ == State::VALUE_START)
            state_ = isBlank(character) ? State::VALUE_START : State::VALUE;
        else if (isBlank(character))
            state_ = State::BETWEEN;
        else if (character == '=' && state_ != State::VALUE)
            state_ = State::VALUE_START;
        else if (state_ == State::BETWEEN)
            beginName();
    }

    void begin(State state, char quote)
    {
        state_ = state;
        quote_ = quote;
    }

    void beginName()
    {
        state_ = State::NAME;
        largest_ = std::max(largest_, ++attributes_);
    }

    void end()
    {
        state_ = State::TEXT;
        attributes_ = 0;
    }

    State state_ = State::TEXT;
    char quote_ = 0;
    int attributes_ = 0;
    int largest_ = 0;
};

/// The bytes of a picture that stands in an address of the form "data:image/png;base64,...".
QByteArray pictureIn(const QByteArray& address)
{
    const auto comma = address.indexOf(',');
    const QByteArray head = address.left(comma).toLower();
    return head.startsWith("data:image/") && head.endsWith(";base64")
               ? QByteArray::fromBase64(address.mid(comma + 1))
               : QByteArray();
}

/// Has libxml2 read the HTML, and gathers the bookmarks from what it tells.
class HtmlReader
{
public:
    HtmlReader()
    {
        LIBXML_TEST_VERSION
        htmlSAXHandler handler{};
        handler.startElement = [](void* self, const xmlChar* name, const xmlChar** attributes) {
            static_cast<HtmlReader*>(self)->start(text(name), attributes);
        };
        handler.endElement = [](void* self, const xmlChar* name) {
            static_cast<HtmlReader*>(self)->end(text(name));
        };
        handler.characters = [](void* self, const xmlChar* characters, int size) {
            static_cast<HtmlReader*>(self)->title_.append(text(characters), size);
        };
        handler.ignorableWhitespace = handler.characters;
        parser_.reset(htmlCreatePushParserCtxt(&handler, this, nullptr, 0, nullptr, XML_CHAR_ENCODING_UTF8));
        htmlCtxtUseOptions(parser_.get(), HTML_PARSE_RECOVER | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                              HTML_PARSE_NONET | HTML_PARSE_IGNORE_ENC);
    }

    /// Reads more of the file. What is wrong with it is told by the result.
    void read(const char* utf8, int size, bool isLast)
    {
        if (file_.problem.isEmpty())
            htmlParseChunk(parser_.get(), utf8, size, isLast);
        if (isLast)
            finish();
    }

    BookmarkFile takeResult()
    {
        if (file_.problem.isEmpty() && !hasList_)
            file_.problem = "has no list of bookmarks (the element \"DL\")";
        return std::move(file_);
    }

private:
    static const char* text(const xmlChar* characters) { return reinterpret_cast<const char*>(characters); }

    void start(const QByteArray& name, const xmlChar** attributes)
    {
        if (parser_->nameNr > DEPTH_MAX) {
            file_.problem = QString("nests elements more than %1 deep").arg(DEPTH_MAX);
            xmlStopParser(parser_.get());
        }
        // An <A> that is not closed ends where the next item begins.
        if (name == "a" || name == "dt" || name == "dd" || name == "dl" || name == "h3")
            finish();
        if (name == "dl")
            hasList_ = true;
        else if (name == "h3" && hasList_)
            ++file_.folders;
        else if (name == "a" && hasList_)
            begin(attributes);
    }

    void end(const QByteArray& name)
    {
        if (name == "a")
            finish();
    }

    void begin(const xmlChar** attributes)
    {
        for (; attributes && attributes[0]; attributes += 2) {
            const QByteArray name = text(attributes[0]);
            const QByteArray value = attributes[1] ? text(attributes[1]) : "";
            isOpen_ = isOpen_ || name == "href";
            if (name == "href")
                open_.href = QString::fromUtf8(value).remove(QChar::ByteOrderMark).trimmed();
            else if (name == "icon")
                open_.picture = pictureIn(value);
        }
        title_.clear();
    }

    void finish()
    {
        if (isOpen_) {
            open_.title = plainTitle(QString::fromUtf8(title_));
            file_.bookmarks.push_back(std::move(open_));
        }
        isOpen_ = false;
        open_ = FiledBookmark();
        title_.clear();
    }

    struct Free
    {
        void operator()(htmlParserCtxt* parser) const { htmlFreeParserCtxt(parser); }
    };

    BookmarkFile file_;
    bool hasList_ = false;
    bool isOpen_ = false; ///< between an <A> with an address and its end
    FiledBookmark open_;
    QByteArray title_;
    std::unique_ptr<htmlParserCtxt, Free> parser_;
};

} // namespace

QString plainTitle(const QString& filed)
{
    // Without the control characters that no document can hold, and byte order marks, which a reading drops
    // when one stands in front: HTML loses them on its way out and back.
    QString title;
    std::copy_if(filed.begin(), filed.end(), std::back_inserter(title), [](QChar c) {
        return (c >= ' ' && c != QChar::ByteOrderMark) || c == '\t' || c == '\n' || c == '\r';
    });
    const bool isOneLine = !title.contains('\n') && !title.contains('\r');
    return isOneLine && !title.trimmed().isEmpty() ? title : title.simplified();
}

QByteArray writeHtml(const std::vector<FiledBookmark>& bookmarks)
{
    QByteArray html = START;
    for (const FiledBookmark& bookmark : bookmarks) {
        html += "    <DT><A HREF=\"" + bookmark.href.toHtmlEscaped().toUtf8() + '"';
        if (!bookmark.picture.isEmpty())
            html += " ICON=\"data:image/png;base64," + bookmark.picture.toBase64() + '"';
        html += '>' + bookmark.title.toHtmlEscaped().toUtf8() + "</A>\n";
    }
    return html + END;
}

BookmarkFile readHtml(const QByteArray& bytes)
{
    const QByteArray text = textOf(bytes);
    if (AttributeCount::largestIn(text) > ATTRIBUTES_MAX) {
        BookmarkFile refused;
        refused.problem = QString("has an element of more than %1 attributes").arg(ATTRIBUTES_MAX);
        return refused;
    }
    HtmlReader reader;
    Progress progress(static_cast<size_t>(text.size() / CHUNK_BYTES + 1));
    for (int from = 0; from <= text.size(); from += CHUNK_BYTES) {
        const int size = std::min(CHUNK_BYTES, static_cast<int>(text.size()) - from);
        reader.read(text.constData() + from, size, from + CHUNK_BYTES > text.size());
        progress.advance();
    }
    return reader.takeResult();
}
