// The header of the setting base brings the nodes with it.
#include <tlvlib/xml/TVNC_XMLSetting.h>

QString nameOfRoot(TVNC_XMLSetting& setting);

QString nameOfRoot(TVNC_XMLSetting& setting)
{
    return setting.getXMLRootNode()->getName();
}
