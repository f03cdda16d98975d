#ifndef TLVLIB_BROWSER_STOREDMODEL_H
#define TLVLIB_BROWSER_STOREDMODEL_H

#include <tlvlib/browser/RecordModel.h>

namespace Tlv {

/// What the models of the stores have in common beside: a bound, and a file that is read and written.
class TLVLIB_BROWSER_EXPORT StoredModel : public RecordModel
{
    Q_OBJECT

public:
    /// How many records there are at most: 1 to 999. A file that has more keeps them.
    int maximum() const { return maximum_; }
    /// Set it before loading. What is outside of 1 to 999 is taken for the nearer end.
    void setMaximum(int maximum);

    /// Replaces the records by those of a directory, which ends in "/". Profile does this.
    void load(const QString& dir);

    /**
     * Writes the records. Profile does this.
     *
     * @return what failed, in words for a person; empty when all is written. Failures are only found out with
     *         safe saving, which Profile switches on.
     */
    QString save(const QString& dir);

protected:
    /// A model of records with these fields, without any up to load().
    StoredModel(std::vector<Field> fields, int maximum, QObject* parent);

    /// The row of the first record whose fields have these values, by their numbers; -1 when there is none.
    int findRecord(const QList<QPair<int, QVariant>>& values) const;

    /// @name The store's file
    /// @{

    /// Reads it.
    virtual void readStore(QString dir) = 0;
    /// Writes it.
    virtual void writeStore(QString dir) = 0;
    /// It is written: what it named before and does not name any more may go.
    virtual void storeSaved() {}

    /// @}

private:
    int maximum_;
};

} // namespace Tlv

#endif
