#pragma once

#include "shell/ApplicationNotice.h"

#include <functional>

class QWidget;

namespace quorlin {

// Where the application's notices go up; the reply may come later. Tests
// answer them in place of a person.
class NoticePresenter {
public:
    using ReplyHandler = std::function<void(const ApplicationNotice::Reply&)>;

    virtual ~NoticePresenter() = default;
    // On `window` when given, else on its own.
    virtual void present(QWidget* window, const ApplicationNotice& notice, ReplyHandler reply) = 0;
};

} // namespace quorlin
