#ifndef TLVLIB_TLVLIB_H
#define TLVLIB_TLVLIB_H

/**
 * @file
 * Everything that tlvlib offers.
 */

#include <tlvlib/diag/TVNG_DebugPrint.h>
#include <tlvlib/files/TVNG_SafeSave.h>
#include <tlvlib/prefs/TVNC_BrowserCommonSetting.h>
#include <tlvlib/prefs/TVNC_BrowserUserSetting.h>
#include <tlvlib/stores/TVNC_AuthSetting.h>
#include <tlvlib/stores/TVNC_BookmarksSetting.h>
#include <tlvlib/stores/TVNC_CookieSetting.h>
#include <tlvlib/stores/TVNC_FontListSetting.h>
#include <tlvlib/stores/TVNC_HistorySetting.h>
#include <tlvlib/thumbs/TVNC_NetworkDiskCache.h>
#include <tlvlib/thumbs/TVNC_ThumbnailConverter.h>
#include <tlvlib/util/QEXC_TextCodec.h>
#include <tlvlib/util/TVNC_IwsUrl.h>
#include <tlvlib/xml/TVNC_XMLNode.h>
#include <tlvlib/xml/TVNC_XMLReader.h>
#include <tlvlib/xml/TVNC_XMLSetting.h>
#include <tlvlib/xml/TVNC_XMLWriter.h>

#endif
