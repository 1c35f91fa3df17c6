// Builds a manifest domain from any property list and walks everything that
// is derived from it: a domain must come out whole or not at all, whatever
// the tree holds.
#include "plist/PlistReader.h"
#include "schema/PFMDomain.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorlin;

namespace {

// A broken invariant ends the run, so that libFuzzer reports it.
void require(bool condition) {
    if (!condition)
        std::abort();
}

void touchKey(const PFMKeyPrototype& key, const SupportedPlatforms& parentPlatforms,
              const plist::Value& manifest, int depth) {
    require(depth <= PFMKeyPrototype::maximumDepth);
    const auto strings = key.collectSearchStrings();
    require(strings.has_value() == key.name().has_value());
    if (strings) {
        require(strings->names.size() == strings->titles.size());
        require(strings->names.size() == strings->descriptions.size());
    }
    const bool isDictionary = key.kind() == PFMKeyPrototype::Kind::dictionary;
    require(isDictionary ==
            (key.representedDictionary() != PFMKeyPrototype::RepresentableDictionary::notADictionary));
    if (key.defaultValue()) {
        require(PFMKeyPrototype::isOfPlistClass(*key.defaultValue(), key.kind()));
        key.matchesValue(*key.defaultValue());
    }
    key.matchesValue(manifest);
    key.requiresSupervisionDeep();
    for (const PFMConditionalPrototype& rule : key.conditionalPrototypes())
        require(!rule.targetPaths().isEmpty());

    SupportedPlatforms platforms = parentPlatforms;
    if (key.supportedOSes())
        platforms = SupportedPlatforms::combinedWithParent(*key.supportedOSes(), parentPlatforms);
    else if (key.supportedModels() || key.lifeCycleVersions())
        platforms = SupportedPlatforms::combinedWithParent(key.supportedModels(), key.lifeCycleVersions(),
                                                           parentPlatforms);
    for (const SupportedPlatform& platform : platforms.platforms())
        require(parentPlatforms.contains(platform.model));
    for (const auto model : PFMSupportedPlatforms::allModels) {
        platforms.isBeforeIntroduction(model, QStringLiteral("14.2"));
        platforms.hasReachedStage(model, QString(), PFMSupportedPlatforms::LifeCycleStage::removal);
    }

    for (const auto& subkey : key.subkeys())
        touchKey(*subkey, platforms, manifest, depth + 1);
}

void touchDomain(const PFMDomain& domain, const plist::Value& manifest) {
    require(domain.allKeyNames().size() == domain.allKeyTitles().size());
    require(domain.allKeyNames().size() == domain.allKeyDescriptions().size());
    require(domain.supportedPlatforms().has_value());
    if (domain.domainString().isEmpty())
        require(domain.domainCategory() == PFMDomain::Category::root);
    if (const auto& labels = domain.displayGroupsLabelMap())
        require(!labels->isEmpty() && labels->lastKey() == labels->size() - 1);
    if (const auto& prototype = domain.payloadFileDataSubkeyPrototype())
        require(prototype->name() == domain.payloadFileDataSubkeyName());
    for (const auto& key : domain.keyPrototypes()) {
        require(key->name().has_value());
        touchKey(*key, *domain.supportedPlatforms(), manifest, 1);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto result = plist::PlistReader::read(bytes);
    if (!result || !result->root.isDictionary())
        return 0;
    if (const auto domain = PFMDomain::make(*result->root.dictionary()))
        touchDomain(*domain, result->root);
    return 0;
}
