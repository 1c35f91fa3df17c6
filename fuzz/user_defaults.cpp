// Loads any bytes as the user defaults file, then changes one value, which
// saves the file: what was kept must read back with the change.
#include "plist/UserDefaults.h"

#include <QDir>
#include <QFile>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

using namespace quorlin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QString path =
        QDir::temp().filePath(QStringLiteral("quorlin-fuzz-defaults-%1.plist").arg(getpid()));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();

    UserDefaults defaults(path);
    defaults.registerDefaults({{QStringLiteral("lastChoiceFuzz"), true}});
    defaults.boolean(QStringLiteral("lastChoiceFuzz"));
    defaults.array(QStringLiteral("preferencesDefaultsFuzz"));
    if (!defaults.set(QStringLiteral("noticeSuppressFuzz"), qint64(size)))
        return 0;
    const UserDefaults reread(path);
    if (reread.integer(QStringLiteral("noticeSuppressFuzz")) != qint64(size) ||
        reread.persistentDomain().size() != defaults.persistentDomain().size())
        std::abort();
    return 0;
}
