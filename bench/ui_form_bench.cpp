// The time from selecting the section of the largest bundled domain to its
// form shown and laid out, on the offscreen platform: the form's logic, the
// widgets of the rows it shows, one layout pass. Each run starts from a new
// profile; the median and the slowest run are printed. The same is timed in
// a whole document window, with its side bar of icons and the Issues panel
// shown, which is what a user waits for.
#include "documents/ProfileDocument.h"
#include "model/Profile.h"
#include "model/ProfileEnvironment.h"
#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "schema/PFMDomain.h"
#include "shell/FactoryDefaults.h"
#include "ui/ContentView.h"
#include "ui/DocumentWindow.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "workspace/EditHistory.h"
#include "workspace/PFMSection.h"
#include "workspace/PFMSectionViewController.h"

#include "ManifestFolder.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace quorlin;

namespace {

using DomainPointer = std::shared_ptr<const PFMDomain>;

int countKeys(const PFMKeyPrototypeList& keys) {
    int count = 0;
    for (const auto& key : keys)
        count += 1 + countKeys(key->subkeys());
    return count;
}

struct Run {
    double logicMs = 0;
    double widgetsMs = 0;
    double totalMs = 0;
    int rows = 0;
    int rowsBuilt = 0;
};

Run showForm(const Profile::DomainList& domains, const DomainPointer& domain) {
    const auto profile = Profile::makeNewProfile(domains, ProfileEnvironment::makeSystem());
    PFMSection section(domain);
    EditHistory history;
    section.setKeyValueWriter(history.keyValueWriter());
    ContentView view;
    view.resize(900, 700);
    view.show();
    QApplication::processEvents();

    QElapsedTimer timer;
    timer.start();
    section.addPayload(profile, std::nullopt);
    const qint64 logic = timer.nsecsElapsed();
    view.setSection(&section);
    const qint64 widgets = timer.nsecsElapsed();
    // Lays out and paints what the first show needs.
    QApplication::processEvents();
    view.grab();
    const qint64 total = timer.nsecsElapsed();

    Run run{logic / 1e6, widgets / 1e6, total / 1e6, 0, 0};
    for (const PayloadFormView* payload : view.sectionFormView()->payloadViews()) {
        run.rows += int(payload->rows().size());
        run.rowsBuilt += int(std::count_if(payload->rows().begin(), payload->rows().end(),
                                           [](const QWidget* row) { return row != nullptr; }));
    }
    return run;
}

// The window's own section of `domain`: the one whose domains hold it alone.
PFMSection* sectionOf(DocumentWindow& window, const DomainPointer& domain) {
    for (PFMSection* section : window.sections().content()) {
        if (section->domains().size() == 1 && section->domains().first() == domain)
            return section;
    }
    return nullptr;
}

double showFormInWindow(const Profile::DomainList& domains, const DomainPointer& domain,
                        UserDefaults& defaults) {
    auto document = std::make_unique<ProfileDocument>(domains, ProfileEnvironment::makeSystem(), defaults);
    document->makeWindowControllers();
    DocumentWindow window(std::move(document), domains, defaults, nullptr);
    window.resize(1024, 700);
    window.show();
    QApplication::processEvents();
    PFMSection* section = sectionOf(window, domain);
    if (!section)
        return -1;
    // The payload is there before the clock starts, as in an opened profile;
    // what is timed is going to its section from another one.
    PFMSection* general = window.selectedSection();
    window.addPayload(*section);
    window.selectSection(general);
    QApplication::processEvents();

    QElapsedTimer timer;
    timer.start();
    window.selectSection(section);
    QApplication::processEvents();
    window.grab();
    const double elapsed = timer.nsecsElapsed() / 1e6;
    const auto& payloads = window.contentView()->sectionFormView()->payloadViews();
    return payloads.isEmpty() || payloads.first()->rows().empty() ? -1 : elapsed;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const auto domains = bench::readDomains(QStringLiteral(QUORLIN_BUNDLED_MANIFESTS));
    DomainPointer largest;
    for (const auto& domain : domains) {
        if (domain->domainString().isEmpty())
            continue;
        if (!largest || countKeys(domain->keyPrototypes()) > countKeys(largest->keyPrototypes()))
            largest = domain;
    }
    if (!largest) {
        std::fprintf(stderr, "no bundled domain besides the general one\n");
        return 1;
    }
    constexpr int runs = 9;
    std::vector<Run> results;
    for (int index = 0; index < runs; ++index)
        results.push_back(showForm(domains, largest));
    std::vector<double> totals;
    std::vector<double> logic;
    std::vector<double> widgets;
    for (const Run& run : results) {
        totals.push_back(run.totalMs);
        logic.push_back(run.logicMs);
        widgets.push_back(run.widgetsMs);
    }
    std::sort(totals.begin(), totals.end());
    std::sort(logic.begin(), logic.end());
    std::sort(widgets.begin(), widgets.end());
    std::printf("largest bundled domain %s: %d keys, %d rows, %d built at first show\n",
                qPrintable(largest->domainString()), countKeys(largest->keyPrototypes()),
                results.front().rows, results.front().rowsBuilt);
    std::printf("form shown (logic + widgets + layout), %d runs: median %.1f ms, slowest %.1f ms\n", runs,
                totals[runs / 2], totals.back());
    std::printf("of which the logic's form: median %.1f ms; logic and widgets built, before layout and "
                "painting: median %.1f ms\n",
                logic[runs / 2], widgets[runs / 2]);

    QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(QStringLiteral("defaults.plist")));
    defaults.registerDefaults(FactoryDefaults::registeredDefaults());
    defaults.set(DefaultsKey::lastChoiceShowIssues, plist::Value(true));
    std::vector<double> windowTotals;
    for (int index = 0; index < runs; ++index)
        windowTotals.push_back(showFormInWindow(domains, largest, defaults));
    if (windowTotals.front() < 0) {
        std::fprintf(stderr, "the window shows no form of %s\n", qPrintable(largest->domainString()));
        return 1;
    }
    std::printf("in a window with its side bar and the Issues panel shown, %d runs: median %.1f ms, slowest "
                "%.1f ms\n",
                runs, median(windowTotals), *std::max_element(windowTotals.begin(), windowTotals.end()));
    return 0;
}
