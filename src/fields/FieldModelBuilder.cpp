#include "fields/FieldModelBuilder.h"

namespace quorlin {

FieldModelBuilder::FieldList FieldModelBuilder::build(const Payload::Pointer& payload,
                                                      std::shared_ptr<KeyValueWriter> writer) {
    FieldList fields;
    for (const auto& topLevel : payload->preferenceKeys()) {
        for (const auto& key : topLevel->displayableSubkeys()) {
            if (!key->prototype().userVisible())
                continue;
            auto field = FieldViewController::make(key);
            field->makeInstrument(writer);
            fields.append(field);
        }
    }
    return fields;
}

FieldModelBuilder::DomainFields
FieldModelBuilder::buildForDomain(const std::shared_ptr<const PFMDomain>& domain,
                                  std::shared_ptr<const ProfileEnvironment> environment) {
    DomainFields built;
    built.payload = Payload::make(domain, nullptr, std::move(environment));
    built.fields = build(built.payload);
    return built;
}

} // namespace quorlin
