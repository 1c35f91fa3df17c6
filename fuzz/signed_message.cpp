// Decodes any bytes as a CMS signed message, DER or PEM, and checks each
// signer; what decodes has at least one signer and no more than are read.
#include "documents/SigningServices.h"

#include <QDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorlin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const SigningServices services(
        nullptr, QDir::temp().filePath(QStringLiteral("quorlin-fuzz-no-identities")));
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto message = services.decodeSignedMessage(bytes);
    if (!message)
        return 0;
    if (message->signers.isEmpty() || message->signers.size() > 16 ||
        message->signerCommonNames.size() > message->signers.size())
        std::abort();
    return 0;
}
