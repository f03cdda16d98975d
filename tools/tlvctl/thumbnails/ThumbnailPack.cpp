#include "tools/tlvctl/thumbnails/ThumbnailPack.h"

#include "tools/tlvctl/commandline/Console.h"
#include "tools/tlvctl/commandline/Text.h"

#include <QtCore/QSet>

#include <algorithm>

namespace {

const char CDATA_SECTION = 1;

std::vector<Flaw> omissionsOf(TVNC_XMLNode& node, qint64 bytes)
{
    if (node.getName() != "image")
        return {{"notNamedImage",
                 QString("element %1 instead of \"image\": not unpacked").arg(quoted(node.getName()))}};
    if (bytes == 0)
        return {{"noBytes", "has no bytes: not unpacked"}};
    if (node.getTextType() != CDATA_SECTION)
        return {{"notCdata", "is no CDATA section: not unpacked"}};
    return {};
}

std::vector<Flaw> doubtsAbout(const QString& name, const QSet<QString>& namesBefore)
{
    if (name.isEmpty())
        return {{"noName", "has no name"}};
    if (name.contains('/') || name == "." || name == "..")
        return {{"otherPlace", "names another place than a file in the directory"}};
    if (namesBefore.contains(name))
        return {{"nameTwice", "has a name that a picture before it has"}};
    return {};
}

} // namespace

bool isPack(const Document& document)
{
    return document.root && document.root->getName() == "thumbnail";
}

std::optional<Document> readPack(const QString& path)
{
    Document document = readDocument(path);
    if (!checkReadable(path, document, "name a pack of thumbnails"))
        return std::nullopt;
    if (!document.root || isPack(document))
        return document;
    complain(path,
             QString("no pack of thumbnails: its root is %1; name one that \"tlvctl thumbnails pack\" or "
                     "the browser has made")
                 .arg(quoted(document.root->getName())));
    return std::nullopt;
}

std::vector<PackedPicture> picturesOf(const Document& pack)
{
    std::vector<PackedPicture> pictures;
    if (!pack.root)
        return pictures;
    QSet<QString> names;
    for (TVNC_XMLNode* const node : std::as_const(pack.root->getXMLNodeChildren())) {
        PackedPicture picture{
            node, node->getAttribute().value("src").toString(), decodedSize(node->getText()), {}, {}};
        picture.omissions = omissionsOf(*node, picture.bytes);
        if (picture.isUnpacked()) {
            picture.doubts = doubtsAbout(picture.name, names);
            names.insert(picture.name);
        }
        pictures.push_back(std::move(picture));
    }
    return pictures;
}

qint64 decodedSize(const QString& base64)
{
    const auto letters = std::count_if(base64.begin(), base64.end(), [](QChar character) {
        const ushort u = character.unicode();
        return (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z') || (u >= '0' && u <= '9') || u == '+' ||
               u == '/';
    });
    return static_cast<qint64>(letters) * 6 / 8;
}

void writePictures(JsonWriter& json, const std::vector<PackedPicture>& pictures)
{
    writeArray(json, "pictures", pictures, [](JsonWriter& member, const PackedPicture& picture) {
        member.member("name", picture.name);
        member.member("bytes", picture.bytes);
        member.member("flaws", namesOf(picture.omissions) + namesOf(picture.doubts));
    });
}
