#ifndef TOOLS_TLVCTL_THUMBNAILS_THUMBNAILPACK_H
#define TOOLS_TLVCTL_THUMBNAILS_THUMBNAILPACK_H

#include "tools/tlvctl/records/Document.h"
#include "tools/tlvctl/records/StoreList.h"

#include <vector>

class JsonWriter;

/// A picture in a pack.
struct PackedPicture
{
    TVNC_XMLNode* node;
    QString name;
    qint64 bytes;

    /// Why the library passes over it; empty when it does not.
    std::vector<Flaw> omissions;

    /// Why its name is not trusted; empty when it is that of a file in the target directory, and no other's.
    std::vector<Flaw> doubts;

    bool isUnpacked() const { return omissions.empty(); }
};

/// Whether the document is a pack of thumbnails, by the name of its root.
bool isPack(const Document& document);

/// Reads a pack, which may be damaged. Complains and returns nothing where the file cannot be read or is
/// none.
std::optional<Document> readPack(const QString& path);

std::vector<PackedPicture> picturesOf(const Document& pack);

/// How many bytes a text in base64 stands for.
qint64 decodedSize(const QString& base64);

/// Writes the member "pictures" into an open object.
void writePictures(JsonWriter& json, const std::vector<PackedPicture>& pictures);

#endif
