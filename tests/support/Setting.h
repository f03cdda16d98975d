#ifndef TESTS_SUPPORT_SETTING_H
#define TESTS_SUPPORT_SETTING_H

#include <tlvlib/xml/TVNC_XMLSetting.h>

/// A document without a store. (The base has no virtual destructor: only a final class of it may be deleted.)
class Setting final : public TVNC_XMLSetting
{
};

#endif
