#include <tlvlib/browser/StoredModel.h>

#include <tlvlib/files/TVNG_SafeSave.h>

#include <algorithm>

namespace Tlv {

StoredModel::StoredModel(std::vector<Field> fields, int maximum, QObject* parent)
    : RecordModel(std::move(fields), parent), maximum_(maximum)
{
}

void StoredModel::setMaximum(int maximum)
{
    maximum_ = qBound(1, maximum, MaximumCount);
}

void StoredModel::load(const QString& dir)
{
    readStore(dir);
    storeLoaded();
}

QString StoredModel::save(const QString& dir)
{
    writeStore(dir);
    const QString error = TVNG_GetSaveError();
    if (error.isEmpty())
        storeSaved();
    return error;
}

int StoredModel::findRecord(const QList<QPair<int, QVariant>>& values) const
{
    for (int row = 0; row < count(); ++row) {
        if (std::all_of(values.begin(), values.end(),
                        [&](const auto& value) { return field(row, value.first) == value.second; }))
            return row;
    }
    return -1;
}

} // namespace Tlv
