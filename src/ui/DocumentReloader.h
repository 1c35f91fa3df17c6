#pragma once

#include <functional>

namespace quorlin {

// What the application's repository side needs of the open documents: a
// change of manifests reaches open windows only by closing and reopening
// them, and the factory reset closes them all first.
class DocumentReloader {
public:
    virtual ~DocumentReloader() = default;

    virtual int openProfileDocumentCount() const = 0;
    // Closes every document, asking about unsaved changes as a close does,
    // and opens them again on the domains in force then.
    virtual void reloadAllDocuments() = 0;
    // While true, closing the last window must not end the program.
    virtual bool isReloading() const = 0;
    // Closes every document, asking about unsaved changes; `done` learns
    // whether all closed (false when the user cancelled).
    virtual void closeAllDocuments(std::function<void(bool allClosed)> done) = 0;
};

} // namespace quorlin
