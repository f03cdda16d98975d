#ifndef TLVLIB_UTIL_TVNG_LIMITS_H
#define TLVLIB_UTIL_TVNG_LIMITS_H

/**
 * @file
 * The limits, words and formats of the documents, for the stores and for what looks into their files.
 * Internal to the system; not installed.
 */

/// Of an entry of the credentials: the texts in bytes of UTF-8, the logins before they become base64.
const int TVNG_HOST_NAME_MAX_BYTES = 256;
const int TVNG_PORT_NUM_MAX_BYTES = 5;
const int TVNG_USER_MAX_BYTES = 272;
const int TVNG_PASSWD_MAX_BYTES = 272;

/// The schemes of credentials, in the order of their codes.
const char* const TVNG_AUTH_TYPES[] = {"basic", "digest", "NTLM"};
const unsigned char TVNG_AUTH_TYPE_COUNT = 3;

/// Of a bookmark, in bytes of UTF-8.
const int TVNG_TITLE_MAX_BYTES = 100;
const int TVNG_URL_MAX_BYTES = 256;
const int TVNG_THUMBNAIL_PATH_MAX_BYTES = 256;

/// How many entries of a document the conversions of cookies look at, and the maximum that they hand to the
/// load and the save of cookie.ini.
const int TVNG_CONVERTED_MAX = 20;

/// Of a font's name, in bytes of UTF-8. Longer ones are stored but never handed out.
const int TVNG_FONT_NAME_MAX_BYTES = 256;

/// Of the preferences' texts, in bytes of UTF-8, and of the proxy's login before it becomes base64.
const int TVNG_DOMAIN_MAX_BYTES = 253;
const int TVNG_PORT_MAX_BYTES = 5;
const int TVNG_LOGIN_MAX_BYTES = 80;
const int TVNG_TEXT_MAX_BYTES = 256;

/// The times of cookies and of visits.
const char TVNG_EXPIRES_FORMAT[] = "yyyy/MM/dd hh:mm:ss";
const char TVNG_DATE_TIME_FORMAT[] = "yyyy/MM/dd hh:mm";

/// The words of choices, in the order of their codes, with blanks between them.
const char TVNG_REFUSE_ACCEPT[] = "refuse accept";
const char TVNG_FALSE_TRUE[] = "false true";
const char TVNG_USB_SOFT[] = "usb soft";
const char TVNG_DELETE_TIMINGS[] = "notDelete logout timeout";
const char TVNG_START_UPS[] = "homepage lastpage";
const char TVNG_ZOOMS[] = "0.5 0.6 0.7 0.8 0.9 1.0 1.1 1.2 1.3 1.4 1.5";

/// The code of the first zoom; those of all other choices begin with 0.
const int TVNG_ZOOM_FIRST = 1;

#endif
