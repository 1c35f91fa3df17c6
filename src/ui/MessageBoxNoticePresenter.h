#pragma once

#include "ui/NoticePresenter.h"

namespace quorlin {

// Shows each notice as a message box, modal to its window so that the rest
// of the program goes on. A suppressible notice gets a check box, whose
// state the reply carries whichever button was pressed.
class MessageBoxNoticePresenter final : public NoticePresenter {
public:
    void present(QWidget* window, const ApplicationNotice& notice, ReplyHandler reply) override;
};

} // namespace quorlin
