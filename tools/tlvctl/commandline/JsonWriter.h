#ifndef TOOLS_TLVCTL_COMMANDLINE_JSONWRITER_H
#define TOOLS_TLVCTL_COMMANDLINE_JSONWRITER_H

#include <QtCore/QString>

#include <vector>

/**
 * Writes JSON to standard output piece by piece, so that neither the size nor the depth of a document costs
 * memory or stack. The caller sees to it that beginnings and ends match.
 *
 * @code
 * JsonWriter json;
 * json.beginObject();
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
    void beginObject();
    void endObject();
    void beginArray();
    void endArray();

    /// The name of an object's next member, in ASCII. Its value comes next.
    void member(const char* name);

    void string(const QString& text);
    void number(qint64 value);
    void boolean(bool value);
    void null();

private:
    /// What is open: an object, or an array.
    struct Level
    {
        bool isArray;
        bool isEmpty;
    };

    void begin(char bracket, bool isArray);
    void end(char bracket);
    void separate();
    void value(const QByteArray& json);

    std::vector<Level> open_;
    bool afterMember_ = false;
};

#endif
