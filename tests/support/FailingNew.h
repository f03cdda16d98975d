#ifndef TESTS_SUPPORT_FAILINGNEW_H
#define TESTS_SUPPORT_FAILINGNEW_H

/**
 * @file
 * Lets the creation of a node, or of any object, fail as it does when memory runs out. Includes the
 * definitions: for one source of a program. None of them may be inlined: the compiler would then see memory
 * of malloc() go to operator delete, and warn.
 */

#include "tests/support/TestSupport.h"

#include <tlvlib/xml/TVNC_XMLNode.h>

#include <QtCore/QPointer>

#include <cstdlib>
#include <new>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

/// 0: nothing fails; n: the nth node from now on cannot be created.
static int failingNode = 0;

/// 0: nothing fails; n: the nth object from now on cannot be created, nor any behind it until this is 0
/// again.
static int failingObject = 0;

/**
 * While it lives, whatever is made may leak without a report of the leak sanitizer, and so may the tree that
 * stands there at its beginning: when memory does not suffice for the release of a tree, it stays.
 */
class LeaksAreExpected
{
public:
#ifdef __SANITIZE_ADDRESS__
    explicit LeaksAreExpected(TVNC_XMLNode* pc_root)
    {
        __lsan_ignore_object(pc_root);
        __lsan_disable();
    }
    ~LeaksAreExpected()
    {
        __lsan_enable();
    }
#else
    explicit LeaksAreExpected(TVNC_XMLNode*) {}
    ~LeaksAreExpected() {}
#endif

private:
    Q_DISABLE_COPY(LeaksAreExpected)
};

/// Runs the event loop and then deletes a node that the document of a root let go while there was no memory
/// to hand it to the loop.
inline void freeLetGo(const QPointer<TVNC_XMLNode>& node, const TVNC_XMLNode* pc_root)
{
    releaseDeferred();
    if (node && node != pc_root && !node->getXMLNodeParent())
        delete node.data();
}

__attribute__((noinline)) void* operator new(std::size_t size)
{
    if (failingNode > 0 && size == sizeof(TVNC_XMLNode) && --failingNode == 0)
        throw std::bad_alloc();
    if (failingObject > 0 && --failingObject == 0) {
        failingObject = 1;
        throw std::bad_alloc();
    }
    if (void* pc_memory = std::malloc(size))
        return pc_memory;
    throw std::bad_alloc();
}

__attribute__((noinline)) void operator delete(void* pc_memory) noexcept
{
    std::free(pc_memory);
}

__attribute__((noinline)) void operator delete(void* pc_memory, std::size_t) noexcept
{
    std::free(pc_memory);
}

#endif
