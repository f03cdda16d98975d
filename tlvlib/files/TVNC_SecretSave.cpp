#include "tlvlib/files/TVNC_SecretSave.h"

namespace {

bool b_active = false;

} // namespace

TVNC_SecretSave::TVNC_SecretSave(bool b_secret) : b_before_(b_active)
{
    b_active = b_secret;
}

TVNC_SecretSave::~TVNC_SecretSave()
{
    b_active = b_before_;
}

bool TVNC_SecretSave::isActive()
{
    return b_active;
}
