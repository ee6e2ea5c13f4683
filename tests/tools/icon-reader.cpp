#include <QFile>
#include <QImage>
#include <QImageReader>
#include <cstdio>

/// Prints the size of each image in the file that is its argument, as Qt reads them.
int main(int argumentCount, char** arguments) {
  if (argumentCount != 2) return 2;
  QImageReader reader(QFile::decodeName(arguments[1]));
  for (int index = 0; index < reader.imageCount(); ++index) {
    if (!reader.jumpToImage(index)) return 1;
    const QImage image = reader.read();
    if (image.isNull()) return 1;
    std::printf("%dx%d\n", image.width(), image.height());
  }
  return 0;
}
