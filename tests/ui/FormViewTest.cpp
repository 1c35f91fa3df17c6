// The form widgets over real sections: what they show against what the
// logic decides (read through FormTextRenderer, the logic's own picture of
// a form), edits typed into them against the profile and its history, and
// the signing row against identities of a PKI made at run time.

#include "documents/ProfileSigningBridge.h"
#include "documents/SigningFixture.h"
#include "fields/FieldViewController.h"
#include "schema/SchemaTrees.h"
#include "ui/ContentView.h"
#include "ui/FieldRowView.h"
#include "ui/PayloadFormView.h"
#include "ui/PropertyInfoPopover.h"
#include "ui/SectionFormView.h"
#include "ui/SigningRowView.h"
#include "workspace/EditHistory.h"
#include "workspace/FormTextRenderer.h"
#include "workspace/PFMSectionViewController.h"
#include "workspace/PayloadViewController.h"
#include "workspace/WorkspaceTestSupport.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace quorlin {
namespace {

using namespace test;

const QString bundledFolder = QStringLiteral(QUORLIN_BINARY_DIR "/share/quorlin-profile-editor/Manifests");

// One window's worth of logic over a new profile: sections, a history as the
// writer, and the content view showing one section.
class Window {
public:
    explicit Window(const Profile::DomainList& domains,
                    std::shared_ptr<ProfileEnvironment> environment = makeTestEnvironment())
        : profile(Profile::makeNewProfile(domains, std::move(environment)))
        , collection(domains) {
        view.resize(800, 600);
    }

    PFMSection& open(PFMSection& section) {
        section.setKeyValueWriter(history.keyValueWriter());
        section.bind(profile);
        if (!section.sectionViewController() && section.sectionKind() == PFMSection::Kinds::domain)
            history.addPayload(section, profile);
        view.setSection(&section);
        return section;
    }

    PFMSection* general() const {
        for (const auto& section : collection.sections()) {
            const auto domain = section->primaryDomain();
            if (section->sectionKind() == PFMSection::Kinds::domain && domain &&
                domain->domainString().isEmpty())
                return section.get();
        }
        return nullptr;
    }

