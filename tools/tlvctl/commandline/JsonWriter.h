#ifndef TOOLS_TLVCTL_COMMANDLINE_JSONWRITER_H
#define TOOLS_TLVCTL_COMMANDLINE_JSONWRITER_H

#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <vector>

/**
 * Writes JSON to standard output piece by piece, so that neither the size nor the depth of a document costs
 * memory or stack. The caller sees to it that beginnings and ends match.
 *
 * @code
 * JsonWriter json;
 * json.beginObject();
 * json.member("count", 1);
 * json.member("fonts");
 * json.beginArray();
 * json.string(name);
 * json.endArray();
 * json.endObject();
 * @endcode
 */
class JsonWriter
{
public:
    void beginObject() { begin('{', false); }
    void endObject() { end('}'); }
    void beginArray() { begin('[', true); }
    void endArray() { end(']'); }

    /// The name of an object's next member, in ASCII. Its value comes next.
    void member(const char* name);

    /// A member with its value, which is null where there is none.
    template <typename Value>
    void member(const char* name, const Value& content)
    {
        member(name);
        write(content);
    }

    void string(const QString& text) { value(jsonString(text)); }
    void null() { value("null"); }

private:
    /// What is open: an object, or an array.
    struct Level
    {
        bool isArray;
        bool isEmpty;
    };

    void write(const QString& text) { string(text); }
    void write(const char* text) { string(text); }
    void write(qint64 number) { value(QByteArray::number(number)); }
    void write(int number) { value(QByteArray::number(number)); }
    void write(bool isTrue) { value(isTrue ? "true" : "false"); }
    void write(const QStringList& texts);

    template <typename Value>
    void write(const std::optional<Value>& optional)
    {
        optional ? write(*optional) : null();
    }

    void begin(char bracket, bool isArray);
    void end(char bracket);
    void separate();
    void value(const QByteArray& json);

    std::vector<Level> open_;
    bool afterMember_ = false;
};

#endif
