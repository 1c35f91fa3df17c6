// The window's way to its errors: the issues panel, the next and previous
// error, and bringing an error's field into view.
#include "ui/DocumentWindow.h"

#include "plist/DefaultsKey.h"
#include "plist/UserDefaults.h"
#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/IssuesPanel.h"
#include "ui/PayloadFormView.h"
#include "ui/SectionFormView.h"
#include "workspace/SectionFilter.h"

#include <QApplication>
#include <QPointer>
#include <QScrollArea>
#include <QStatusBar>
#include <QTimer>
#include <QUndoStack>

namespace quorlin {

void DocumentWindow::buildIssuesPanel() {
    m_issuesPanel = new IssuesPanel(this);
    m_issuesPanel->toggleViewAction()->setText(QStringLiteral("&Issues"));
    m_issuesPanel->toggleViewAction()->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_I));
    addDockWidget(Qt::BottomDockWidgetArea, m_issuesPanel);
    const bool shown = m_defaults.boolean(DefaultsKey::lastChoiceShowIssues) == true;
    m_issuesPanel->setVisible(shown);
    // A few lines at first: the form stays the window's main part.
    const auto fewLinesHigh = [this] {
        resizeDocks({m_issuesPanel}, {fontMetrics().height() * 9}, Qt::Vertical);
    };
    if (shown)
        fewLinesHigh();
    connect(m_issuesPanel, &IssuesPanel::issueActivated, this, &DocumentWindow::goToIssue);
    connect(m_issuesPanel, &QDockWidget::visibilityChanged, this, &DocumentWindow::refreshIssues);
    connect(m_issuesPanel->toggleViewAction(), &QAction::triggered, this, [fewLinesHigh](bool shown) {
        if (shown)
            fewLinesHigh();
    });
    // Remembered when the user shows or closes the panel; a closing window
    // hides it too, without it being hidden itself.
    connect(m_issuesPanel, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (m_issuesPanel && (visible || m_issuesPanel->isHidden()))
            m_defaults.set(DefaultsKey::lastChoiceShowIssues, plist::Value(visible));
    });
    // The badges move with every count; an edit may change a message alone.
    connect(&m_sections, &SectionArrayController::badgeChanged, this, &DocumentWindow::refreshIssues);
    connect(&m_history.undoStack(), &QUndoStack::indexChanged, this, &DocumentWindow::refreshIssues);
}

// After the edit's own signals are done with the editor that sent it.
void DocumentWindow::reloadRawEditor() {
    QTimer::singleShot(0, this, [this] { m_content->reload(); });
}

// Once per pass of the event loop, and never under the panel's own click,
// which the list's rebuild would pull from under it.
void DocumentWindow::refreshIssues() {
    if (!m_issuesPanel || m_issuesPanel->isHidden() || m_issuesRefreshPending)
        return;
    m_issuesRefreshPending = true;
    QTimer::singleShot(0, this, [this] {
        m_issuesRefreshPending = false;
        if (!m_issuesPanel->isHidden())
            m_issuesPanel->setIssues(DocumentIssueList::collect(m_sections.content()));
    });
}

std::optional<DocumentIssueList::Location> DocumentWindow::focusedFieldLocation() const {
    for (QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
        if (auto* row = qobject_cast<FieldRowView*>(widget))
            return DocumentIssueList::locate(m_sections.content(), &row->field());
    }
    if (m_selectedSection)
        return DocumentIssueList::Location{m_selectedSection, -1, -1};
    return std::nullopt;
}

void DocumentWindow::goToAdjacentIssue(DocumentIssueList::Direction direction) {
    // Only what the side-bar shows can be selected.
    const auto issues = DocumentIssueList::collect(m_sections.arrangedObjects());
    if (const auto issue = DocumentIssueList::step(issues, focusedFieldLocation(), direction))
        goToIssue(issue->location);
    else
        statusBar()->showMessage(IssuesPanel::noIssuesText(), 3000);
}

void DocumentWindow::goToIssue(const DocumentIssueList::Location& location) {
    if (!location.section || !m_filter->selectSection(location.section)) {
        statusBar()->showMessage(QStringLiteral("A filter hides the section of this error."), 3000);
        return;
    }
    const bool rowShown = DocumentIssueList::reveal(location);
    SectionFormView* form = m_content->sectionFormView();
    if (!form || location.payloadIndex >= form->payloadViews().size())
        return;
    PayloadFormView* payload = form->payloadViews().at(location.payloadIndex);
    payload->followCollapsed();
    payload->refresh();
    QPointer<QWidget> row = rowShown ? payload->rows().at(size_t(location.fieldIndex)) : nullptr;
    QPointer<QWidget> target = row ? row.data() : payload;
    // A form just built shows its rows, and lays them out, on the next pass.
    QMetaObject::invokeMethod(
        this,
        [this, row, target] {
            SectionFormView* shown = m_content->sectionFormView();
            if (!target || !shown || !shown->isAncestorOf(target))
                return;
            QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
            shown->scrollArea()->ensureWidgetVisible(target);
            auto* fieldRow = qobject_cast<FieldRowView*>(row.data());
            if (!fieldRow)
                return;
            if (!fieldRow->instrumentWidgets().isEmpty())
                fieldRow->instrumentWidgets().first()->setFocus(Qt::ShortcutFocusReason);
            else
                fieldRow->setFocus(Qt::ShortcutFocusReason);
        },
        Qt::QueuedConnection);
}

} // namespace quorlin