    Profile::Pointer profile;
    PFMSectionCollection collection;
    EditHistory history;
    ContentView view;
};

// The rows the logic shows, in order, as its text picture names them:
// "name (title)", the signing row as "[signing]".
QStringList visibleRowsOfLogic(const PayloadViewController& form) {
    QStringList rows;
    for (const QString& line : FormTextRenderer::render(form).split(QLatin1Char('\n'))) {
        if (!line.startsWith(QStringLiteral("  - ")))
            continue;
        const QStringList parts = line.mid(4).split(QStringLiteral(" | "));
        if (parts.contains(QStringLiteral("hidden")))
            continue;
        const QString head = parts.first();
        const qsizetype instrument = head.lastIndexOf(QStringLiteral(" <"));
        rows << (instrument < 0 ? head : head.left(instrument));
    }
    return rows;
}

QStringList visibleRowsOfView(const PayloadFormView& view) {
    QStringList names;
    for (QWidget* row : view.rows()) {
        if (!row || !row->isVisibleTo(&view))
            continue;
        if (auto* field = qobject_cast<FieldRowView*>(row))
            names << QStringLiteral("%1 (%2)").arg(field->field().field()->name(),
                                                   field->field().field()->prototype().title());
        else if (qobject_cast<SigningRowView*>(row))
            names << QStringLiteral("[signing]");
    }
    return names;
}

void expectViewMatchesLogic(const SectionFormView& form, const QString& context) {
    const auto& controllers = form.form().payloadControllers();
    ASSERT_EQ(form.payloadViews().size(), qsizetype(controllers.size())) << context.toStdString();
    for (size_t index = 0; index < controllers.size(); ++index)
        EXPECT_EQ(visibleRowsOfView(*form.payloadViews().at(qsizetype(index))),
                  visibleRowsOfLogic(*controllers[index]))
            << context.toStdString();
}

TEST(FormView, EveryBundledFormShowsTheVisibleRowsOfTheLogicInOrderInEachGroupAndFits700Pixels) {
    const auto domains = domainsInFolder(bundledFolder);
    ASSERT_GT(domains.size(), 20);
    Window window(domains);
    window.view.show();
    int formsWithGroups = 0;
    for (const auto& section : window.collection.sections()) {
        if (section->sectionKind() != PFMSection::Kinds::domain)
            continue;
        window.open(*section);
        const SectionFormView* form = window.view.sectionFormView();
        if (!section->sectionViewController()) {
            // A payload made of a file waits for one; the section offers to add it.
            EXPECT_TRUE(section->sectionProperties().fileBasedPayload);
            EXPECT_EQ(form, nullptr);
            EXPECT_NE(window.view.findChild<QPushButton*>(QStringLiteral("addPayloadButton")), nullptr);
            continue;
        }
        ASSERT_NE(form, nullptr) << section->sectionProperties().title.toStdString();
        expectViewMatchesLogic(*form, section->sectionProperties().title);
        // The form fits a window of 700 pixels, whatever its labels and lists hold.
        EXPECT_LE(form->scrollArea()->widget()->minimumSizeHint().width(), 680)
            << section->sectionProperties().title.toStdString();
        // Each group chosen by its button re-filters the rows built once.
        PayloadFormView& payload = *form->payloadViews().first();
        if (payload.groupButtons().isEmpty())
            continue;
        ++formsWithGroups;
        const std::vector<QWidget*> rowsBefore = payload.rows();
        for (QAbstractButton* button : payload.groupButtons()) {
            QTest::mouseClick(button, Qt::LeftButton);
            expectViewMatchesLogic(*form, section->sectionProperties().title + QStringLiteral(" / ") +
                                              button->text());
        }
        for (size_t index = 0; index < rowsBefore.size(); ++index) {
            if (rowsBefore[index]) {
                EXPECT_EQ(payload.rows()[index], rowsBefore[index]) << "a row was rebuilt";
            }
        }
    }
    EXPECT_GT(formsWithGroups, 0);
}

TEST(FormView, ASearchBadgesItsGroupsAndMarksTheTermInTheRowsWithoutRebuildingThem) {
    Window window(
        withGeneralDomain(domainsInFolder(testDataPath(QStringLiteral("workspace/forms/groups-search")))));
    PFMSection* section = sectionTitled(window.collection, QStringLiteral("Network Access"));
    ASSERT_NE(section, nullptr);
    window.open(*section);
    window.view.show();
    PayloadFormView& payload = *window.view.sectionFormView()->payloadViews().first();
    const std::vector<QWidget*> rowsBefore = payload.rows();
    ASSERT_FALSE(payload.groupButtons().isEmpty());
    // The notice of unfamiliar properties, when there is one, stands above the groups.
    QWidget* notice = payload.unfamiliarNotice()->parentWidget();
    EXPECT_EQ(notice->parentWidget()->layout()->indexOf(notice), 0);

    for (const QString& term :
         {QStringLiteral("cert"), QStringLiteral("o"), QStringLiteral("no such words")}) {
        FieldDisplaySettings settings;
        settings.highlightedTerm = term;
        window.view.setFieldDisplaySettings(settings);
        const PayloadViewController& form = payload.form();
        for (auto label = form.displayGroupsLabelMap().cbegin(); label != form.displayGroupsLabelMap().cend();
             ++label)
            EXPECT_EQ(payload.groupBadge(label.key())->isVisibleTo(&payload),
                      form.groupBadges().contains(label.key()))
                << term.toStdString() << " / " << label.value().toStdString();
        for (QWidget* row : payload.rows()) {
            auto* field = qobject_cast<FieldRowView*>(row);
            if (!field)
                continue;
            const bool marked = field->titleLabel()->text().contains(QStringLiteral("background-color"));
            EXPECT_EQ(marked, !field->field().highlightedTermMatchesTitle().isEmpty())
                << term.toStdString() << " / " << field->field().field()->name().toStdString();
        }
        EXPECT_EQ(visibleRowsOfView(payload), visibleRowsOfLogic(form));
    }
    for (size_t index = 0; index < rowsBefore.size(); ++index) {
        if (rowsBefore[index]) {
            EXPECT_EQ(payload.rows()[index], rowsBefore[index]) << "a row was rebuilt";
        }
    }
}

// A proxy whose host, required, is hidden until the proxy is switched on,
// and whose port is disabled until then.
class ExclusionForm : public ::testing::Test {
protected:
    ExclusionForm()
        : window(
              withGeneralDomain(domainsInFolder(testDataPath(QStringLiteral("workspace/forms/exclusion"))))) {
        section = sectionTitled(window.collection, QStringLiteral("Proxy"));
        window.open(*section);
        window.view.show();
        payloadView = window.view.sectionFormView()->payloadViews().first();
    }

