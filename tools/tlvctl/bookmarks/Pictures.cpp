#include "tools/tlvctl/bookmarks/Pictures.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtGui/QImageReader>

namespace {

/// A few bytes can be a picture that takes gigabytes.
const int PIXELS_MAX = 64 << 20;

} // namespace

QImage readPicture(QIODevice& device, const QSize& largest, QString& problem)
{
    QImageReader reader(&device);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > PIXELS_MAX) {
        problem = QString("it has more than %1 pixels").arg(PIXELS_MAX);
        return QImage();
    }
    if (size.width() > largest.width() || size.height() > largest.height())
        reader.setScaledSize(size.scaled(largest, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    const QImage image = reader.read();
    problem = reader.errorString();
    return image;
}

QByteArray pngOf(const BookmarkRecord& record)
{
    QFile file(record.bookmark.thumbnail);
    QString problem;
    const QImage image = record.hasPicture ? readPicture(file, PICTURE_SIZE, problem) : QImage();
    QByteArray png;
    QBuffer buffer(&png);
    if (!image.isNull())
        image.save(&buffer, "PNG");
    return png;
}

NewPictures::~NewPictures()
{
    for (const QString& path : written_)
        QFile::remove(path);
}

bool NewPictures::write(const QImage& image)
{
    last_ = list_.nextPicture();
    if (isDryRun_)
        return true;
    if (!list_.writePicture(image))
        return false;
    written_.append(last_);
    return true;
}
