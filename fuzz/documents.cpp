/*
 * A settings document of any bytes: both ways of reading it make the same tree, both ways of writing that
 * tree the same bytes, and what was written is read back as it was.
 */

#include "fuzz/Fuzz.h"

#include <tlvlib/xml/TVNC_XMLNode.h>
#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLSetting.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#include <memory>
#include <vector>

namespace {

class Setting final : public TVNC_XMLSetting
{
};

bool isSame(TVNC_XMLNode& left, TVNC_XMLNode& right)
{
    std::vector<std::pair<TVNC_XMLNode*, TVNC_XMLNode*>> pending{{&left, &right}};
    while (!pending.empty()) {
        const auto [one, other] = pending.back();
        pending.pop_back();
        const QList<TVNC_XMLNode*>& children = one->getXMLNodeChildren();
        const QList<TVNC_XMLNode*>& others = other->getXMLNodeChildren();
        if (one->getName() != other->getName() || one->getText() != other->getText() ||
            one->getTextType() != other->getTextType() || one->getAttribute() != other->getAttribute() ||
            children.size() != others.size())
            return false;
        for (int i = 0; i < children.size(); ++i)
            pending.emplace_back(children.at(i), others.at(i));
    }
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QString path = scratchDir() + "document.xml";
    QString saved = scratchDir() + "saved.xml";
    QString written = scratchDir() + "written.xml";
    writeFile(path, QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));

    Setting setting;
    setting.load(path);
    TVNC_XMLReader reader;
    const std::unique_ptr<TVNC_XMLNode> read(reader.read(path));
    MUST(isSame(*setting.getXMLRootNode(), *read));

    setting.save(saved);
    TVNC_XMLWriter writer;
    if (!read->getName().isEmpty()) {
        MUST(writer.write(written, read.get()));
        MUST(readFile(saved) == readFile(written));
        // A carriage return comes back as a line feed, and a section with an end in it in two: once more, and
        // nothing changes.
        for (int i = 0; i < 2; ++i) {
            setting.load(saved);
            setting.save(saved);
        }
        const QByteArray once = readFile(saved);
        setting.load(saved);
        setting.save(saved);
        MUST(readFile(saved) == once);
    }
    release();
    return 0;
}
