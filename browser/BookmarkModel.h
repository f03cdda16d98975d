#ifndef TLVLIB_BROWSER_BOOKMARKMODEL_H
#define TLVLIB_BROWSER_BOOKMARKMODEL_H

#include <tlvlib/browser/StoredModel.h>
#include <tlvlib/stores/TVNC_BookmarksSetting.h>

#include <QtCore/QCache>
#include <QtCore/QStringList>
#include <QtGui/QImage>

namespace Tlv {

/**
 * The bookmarks, the newest first. Columns: the title, which can be edited, and the address. Roles: "title",
 * "url", "pictureUrl"; Qt::DecorationRole is the picture itself.
 *
 * A picture is read from its file when a view asks for it; the last 100 that were asked for stay in memory.
 * The picture of a bookmark that is gone is deleted once the bookmarks are written without it: whenever power
 * fails, each bookmark has its picture.
 *
 * Limits, in bytes of UTF-8: a title is cut to 100, an address has at most 256. Addresses are compared to the
 * letter, and each is there once: adding it again puts it in front with its new title and picture. When there
 * are maximum() of them, 100 unless it is set, no other one is added.
 */
class TLVLIB_BROWSER_EXPORT BookmarkModel : public StoredModel
{
    Q_OBJECT

public:
    /// The columns.
    enum Column { TitleColumn, UrlColumn };
    /// The roles, for C++; QML has their names.
    enum Role { TitleRole = FirstRole, UrlRole, PictureUrlRole };

    /// Of a title; a longer one is cut.
    static constexpr int TitleMaximumBytes = 100;
    /// Of an address; a longer one is refused.
    static constexpr int UrlMaximumBytes = 256;
    /// maximum() unless it is set.
    static constexpr int DefaultMaximum = 100;

    /// The size of a picture on the device, in pixels. The file takes any.
    static constexpr QSize PictureSize = QSize(160, 120);

    /// A model without bookmarks, up to load().
    explicit BookmarkModel(QObject* parent = nullptr);

    /// The row of an address; -1 when it is not bookmarked.
    Q_INVOKABLE int find(const QString& url) const;

    /**
     * Puts a page in front, in place of its older bookmark if it has one. A null picture makes a bookmark
     * without one.
     *
     * @return false when it cannot be bookmarked; errorString() tells why
     */
    bool add(const QString& title, const QString& url, const QImage& picture = QImage());

    /// Cuts the title to its limit. False when there is no such row.
    Q_INVOKABLE bool rename(int row, const QString& title);

    /// The picture; null when there is none, or none that can be read.
    QImage picture(int row) const;

    /// The upper left part of what is to be seen of a page, in the size of a bookmark's picture.
    static QImage pictureOf(const QImage& page);

    /// Why the last add() was refused, or what its bookmark lacks, in words for a person; empty when all went
    /// well.
    QString errorString() const { return error_; }

    /// @cond
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    /// @endcond

Q_SIGNALS:
    /// A picture could not be written. Its bookmark is there, without it.
    void pictureNotSaved(const QString& error);

protected:
    /// @cond
    int storedCount() const override;
    QVariantList storedRecord(int row) const override;
    void removeStored(int row) override;
    void readStore(QString dir) override;
    void writeStore(QString dir) override;
    void storeSaved() override;
    /// @endcond

private:
    QString picturePath(int row) const;
    bool refuse(const QString& error);
    /// Writes a picture into a file of its own. @return its path; empty when there is none
    QString writePicture(QImage picture);

    TVNC_BookmarksSetting& store_;
    QString pictures_;   ///< their directory
    int lastNumber_ = 0; ///< of the pictures
    QString error_;
    QStringList orphans_; ///< pictures to be deleted once their bookmarks are gone from the file
    mutable QCache<QString, QImage> shown_;
};

} // namespace Tlv

#endif
