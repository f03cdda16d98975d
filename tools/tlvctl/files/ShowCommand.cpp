#include "tools/tlvctl/files/FileCommands.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/JsonWriter.h"
#include "tools/tlvctl/commandline/Text.h"
#include "tools/tlvctl/records/Document.h"

#include <utility>

namespace {

/// Elements up to this depth are indented by it, deeper ones show it as a number.
const int INDENTED_DEPTH = 20;

const QString SHOW_SECRETS = "show-secrets";

/// Whether an element's text is a password or a cookie's value, whatever document it stands in.
bool isSecret(TVNC_XMLNode& node)
{
    const QString& name = node.getName();
    if (name == "passwd" || name == "proxyUserPass")
        return true;
    TVNC_XMLNode* const parent = node.getXMLNodeParent();
    return name == "contents" && parent && parent->getName() == "webSiteInfo";
}

bool isCData(TVNC_XMLNode& node)
{
    return node.getTextType() == 1;
}

QString indentation(int depth)
{
    if (depth <= INDENTED_DEPTH)
        return QString(2 * (depth - 1), ' ');
    return QString(2 * INDENTED_DEPTH, ' ') + QString("[%1] ").arg(depth);
}

/// Without the prefix, where the namespace tells what it stands for.
QString nameOf(const QXmlStreamAttribute& attribute)
{
    return (attribute.namespaceUri().isEmpty() ? attribute.qualifiedName() : attribute.name()).toString();
}

/// The namespace, where there is one, stands in braces before the name.
QString attributeText(const QXmlStreamAttribute& attribute)
{
    QString text = " ";
    if (!attribute.namespaceUri().isEmpty())
        text += '{' + printable(attribute.namespaceUri().toString()) + '}';
    return text + printable(nameOf(attribute)) + '=' + quoted(attribute.value().toString());
}

void printTree(TVNC_XMLNode& root, bool withSecrets)
{
    const auto enter = [withSecrets](TVNC_XMLNode& node, int depth) {
        QString line = indentation(depth) + printable(node.getName());
        for (const QXmlStreamAttribute& attribute : std::as_const(node.getAttribute()))
            line += attributeText(attribute);
        if (!node.getText().isEmpty())
            line += (isCData(node) ? "  CDATA " : "  text ") +
                    (isSecret(node) && !withSecrets ? "(hidden)" : quoted(node.getText()));
        printLine(line);
    };
    walkTree(root, enter, [](TVNC_XMLNode&) {});
}

void writeAttribute(JsonWriter& json, const QXmlStreamAttribute& attribute)
{
    json.beginObject();
    json.member("name", nameOf(attribute));
    if (!attribute.namespaceUri().isEmpty())
        json.member("namespace", attribute.namespaceUri().toString());
    json.member("value", attribute.value().toString());
    json.endObject();
}

void writeText(JsonWriter& json, TVNC_XMLNode& node, bool withSecrets)
{
    const bool hasText = !node.getText().isEmpty();
    const bool isHidden = hasText && isSecret(node) && !withSecrets;
    json.member("text", hasText && !isHidden ? std::optional<QString>(node.getText()) : std::nullopt);
    json.member("textType",
                hasText ? std::optional<QString>(isCData(node) ? "cdata" : "text") : std::nullopt);
}

void writeTree(JsonWriter& json, TVNC_XMLNode& root, bool withSecrets)
{
    const auto enter = [&json, withSecrets](TVNC_XMLNode& node, int) {
        json.beginObject();
        json.member("name", node.getName());
        json.member("attributes"); // a list: with namespaces, two of an element may have the same name
        json.beginArray();
        for (const QXmlStreamAttribute& attribute : std::as_const(node.getAttribute()))
            writeAttribute(json, attribute);
        json.endArray();
        writeText(json, node, withSecrets);
        json.member("children");
        json.beginArray();
    };
    const auto leave = [&json](TVNC_XMLNode&) {
        json.endArray();
        json.endObject();
    };
    walkTree(root, enter, leave);
}

void writeDocument(const QString& path, const Document& document, bool withSecrets)
{
    JsonWriter json;
    json.beginObject();
    json.member("file", path);
    writeCompleteness(json, document);
    json.member("root");
    if (document.root)
        writeTree(json, *document.root, withSecrets);
    else
        json.null();
    json.endObject();
}

int show(const QCommandLineParser& arguments)
{
    const QString path = pathArgument(arguments);
    const Document document = readDocument(path);
    if (!checkReadable(path, document, "name a settings file that you may read"))
        return FAILED;
    const bool withSecrets = arguments.isSet(SHOW_SECRETS);
    if (arguments.isSet("json"))
        writeDocument(path, document, withSecrets);
    else if (document.root)
        printTree(*document.root, withSecrets);

    return exitCodeOfReading(path, document);
}

} // namespace

Command showCommand()
{
    Command command("show", "Show a settings file as a tree.", show);
    command.details = "One line an element: its name, its attributes, and its text, marked as text\n"
                      "(character data) or CDATA. Elements deeper than 20 are indented no further; they\n"
                      "show their depth in brackets. Passwords and the values of cookies are hidden.";
    command.examples = {"tlvctl show /data/settings/fontlist.xml",
                        "tlvctl show --json /data/settings/fontlist.xml"};
    command.arguments = {{"FILE", "The settings file."}};
    command.options = {jsonOption(), {SHOW_SECRETS, "Show passwords and the values of cookies, too."}};
    return command;
}
