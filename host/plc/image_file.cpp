#include "image_file.h"

#include <QFile>
#include <QSaveFile>

namespace plc
{
namespace
{
/// Above what the largest image takes, with every element of 247 stations in it.
constexpr qint64 LARGEST_FILE = 64 * 1024 * 1024;

QString failed(const char* what, const QString& path, const QString& why)
{
    return QLatin1String(what) + QLatin1Char(' ') + path + QLatin1String(": ") + why;
}
} // namespace

LoadedImage loadImage(const QString& path, const QList<int>& stations)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, failed("cannot load", path, file.errorString())};
    const QByteArray text = file.read(LARGEST_FILE + 1);
    if (file.error() != QFileDevice::NoError)
        return {{}, failed("cannot load", path, file.errorString())};
    if (text.size() > LARGEST_FILE)
        return {{}, failed("cannot load", path, QStringLiteral("longer than 64 MiB"))};
    return {parseImage(path, QString::fromUtf8(text), stations), {}};
}

QString saveImage(const QString& path, const Controller& controller)
{
    QSaveFile file(path);
    const QByteArray text = imageText(controller).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        return failed("cannot save", path, file.errorString());
    return {};
}

QString trySaving(const QString& path)
{
    QSaveFile file(path);
    const bool possible = file.open(QIODevice::WriteOnly);
    file.cancelWriting();
    return possible ? QString() : failed("cannot save", path, file.errorString());
}
} // namespace plc
