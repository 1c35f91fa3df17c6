#pragma once

#include <QObject>

#include <optional>

namespace quorlin {

// For measuring start-up as a whole process: ends the program, without
// tidying up, once its first window has been painted, or a given time after.
// The editor installs it when QUORLIN_EXIT_AFTER_FIRST_WINDOW is set.
class FirstWindowExit : public QObject {
public:
    // The variable's value, in milliseconds to wait after the first paint
    // (empty or not a number: none); nothing when it is unset.
    static std::optional<int> delayFromEnvironment();

    // Watches every event of the application it is installed on.
    explicit FirstWindowExit(int delayMilliseconds, QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int m_delay;
    bool m_painted = false;
};

} // namespace quorlin
