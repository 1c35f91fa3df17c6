#include "schema/PFMXSupportedOSes.h"

namespace quorlin {

Expected<PFMXSupportedOSes, PFMXDecodingError>
PFMXSupportedOSes::decode(const plist::Dictionary& dictionary) {
    std::map<Model, PFMXSupportedOS> storage;
    for (const Model model : PFMSupportedPlatforms::allModels) {
        const QString key = codingKey(model);
        if (!dictionary.contains(key))
            continue;
        const plist::Dictionary* entry = dictionary.dictionary(key);
        if (!entry)
            return fail(PFMXDecodingError{key, QStringLiteral("expected a dictionary")});
        auto os = PFMXSupportedOS::decode(*entry, key);
        if (!os)
            return fail(os.error());
        storage.emplace(model, std::move(*os));
    }
    return PFMXSupportedOSes(std::move(storage));
}

QString PFMXSupportedOSes::codingKey(Model model) {
    return PFMSupportedPlatforms::displayName(model);
}

const PFMXSupportedOS* PFMXSupportedOSes::supportedOS(Model model) const {
    const auto found = supportedOSesStorge.find(model);
    return found == supportedOSesStorge.end() ? nullptr : &found->second;
}

} // namespace quorlin
