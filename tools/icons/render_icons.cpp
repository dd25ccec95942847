// Renders the SVG sources written by make_icons.py:
//
//   render_icons <svg-dir> <images-dir> <icon-dir>
//
// Every <name>.svg becomes <images-dir>/<name>.png at the pixel size the SVG declares, except
// favicon.svg, which becomes <icon-dir>/favicon.ico holding several sizes.

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>
#include <cstdio>

namespace {

const int kIcoSizes[] = {16, 24, 32, 48, 64};

QImage render(QSvgRenderer& svg, const QSize& size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    svg.render(&painter);
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32);
}

// Qt's "ico" writer stores one image per file. The file format is a directory of entries
// followed by the images, so single-image files are merged by concatenating their image data
// and rewriting the directory offsets.
QByteArray singleIco(const QImage& image) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "ico");
    if (!writer.write(image)) {
        std::fprintf(stderr, "ico: %s\n", qPrintable(writer.errorString()));
        return {};
    }
    return buffer.data();
}

QByteArray mergeIco(const QList<QByteArray>& singles) {
    const int headerSize = 6;
    const int entrySize = 16;
    QByteArray header(headerSize, '\0');
    qToLittleEndian<quint16>(1, header.data() + 2);  // type: icon
    qToLittleEndian<quint16>(singles.size(), header.data() + 4);

    QByteArray entries;
    QByteArray images;
    quint32 offset = headerSize + entrySize * singles.size();
    for (const QByteArray& single : singles) {
        QByteArray entry = single.mid(headerSize, entrySize);
        const QByteArray data = single.mid(headerSize + entrySize);
        qToLittleEndian<quint32>(data.size(), entry.data() + 8);
        qToLittleEndian<quint32>(offset, entry.data() + 12);
        entries += entry;
        images += data;
        offset += data.size();
    }
    return header + entries + images;
}

bool writeFavicon(QSvgRenderer& svg, const QString& path) {
    QList<QByteArray> singles;
    for (int size : kIcoSizes) {
        const QByteArray single = singleIco(render(svg, QSize(size, size)));
        if (single.isEmpty()) {
            return false;
        }
        singles.append(single);
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(mergeIco(singles)) > 0;
}

bool renderOne(const QFileInfo& source, const QDir& images, const QDir& icons) {
    QSvgRenderer svg(source.filePath());
    if (!svg.isValid()) {
        std::fprintf(stderr, "%s: not a valid SVG\n", qPrintable(source.filePath()));
        return false;
    }
    if (source.baseName() == QLatin1String("favicon")) {
        return writeFavicon(svg, icons.filePath(QStringLiteral("favicon.ico")));
    }
    return render(svg, svg.defaultSize()).save(images.filePath(source.baseName() + ".png"));
}

}  // namespace

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s <svg-dir> <images-dir> <icon-dir>\n", argv[0]);
        return 2;
    }
    const QDir sources(QString::fromLocal8Bit(argv[1]));
    const QDir images(QString::fromLocal8Bit(argv[2]));
    const QDir icons(QString::fromLocal8Bit(argv[3]));

    int failures = 0;
    int count = 0;
    for (const QFileInfo& file : sources.entryInfoList({QStringLiteral("*.svg")}, QDir::Files)) {
        ++count;
        if (!renderOne(file, images, icons)) {
            std::fprintf(stderr, "failed: %s\n", qPrintable(file.fileName()));
            ++failures;
        }
    }
    std::printf("rendered %d of %d files\n", count - failures, count);
    return failures == 0 ? 0 : 1;
}
