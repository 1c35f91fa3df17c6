#pragma once

#include <QIODevice>

namespace quorlin::cli {

// Standard output as a device that writes every byte at once and keeps the
// system's reason when a write fails (a full disk, a closed pipe), so the
// tool can't report success for output that never arrived.
class StandardOutputDevice : public QIODevice {
public:
    explicit StandardOutputDevice(int descriptor);

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    int m_descriptor;
};

} // namespace quorlin::cli
