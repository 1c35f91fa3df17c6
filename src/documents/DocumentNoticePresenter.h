#pragma once

#include "documents/DocumentError.h"
#include "documents/DocumentNotice.h"

#include <functional>

namespace quorlin {

// The document's window as the document sees it: where its notices and the
// errors of saves it starts by itself go up. The front end implements it.
class DocumentNoticePresenter {
public:
    using ReplyHandler = std::function<void(const NoticeReply&)>;

    virtual ~DocumentNoticePresenter() = default;
    // Shows the notice now; the reply may come later.
    virtual void present(const DocumentNotice& notice, ReplyHandler reply) = 0;
    virtual void presentError(const DocumentError& error) = 0;
};

} // namespace quorlin
