// Standardizes the whole ProfileManifests corpus into a fresh store, then
// builds a domain from every standardized manifest, and refreshes the
// unchanged store once more. Prints the time of each step, files per
// second and the peak resident memory of the process.
#include "schema/PFMDomain.h"
#include "supply/OriginalsFolderRepository.h"
#include "supply/PFMDomainManager.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>

using namespace quorlin;

namespace {

StandardizationSettings benchSettings() {
    StandardizationSettings settings;
    settings.hidePayloadTopLevelKeys = true;
    settings.sortOrder = PFMDomainManager::defaultSortOrder();
    settings.scrubThirdPartyPlaceholders = true;
    settings.supportVersion = QStringLiteral("bench");
    return settings;
}

long peakResidentKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void report(const char* step, qint64 nanoseconds, qsizetype files) {
    const double seconds = double(nanoseconds) / 1e9;
    std::printf("%-34s %9.1f ms  %5lld files  %9.0f files/s\n", step, seconds * 1000.0, qint64(files),
                seconds > 0 ? double(files) / seconds : 0.0);
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QString corpus = QStringLiteral(QUORLIN_CORPUS_DIR "/profile-manifests");
    QTemporaryDir store;
    if (!store.isValid())
        return 1;

    QElapsedTimer timer;
    timer.start();
    const auto repository = OriginalsFolderRepository::make(store.path(), corpus, benchSettings());
    const qint64 standardizing = timer.nsecsElapsed();
    if (!repository) {
        std::fprintf(stderr, "cannot make a store in %s\n", qPrintable(store.path()));
        return 1;
    }
    const qsizetype originals = repository->manifestFiles().size();
    const qsizetype standardized = repository->standardizedManifests().size();

    timer.restart();
    qsizetype domains = 0;
    for (const plist::Dictionary& manifest : repository->standardizedManifests()) {
        if (PFMDomain::make(manifest))
            ++domains;
    }
    const qint64 loading = timer.nsecsElapsed();

    timer.restart();
    const qsizetype rewritten = repository->processOriginals().size();
    const qint64 refreshing = timer.nsecsElapsed();

    std::printf("corpus %s: %lld originals, %lld standardized manifests, %lld domains\n", qPrintable(corpus),
                qint64(originals), qint64(standardized), qint64(domains));
    report("standardize all (and read back)", standardizing, originals);
    report("build domains", loading, standardized);
    report("refresh unchanged store", refreshing, originals);
    std::printf("files rewritten by the refresh: %lld\n", qint64(rewritten));
    std::printf("peak resident memory: %ld KiB\n", peakResidentKilobytes());
    return 0;
}
