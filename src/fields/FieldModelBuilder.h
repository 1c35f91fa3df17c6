#pragma once

#include "fields/FieldViewController.h"
#include "fields/KeyValueWriter.h"
#include "model/Payload.h"
#include "model/ProfileEnvironment.h"
#include "schema/PFMDomain.h"

#include <QList>

#include <memory>

namespace quorlin {

// The field models of a whole payload at once: every key a form could
// show (conventional dictionaries flattened, hidden keys left out), each
// with its instruments made. Benchmarks of form building call it on the
// largest domains.
class FieldModelBuilder {
public:
    using FieldList = QList<std::shared_ptr<FieldViewController>>;

    static FieldList build(const Payload::Pointer& payload, std::shared_ptr<KeyValueWriter> writer = {});
    // A fresh payload of the domain, with no profile, and its fields. The
    // payload is returned too: the fields hold its keys, not the payload.
    struct DomainFields {
        Payload::Pointer payload;
        FieldList fields;
    };
    static DomainFields buildForDomain(const std::shared_ptr<const PFMDomain>& domain,
                                       std::shared_ptr<const ProfileEnvironment> environment);
};

} // namespace quorlin
