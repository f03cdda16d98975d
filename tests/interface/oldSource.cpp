// Compiled as Debian compiles every package: a text that is no literal must pass as a format.
#include <tlvlib/diag/TVNG_DebugPrint.h>

void logText(const char* pc_text);

void logText(const char* pc_text)
{
    TVNG_DebugPrint(2, pc_text);
}
