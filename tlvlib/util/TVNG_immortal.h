#ifndef TLVLIB_UTIL_TVNG_IMMORTAL_H
#define TLVLIB_UTIL_TVNG_IMMORTAL_H

#include <new>

/**
 * The one object of a type, made when it is first asked for and never destroyed: the stores are destroyed
 * when the process exits, in an order that nobody chooses, and may still be asked then. Internal to the
 * library; not installed.
 *
 * @code
 * struct Names
 * {
 *     QString root = TVNG_literal("bookmarks");
 * };
 * setting.setName(TVNG_immortal<Names>().root);
 * @endcode
 */
template <typename Type>
Type& TVNG_immortal()
{
    // The object itself takes no memory: one that does not allocate is there even when memory has run out.
    alignas(Type) static unsigned char uc_room[sizeof(Type)];
    static Type* const pc_object = new (uc_room) Type;
    return *pc_object;
}

#endif
