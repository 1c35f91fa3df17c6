#include "ui/FirstWindowExit.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

namespace quorlin {

std::optional<int> FirstWindowExit::delayFromEnvironment() {
    const char* name = "QUORLIN_EXIT_AFTER_FIRST_WINDOW";
    if (!qEnvironmentVariableIsSet(name))
        return std::nullopt;
    bool isNumber = false;
    const int delay = qEnvironmentVariableIntValue(name, &isNumber);
    return isNumber && delay > 0 ? delay : 0;
}

FirstWindowExit::FirstWindowExit(int delayMilliseconds, QObject* parent)
    : QObject(parent)
    , m_delay(delayMilliseconds) {
    QCoreApplication::instance()->installEventFilter(this);
}

bool FirstWindowExit::eventFilter(QObject* watched, QEvent* event) {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (m_painted || event->type() != QEvent::Paint || !widget || !widget->isWindow())
        return false;
    m_painted = true;
    // Queued, so the paint under way reaches the screen first. The exit is
    // immediate: tearing the program down is no part of its start.
    QTimer::singleShot(m_delay, this, [] {
        std::fflush(nullptr);
        std::_Exit(0);
    });
    return false;
}

} // namespace quorlin
