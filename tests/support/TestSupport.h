#pragma once

#include "plist/Value.h"

#include <QByteArray>
#include <QString>

#include <iosfwd>

namespace quorlin::test {

// Before the application object: QStandardPaths test mode, the closed
// raw-content port, the application name of the suites.
void prepareTestEnvironment();

// tests/data/<relative>
QString testDataPath(const QString& relative = {});
// ../shared/corpus/<relative>, the third-party snapshot read by relative path.
QString corpusPath(const QString& relative = {});
// Every file below a folder whose name ends in one of the suffixes, sorted.
QStringList filesBelow(const QString& folder, const QStringList& suffixes);
QByteArray readFile(const QString& path);

} // namespace quorlin::test

namespace quorlin::plist {
// Readable values in gtest failure messages.
void PrintTo(const Value& value, std::ostream* out);
void PrintTo(const Dictionary& dictionary, std::ostream* out);
} // namespace quorlin::plist

QT_BEGIN_NAMESPACE
void PrintTo(const QString& string, std::ostream* out);
void PrintTo(const QByteArray& bytes, std::ostream* out);
QT_END_NAMESPACE
