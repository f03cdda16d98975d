#include "tools/tlvctl/commandline/JsonWriter.h"

#include "tools/tlvctl/commandline/Console.h"

void JsonWriter::member(const char* name)
{
    separate();
    print('"' + QByteArray(name) + "\":");
    afterMember_ = true;
}

void JsonWriter::write(const QStringList& texts)
{
    beginArray();
    for (const QString& text : texts)
        string(text);
    endArray();
}

void JsonWriter::begin(char bracket, bool isArray)
{
    // One object of a list a line, for those who read or search the output as text.
    separate();
    if (!isArray && !open_.empty() && open_.back().isArray)
        print("\n");
    print(QByteArray(1, bracket));
    open_.push_back({isArray, true});
}

void JsonWriter::end(char bracket)
{
    print(QByteArray(1, bracket));
    open_.pop_back();
    if (open_.empty())
        print("\n");
}

/// Writes the comma between members or items where one is due.
void JsonWriter::separate()
{
    if (!afterMember_ && !open_.empty()) {
        if (!open_.back().isEmpty)
            print(",");
        open_.back().isEmpty = false;
    }
    afterMember_ = false;
}

void JsonWriter::value(const QByteArray& json)
{
    separate();
    print(json);
}
