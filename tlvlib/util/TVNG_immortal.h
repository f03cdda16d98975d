#ifndef TLVLIB_UTIL_TVNG_IMMORTAL_H
#define TLVLIB_UTIL_TVNG_IMMORTAL_H

/**
 * The one object of a type, made when it is first asked for and never destroyed: the stores are destroyed
 * when the process exits, in an order that nobody chooses, and may still be asked then. Internal to the
 * library; not installed.
 *
 * @code
 * struct Names
 * {
 *     QString root = QEXC_TextCodec::fromSJIS("bookmarks");
 * };
 * setting.setName(TVNG_immortal<Names>().root);
 * @endcode
 */
template <typename Type>
Type& TVNG_immortal()
{
    static Type* const pc_object = new Type;
    return *pc_object;
}

#endif