    FieldRowView* row(const QString& name) const { return payloadView->rowForKey(name); }
    bool rowShown(const QString& name) const {
        FieldRowView* found = row(name);
        return found && found->isVisibleTo(payloadView);
    }
    QCheckBox* proxySwitch() const {
        return qobject_cast<QCheckBox*>(row(QStringLiteral("UseProxy"))->instrumentWidgets().first());
    }
    QLineEdit* hostEdit() const {
        return qobject_cast<QLineEdit*>(row(QStringLiteral("ProxyHost"))->instrumentWidgets().first());
    }

    Window window;
    PFMSection* section = nullptr;
    PayloadFormView* payloadView = nullptr;
};

TEST_F(ExclusionForm, TheSwitchRevealsARequiredRowWhoseErrorCountsUntilItIsTyped) {
    ASSERT_NE(section, nullptr);
    EXPECT_FALSE(rowShown(QStringLiteral("ProxyHost")));
    EXPECT_FALSE(row(QStringLiteral("ProxyPort"))->instrumentWidgets().first()->isEnabled());
    EXPECT_EQ(section->errorCount(), 0);

    QTest::mouseClick(proxySwitch(), Qt::LeftButton);
    ASSERT_TRUE(rowShown(QStringLiteral("ProxyHost")));
    EXPECT_TRUE(proxySwitch()->isChecked());
    EXPECT_TRUE(row(QStringLiteral("ProxyPort"))->instrumentWidgets().first()->isEnabled());
    EXPECT_EQ(section->errorCount(), 1);
    QLabel* error = row(QStringLiteral("ProxyHost"))->errorLabel();
    EXPECT_TRUE(error->isVisibleTo(payloadView));
    EXPECT_FALSE(error->text().isEmpty());

    QTest::keyClicks(hostEdit(), QStringLiteral("proxy.example.com"));
    EXPECT_EQ(section->errorCount(), 0);
    EXPECT_FALSE(error->isVisibleTo(payloadView));

    hostEdit()->selectAll();
    QTest::keyClick(hostEdit(), Qt::Key_Backspace);
    EXPECT_EQ(section->errorCount(), 1);
    EXPECT_TRUE(error->isVisibleTo(payloadView));

    QTest::mouseClick(proxySwitch(), Qt::LeftButton);
    EXPECT_FALSE(rowShown(QStringLiteral("ProxyHost")));
    EXPECT_EQ(section->errorCount(), 0);
    EXPECT_EQ(visibleRowsOfView(*payloadView), visibleRowsOfLogic(payloadView->form()));
}

TEST_F(ExclusionForm, TypingWritesThroughTheHistoryUndoRestoresAndTheMenuUnsets) {
    QTest::mouseClick(proxySwitch(), Qt::LeftButton);
    const PreferenceKey::Pointer host = row(QStringLiteral("ProxyHost"))->field().field();
    const int stepsBefore = window.history.undoStack().count();

    QTest::keyClicks(hostEdit(), QStringLiteral("proxy.local"));
    ASSERT_NE(host->value().plistValue(), nullptr);
    EXPECT_EQ(host->value().plistValue()->toString(), QStringLiteral("proxy.local"));
    // Typing in one field is one step.
    EXPECT_EQ(window.history.undoStack().count(), stepsBefore + 1);
    EXPECT_TRUE(row(QStringLiteral("ProxyHost"))
                    ->findChild<QLabel*>(QStringLiteral("writeOutIndicator"))
                    ->isVisibleTo(payloadView));

    window.history.undoStack().undo();
    EXPECT_TRUE(host->value().isAbsent());
    EXPECT_TRUE(hostEdit()->text().isEmpty());
    window.history.undoStack().redo();
    EXPECT_EQ(hostEdit()->text(), QStringLiteral("proxy.local"));

    QMenu* menu = row(QStringLiteral("ProxyHost"))->makeContextMenu(payloadView);
    const QList<QAction*> actions = menu->actions();
    ASSERT_EQ(actions.size(), 4);
    for (QAction* action : actions)
        EXPECT_EQ(action->isEnabled(),
                  row(QStringLiteral("ProxyHost"))
                      ->field()
                      .validateMenuItem(FieldViewController::MenuAction(action->data().toInt())));
    QAction* unset = actions.first();
    ASSERT_TRUE(unset->isEnabled());
    unset->trigger();
    EXPECT_TRUE(host->value().isAbsent());
    EXPECT_TRUE(hostEdit()->text().isEmpty());
    EXPECT_EQ(section->errorCount(), 1);
    delete menu;
}

TEST_F(ExclusionForm, TheInfoButtonsOpenTheInformationOfTheKeyAndOfTheSectionWithoutBlocking) {
    QTest::mouseClick(proxySwitch(), Qt::LeftButton);
    FieldRowView* host = row(QStringLiteral("ProxyHost"));
    auto* button = host->findChild<QToolButton*>(QStringLiteral("propertyInfoButton"));
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
    auto* popover = host->findChild<PropertyInfoPopover*>(QStringLiteral("PropertyInfoPopover"));
    ASSERT_NE(popover, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(popover));
    EXPECT_EQ(popover->model(), host->field().propertyInfo());
    QStringList texts;
    for (const QLabel* label : popover->findChildren<QLabel*>())
        texts << label->text();
    // The key is required now that the proxy is on.
    EXPECT_TRUE(texts.contains(InfoPanelViewModel::presenceLabel()));
    EXPECT_TRUE(texts.contains(*host->field().propertyInfo().presence));
    EXPECT_TRUE(texts.contains(host->field().field()->prototype().title()));
    popover->close();

    // A section of two domains tells of both.
    section->addDomain(
        PFMDomain::make(manifestTree("com.example.proxy.legacy", {}, {{"pfm_title", "Proxy"}})));
    SectionFormView* form = window.view.sectionFormView();
    PropertyInfoPopover* sectionInfo = form->openSectionInfo();
    ASSERT_NE(sectionInfo, nullptr);
    QStringList names;
    for (const InfoPanelViewModel& panel : sectionInfo->models()) {
        EXPECT_FALSE(panel.presence.has_value());
        EXPECT_EQ(panel.title, QStringLiteral("Proxy"));
        names << panel.name.value_or(QString());
    }
    EXPECT_EQ(names, QStringList(section->domains().keys()));
    EXPECT_EQ(names.size(), 2);
    sectionInfo->close();
}

TEST(ContentView, FollowsTheSectionFromNotEnabledToItsFormAndBack) {
    const auto domains =
        withGeneralDomain(domainsInFolder(testDataPath(QStringLiteral("workspace/forms/exclusion"))));
    Window window(domains);
    PFMSection* section = sectionTitled(window.collection, QStringLiteral("Proxy"));
    section->setKeyValueWriter(window.history.keyValueWriter());
    section->bind(window.profile);
    window.view.setSection(section);
    ASSERT_EQ(window.view.sectionFormView(), nullptr);
    auto* add = window.view.findChild<QPushButton*>(QStringLiteral("addPayloadButton"));
    ASSERT_NE(add, nullptr);
    QSignalSpy addRequests(&window.view, &ContentView::addPayloadRequested);
    QTest::mouseClick(add, Qt::LeftButton);
    ASSERT_EQ(addRequests.size(), 1);
    EXPECT_EQ(addRequests.first().first().value<PFMSection*>(), section);

    window.history.addPayload(*section, window.profile);
    ASSERT_NE(window.view.sectionFormView(), nullptr);
    window.history.addPayload(*section, window.profile);
    ASSERT_EQ(window.view.sectionFormView()->payloadViews().size(), 2);
    // The new payload opens; the one before folds to its header.
    EXPECT_FALSE(window.view.sectionFormView()->payloadViews().at(0)->showsFields());
    EXPECT_TRUE(window.view.sectionFormView()->payloadViews().at(1)->showsFields());
    EXPECT_EQ(window.view.sectionFormView()->payloadViews().at(1)->titleEdit()->text(),
              section->sectionViewController()->payloadControllers().at(1)->title());

    QSignalSpy removeRequests(&window.view, &ContentView::removePayloadRequested);
    auto* remove = window.view.sectionFormView()->payloadViews().at(1)->findChild<QPushButton*>(
        QStringLiteral("removePayloadButton"));
    QTest::mouseClick(remove, Qt::LeftButton);
    ASSERT_EQ(removeRequests.size(), 1);
    EXPECT_EQ(removeRequests.first().at(1).toInt(), 1);
    window.history.removePayloads(*section, window.profile, {1});
    ASSERT_EQ(window.view.sectionFormView()->payloadViews().size(), 1);
    // The one left doesn't stay folded.
    EXPECT_TRUE(window.view.sectionFormView()->payloadViews().at(0)->showsFields());
    window.history.removePayloads(*section, window.profile, {0});
    EXPECT_EQ(window.view.sectionFormView(), nullptr);
    EXPECT_NE(window.view.findChild<QPushButton*>(QStringLiteral("addPayloadButton")), nullptr);
    window.history.undoStack().undo();
    EXPECT_NE(window.view.sectionFormView(), nullptr);
}

TEST(ContentView, TheNoticeOfUnfamiliarKeysNamesThemAndRemovesThem) {
    Window window(withGeneralDomain({}));
    const QByteArray profileData =
        readFile(testDataPath(QStringLiteral("ui/unfamiliar-root-key.mobileconfig")));
    const auto parsed = Profile::parseProfile(profileData, withGeneralDomain({}), makeTestEnvironment());
    ASSERT_TRUE(parsed);
    window.profile = *parsed;
    const Payload::Pointer root = window.profile->rootPayload();
    ASSERT_TRUE(root->unfamiliarPreferenceKeys().has_value());
    window.open(*window.general());
    PayloadFormView& payload = *window.view.sectionFormView()->payloadViews().first();
    const auto notice = payload.form().unfamiliarPropertiesNotice();
    ASSERT_TRUE(notice.has_value());
    EXPECT_TRUE(payload.unfamiliarNotice()->isVisibleTo(&payload));
    EXPECT_EQ(payload.unfamiliarNotice()->text(), *notice);

    // The form asks; the window's history removes them (tested with the window).
    QSignalSpy requests(&window.view, &ContentView::unfamiliarPropertiesRemoveRequested);
    auto* remove = payload.unfamiliarNotice()->parentWidget()->findChild<QPushButton*>();
    ASSERT_NE(remove, nullptr);
    QTest::mouseClick(remove, Qt::LeftButton);
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests.first().at(1).value<std::shared_ptr<Payload>>(), root);
    EXPECT_TRUE(root->unfamiliarPreferenceKeys().has_value());
}

