#include "tlvlib/format/TVNC_XMLInput.h"

#include "tlvlib/format/TVNC_XMLCharacters.h"
#include "tlvlib/util/TVNG_QtVersion.h"

#include <cstring>

namespace {

/// Bytes read from the source at a time: what the stream reader asks for.
const int PIECE_SIZE = 8192;

} // namespace

TVNC_XMLInput::TVNC_XMLInput(QIODevice& source) : source_(source), si_outputTaken_(0), b_ended_(false)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool TVNC_XMLInput::isSequential() const
{
    return true;
}

qint64 TVNC_XMLInput::readData(char* pc_data, qint64 maxSize)
{
    if (si_outputTaken_ == output_.size() && !b_ended_)
        produce();
    const qint64 si_size = qMin(maxSize, static_cast<qint64>(output_.size() - si_outputTaken_));
    std::memcpy(pc_data, output_.constData() + si_outputTaken_, static_cast<size_t>(si_size));
    si_outputTaken_ += static_cast<int>(si_size);
    return si_size;
}

qint64 TVNC_XMLInput::writeData(const char*, qint64)
{
    return -1;
}

/// Refills output_. Leaves it empty, and without memory of its own, only at the end.
void TVNC_XMLInput::produce()
{
    si_outputTaken_ = 0;
    output_ = decoder_.decode(readSource());
    b_ended_ = output_.isEmpty() || decoder_.hasEnded();
    if (output_.isEmpty())
        return;
    output_.prepend(tail_);
    const TVNC_XMLCharacters::Check check = TVNC_XMLCharacters::check(output_);
    tail_ = output_.mid(check.si_admitted, check.si_cutOff);
    b_ended_ = b_ended_ || check.b_ended;
    output_.truncate(check.si_admitted);
    if (check.b_noncharacters && TVNG_decoderRefusesNoncharacters())
        output_ = TVNC_XMLCharacters::withoutNoncharacters(output_);

    const int si_size = static_cast<int>(output_.size());
    const int si_admitted = guard_.admit(output_.constData(), si_size);
    b_ended_ = b_ended_ || si_admitted < si_size;
    output_.truncate(si_admitted);
}

/// Reads until a piece is full or the source has no more.
QByteArray TVNC_XMLInput::readSource()
{
    const int si_capacity = PIECE_SIZE - static_cast<int>(tail_.size());
    QByteArray bytes;
    bytes.resize(si_capacity);
    int si_size = 0;
    while (si_size < si_capacity) {
        const qint64 si_count = source_.read(bytes.data() + si_size, si_capacity - si_size);
        if (si_count <= 0)
            break;
        si_size += static_cast<int>(si_count);
    }
    bytes.truncate(si_size);
    return bytes;
}
