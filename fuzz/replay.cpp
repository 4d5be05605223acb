/// Runs a fuzz target over the files of folders: what a fuzzer has found stays found.
#include <QDir>
#include <QTextStream>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    constexpr int fewest = 100; // less, and a folder has been lost
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir folder(QString::fromLocal8Bit(argv[i]));
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
            QFile file(folder.filePath(name));
            if (!file.open(QIODevice::ReadOnly))
                qFatal("%s cannot be read", qPrintable(file.fileName()));
            const QByteArray bytes = file.readAll();
            QTextStream(stderr) << name << '\n';
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                                   static_cast<std::size_t>(bytes.size()));
            ++files;
        }
    }
    QTextStream(stdout) << files << " inputs\n";
    return files < fewest ? 1 : 0;
}