TEST(ContentView, AnUnfamiliarSectionShowsItsPayloadsKeysAndValuesInItsRawEditor) {
    const auto domains = withGeneralDomain({});
    const QByteArray profileData =
        readFile(testDataPath(QStringLiteral("ui/two-unfamiliar-payloads.mobileconfig")));
    const auto profile = Profile::parseProfile(profileData, domains, makeTestEnvironment());
    ASSERT_TRUE(profile);
    const auto section = PFMSection::makeUnfamiliar((*profile)->unfamiliarPayloads().first());
    ASSERT_TRUE(section);
    ContentView view;
    view.setProfile(*profile);
    view.setSection(section.get());
    ASSERT_NE(view.currentView(), nullptr);
    EXPECT_EQ(view.currentView()->objectName(), QStringLiteral("unfamiliarView"));
    QStringList texts;
    for (const QLabel* label : view.findChildren<QLabel*>())
        texts << label->text();
    // The payload's keys and values are in its raw editor's tree.
    for (const QTreeWidget* tree : view.findChildren<QTreeWidget*>()) {
        for (QTreeWidgetItemIterator item(const_cast<QTreeWidget*>(tree)); *item; ++item)
            texts << (*item)->text(0) << (*item)->text(2);
    }
    for (const QString& shown : {QStringLiteral("Secret"), QStringLiteral("forty-two"), QStringLiteral("A"),
                                 ContentView::unfamiliarDomainLabel()})
        EXPECT_TRUE(texts.contains(shown)) << shown.toStdString();
    EXPECT_FALSE(texts.contains(QStringLiteral("not shown")));
    EXPECT_TRUE(view.findChildren<QLineEdit*>().isEmpty());
    EXPECT_EQ(view.sectionFormView(), nullptr);
}

