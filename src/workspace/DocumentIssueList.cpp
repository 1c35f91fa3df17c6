#include "workspace/DocumentIssueList.h"

#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"

#include <algorithm>
#include <tuple>

namespace quorlin {

namespace {

PayloadViewController* payloadForm(const DocumentIssueList::Location& location) {
    if (!location.section || !location.section->sectionViewController())
        return nullptr;
    const auto& forms = location.section->sectionViewController()->payloadControllers();
    if (location.payloadIndex < 0 || location.payloadIndex >= int(forms.size()))
        return nullptr;
    return forms[size_t(location.payloadIndex)].get();
}

QString keyTitle(const FormField& field) {
    const QString title = field.controller->displayTitle().text;
    return title.isEmpty() ? field.key->prototype().name().value_or(QString()) : title;
}

// Walks the fields of the sections' forms in order until `visit` answers true.
template <class Visit>
void visitFields(const QList<PFMSection*>& sections, Visit visit) {
    for (PFMSection* section : sections) {
        const PFMSectionViewController* form = section->sectionViewController();
        if (!form)
            continue;
        const auto& payloads = form->payloadControllers();
        for (size_t payload = 0; payload < payloads.size(); ++payload) {
            const auto& fields = payloads[payload]->fieldViewControllers();
            for (size_t index = 0; index < fields.size(); ++index) {
                const DocumentIssueList::Location location{section, int(payload), int(index)};
                if (visit(location, fields[index], qsizetype(payloads.size())))
                    return;
            }
        }
    }
}

// A field's place in side-bar order: section sort string, payload, row.
std::tuple<QString, int, int> rankOf(const DocumentIssueList::Location& location) {
    return {location.section ? location.section->sortingString() : QString(), location.payloadIndex,
            location.fieldIndex};
}

} // namespace

QList<DocumentIssueList::Issue> DocumentIssueList::collect(QList<PFMSection*> sections) {
    std::stable_sort(sections.begin(), sections.end(), [](const PFMSection* a, const PFMSection* b) {
        return a->sortingString() < b->sortingString();
    });
    QList<Issue> issues;
    visitFields(sections, [&](const Location& location, const FormField& field, qsizetype payloadCount) {
        if (!field.hasProminentError())
            return false;
        Issue issue;
        issue.location = location;
        issue.sectionTitle = location.section->sectionProperties().title;
        if (payloadCount > 1)
            issue.payloadTitle = payloadForm(location)->title();
        issue.keyTitle = keyTitle(field);
        issue.message = field.controller->error().value_or(QString());
        issues.append(issue);
        return false;
    });
    return issues;
}

std::optional<DocumentIssueList::Location> DocumentIssueList::locate(const QList<PFMSection*>& sections,
                                                                     const FieldViewController* controller) {
    std::optional<Location> found;
    if (controller)
        visitFields(sections, [&](const Location& location, const FormField& field, qsizetype) {
            if (field.controller.get() == controller)
                found = location;
            return found.has_value();
        });
    return found;
}

std::optional<DocumentIssueList::Issue> DocumentIssueList::step(const QList<Issue>& issues,
                                                                const std::optional<Location>& from,
                                                                Direction direction) {
    if (issues.isEmpty())
        return std::nullopt;
    const bool forward = direction == Direction::next;
    if (!from)
        return forward ? issues.first() : issues.last();
    // On an issue itself, its neighbour, even where sections sort alike.
    const auto at = std::find_if(issues.begin(), issues.end(),
                                 [&](const Issue& issue) { return issue.location == *from; });
    if (at != issues.end()) {
        const qsizetype index = (at - issues.begin()) + (forward ? 1 : -1);
        return issues.at((index + issues.size()) % issues.size());
    }
    if (forward) {
        for (const Issue& issue : issues) {
            if (precedes(*from, issue.location))
                return issue;
        }
        return issues.first();
    }
    for (auto issue = issues.rbegin(); issue != issues.rend(); ++issue) {
        if (precedes(issue->location, *from))
            return *issue;
    }
    return issues.last();
}

bool DocumentIssueList::precedes(const Location& a, const Location& b) {
    return rankOf(a) < rankOf(b);
}

bool DocumentIssueList::reveal(const Location& location) {
    PayloadViewController* form = payloadForm(location);
    if (!form || location.fieldIndex < 0 || location.fieldIndex >= int(form->fieldViewControllers().size()))
        return false;
    form->setCollapsed(false);
    const FormField& field = form->fieldViewControllers()[size_t(location.fieldIndex)];
    if (field.key && form->hasGroupSelector()) {
        if (const auto group = field.key->effectiveDisplayGroupIndex())
            form->selectGroup(*group);
    }
    return !form->fieldViewControllers()[size_t(location.fieldIndex)].hidden;
}

} // namespace quorlin
