// Build tool: renders the program's SVG icon to the PNG sizes of the icon theme.
//   svg2png ICON.svg OUTDIR NAME SIZE...  writes OUTDIR/SIZExSIZE/apps/NAME.png
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc < 5) {
        std::fprintf(stderr, "usage: svg2png ICON.svg OUTDIR NAME SIZE...\n");
        return 2;
    }
    QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
    if (!svg.isValid()) {
        std::fprintf(stderr, "svg2png: cannot read %s\n", argv[1]);
        return 1;
    }
    const QString out = QString::fromLocal8Bit(argv[2]);
    const QString name = QString::fromLocal8Bit(argv[3]);
    for (int i = 4; i < argc; ++i) {
        const int size = std::atoi(argv[i]);
        if (size <= 0 || size > 1024) {
            std::fprintf(stderr, "svg2png: bad size %s\n", argv[i]);
            return 2;
        }
        QImage img(size, size, QImage::Format_ARGB32_Premultiplied);
        img.fill(Qt::transparent);
        {
            QPainter p(&img);
            p.setRenderHint(QPainter::Antialiasing);
            svg.render(&p);
        }
        const QString dir = QStringLiteral("%1/%2x%2/apps").arg(out).arg(size);
        if (!QDir().mkpath(dir) || !img.save(dir + QLatin1Char('/') + name + QStringLiteral(".png"))) {
            std::fprintf(stderr, "svg2png: cannot write into %s\n", qPrintable(dir));
            return 1;
        }
    }
    return 0;
}
