#ifndef EXAMPLES_KIOSK_PAGES_H
#define EXAMPLES_KIOSK_PAGES_H

#include "RecordPage.h"

#include <tlvlib/browser/Profile.h>

/// The bookmarks as a grid of their pictures.
RecordPage* makeBookmarkPage(Tlv::BookmarkModel& bookmarks);

/// The visited pages.
RecordPage* makeHistoryPage(Tlv::HistoryModel& history);

/// The logins, with their passwords hidden.
RecordPage* makeLoginPage(Tlv::LoginModel& logins);

/// The cookies, with their values hidden.
RecordPage* makeCookiePage(Tlv::CookieModel& cookies);

#endif
