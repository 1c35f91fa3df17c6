#pragma once

#include <functional>

class QAction;
class QMenu;
class QWidget;

namespace quorlin {

// The commands of the application that every document window's menu bar
// shows beside its own. Each may be missing (a window in a test has none);
// the application owns them.
struct ApplicationActions {
    QAction* newDocument = nullptr;
    QAction* open = nullptr;
    QAction* inspectApp = nullptr;
    QAction* closeAll = nullptr;
    QAction* quit = nullptr;
    QAction* preferences = nullptr;
    QAction* manifestUpdates = nullptr;
    QAction* reloadAllProfiles = nullptr;
    QAction* help = nullptr;
    QAction* about = nullptr;
    // Filled each time the menu opens, so every window shows the same lists.
    std::function<void(QMenu&)> fillRecentMenu;
    std::function<void(QMenu&)> fillWindowMenu;
    // The toolbar's indicator of manifest updates, one per window.
    std::function<QWidget*(QWidget* parent)> makeUpdatesIndicator;
};

} // namespace quorlin