class SigningRow : public SigningFixture {
protected:
    SigningRowView* openGeneral(Window& window) {
        window.open(*window.general());
        const SectionFormView* form = window.view.sectionFormView();
        return form ? form->payloadViews().first()->signingRow() : nullptr;
    }

    std::shared_ptr<ProfileEnvironment> environmentWithIdentities() {
        auto environment = makeTestEnvironment();
        environment->signingServices = std::make_shared<ProfileSigningBridge>(services);
        return environment;
    }
};

TEST_F(SigningRow, ListsTheIdentitiesByNameWithTheirTrustAndSetsTheProfilesSigner) {
    trustRoot();
    ASSERT_TRUE(importIdentity(leaf));
    ASSERT_TRUE(importIdentity(namelessLeaf));
    // An identity of a root nobody trusts.
    const TestCertificate strayRoot = TestPki::issue(QStringLiteral("A Stray Root"), nullptr, true);
    const TestCertificate stray = TestPki::issue(QStringLiteral("Another Signer"), &strayRoot, false);
    const QString p12 = writeFile(QStringLiteral("stray.p12"),
                                  TestPki::pkcs12(stray, {strayRoot.certificate.get()}, p12Password));
    ASSERT_TRUE(services.importPKCS12(p12, p12Password, storePassphrase));

    Window window(withGeneralDomain({}), environmentWithIdentities());
    window.view.setSigningIdentityTrust([this](const QString& name) {
        const auto identity = services.identityNamed(name);
        return identity && services.isTrusted(*identity);
    });
    SigningRowView* row = openGeneral(window);
    ASSERT_NE(row, nullptr);
    QComboBox* popUp = row->popUp();

    QStringList expected = window.profile->environment().signingServices->identityCommonNames();
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(expected.size(), 3);
    ASSERT_EQ(popUp->count(), 2 + expected.size());
    EXPECT_EQ(popUp->itemText(0), SigningRowView::noValueLabel());
    EXPECT_TRUE(
        popUp->itemData(1, Qt::AccessibleDescriptionRole).toString().contains(QStringLiteral("separator")));
    for (int index = 0; index < expected.size(); ++index) {
        EXPECT_EQ(popUp->itemText(2 + index), expected.at(index));
        // The stray root is the one no anchor vouches for.
        const bool trusted = expected.at(index) != QStringLiteral("Another Signer");
        EXPECT_EQ(popUp->itemData(2 + index, Qt::ToolTipRole).toString(),
                  trusted ? SigningRowView::trustedToolTip() : SigningRowView::untrustedToolTip())
            << expected.at(index).toStdString();
    }
    EXPECT_EQ(popUp->currentIndex(), 0);

    QSignalSpy edits(&window.view, &ContentView::saveSignedWithCommonNameEdited);
    const int signerIndex = 2 + int(expected.indexOf(signerName));
    popUp->setCurrentIndex(signerIndex);
    Q_EMIT popUp->activated(signerIndex);
    EXPECT_EQ(window.profile->saveSignedWithCommonName(), signerName);
    EXPECT_EQ(edits.size(), 1);
    EXPECT_TRUE(row->findChild<QLabel*>(QStringLiteral("writeOutIndicator"))->isVisibleTo(row));

    popUp->setCurrentIndex(0);
    Q_EMIT popUp->activated(0);
    EXPECT_EQ(window.profile->saveSignedWithCommonName(), std::nullopt);
    EXPECT_EQ(edits.size(), 2);
}

TEST_F(SigningRow, WithoutIdentitiesOffersOnlyNotSigning) {
    Window window(withGeneralDomain({}), environmentWithIdentities());
    SigningRowView* row = openGeneral(window);
    ASSERT_NE(row, nullptr);
    QComboBox* popUp = row->popUp();
    ASSERT_EQ(popUp->count(), 3);
    EXPECT_EQ(popUp->itemText(2), SigningRowView::noIdentitiesLabel());
    auto* model = qobject_cast<QStandardItemModel*>(popUp->model());
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->item(0)->isEnabled());
    EXPECT_FALSE(model->item(2)->isEnabled());
}

} // namespace
} // namespace quorlin
